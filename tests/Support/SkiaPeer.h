// SkiaPeer.h: bare Skia beside a bitmap context, to compare pixels with.
#pragma once

#include <CoreGraphics/CGBitmapContext.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"

#include <gtest/gtest.h>

#include <cstring>

namespace test {

// A canvas over BGRA pixels of its own, in a user space like a bitmap context's: y up from the
// lower left.
class SkiaPeer {
public:
    SkiaPeer(int width, int height)
        : bitmap_(makeBitmap(
              SkImageInfo::Make(width, height, kBGRA_8888_SkColorType, kPremul_SkAlphaType))),
          canvas_(bitmap_) {
        canvas_.translate(0, static_cast<float>(height));
        canvas_.scale(1, -1);
    }

    SkCanvas& canvas() { return canvas_; }
    const SkBitmap& bitmap() const { return bitmap_; }

private:
    static SkBitmap makeBitmap(const SkImageInfo& info) {
        SkGraphics::Init();
        SkBitmap bitmap;
        bitmap.allocPixels(info);
        std::memset(bitmap.getPixels(), 0, bitmap.computeByteSize());
        return bitmap;
    }

    SkBitmap bitmap_;
    SkCanvas canvas_;
};

// Whether the context's pixels are the peer's, byte for byte; names the first that is not.
inline testing::AssertionResult samePixels(CGContextRef context, const SkiaPeer& peer) {
    const SkPixmap& bare = peer.bitmap().pixmap();
    const auto* ours = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context));
    for (int y = 0; y < bare.height(); ++y) {
        for (int x = 0; x < bare.width(); ++x) {
            const auto* const mine =
                ours + static_cast<std::size_t>(y) * CGBitmapContextGetBytesPerRow(context) +
                static_cast<std::size_t>(x) * sizeof(std::uint32_t);
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, mine, sizeof pixel);
            if (pixel != *bare.addr32(x, y))
                return testing::AssertionFailure()
                       << "pixel (" << x << ", " << y << ") is " << std::hex << pixel
                       << ", bare Skia's " << *bare.addr32(x, y);
        }
    }
    return testing::AssertionSuccess();
}

} // namespace test
