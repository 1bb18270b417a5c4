/* CFRuntime.h: how libraries add classes of their own to the object runtime.
 *
 * An instance begins with a CFRuntimeBase, followed by the class's own fields. Its first word is
 * the address of its class record with the two low bits set to 2, which no object of a foreign
 * object-messaging runtime has: there it is an aligned address. */
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/** The head of every instance. Its fields belong to the runtime. */
typedef struct CFRuntimeBase {
    uintptr_t classWord;  /**< The class record's address | 2. */
    uint16_t typeID;      /**< 0 for classes that are not registered. */
    uint16_t flags;       /**< Low byte: the class's own. High byte: the runtime's. */
    uint32_t retainCount; /**< Atomic; with the top bit set the object is immortal. */
} CFRuntimeBase;

#define kCFRuntimeClassTagMask ((uintptr_t)3)
#define kCFRuntimeClassTag ((uintptr_t)2)

/** What the runtime asks of a class; a callback left NULL falls back to identity for equality, the
 *  address for the hash and "<name 0x…>" for descriptions. The record lives as long as the process.
 */
typedef struct CFRuntimeClass {
    CFIndex version; /**< Always 0. */
    const char* className;
    void (*init)(CFTypeRef object);
    CFTypeRef (*copy)(CFAllocatorRef allocator, CFTypeRef object);
    void (*finalize)(CFTypeRef object);
    Boolean (*equal)(CFTypeRef a, CFTypeRef b);
    CFHashCode (*hash)(CFTypeRef object);
    /** The text for "%@" and for showing inside a collection; the caller owns it. */
    CFStringRef (*copyFormattingDescription)(CFTypeRef object, CFTypeRef formatOptions);
    /** The text of CFCopyDescription; the caller owns it. */
    CFStringRef (*copyDebugDescription)(CFTypeRef object);
} CFRuntimeClass;

enum {
    _kCFRuntimeNotATypeID = 0,
    /** Reserved: string instances are also laid out by the compiler, before any class registers. */
    _kCFRuntimeStringTypeID = 7
};

/** Reference counts from here on stand for "for ever". */
#define _kCFRuntimeImmortalCount 0x80000000U

/** Registers `record` and returns its new type identifier; 0 when the table of types is full or
 *  `record` is NULL. Call it once for a class, under a once-only guard. */
CF_EXPORT CFTypeID _CFRuntimeRegisterClass(const CFRuntimeClass* record);
/** The record registered for `type`, or NULL. */
CF_EXPORT const CFRuntimeClass* _CFRuntimeGetClassWithTypeID(CFTypeID type);

/** A new instance of a registered class with one reference: a CFRuntimeBase and `extraBytes` of
 *  zeroes behind it, aligned for any scalar. The category is ignored. NULL when the type is
 *  unknown, the size is negative or overflows, or `allocator` has no memory left. */
CF_EXPORT CFTypeRef _CFRuntimeCreateInstance(CFAllocatorRef allocator, CFTypeID type,
                                             CFIndex extraBytes, unsigned char* category);
/** The same of a class that has no type identifier: the record itself is the class. */
CF_EXPORT CFTypeRef _CFRuntimeCreateUntypedInstance(CFAllocatorRef allocator,
                                                    const CFRuntimeClass* record,
                                                    CFIndex extraBytes);
/** Makes an object that was not allocated by the runtime (static storage, zeroed) an immortal
 *  instance of a registered class. */
CF_EXPORT void _CFRuntimeInitStaticInstance(void* object, CFTypeID type);
/** Makes `object` immortal: from now on it ignores retain and release. */
CF_EXPORT void _CFRuntimeSetImmortal(CFTypeRef object);
CF_EXPORT Boolean _CFRuntimeIsImmortal(CFTypeRef object);

/** The class record of a native object. */
CF_INLINE const CFRuntimeClass* _CFRuntimeGetClass(CFTypeRef object) {
    return (const CFRuntimeClass*)(((const CFRuntimeBase*)object)->classWord &
                                   ~kCFRuntimeClassTagMask);
}

/** Whether `object` is one of ours rather than a foreign runtime's. */
CF_INLINE bool _CFRuntimeIsNative(CFTypeRef object) {
    return object && (((const CFRuntimeBase*)object)->classWord & kCFRuntimeClassTagMask) ==
                         kCFRuntimeClassTag;
}

/** Opens an autorelease scope on the calling thread and closes it again: CFAutorelease's objects
 *  are released when the innermost scope closes. */
CF_EXPORT void* _CFAutoreleasePoolPush(void);
CF_EXPORT void _CFAutoreleasePoolPop(void* pool);

CF_EXTERN_C_END
