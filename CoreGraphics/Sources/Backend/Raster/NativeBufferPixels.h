// NativeBufferPixels.h: pixels that Skia draws into, in a buffer that is locked for each mark.
#pragma once

#include "Backend/Raster/BitmapMemory.h"
#include "Backend/Raster/PixelLender.h"

namespace cg {

class NativeBufferPixels final : public PixelLender {
public:
    NativeBufferPixels(const Bitmap& bitmap, const SkImageInfo& info)
        : memory_(bitmap), info_(info) {}

    std::optional<SkPixmap> borrow(const SkIRect& area) override;
    void giveBack() override { memory_.unlock(); }
    std::int64_t mostPixels() const override;
    void noteColor(CGColorRef, SkColor) override {} // Drawn as Skia knows it.
    void fill(const SkIRect& area, SkColor color) override;
    void movePixels(void*) override {} // The buffer says where they are.

private:
    BitmapMemory memory_;
    SkImageInfo info_;
};

} // namespace cg
