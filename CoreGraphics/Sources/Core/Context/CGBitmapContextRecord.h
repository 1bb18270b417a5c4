// CGBitmapContextRecord.h: what a bitmap context keeps behind the fields that all contexts share.
#pragma once

#include "XGBitmapContext.h"
#include <CoreFoundation/CFData.h>
#include <CoreGraphics/CGBitmapContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/XGBackend.h"

namespace cg {

// Set by the library alone, when a context records commands instead of holding pixels.
inline constexpr CGBitmapInfo kRecordsCommands = 0x40000000;

struct BitmapFields {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bitsPerComponent = 0;
    std::size_t bytesPerRow = 0;
    std::size_t bitsPerPixel = 0;
    void* pixels = nullptr; // NULL while the context records.
    cf::Ref<CGColorSpaceRef> space;
    // Owns the pixels, or wraps the caller's. Images of the context may hold it, too. Absent while
    // the context records.
    cf::Ref<CFDataRef> data;
    CGBitmapInfo info = 0;
    // The caller may write the pixels at any time: it gave them, or has asked where they are.
    bool isReachable = false;
    // Where the pixels are instead, if they come and go; then `pixels` is where they first were.
    XGNativeBuffer* buffer = nullptr;
    CGBitmapContextReleaseDataCallback release = nullptr;
    void* releaseInfo = nullptr;
};

struct BitmapContext {
    CGContext common;
    BitmapFields bitmap;
};

// The bitmap's fields, or NULL of a context without them.
inline BitmapFields* fieldsOf(CGContextRef context) {
    const bool isBitmap = context && context->holdsBitmap;
    return isBitmap ? &reinterpret_cast<BitmapContext*>(context)->bitmap : nullptr;
}

// Leaves the pixels to the images that were made of them, if any still exists, and goes on with a
// copy. False when there is no memory for it. The context is a bitmap context.
bool takeBackPixels(CGContextRef context);

// A bitmap that records nothing: zeroed pixels of the context's own, whatever the options say. The
// rest is as for CGBitmapContextCreate.
CGContextRef createWithPixels(Bitmap bitmap);

// Zeroed memory for all rows; empty without any. The product of their sizes does not overflow.
cf::Ref<CFDataRef> allocatePixels(const Bitmap& bitmap);

// A bitmap context that takes what it can as commands; NULL where there is no queue for bitmaps
// like this one, or no memory.
CGContextRef createRecording(const Bitmap& bitmap);
// What is recorded is drawn, once and for all, into pixels that are made for it. False, after the
// line below, when there is no memory for them: the context then still records. True at once of a
// context with pixels.
bool bringIntoPixels(CGContextRef context);
// An image that draws the commands, none of which it copies, when it is first looked at. The queue
// takes no more. NULL when memory runs out.
CGImageRef createQueueImage(CGContextRef context);

// A context of the kind of bitmaps around `backend`, which it frees from then on; its fields are
// all unset. NULL when memory runs out.
CGContextRef makeBitmapContext(const XGContextCallbacks& callbacks, void* backend);
// What the fields say of the bitmap, its colour spaces and its clip.
void setUpBitmapContext(CGContextRef context, const Bitmap& bitmap, cf::Ref<CFDataRef> data);

// The line that says that there is no memory for a bitmap's pixels.
void logFailedAllocation(CGContextRef context, const Bitmap& bitmap);
// How the context's pixels are made up and where they lie now.
Bitmap describe(const BitmapFields& fields);

// The pixels while this object lives, locked where they come and go.
class LockedPixels {
public:
    explicit LockedPixels(const BitmapFields& fields);
    ~LockedPixels();
    LockedPixels(const LockedPixels&) = delete;
    LockedPixels& operator=(const LockedPixels&) = delete;

    // NULL, with the reason in the log, when they are no more.
    const std::byte* get() const { return pixels_; }

private:
    XGNativeBuffer* buffer_;
    const std::byte* pixels_;
};

} // namespace cg
