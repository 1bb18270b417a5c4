/* CGDataProvider.h: where images, profiles, fonts and documents get their bytes from. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGBase.h>

#include <sys/types.h>

CG_BEGIN_DECLS

typedef struct CGDataProvider* CGDataProviderRef;

/** Copies the next `count` bytes of a stream into `buffer`; the count copied, 0 at the end. */
typedef size_t (*CGDataProviderGetBytesCallback)(void* info, void* buffer, size_t count);
/** Skips the next `count` bytes of a stream; the count skipped. */
typedef off_t (*CGDataProviderSkipForwardCallback)(void* info, off_t count);
/** Goes back to the stream's first byte. */
typedef void (*CGDataProviderRewindCallback)(void* info);
/** The provider is going away: frees `info`. */
typedef void (*CGDataProviderReleaseInfoCallback)(void* info);

/** What a provider over a stream calls; `version` must be 0. */
typedef struct CGDataProviderSequentialCallbacks {
    unsigned int version;
    CGDataProviderGetBytesCallback getBytes;
    CGDataProviderSkipForwardCallback skipForward;
    CGDataProviderRewindCallback rewind;
    CGDataProviderReleaseInfoCallback releaseInfo;
} CGDataProviderSequentialCallbacks;

/** Skips the next `count` bytes of a stream. */
typedef void (*CGDataProviderSkipBytesCallback)(void* info, size_t count);

/** What a provider over a stream called before callbacks had versions. */
typedef struct CGDataProviderCallbacks {
    CGDataProviderGetBytesCallback getBytes;
    CGDataProviderSkipBytesCallback skipBytes;
    CGDataProviderRewindCallback rewind;
    CGDataProviderReleaseInfoCallback releaseProvider;
} CGDataProviderCallbacks;

/** All bytes at once, valid until handed back; NULL when they cannot be had. */
typedef const void* (*CGDataProviderGetBytePointerCallback)(void* info);
/** Hands the bytes back. */
typedef void (*CGDataProviderReleaseBytePointerCallback)(void* info, const void* pointer);
/** Copies `count` bytes from `position` on into `buffer`; the count copied. */
typedef size_t (*CGDataProviderGetBytesAtPositionCallback)(void* info, void* buffer, off_t position,
                                                           size_t count);

/** What a provider with random access calls; `version` must be 0. */
typedef struct CGDataProviderDirectCallbacks {
    unsigned int version;
    CGDataProviderGetBytePointerCallback getBytePointer;
    CGDataProviderReleaseBytePointerCallback releaseBytePointer;
    CGDataProviderGetBytesAtPositionCallback getBytesAtPosition;
    CGDataProviderReleaseInfoCallback releaseInfo;
} CGDataProviderDirectCallbacks;

/** The memory of a provider made with data is no longer needed. */
typedef void (*CGDataProviderReleaseDataCallback)(void* info, const void* data, size_t size);

/* A provider may be read by any number of threads; its callbacks run one at a time and must not
 * come back to the same provider. A provider that could not be made (NULL) has called none of them:
 * `info` is still the caller's. Otherwise the release callback runs once, with the provider's
 * end. */

CG_EXPORT CFTypeID CGDataProviderGetTypeID(void);

/** Over `size` bytes with random access, of which callbacks may give all, or any range, or both.
 *  NULL for a negative size, no callbacks, or a version that is not 0. */
CG_EXPORT CGDataProviderRef
CGDataProviderCreateDirect(void* info, off_t size, const CGDataProviderDirectCallbacks* callbacks);
/** Over a stream. Each callback may be NULL; without `rewind` the stream can be read only once.
 *  NULL without callbacks and for a version that is not 0. */
CG_EXPORT CGDataProviderRef
CGDataProviderCreateSequential(void* info, const CGDataProviderSequentialCallbacks* callbacks);
/** The same with callbacks of the older form. */
CG_EXPORT CGDataProviderRef CGDataProviderCreate(void* info,
                                                 const CGDataProviderCallbacks* callbacks);
/** Over memory that stays as it is until `releaseData` (may be NULL) is called with `info`, `data`
 *  and `size`. It is not copied. NULL for no data. */
CG_EXPORT CGDataProviderRef CGDataProviderCreateWithData(
    void* info, const void* data, size_t size, CGDataProviderReleaseDataCallback releaseData);
/** Over a CFData, which is retained and must not change. */
CG_EXPORT CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data);
/** Over a file, mapped into memory where possible. NULL for an empty path and for what cannot be
 *  opened or is no regular file. */
CG_EXPORT CGDataProviderRef CGDataProviderCreateWithFilename(const char* path);
/** Over the file that a URL names, by a path of at most 1024 bytes, or over the bytes in a "data"
 *  URL. NULL for a URL without scheme and, with an error in the log, of any other one. */
CG_EXPORT CGDataProviderRef CGDataProviderCreateWithURL(CFURLRef url);
CG_EXPORT CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider);
CG_EXPORT void CGDataProviderRelease(CGDataProviderRef provider);

/** The whole contents: the provider's own memory, lent while the data lives, where it has any, else
 *  read. NULL when they cannot be had to the last byte. */
CG_EXPORT CFDataRef CGDataProviderCopyData(CGDataProviderRef provider);

CG_END_DECLS
