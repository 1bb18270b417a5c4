/* CFBundle.h: folders that hold a program or a library with its resources.
 *
 * A bundle is a folder in one of three layouts, tried in this order:
 *   Contents/Info.plist, Contents/Resources/…, Contents/Linux/<executable>
 *   Resources/Info.plist, Resources/…, <executable>
 *   Info.plist and the resources in the folder itself, <executable>
 * Resources that differ between languages lie in "xx.lproj" folders among the resources. Folders
 * without an Info.plist are bundles too, of the last layout, with an empty dictionary.
 *
 * A folder has one bundle object while anyone holds it. All functions may be called from any
 * thread. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFError.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

typedef struct __CFBundle* CFBundleRef;

/* Keys of the information dictionary. */
CF_EXPORT const CFStringRef kCFBundleInfoDictionaryVersionKey;
CF_EXPORT const CFStringRef kCFBundleExecutableKey;
CF_EXPORT const CFStringRef kCFBundleIdentifierKey;
CF_EXPORT const CFStringRef kCFBundleVersionKey;
/** The language that resources fall back to. */
CF_EXPORT const CFStringRef kCFBundleDevelopmentRegionKey;
CF_EXPORT const CFStringRef kCFBundleNameKey;
CF_EXPORT const CFStringRef kCFBundleLocalizationsKey;

CF_EXPORT CFTypeID CFBundleGetTypeID(void);

/* ---- Finding bundles ------------------------------------------------------------------------- */

/** The bundle around the running program: the folder that its file lies in, or the one above
 *  "Contents/Linux". Lent; NULL when the host cannot tell. */
CF_EXPORT CFBundleRef CFBundleGetMainBundle(void);
/** A bundle that is in use, by its identifier; lent, or NULL. */
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleID);
/** The bundles in use, the main bundle among them. Lent until the next call of this function by
 *  the same thread. */
CF_EXPORT CFArrayRef CFBundleGetAllBundles(void);
/** The bundle of a folder. NULL unless `bundleURL` is the file URL of one that exists. */
CF_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
/** The bundles of all folders in `directoryURL` whose name has the extension `bundleType`; of all
 *  folders for NULL. NULL when the directory cannot be read. */
CF_EXPORT CFArrayRef CFBundleCreateBundlesFromDirectory(CFAllocatorRef allocator,
                                                        CFURLRef directoryURL,
                                                        CFStringRef bundleType);

/* ---- What a bundle says about itself --------------------------------------------------------- */

CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
/** The information dictionary, lent; empty when there is none to be read. */
CF_EXPORT CFDictionaryRef CFBundleGetInfoDictionary(CFBundleRef bundle);
/** What "InfoPlist.strings" says in the user's language, lent, or NULL. */
CF_EXPORT CFDictionaryRef CFBundleGetLocalInfoDictionary(CFBundleRef bundle);
/** The value from the latter, else the former dictionary; lent. */
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
/** The version "1.2.3b4" as a number: the major version in two binary-coded decimal digits in
 *  the top byte, minor and bug fix in one digit each, then the stage (0x20 d, 0x40 a, 0x60 b,
 *  0x80 final) and its number in a byte. A CFNumber is taken as it is. 0 for a version that does
 *  not read so. */
CF_EXPORT UInt32 CFBundleGetVersionNumber(CFBundleRef bundle);
CF_EXPORT CFStringRef CFBundleGetDevelopmentRegion(CFBundleRef bundle);
/** The information dictionary of a folder without making a bundle of it; NULL when there is
 *  none. */
CF_EXPORT CFDictionaryRef CFBundleCopyInfoDictionaryInDirectory(CFURLRef bundleURL);

/* ---- Resources ------------------------------------------------------------------------------- */

/** The folder that the resources lie in, relative to the bundle's. */
CF_EXPORT CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
/** The folder that Info.plist lies in. */
CF_EXPORT CFURLRef CFBundleCopySupportFilesDirectoryURL(CFBundleRef bundle);
/** The file "name.type" in the folder `subDirName` of the resources: one for all languages before
 *  one in the first language of the user's, then of the bundle's development region, that has it.
 *  `resourceType` and `subDirName` may be NULL; so may the name, for the first file of the type.
 *  NULL when there is no such file, and for names that would lead out of the resources. */
CF_EXPORT CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef resourceName,
                                           CFStringRef resourceType, CFStringRef subDirName);
/** The same in one language only, or for all languages. */
CF_EXPORT CFURLRef CFBundleCopyResourceURLForLocalization(CFBundleRef bundle,
                                                          CFStringRef resourceName,
                                                          CFStringRef resourceType,
                                                          CFStringRef subDirName,
                                                          CFStringRef localizationName);
