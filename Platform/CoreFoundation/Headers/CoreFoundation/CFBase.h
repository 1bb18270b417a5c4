/* CFBase.h: scalar types, export macros and what holds for every CF function.
 *
 * Ownership: a function whose name contains Create or Copy gives a reference that the caller
 * releases; Get lends one. NULL: every function accepts NULL for an object argument; it then does
 * nothing or answers 0, NULL, false or the neutral value named. Memory: a Create function answers
 * NULL when its allocator has none left. Threads: immutable objects may be shared by threads,
 * mutable ones belong to one thread at a time; reference counts are atomic. Strings of bytes are
 * UTF-8 unless an encoding is named. */
#pragma once

#include <float.h>
#include <limits.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__cplusplus)
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif

#define CF_EXPORT extern __attribute__((visibility("default")))
#define CF_INLINE static inline

/* An enumeration of fixed underlying type where the language has them; in C the enumerators are
 * plain integer constants beside a typedef of that type. */
#if defined(__cplusplus)
#define CF_ENUM(type, name)                                                                        \
    enum name : type;                                                                              \
    typedef enum name name;                                                                        \
    enum name : type
#else
#define CF_ENUM(type, name)                                                                        \
    typedef type name;                                                                             \
    enum
#endif
#define CF_OPTIONS(type, name)                                                                     \
    typedef type name;                                                                             \
    enum

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef float Float32;
typedef double Float64;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;
typedef UInt32 UTF32Char;
typedef UInt16 UTF16Char;
typedef UInt8 UTF8Char;
typedef UInt8* StringPtr;
typedef const UInt8* ConstStringPtr;
typedef UInt8 Str255[256];
typedef const UInt8* ConstStr255Param;
typedef SInt32 OSStatus;
typedef SInt16 OSErr;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef SInt16 RegionCode;
typedef SInt16 LangCode;
typedef SInt16 ScriptCode;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;
typedef signed long CFIndex;

/** Any object of the runtime. */
typedef const void* CFTypeRef;

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;
typedef const struct __CFNull* CFNullRef;
typedef CFTypeRef CFPropertyListRef;

enum { kCFNotFound = -1 };

/** A run of `length` items from `location`. */
typedef struct CFRange {
    CFIndex location;
    CFIndex length;
} CFRange;

CF_INLINE CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range;
    range.location = location;
    range.length = length;
    return range;
}

CF_ENUM(CFIndex, CFComparisonResult) {
    kCFCompareLessThan = -1,
    kCFCompareEqualTo = 0,
    kCFCompareGreaterThan = 1
};

typedef CFComparisonResult (*CFComparatorFunction)(const void* a, const void* b, void* context);

/* ---- All objects --------------------------------------------------------------------------- */

/** The object's registered type; 0 for NULL and for objects of classes that are not registered. */
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);
/** The class name registered for `type`, or NULL. The caller owns it. */
CF_EXPORT CFStringRef CFCopyTypeIDDescription(CFTypeID type);
/** Adds a reference and returns `object`. */
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
/** Gives a reference up; with the last one the object is finalised and its memory freed. */
CF_EXPORT void CFRelease(CFTypeRef object);
/** Gives a reference up when the calling thread ends its current autorelease scope; without one,
 *  when the thread ends. Returns `object`. */
CF_EXPORT CFTypeRef CFAutorelease(CFTypeRef object);
/** The count of references; the largest CFIndex for an immortal object, 0 for NULL. */
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
/** Whether both are the same object, or of one class whose rule says that they are equal. */
CF_EXPORT Boolean CFEqual(CFTypeRef a, CFTypeRef b);
/** A number that equal objects share. */
CF_EXPORT CFHashCode CFHash(CFTypeRef object);
/** A text for people: the class's own description, else the class name and the address. */
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);
/** Writes CFCopyDescription's text and a line end to stderr. */
CF_EXPORT void CFShow(CFTypeRef object);
/** The allocator that holds the object's memory; lent. */
CF_EXPORT CFAllocatorRef CFGetAllocator(CFTypeRef object);

CF_EXTERN_C_END

#include <CoreFoundation/CFAllocator.h>
#include <CoreFoundation/CFNull.h>
