/* CFPropertyList.h: trees of plain values as bytes: XML, a binary form, and the old text form.
 *
 * A property list is a CFString, CFNumber, CFBoolean, CFDate, CFData, or a CFArray or CFDictionary
 * of property lists, the latter with CFString keys. Lists nest to at most 512 levels; deeper ones,
 * and with them those that contain themselves, are not valid.
 *
 * Bytes from outside may be anything: whatever is not well-formed gives NULL and an error of the
 * Cocoa domain with one of the codes below and a text that says where. Entities cannot be declared
 * in XML, references and sizes in the binary form are checked, and a list whose shared parts would
 * unfold to more than 16 million values is refused. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFError.h>
#include <CoreFoundation/CFStream.h>
#include <CoreFoundation/CFString.h>

CF_EXTERN_C_BEGIN

/** What may be changed in a list that was read or copied. */
CF_OPTIONS(CFOptionFlags, CFPropertyListMutabilityOptions) {
    kCFPropertyListImmutable = 0,
    kCFPropertyListMutableContainers = 1,
    kCFPropertyListMutableContainersAndLeaves = 2 /**< Strings and data as well. */
};

CF_ENUM(CFIndex, CFPropertyListFormat) {
    /** Text such as `{ key = "value"; list = (1, 2); data = <00ff>; }` and tables of strings, whose
     *  outermost braces are left out. It is read, not written. */
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200
};

enum {
    kCFPropertyListReadCorruptError = 3840,        /**< The bytes are not well-formed. */
    kCFPropertyListReadUnknownVersionError = 3841, /**< A form newer than those known here. */
    kCFPropertyListReadStreamError = 3842,         /**< The stream failed. */
    kCFPropertyListWriteStreamError = 3851 /**< The stream, or the list, cannot be written. */
};

/** The list in `data`, of whichever format, which is stored at `format` (may be NULL). A binary
 *  value that is referred to twice is one object in the result. */
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                                         CFOptionFlags options,
                                                         CFPropertyListFormat* format,
                                                         CFErrorRef* error);
/** The same from an open stream: `streamLength` bytes of it, or all when that is 0. */
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef allocator,
                                                           CFReadStreamRef stream,
                                                           CFIndex streamLength,
                                                           CFOptionFlags options,
                                                           CFPropertyListFormat* format,
                                                           CFErrorRef* error);
/** The list as bytes. Dictionaries are written in the order of their keys, so that equal lists give
 *  equal bytes. NULL, with an error, for what is no property list and for the old text format.
 *  `options` is 0. */
CF_EXPORT CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator,
                                             CFPropertyListRef propertyList,
                                             CFPropertyListFormat format, CFOptionFlags options,
                                             CFErrorRef* error);
/** Writes these bytes to an open stream and returns their count; 0, with an error, on failure. */
CF_EXPORT CFIndex CFPropertyListWrite(CFPropertyListRef propertyList, CFWriteStreamRef stream,
                                      CFPropertyListFormat format, CFOptionFlags options,
                                      CFErrorRef* error);

/** A copy down to the leaves, mutable as `mutabilityOption` says. NULL for what is no list. */
CF_EXPORT CFPropertyListRef CFPropertyListCreateDeepCopy(CFAllocatorRef allocator,
                                                         CFPropertyListRef propertyList,
                                                         CFOptionFlags mutabilityOption);
/** Whether it is a property list that `format` can hold: the old text format has no numbers,
 *  booleans and dates. False for NULL and for unknown formats. */
CF_EXPORT Boolean CFPropertyListIsValid(CFPropertyListRef propertyList,
                                        CFPropertyListFormat format);

CF_EXTERN_C_END
