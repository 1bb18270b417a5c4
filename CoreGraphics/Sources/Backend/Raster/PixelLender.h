// PixelLender.h: pixels that a surface may have while a mark is drawn, and not otherwise.
#pragma once

#include <CoreGraphics/CGColor.h>

#include "include/core/SkColor.h"
#include "include/core/SkPixmap.h"
#include "include/core/SkRect.h"

#include <cstdint>
#include <optional>

namespace cg {

class PixelLender {
public:
    virtual ~PixelLender() = default;

    // The pixels of `area`, which lies inside the bitmap, as they are now. Nothing, with the reason
    // in the log, when they cannot be had; otherwise giveBack() comes before the next area, and
    // with it the bitmap shows what was drawn.
    virtual std::optional<SkPixmap> borrow(const SkIRect& area) = 0;
    virtual void giveBack() = 0;
    // How many pixels are best borrowed at once.
    virtual std::int64_t mostPixels() const = 0;

    // What follows is drawn in `color`, which Skia knows as `drawn`.
    virtual void noteColor(CGColorRef color, SkColor drawn) = 0;
    // Makes all pixels of `area` one opaque colour, without lending them.
    virtual void fill(const SkIRect& area, SkColor color) = 0;
    // The bitmap's pixels lie elsewhere.
    virtual void movePixels(void* to) = 0;
};

} // namespace cg
