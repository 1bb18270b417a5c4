/* CFURL.h: uniform resource locators: parsing, resolution, editing, and file system paths.
 *
 * A CFURL is a string in the syntax of RFC 3986 and, optionally, the base URL that it is
 * relative to. It is immutable. Its string is always ASCII: whatever else it stands for is
 * percent-escaped, in UTF-8 unless an encoding was named when it was created.
 *
 * The Copy functions for components look at the URL's own string, not at the resolved one, with
 * one exception: scheme, net location, host, port, user and password are taken from the base
 * where the relative string has neither scheme nor net location of its own. A component that is
 * not there is NULL. Parameters are what follows the first ';' of a path's last segment (RFC
 * 1738); the path then ends before it. URLs of the scheme "file" have none, because ';' is an
 * ordinary letter of file names. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFError.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFURL* CFURLRef;

/** How a file system path is written. */
CF_ENUM(CFIndex, CFURLPathStyle) {
    /** "/folder/file" */
    kCFURLPOSIXPathStyle = 0,
    /** "volume:folder:file"; the volume stands for the first folder below the root. A leading ':'
     *  makes a path relative, each further one goes up a folder. */
    kCFURLHFSPathStyle = 1,
    /** "C:\folder\file" or "\\host\share\file"; '/' separates as well. */
    kCFURLWindowsPathStyle = 2
};

CF_ENUM(CFIndex, CFURLComponentType) {
    kCFURLComponentScheme = 1,
    kCFURLComponentNetLocation = 2,
    kCFURLComponentPath = 3,
    kCFURLComponentResourceSpecifier = 4,
    kCFURLComponentUser = 5,
    kCFURLComponentPassword = 6,
    kCFURLComponentUserInfo = 7,
    kCFURLComponentHost = 8,
    kCFURLComponentPort = 9,
    kCFURLComponentParameterString = 10,
    kCFURLComponentQuery = 11,
    kCFURLComponentFragment = 12
};

CF_EXPORT CFTypeID CFURLGetTypeID(void);

/* ---- Creation from URL strings ------------------------------------------------------------- */

/* A string is legal when it holds nothing but the letters of RFC 3986, with square brackets in the
 * host only, every '%' before two hexadecimal digits, and a scheme, if it begins like one, of legal
 * letters. A Create function gives NULL for other strings. The empty string is a legal relative
 * reference. */

/** From a string, whose escapes stand for UTF-8. */
CF_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string,
                                         CFURLRef baseURL);
/** From bytes in `encoding`, which is also the encoding behind their escapes. Characters beyond
 *  ASCII are escaped. NULL also when the bytes are malformed in that encoding. */
CF_EXPORT CFURLRef CFURLCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                        CFIndex length, CFStringEncoding encoding,
                                        CFURLRef baseURL);
/** The same, resolved against `baseURL` at once, so that the result has no base. The compatibility
 *  mode takes a reference that repeats the base's scheme ("http:g") as relative. */
CF_EXPORT CFURLRef CFURLCreateAbsoluteURLWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                                   CFIndex length, CFStringEncoding encoding,
                                                   CFURLRef baseURL,
                                                   Boolean useCompatibilityMode);
/** The URL's own string as bytes in `encoding`. It holds no white space to escape, since no URL
 *  does: `escapeWhitespace` makes no difference. */
CF_EXPORT CFDataRef CFURLCreateData(CFAllocatorRef allocator, CFURLRef url,
                                    CFStringEncoding encoding, Boolean escapeWhitespace);

/* ---- Creation from file system paths ------------------------------------------------------- */

/* The URL of a directory ends with a slash, which is added where the path lacks it; one that ends
 * with a separator is a directory whatever is said. NULL for an empty path and for one with a NUL
 * character. */

/** The "file" URL of a path. A relative path is kept relative, to the working directory. */
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                                 CFURLPathStyle pathStyle, Boolean isDirectory);
/** The same with a relative path kept relative to `baseURL`; an absolute path has no base. */
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef allocator,
                                                               CFStringRef filePath,
                                                               CFURLPathStyle pathStyle,
                                                               Boolean isDirectory,
                                                               CFURLRef baseURL);
