/* CFData.h: runs of bytes.
 *
 * A range outside the data is a caller's mistake: it is logged, a copy is cut to what is there and
 * a change is not made. A change to immutable data is refused likewise. When memory runs out a
 * change is not made, and logged. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFData* CFDataRef;
typedef struct __CFData* CFMutableDataRef;

CF_OPTIONS(CFOptionFlags, CFDataSearchFlags) {
    kCFDataSearchBackwards = 1UL << 0, /**< Find the last match in the range. */
    kCFDataSearchAnchored = 1UL << 1   /**< Only at the range's start (backwards: its end). */
};

CF_EXPORT CFTypeID CFDataGetTypeID(void);

/** Immutable data of `length` bytes copied from `bytes`. NULL when `length` is negative, or
 *  positive with NULL `bytes`, or memory runs out. */
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
/** Immutable data around the caller's bytes, which must not change while it lives; `deallocator`
 *  frees them in the end (NULL: the default allocator; kCFAllocatorNull: nobody does). On failure,
 *  NULL, the bytes stay the caller's. */
CF_EXPORT CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                                CFIndex length, CFAllocatorRef bytesDeallocator);
/** Immutable data of the same bytes. */
CF_EXPORT CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data);
/** Empty mutable data. `capacity` is a hint at how long it will get; it may get longer. NULL when
 *  it is negative. */
CF_EXPORT CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
/** Mutable data of the same bytes. */
CF_EXPORT CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                   CFDataRef data);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
/** The bytes, valid until the data is changed or freed. */
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);
/** Whether nobody can change or free the bytes while the data lives: it is immutable, and has
 *  copied them or frees them itself. */
CF_EXPORT Boolean _CFDataOwnsBytes(CFDataRef data);
/** The bytes to write to; NULL for immutable data. */
CF_EXPORT UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data);
/** Copies the bytes of `range` into `buffer`. */
CF_EXPORT void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer);
/** The range of the first bytes in `searchRange` that equal `dataToFind`, or {kCFNotFound, 0}; that
 *  also for an empty `dataToFind`. */
CF_EXPORT CFRange CFDataFind(CFDataRef data, CFDataRef dataToFind, CFRange searchRange,
                             CFDataSearchFlags options);

/** Cuts off, or appends zeroes. */
CF_EXPORT void CFDataSetLength(CFMutableDataRef data, CFIndex length);
/** Appends `extraLength` zeroes. */
CF_EXPORT void CFDataIncreaseLength(CFMutableDataRef data, CFIndex extraLength);
CF_EXPORT void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length);
/** Puts `newLength` bytes in the place of those in `range`. `newBytes` may lie within the data. */
CF_EXPORT void CFDataReplaceBytes(CFMutableDataRef data, CFRange range, const UInt8* newBytes,
                                  CFIndex newLength);
CF_EXPORT void CFDataDeleteBytes(CFMutableDataRef data, CFRange range);

CF_EXTERN_C_END
