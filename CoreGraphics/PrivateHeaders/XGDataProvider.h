/* XGDataProvider.h: reading data providers: whole, by ranges, or as streams.
 *
 * Every function takes the provider's mutex, and a provider's callbacks run under it, so that they
 * must not come back to the same provider. Any number of threads may share a provider; its stream
 * position is one for all. Sizes, offsets and counts are bytes. */
#pragma once

#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataProvider.h>

CG_BEGIN_DECLS

/** Frees what a provider could make again. */
typedef void (*XGDataProviderPurgeCallback)(void* info);

/** What a provider with random access to pixels calls; each entry may be NULL. `version` must
 *  be 0. */
typedef struct XGDataProviderDirectCallbacks {
    unsigned int version;
    CGDataProviderGetBytePointerCallback getBytePointer;
    CGDataProviderGetBytePointerCallback getPlanarBytePointer;        /**< A plane a component. */
    CGDataProviderGetBytePointerCallback getPremultipliedBytePointer; /**< Colours times alpha. */
    CGDataProviderReleaseBytePointerCallback releaseBytePointer;
    CGDataProviderReleaseBytePointerCallback releasePlanarBytePointer;
    CGDataProviderReleaseBytePointerCallback releasePremultipliedBytePointer;
    CGDataProviderGetBytesAtPositionCallback getBytesAtPosition;
    CGDataProviderReleaseInfoCallback releaseInfo;
    XGDataProviderPurgeCallback purgeData;
    XGDataProviderPurgeCallback purgePlanarData;
    XGDataProviderPurgeCallback purgePremultipliedData;
} XGDataProviderDirectCallbacks;

/** As CGDataProviderCreateDirect, with planar and premultiplied variants that can be purged. NULL
 *  for a negative size, no callbacks, or a version that is not 0. */
CG_EXPORT CGDataProviderRef
XGDataProviderCreateDirect(void* info, off_t size, const XGDataProviderDirectCallbacks* callbacks);
/** As CGDataProviderCreateWithFilename; with `map` 0 the file is read when asked for, through a
 *  descriptor that the provider keeps open, and cannot be locked. */
CG_EXPORT CGDataProviderRef XGDataProviderCreateWithFilename2(const char* path, int map);
/** As CGDataProviderCreateWithURL, with `map` as above. */
CG_EXPORT CGDataProviderRef XGDataProviderCreateWithURL2(CFURLRef url, int map);
/** The bytes of `source` from `byteOffset` to the end of the last of `rows` rows, which keep the
 *  source's row stride: (rows - 1) * sourceRowBytes + usedBytesPerRow; none of no rows. Nothing is
 *  copied. NULL without a source, for a negative offset and for sizes that overflow. */
CG_EXPORT CGDataProviderRef XGDataProviderCreateCroppedWithProvider(CGDataProviderRef source,
                                                                    int64_t byteOffset,
                                                                    size_t sourceRowBytes,
                                                                    size_t usedBytesPerRow,
                                                                    size_t rows);

/** What the provider was made with: the callbacks' info, the CFData, the mapping or the
 *  descriptor. */
CG_EXPORT void* XGDataProviderGetInfo(CGDataProviderRef provider);
/** The URL of a provider made from a file or URL, or NULL. */
CG_EXPORT CFURLRef XGDataProviderCopyURL(CGDataProviderRef provider);
/** The size. A stream is measured the first time by rewinding and skipping as far as it goes: one
 *  that cannot report how far it skipped "has" 2^63 - 1 bytes, and is not read for it. Of one that
 *  cannot do both the answer is -1, after a warning. */
CG_EXPORT int64_t XGDataProviderGetSize(CGDataProviderRef provider);

/** The whole contents in memory until unlocked as often, or NULL. The first lock of a stream, or of
 *  a crop out of one, reads it into memory, after a warning; from then on the provider is one over
 *  that memory. A stream that cannot be read to the end of its size, or has none, logs an error. No
 *  other lock allocates. */
CG_EXPORT const void* XGDataProviderLockData(CGDataProviderRef provider);
CG_EXPORT void XGDataProviderUnlockData(CGDataProviderRef provider);
/** The planar data of a provider with a callback for it; of others NULL. */
CG_EXPORT const void* XGDataProviderLockPlanarData(CGDataProviderRef provider);
CG_EXPORT void XGDataProviderUnlockPlanarData(CGDataProviderRef provider);
/** The premultiplied data of a provider with a callback for it, or a crop of it; else NULL. */
CG_EXPORT const void* XGDataProviderLockPremultipliedData(CGDataProviderRef provider);
CG_EXPORT void XGDataProviderUnlockPremultipliedData(CGDataProviderRef provider);

/** Reads up to `count` bytes at `offset`, less at the end, and stores how many in `read` (may be
 *  NULL). False, with 0, for an offset that is negative or not below the size, and for a provider
 *  that cannot read. A stream goes to `offset` if it can rewind; otherwise it is read from where
 *  it stands, with a warning if that is elsewhere. */
CG_EXPORT bool XGDataProviderReadBytes(CGDataProviderRef provider, void* buffer, int64_t offset,
                                       size_t count, size_t* read);
/** Takes a stream back to its start; providers that are no streams have nothing to do. */
CG_EXPORT bool XGDataProviderRewind(CGDataProviderRef provider);
/** Skips `count` bytes of a stream and stores how many in `skipped` (may be NULL): as reported by
 *  the stream's callback, else `count`, even if the stream is shorter. False for a negative
 *  count. */
CG_EXPORT bool XGDataProviderSkip(CGDataProviderRef provider, int64_t count, int64_t* skipped);

/** Whether the stream has these callbacks; true of providers that are no streams. */
CG_EXPORT bool XGDataProviderCanRewind(CGDataProviderRef provider);
CG_EXPORT bool XGDataProviderCanSkip(CGDataProviderRef provider);
CG_EXPORT bool XGDataProviderCanSeek(CGDataProviderRef provider);
/** Whether the contents are within reach without reading a stream. */
CG_EXPORT bool XGDataProviderIsDirect(CGDataProviderRef provider);
/** Has a provider with such callbacks free its plain, planar and premultiplied data; what is locked
 *  stays, with a warning. */
CG_EXPORT void XGDataProviderPurge(CGDataProviderRef provider);

CG_END_DECLS
