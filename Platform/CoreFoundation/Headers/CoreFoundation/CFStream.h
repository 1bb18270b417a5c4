/* CFStream.h: bytes read from and written to files and memory.
 *
 * A stream is opened once, used, and closed once; closing ends it for good. All calls block
 * until they can answer. A stream belongs to one thread at a time. Reading or writing a stream
 * that is not open answers -1 and changes nothing. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFError.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

typedef struct __CFReadStream* CFReadStreamRef;
typedef struct __CFWriteStream* CFWriteStreamRef;

CF_ENUM(CFIndex, CFStreamStatus) {
    kCFStreamStatusNotOpen = 0,
    kCFStreamStatusOpening,
    kCFStreamStatusOpen,
    kCFStreamStatusReading,
    kCFStreamStatusWriting,
    kCFStreamStatusAtEnd, /**< All is read, or a buffer of fixed size is full. */
    kCFStreamStatusClosed,
    kCFStreamStatusError
};

/** CFData: all that was written so far to a stream in memory. */
CF_EXPORT const CFStringRef kCFStreamPropertyDataWritten;
/** CFNumber: the place in a file where the next byte is read or written. It may be set, before or
 *  after opening; a negative one is refused. */
CF_EXPORT const CFStringRef kCFStreamPropertyFileCurrentOffset;
/** CFBoolean: whether a file keeps what it held and is written at its end. It may be set before the
 *  stream is opened. */
CF_EXPORT const CFStringRef kCFStreamPropertyAppendToFile;

CF_EXPORT CFTypeID CFReadStreamGetTypeID(void);
CF_EXPORT CFTypeID CFWriteStreamGetTypeID(void);

/* ---- Reading --------------------------------------------------------------------------------- */

/** A stream over `length` bytes of the caller's memory, which must stay while the stream lives;
 *  they are freed by `bytesDeallocator` (NULL: the default allocator; kCFAllocatorNull: never)
 *  when it is finalised. When the result is NULL they are still the caller's. */
CF_EXPORT CFReadStreamRef CFReadStreamCreateWithBytesNoCopy(CFAllocatorRef allocator,
                                                            const UInt8* bytes, CFIndex length,
                                                            CFAllocatorRef bytesDeallocator);
/** A stream over a file, which is looked for when the stream is opened. NULL unless `fileURL` has
 *  the scheme "file" and a path. */
CF_EXPORT CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef fileURL);

CF_EXPORT CFStreamStatus CFReadStreamGetStatus(CFReadStreamRef stream);
/** Why the stream is in the status Error; NULL in others. */
CF_EXPORT CFErrorRef CFReadStreamCopyError(CFReadStreamRef stream);
/** False when it cannot be opened, or was opened before. */
CF_EXPORT Boolean CFReadStreamOpen(CFReadStreamRef stream);
CF_EXPORT void CFReadStreamClose(CFReadStreamRef stream);
/** Whether a read would give bytes rather than the end. */
CF_EXPORT Boolean CFReadStreamHasBytesAvailable(CFReadStreamRef stream);
/** Reads up to `bufferLength` bytes: their count, 0 at the end, -1 on failure. */
CF_EXPORT CFIndex CFReadStreamRead(CFReadStreamRef stream, UInt8* buffer, CFIndex bufferLength);
/** Reads up to `maxBytesToRead` bytes, lent in place until the next call on the stream; 0 sets no
 *  limit. NULL, with a count of 0, where the stream has no memory of its own to lend, or with -1 on
 *  failure. `numBytesRead` may be NULL. */
CF_EXPORT const UInt8* CFReadStreamGetBuffer(CFReadStreamRef stream, CFIndex maxBytesToRead,
                                             CFIndex* numBytesRead);
/** The property, or NULL. */
CF_EXPORT CFTypeRef CFReadStreamCopyProperty(CFReadStreamRef stream, CFStringRef propertyName);
/** Whether the stream knows the property and took the value. */
CF_EXPORT Boolean CFReadStreamSetProperty(CFReadStreamRef stream, CFStringRef propertyName,
                                          CFTypeRef propertyValue);

/* ---- Writing --------------------------------------------------------------------------------- */

/** A stream into the caller's `buffer`, which is at its end after `bufferCapacity` bytes. */
CF_EXPORT CFWriteStreamRef CFWriteStreamCreateWithBuffer(CFAllocatorRef allocator, UInt8* buffer,
                                                         CFIndex bufferCapacity);
/** A stream into memory that grows by `bufferAllocator`; kCFStreamPropertyDataWritten has it. */
CF_EXPORT CFWriteStreamRef CFWriteStreamCreateWithAllocatedBuffers(CFAllocatorRef allocator,
                                                                   CFAllocatorRef bufferAllocator);
/** A stream into a file, made or emptied when the stream is opened. NULL as for reading. */
CF_EXPORT CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef fileURL);

CF_EXPORT CFStreamStatus CFWriteStreamGetStatus(CFWriteStreamRef stream);
CF_EXPORT CFErrorRef CFWriteStreamCopyError(CFWriteStreamRef stream);
CF_EXPORT Boolean CFWriteStreamOpen(CFWriteStreamRef stream);
CF_EXPORT void CFWriteStreamClose(CFWriteStreamRef stream);
/** Whether a write would take bytes. */
CF_EXPORT Boolean CFWriteStreamCanAcceptBytes(CFWriteStreamRef stream);
/** Writes up to `bufferLength` bytes: the count taken, 0 when a buffer is full, -1 on failure. */
CF_EXPORT CFIndex CFWriteStreamWrite(CFWriteStreamRef stream, const UInt8* buffer,
                                     CFIndex bufferLength);
CF_EXPORT CFTypeRef CFWriteStreamCopyProperty(CFWriteStreamRef stream, CFStringRef propertyName);
CF_EXPORT Boolean CFWriteStreamSetProperty(CFWriteStreamRef stream, CFStringRef propertyName,
                                           CFTypeRef propertyValue);

CF_EXTERN_C_END