/** From a path's bytes as the host's files are named. */
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const UInt8* buffer, CFIndex length,
                                                           Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(
    CFAllocatorRef allocator, const UInt8* buffer, CFIndex length, Boolean isDirectory,
    CFURLRef baseURL);
/** Writes the path, unescaped and NUL-terminated, without a trailing slash, into `buffer`. False
 *  when it does not fit, holds a NUL, or the URL has no path. */
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8* buffer, CFIndex maxBufLen);
/** The URL's own path, unescaped and without a trailing slash. NULL when it has none, or its
 *  escapes are not text. */
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle pathStyle);

/* ---- The whole ------------------------------------------------------------------------------- */

/** The URL without a base that it stands for, by RFC 3986, section 5.2; `relativeURL` itself,
 *  retained, when it has no base. */
CF_EXPORT CFURLRef CFURLCopyAbsoluteURL(CFURLRef relativeURL);
/** The URL's own string, lent. */
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);
/** The base, lent, or NULL. */
CF_EXPORT CFURLRef CFURLGetBaseURL(CFURLRef url);
/** Whether the URL has the hierarchical form with a path: it has no scheme, or what follows the
 *  scheme begins with a slash. */
CF_EXPORT Boolean CFURLCanBeDecomposed(CFURLRef url);
/** Copies the bytes of the URL's own string, without a NUL, and returns their count; -1 when
 *  they do not fit. With a NULL buffer it only counts. */
CF_EXPORT CFIndex CFURLGetBytes(CFURLRef url, UInt8* buffer, CFIndex bufferLength);
/** Where in those bytes a component lies, {kCFNotFound, 0} when it is missing. The optional second
 *  range also takes in the marks between it and its neighbours; of a missing component it is the
 *  empty place where it would be inserted. */
CF_EXPORT CFRange CFURLGetByteRangeForComponent(CFURLRef url, CFURLComponentType component,
                                                CFRange* rangeIncludingSeparators);

/* ---- Components ------------------------------------------------------------------------------ */

CF_EXPORT CFStringRef CFURLCopyScheme(CFURLRef url);
/** "user:password@host:port", escapes kept. */
CF_EXPORT CFStringRef CFURLCopyNetLocation(CFURLRef url);
/** The path with its leading slash, escapes kept; empty when the URL can be decomposed but has
 *  none, NULL when it cannot. */
CF_EXPORT CFStringRef CFURLCopyPath(CFURLRef url);
/** The path without its leading slash, which `isAbsolute` (may be NULL) tells of. */
CF_EXPORT CFStringRef CFURLCopyStrictPath(CFURLRef url, Boolean* isAbsolute);
/** Whether the path ends with a slash, "." or "..". */
CF_EXPORT Boolean CFURLHasDirectoryPath(CFURLRef url);
/** All that follows the path, with its mark; all that follows the scheme of a URL that cannot be
 *  decomposed. */
