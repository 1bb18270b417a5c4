/* CFConstantString.h: constant strings of a library, made by the compiler and the linker alone.
 *
 *     CF_CONST_STRING_DECL(kCGImageName, "CGImageName");   // once, at file scope, C or C++
 *     CF_EXPORT const CFStringRef kCGImageName;            // in the header
 *
 * The string is a finished immortal instance in the library's data: it needs no code at load time
 * and may be used before main. Its text must be ASCII, as its bytes are its characters. Equality
 * goes by text as for every string, but it is not the same object as CFSTR of the same text. */
#pragma once

#include <CoreFoundation/CFRuntime.h>

CF_EXTERN_C_BEGIN

/** The class record of all strings. */
CF_EXPORT const CFRuntimeClass _CFStringClass;

/** What every string begins with. */
typedef struct _CFStringHead {
    CFRuntimeBase base;
    CFHashCode hash;      /**< 0 until it is worked out; atomic. Never kept for mutable strings. */
    CFIndex length;       /**< In characters as stored. */
    const void* contents; /**< Latin-1 bytes, or UTF-16 units where the flag says so. */
} _CFStringHead;

/** Flags in the class's own byte of CFRuntimeBase.flags. */
enum {
    _kCFStringIsWide = 0x01,
    _kCFStringIsMutable = 0x02,
    _kCFStringHasExternalContents = 0x04, /**< And the longer record that goes with them. */
    _kCFStringIsASCII = 0x08,
    _kCFStringIsCString = 0x10, /**< Narrow, ended by a NUL and without one before it. */
    _kCFStringStorageFlags = _kCFStringIsWide | _kCFStringIsASCII | _kCFStringIsCString,
};

#if defined(__cplusplus)
#define _CF_CONST_STRING_LINKAGE extern "C"
#else
#define _CF_CONST_STRING_LINKAGE extern
#endif

#define CF_CONST_STRING_DECL(symbol, text)                                                         \
    static _CFStringHead symbol##_storage = {                                                      \
        {(uintptr_t)&_CFStringClass + kCFRuntimeClassTag, _kCFRuntimeStringTypeID,                 \
         _kCFStringIsASCII | _kCFStringIsCString, _kCFRuntimeImmortalCount},                       \
        0,                                                                                         \
        (CFIndex)sizeof("" text "") - 1,                                                           \
        "" text ""};                                                                               \
    _CF_CONST_STRING_LINKAGE __attribute__((visibility("default"))) const CFStringRef symbol;      \
    const CFStringRef symbol = (CFStringRef)(const void*)&symbol##_storage

CF_EXTERN_C_END
