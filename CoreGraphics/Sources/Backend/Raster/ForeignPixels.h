// ForeignPixels.h: bitmaps that Skia does not draw into, drawn aside and written back.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include "Backend/Raster/BitmapMemory.h"
#include "Backend/Raster/PixelFormat.h"
#include "Backend/Raster/PixelLender.h"
#include "Core/Image/PixelReader.h"
#include "Core/Image/PixelWriter.h"

#include <memory>

namespace cg {

// Lends the part of the bitmap that a mark may touch as Skia's pixels, and writes those that
// differ afterwards. So what the caller sees is right after every mark, what it writes between
// marks is drawn upon, and pixels that no mark changed keep their bits even in formats that lose
// something on the way.
class ForeignPixels final : public PixelLender {
public:
    // NULL when memory runs out, or when the colours have no way to those that are drawn.
    static std::unique_ptr<ForeignPixels> create(const Bitmap& bitmap, const SkImageInfo& drawn);

    std::optional<SkPixmap> borrow(const SkIRect& area) override;
    void giveBack() override;
    std::int64_t mostPixels() const override;
    void noteColor(CGColorRef color, SkColor drawn) override;
    void fill(const SkIRect& area, SkColor color) override;
    void movePixels(void* to) override;

private:
    ForeignPixels(const Bitmap& bitmap, const SkImageInfo& drawn);
    bool prepareReader();
    bool reserve(std::size_t bytes);
    bool read(const SkIRect& area);
    template <typename Pixel>
    void writeChanges();

    std::byte* drawnRow(int row) const {
        return drawn_.get() + static_cast<std::size_t>(row) * rowBytes_;
    }
    const std::byte* rowBefore(int row) const { return drawnRow(row) + capacity_; }

    BitmapMemory memory_;
    SkImageInfo info_;
    Bitmap bitmap_;             // Its space is kept alive by the image or the backend.
    cf::Ref<CGImageRef> image_; // The bitmap's pixels as they lie, and what reads them.
    std::unique_ptr<PixelReader> reader_;
    std::unique_ptr<PixelWriter> writer_;
    // The borrowed pixels, and behind them the same as they were: kept for the next mark.
    std::unique_ptr<std::byte[]> drawn_;
    std::size_t capacity_ = 0;
    std::size_t rowBytes_ = 0;
    SkIRect area_ = SkIRect::MakeEmpty();
};

} // namespace cg
