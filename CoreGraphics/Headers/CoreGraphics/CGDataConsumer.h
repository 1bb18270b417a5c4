/* CGDataConsumer.h: where written bytes go. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

typedef struct CGDataConsumer* CGDataConsumerRef;

/** Takes `count` bytes; the count taken, less on failure. */
typedef size_t (*CGDataConsumerPutBytesCallback)(void* info, const void* buffer, size_t count);
/** The consumer is going away: frees `info`. */
typedef void (*CGDataConsumerReleaseInfoCallback)(void* info);

/** What a consumer calls. */
typedef struct CGDataConsumerCallbacks {
    CGDataConsumerPutBytesCallback putBytes;
    CGDataConsumerReleaseInfoCallback releaseConsumer;
} CGDataConsumerCallbacks;

CG_EXPORT CFTypeID CGDataConsumerGetTypeID(void);

/** Into callbacks, which are copied; without `putBytes` every write fails. NULL for no record. */
CG_EXPORT CGDataConsumerRef CGDataConsumerCreate(void* info,
                                                 const CGDataConsumerCallbacks* callbacks);
/** Into data, which is retained and appended to. */
CG_EXPORT CGDataConsumerRef CGDataConsumerCreateWithCFData(CFMutableDataRef data);
/** Into the file that a URL names, made or emptied now. NULL when it cannot be written. */
CG_EXPORT CGDataConsumerRef CGDataConsumerCreateWithURL(CFURLRef url);
CG_EXPORT CGDataConsumerRef CGDataConsumerRetain(CGDataConsumerRef consumer);
CG_EXPORT void CGDataConsumerRelease(CGDataConsumerRef consumer);

CG_END_DECLS
