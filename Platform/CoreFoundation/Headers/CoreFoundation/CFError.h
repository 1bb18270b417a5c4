/* CFError.h: why a function failed: a domain, a code within it, and texts for people.
 *
 * Immutable. Functions that take a `CFErrorRef*` store an error there only when they fail, and the
 * caller then owns it; the pointer may always be NULL. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

typedef struct __CFError* CFErrorRef;
typedef CFStringRef CFErrorDomain;

/** Codes are `errno` values. */
CF_EXPORT const CFErrorDomain kCFErrorDomainPOSIX;
/** Codes are OSStatus values. */
CF_EXPORT const CFErrorDomain kCFErrorDomainOSStatus;
/** Codes are kernel return values. */
CF_EXPORT const CFErrorDomain kCFErrorDomainMach;
/** Codes are those of the frameworks above, such as those of CFPropertyList.h. */
CF_EXPORT const CFErrorDomain kCFErrorDomainCocoa;

/* Keys of the user info. The texts are strings in the user's language. */

/** A whole sentence or two: what failed and why. */
CF_EXPORT const CFStringRef kCFErrorLocalizedDescriptionKey;
/** What failed: "The file could not be saved." */
CF_EXPORT const CFStringRef kCFErrorLocalizedFailureKey;
/** Why, as a sentence: "The volume is full." */
CF_EXPORT const CFStringRef kCFErrorLocalizedFailureReasonKey;
/** What the user may do about it. */
CF_EXPORT const CFStringRef kCFErrorLocalizedRecoverySuggestionKey;
/** A text for developers, not in the user's language. */
CF_EXPORT const CFStringRef kCFErrorDescriptionKey;
/** The error beneath this one, a CFErrorRef. */
CF_EXPORT const CFStringRef kCFErrorUnderlyingErrorKey;
/** The URL that was worked on, a CFURLRef. */
CF_EXPORT const CFStringRef kCFErrorURLKey;
/** The path of the file that was worked on, a CFStringRef. */
CF_EXPORT const CFStringRef kCFErrorFilePathKey;

CF_EXPORT CFTypeID CFErrorGetTypeID(void);

/** An error with a copy of `userInfo`; NULL stands for an empty one. NULL when `domain` is NULL or
 *  no memory is left. */
CF_EXPORT CFErrorRef CFErrorCreate(CFAllocatorRef allocator, CFErrorDomain domain, CFIndex code,
                                   CFDictionaryRef userInfo);
/** The same with a user info of `numUserInfoValues` keys and values; a negative number, or NULL
 *  arrays with a positive one, gives NULL. */
CF_EXPORT CFErrorRef CFErrorCreateWithUserInfoKeysAndValues(CFAllocatorRef allocator,
                                                            CFErrorDomain domain, CFIndex code,
                                                            const void* const* userInfoKeys,
                                                            const void* const* userInfoValues,
                                                            CFIndex numUserInfoValues);

/** The domain, lent; NULL for NULL. */
CF_EXPORT CFErrorDomain CFErrorGetDomain(CFErrorRef error);
CF_EXPORT CFIndex CFErrorGetCode(CFErrorRef error);
/** The user info, never NULL for an error. */
CF_EXPORT CFDictionaryRef CFErrorCopyUserInfo(CFErrorRef error);

/** The user info's own description, else one made of its failure and reason, else of the domain and
 *  the code. NULL for NULL, or when memory runs out. */
CF_EXPORT CFStringRef CFErrorCopyDescription(CFErrorRef error);
/** The user info's reason, or the host's text for a code of the POSIX domain, else NULL. */
CF_EXPORT CFStringRef CFErrorCopyFailureReason(CFErrorRef error);
/** The user info's recovery suggestion, or NULL. */
CF_EXPORT CFStringRef CFErrorCopyRecoverySuggestion(CFErrorRef error);

CF_EXTERN_C_END
