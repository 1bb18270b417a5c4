/* CFURLAccess.h: what a URL names, loaded at once.
 *
 * URLs of the schemes "file" and "data" (RFC 2397) can be loaded. Other schemes need a network,
 * which is for the application: they fail with kCFURLUnknownSchemeError and a line in the log. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

CF_ENUM(CFIndex, CFURLError) {
    kCFURLUnknownError = -10,
    kCFURLUnknownSchemeError = -11,
    kCFURLResourceNotFoundError = -12,
    kCFURLResourceAccessViolationError = -13,
    kCFURLRemoteHostUnavailableError = -14,
    kCFURLImproperArgumentsError = -15,
    kCFURLUnknownPropertyKeyError = -16,
    kCFURLPropertyKeyUnavailableError = -17,
    kCFURLTimeoutError = -18
};

/** Loads the bytes into `resourceData` and properties into `properties`, both owned by the caller;
 *  each may be NULL where it is not wanted, and is NULL after a failure. `desiredProperties` names
 *  the properties by the keys below, NULL stands for all that there are; those that such a resource
 *  lacks are left out. False on failure, with the reason, a CFURLError, in `errorCode` (may be
 *  NULL), which is 0 otherwise. */
CF_EXPORT Boolean CFURLCreateDataAndPropertiesFromResource(
    CFAllocatorRef allocator, CFURLRef url, CFDataRef* resourceData, CFDictionaryRef* properties,
    CFArrayRef desiredProperties, SInt32* errorCode);

/** CFBoolean: whether it is there. */
CF_EXPORT const CFStringRef kCFURLFileExists;
/** CFNumber: how many bytes it has. */
CF_EXPORT const CFStringRef kCFURLFileLength;
/** CFDate: when a file was last written. */
CF_EXPORT const CFStringRef kCFURLFileLastModificationTime;

CF_EXTERN_C_END
