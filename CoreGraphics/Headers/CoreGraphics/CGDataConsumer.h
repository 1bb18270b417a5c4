/* CGDataConsumer.h: where written bytes go. */
#pragma once

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

CG_END_DECLS
