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
    void* pixels = nullptr;
    cf::Ref<CGColorSpaceRef> space;
    // Owns the pixels, or wraps the caller's. Images of the context may hold it, too.
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
