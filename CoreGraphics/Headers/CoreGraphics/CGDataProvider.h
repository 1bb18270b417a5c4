/* CGDataProvider.h: where images, profiles, fonts and documents get their bytes from. */
#pragma once

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

CG_END_DECLS