/** The same in a folder that no bundle object was made of. */
CF_EXPORT CFURLRef CFBundleCopyResourceURLInDirectory(CFURLRef bundleURL, CFStringRef resourceName,
                                                      CFStringRef resourceType,
                                                      CFStringRef subDirName);
/** All files of a type (all files for NULL), those for all languages first, in the order of their
 *  names; empty when there are none. */
CF_EXPORT CFArrayRef CFBundleCopyResourceURLsOfType(CFBundleRef bundle, CFStringRef resourceType,
                                                    CFStringRef subDirName);

/* ---- Languages ------------------------------------------------------------------------------- */

/** The names of the bundle's languages: its "xx.lproj" folders and what its information dictionary
 *  lists. NULL when there are none. */
CF_EXPORT CFArrayRef CFBundleCopyBundleLocalizations(CFBundleRef bundle);
/** Those of `locArray` that fit the user's preferred languages, best first, where "pt" serves
 *  "pt-BR"; the array's first when none fits. */
CF_EXPORT CFArrayRef CFBundleCopyPreferredLocalizationsFromArray(CFArrayRef locArray);
/** The same for given preferences; NULL stands for the user's. */
CF_EXPORT CFArrayRef CFBundleCopyLocalizationsForPreferences(CFArrayRef locArray,
                                                             CFArrayRef prefArray);
/** The text for `key` in the table "tableName.strings" (NULL or "": "Localizable"); else `value`
 *  when it is not empty, else `key`. */
CF_EXPORT CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key,
                                                  CFStringRef value, CFStringRef tableName);

#define CFCopyLocalizedString(key, comment)                                                        \
    CFBundleCopyLocalizedString(CFBundleGetMainBundle(), (key), (key), NULL)
#define CFCopyLocalizedStringFromTable(key, tableName, comment)                                    \
    CFBundleCopyLocalizedString(CFBundleGetMainBundle(), (key), (key), (tableName))
#define CFCopyLocalizedStringFromTableInBundle(key, tableName, bundle, comment)                    \
    CFBundleCopyLocalizedString((bundle), (key), (key), (tableName))
#define CFCopyLocalizedStringWithDefaultValue(key, tableName, bundle, value, comment)              \
    CFBundleCopyLocalizedString((bundle), (key), (value), (tableName))

/* ---- Code ------------------------------------------------------------------------------------ */

/** The file of the bundle's program or library, by its kCFBundleExecutableKey; NULL when it is not
 *  there. */
CF_EXPORT CFURLRef CFBundleCopyExecutableURL(CFBundleRef bundle);
/** Loads the executable, a shared library; true also when it is loaded, as the main bundle's is. */
CF_EXPORT Boolean CFBundleLoadExecutable(CFBundleRef bundle);
CF_EXPORT Boolean CFBundleLoadExecutableAndReturnError(CFBundleRef bundle, CFErrorRef* error);
CF_EXPORT Boolean CFBundleIsExecutableLoaded(CFBundleRef bundle);
/** Gives the loaded executable up; pointers into it are then no longer good. */
CF_EXPORT void CFBundleUnloadExecutable(CFBundleRef bundle);
/** The address of an exported function or variable, loading the executable if need be; NULL when it
 *  has none of that name. */
CF_EXPORT void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef functionName);
CF_EXPORT void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef symbolName);

/* ---- Bundles of this system's own libraries -------------------------------------------------- */

/** The bundle of the shared library (or program) that holds `address`, for finding its resources.
 *  Shared libraries lie in a common folder, so their resources lie elsewhere; the first of these
 *  folders that exists is the bundle's:
 *    $NIMBRA_RESOURCES/<name>              an override for tests and relocated installations
 *    <folder of the library>/Resources/<name>               a build tree
 *    <folder of the library>/../share/nimbra/<name>         an installation
 *    <folder of the library>/../../share/nimbra/<name>      one with architecture folders
 *  NULL when `address` is in no library, `name` is NULL, empty or has a slash, or no folder exists.
 *  Its executable is the library itself. */
CF_EXPORT CFBundleRef _CFBundleCreateWithImageOfAddress(CFAllocatorRef allocator,
                                                        const void* address, CFStringRef name);
/** The bundle of resources that all libraries of this system share: the same search from this
 *  library with the name "System". Lent; NULL when no such folder exists. */
CF_EXPORT CFBundleRef _CFBundleGetSystemResources(void);

CF_EXTERN_C_END
