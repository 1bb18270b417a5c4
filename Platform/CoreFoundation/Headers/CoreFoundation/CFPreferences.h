/* CFPreferences.h: settings that outlive the program, as property lists under names.
 *
 * A value is stored in one of eight domains for an application: current or any application, current
 * or any user, current or any host. Each domain is one file: those of the current user lie in
 * "nimbra" under the user's folder for settings, those of any user in "nimbra" under the system's.
 * The values of the current host have a folder of the host's name beneath.
 *
 * Look-up by application goes through the domains in this order, in which user comes before
 * application and application before host, current before any in each: (user, app, host),
 * (user, app, any), (user, any, host), (user, any, any), then the same four of any user.
 *
 * Changes are seen by the whole process at once and reach the file when the domain is synchronised,
 * which merges them into what other processes wrote meanwhile and replaces the file as a whole.
 * A file that cannot be read counts as empty. One that is no property list does as well; its bytes
 * are kept beside it, with ".corrupt" behind the name, when it has to be replaced.
 *
 * All functions may be called from any thread. NULL names, and values that are no property lists,
 * are ignored. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

/** The main bundle's identifier, else the name of the program's file. */
CF_EXPORT const CFStringRef kCFPreferencesCurrentApplication;
CF_EXPORT const CFStringRef kCFPreferencesAnyApplication;
CF_EXPORT const CFStringRef kCFPreferencesCurrentUser;
CF_EXPORT const CFStringRef kCFPreferencesAnyUser;
CF_EXPORT const CFStringRef kCFPreferencesCurrentHost;
CF_EXPORT const CFStringRef kCFPreferencesAnyHost;

/* ---- By application -------------------------------------------------------------------------- */

/** The first value for `key` in the order above, or NULL. */
CF_EXPORT CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
/** The value as a truth: a boolean, a number that is not 0, or one of the strings "true", "yes",
 *  "1" and "false", "no", "0" in any case. False without such a value, which the second result (may
 *  be NULL) tells. */
CF_EXPORT Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef applicationID,
                                                  Boolean* keyExistsAndHasValidFormat);
/** The value as a whole number: a number without a fraction, a boolean, or a string that is a
 *  decimal number. 0 without such a value. */
CF_EXPORT CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID,
                                                  Boolean* keyExistsAndHasValidFormat);
/** Sets the value of the current user on any host; NULL removes it. */
CF_EXPORT void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value,
                                        CFStringRef applicationID);
/** Synchronises all domains of the application. False when one could not be written. */
CF_EXPORT Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);
/** Whether users are kept from changing the value: never, since this host has no administrator's
 *  layer above theirs. */
CF_EXPORT Boolean CFPreferencesAppValueIsForced(CFStringRef key, CFStringRef applicationID);

/* ---- By domain ------------------------------------------------------------------------------- */

/* `userName` is kCFPreferencesCurrentUser or kCFPreferencesAnyUser, `hostName` the same of hosts;
 * others are unknown domains, which hold nothing and take nothing. */

CF_EXPORT CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef applicationID,
                                                   CFStringRef userName, CFStringRef hostName);
/** The values of `keysToFetch` that are there, or all for NULL; empty when there are none. */
CF_EXPORT CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef keysToFetch,
                                                    CFStringRef applicationID,
                                                    CFStringRef userName, CFStringRef hostName);
/** NULL removes the value. */
CF_EXPORT void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value,
                                     CFStringRef applicationID, CFStringRef userName,
                                     CFStringRef hostName);
/** Removes, then sets; either argument may be NULL. */
CF_EXPORT void CFPreferencesSetMultiple(CFDictionaryRef keysToSet, CFArrayRef keysToRemove,
                                        CFStringRef applicationID, CFStringRef userName,
                                        CFStringRef hostName);
/** Writes the changes made here and reads those made elsewhere. False when the file could not be
 *  written; the changes are then kept for the next time. */
CF_EXPORT Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef userName,
                                           CFStringRef hostName);
/** The keys of the domain, or NULL when it is empty. */
CF_EXPORT CFArrayRef CFPreferencesCopyKeyList(CFStringRef applicationID, CFStringRef userName,
                                              CFStringRef hostName);

CF_EXTERN_C_END