CF_EXPORT CFStringRef CFURLCopyResourceSpecifier(CFURLRef url);
/** The host, unescaped; a numerical IPv6 host without its brackets. */
CF_EXPORT CFStringRef CFURLCopyHostName(CFURLRef url);
/** The port, or -1 when there is none or it does not fit 32 bits. */
CF_EXPORT SInt32 CFURLGetPortNumber(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyUserName(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyPassword(CFURLRef url);

/* `charactersToLeaveEscaped` is as for CFURLCreateStringByReplacingPercentEscapes. */
CF_EXPORT CFStringRef CFURLCopyParameterString(CFURLRef url, CFStringRef charactersToLeaveEscaped);
CF_EXPORT CFStringRef CFURLCopyQueryString(CFURLRef url, CFStringRef charactersToLeaveEscaped);
CF_EXPORT CFStringRef CFURLCopyFragment(CFURLRef url, CFStringRef charactersToLeaveEscaped);

/* ---- Paths piece by piece -------------------------------------------------------------------- */

/* Query and fragment stay in place when a path is edited. URLs that cannot be decomposed give
 * NULL. */

/** The last segment, unescaped; "/" for the root and "" for an empty path. */
CF_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
/** What follows the last '.' of the last segment, unescaped; NULL without one. A '.' that begins
 *  the name begins no extension. */
CF_EXPORT CFStringRef CFURLCopyPathExtension(CFURLRef url);
/** Appends text, which is escaped and may hold slashes, after exactly one slash. */
CF_EXPORT CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                         CFStringRef pathComponent,
                                                         Boolean isDirectory);
/** Removes the last segment, so that the result is the folder; the root stays as it is, and ".."
 *  gets another one behind it. */
CF_EXPORT CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
/** Puts '.' and the extension, escaped, behind the last segment. NULL when there is none, or the
 *  extension holds a slash. */
CF_EXPORT CFURLRef CFURLCreateCopyAppendingPathExtension(CFAllocatorRef allocator, CFURLRef url,
                                                         CFStringRef extension);
/** A URL without extension is returned as it is, retained. */
CF_EXPORT CFURLRef CFURLCreateCopyDeletingPathExtension(CFAllocatorRef allocator, CFURLRef url);

/* ---- Percent escapes ------------------------------------------------------------------------- */

/** `string` with its escapes, taken as UTF-8, replaced, except those of the characters to leave
 *  escaped: NULL leaves all, "" none. NULL when an escape is malformed or its bytes are not
 *  text. */
CF_EXPORT CFStringRef CFURLCreateStringByReplacingPercentEscapes(
    CFAllocatorRef allocator, CFStringRef string, CFStringRef charactersToLeaveEscaped);
/** The same with the encoding behind the escapes. */
CF_EXPORT CFStringRef CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
    CFAllocatorRef allocator, CFStringRef string, CFStringRef charactersToLeaveEscaped,
    CFStringEncoding encoding);
/** `string` with all characters escaped that may not stand in a URL, besides those of
 *  `legalURLCharactersToBeEscaped` and without those of `charactersToLeaveUnescaped` (each may be
 *  NULL; the second wins). '%' is escaped like others. NULL when `encoding` lacks a character. */
CF_EXPORT CFStringRef CFURLCreateStringByAddingPercentEscapes(
    CFAllocatorRef allocator, CFStringRef string, CFStringRef charactersToLeaveUnescaped,
    CFStringRef legalURLCharactersToBeEscaped, CFStringEncoding encoding);

/* ---- Files ----------------------------------------------------------------------------------- */

/* Errors are of the Cocoa domain: 260 for a file that is not there, 262 for a URL that is no
 * file's, each with the URL in its user info. */

/** Whether the file is there. */
CF_EXPORT Boolean CFURLResourceIsReachable(CFURLRef url, CFErrorRef* error);
/** Stores the property for `key`, owned by the caller, at `propertyValueTypeRefPtr`: NULL for an
 *  unknown key and for a property that such a file lacks. False, with an error and NULL stored,
 *  when the file cannot be asked. */
CF_EXPORT Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key,
                                                  void* propertyValueTypeRefPtr, CFErrorRef* error);

/** CFString: the last path component. */
CF_EXPORT const CFStringRef kCFURLNameKey;
/** CFString: the absolute path. */
CF_EXPORT const CFStringRef kCFURLPathKey;
/** CFBoolean. */
CF_EXPORT const CFStringRef kCFURLIsDirectoryKey;
/** CFBoolean. */
CF_EXPORT const CFStringRef kCFURLIsRegularFileKey;
/** CFNumber: bytes; regular files only. */
CF_EXPORT const CFStringRef kCFURLFileSizeKey;
/** CFDate. */
CF_EXPORT const CFStringRef kCFURLContentModificationDateKey;

CF_EXTERN_C_END
