// DirectFill.cpp: rectangles of one colour, put down by the shortest way.

#include "Backend/Raster/DirectFill.h"

#include "src/core/SkBlitRow.h"
#include "src/core/SkCoreBlitters.h"
#include "src/core/SkMemset.h"
#include "src/core/SkRectPriv.h"
#include "src/core/SkScan.h"

#include <cmath>

namespace cg {

namespace {

void fillWholePixels(const SkPixmap& pixels, const SkIRect& area, const SkPaint& paint) {
    const SkPMColor color = SkPreMultiplyColor(paint.getColor());
    if (paint.getAlpha() == 0xFF) {
        SkOpts::rect_memset32(pixels.writable_addr32(area.left(), area.top()), color, area.width(),
                              pixels.rowBytes(), area.height());
        return;
    }
    for (int y = area.top(); y < area.bottom(); ++y)
        SkBlitRow::Color32(pixels.writable_addr32(area.left(), y), area.width(), color);
}

// The blitters are those that Skia has for black, for opaque colours and for others.
template <typename Blitter>
void fillSmoothly(const SkPixmap& pixels, const SkRasterClip& clip, const SkRect& rect,
                  const SkPaint& paint) {
    Blitter blitter(pixels, paint);
    if (paint.isAntiAlias())
        SkScan::AntiFillRect(rect, clip, &blitter);
    else
        SkScan::FillRect(rect, clip, &blitter);
}

} // namespace

bool isPlainFill(const SkPaint& paint) {
    return paint.isSrcOver() && paint.getStyle() == SkPaint::kFill_Style && !paint.getShader() &&
           !paint.getColorFilter() && !paint.getMaskFilter() && !paint.getPathEffect();
}

bool isWhole(const SkRect& rect) {
    const auto isWholeNumber = [](float value) { return value == std::floor(value); };
    return isWholeNumber(rect.left()) && isWholeNumber(rect.top()) && isWholeNumber(rect.right()) &&
           isWholeNumber(rect.bottom());
}

bool fillDirectly(const SkPixmap& pixels, const SkRasterClip& clip, const SkRect& rect,
                  const SkPaint& paint) {
    if (pixels.colorType() != kN32_SkColorType || clip.clipShader() || !isPlainFill(paint))
        return false;
    if (clip.isRect() && isWhole(rect)) {
        SkIRect area = rect.roundOut();
        if (area.intersect(clip.getBounds()))
            fillWholePixels(pixels, area, paint);
        return true;
    }
    if (!SkRectPriv::FitsInFixed(rect))
        return false;
    if (clip.quickReject(rect.roundOut()))
        return true;
    if (paint.getColor() == SK_ColorBLACK)
        fillSmoothly<SkARGB32_Black_Blitter>(pixels, clip, rect, paint);
    else if (paint.getAlpha() == 0xFF)
        fillSmoothly<SkARGB32_Opaque_Blitter>(pixels, clip, rect, paint);
    else
        fillSmoothly<SkARGB32_Blitter>(pixels, clip, rect, paint);
    return true;
}

} // namespace cg
