/* XGDataConsumer.h: writing to data consumers.
 *
 * A consumer carries no lock: one thread writes to it at a time. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreGraphics/CGDataConsumer.h>

CG_BEGIN_DECLS

/** Takes all of `data`; what it returns is handed to the writer, 0 on failure. */
typedef size_t (*XGDataConsumerWriteDataCallback)(void* info, CFDataRef data);

/** What a consumer calls that may take data whole; each entry may be NULL. */
typedef struct XGDataConsumerCallbacks {
    CGDataConsumerPutBytesCallback putBytes;
    CGDataConsumerReleaseInfoCallback releaseConsumer;
    XGDataConsumerWriteDataCallback writeData;
} XGDataConsumerCallbacks;

/** As CGDataConsumerCreate, with the callback for whole data. */
CG_EXPORT CGDataConsumerRef _CGDataConsumerCreate(void* info,
                                                  const XGDataConsumerCallbacks* callbacks);
/** Writes `count` bytes. False when fewer were taken, which is not tried again; without a callback
 *  to take them, an error is logged. */
CG_EXPORT bool XGDataConsumerWriteBytes(CGDataConsumerRef consumer, const void* bytes,
                                        size_t count);
/** Writes all of `data`: what the consumer's callback for whole data returns, else 1, or 0 on
 *  failure. */
CG_EXPORT size_t _CGDataConsumerWriteData(CGDataConsumerRef consumer, CFDataRef data);

CG_END_DECLS
