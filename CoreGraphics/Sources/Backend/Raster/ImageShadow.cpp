// ImageShadow.cpp: a mark's coverage drawn aside, then blurred into place.

#include "Backend/Raster/ImageShadow.h"

#include "Core/Object/Diagnostics.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkBlendMode.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace cg {

namespace {

// Draws a mark onto another surface, whose rows and columns are those of the first one moved by
// `shift`.
using DrawMark = std::function<void(Surface& shape, SkVector shift)>;

// The offset in rows and columns, which count downwards.
SkVector inPixels(SkVector offset) {
    return {offset.x(), -offset.y()};
}

// Beyond three sigmas nothing of a blur is seen; Skia blurs with 135 at most.
int reachOfBlur(float sigma) {
    constexpr float kLargestSigma = 135;
    return sigma > 0 ? static_cast<int>(std::ceil(3 * std::min(sigma, kLargestSigma))) : 0;
}

// Where coverage can matter: what of the mark's bounds is near enough to the clip to be seen
// blurred.
SkIRect coveredArea(const Surface& surface, const SkRect* bounds, float sigma) {
    const int reach = reachOfBlur(sigma);
    SkIRect area = surface.clip().getBounds().makeOutset(reach, reach);
    if (bounds && (!bounds->isFinite() || !area.intersect(bounds->makeOutset(1, 1).roundOut())))
        return SkIRect::MakeEmpty();
    return area;
}

// The smallest rectangle around all coverage: blurring costs more than looking.
SkIRect inkedPart(const SkPixmap& coverage) {
    const auto width = static_cast<std::size_t>(coverage.width());
    std::vector<std::uint8_t> columns(width, 0);
    int top = coverage.height(), bottom = 0;
    for (int y = 0; y < coverage.height(); ++y) {
        const std::uint8_t* const row = coverage.addr8(0, y);
        if (row[0] == 0 && std::memcmp(row, row + 1, width - 1) == 0)
            continue; // Each byte is the one after it.
        top = std::min(top, y);
        bottom = y + 1;
        for (std::size_t x = 0; x < width; ++x)
            columns[x] |= row[x];
    }
    const auto isInked = [](std::uint8_t column) { return column != 0; };
    const auto left = std::ranges::find_if(columns, isInked) - columns.begin();
    const auto right = columns.rend() - std::find_if(columns.rbegin(), columns.rend(), isInked);
    return top < bottom
               ? SkIRect::MakeLTRB(static_cast<int>(left), top, static_cast<int>(right), bottom)
               : SkIRect::MakeEmpty();
}

// Named for its log line.
void filterMask(Surface& surface, int deviceHeight, const SkIRect& area, const SkPaint& paint,
                const DrawMark& draw) {
    SkBitmap coverage;
    if (!coverage.tryAllocPixelsFlags(SkImageInfo::MakeA8(area.width(), area.height()),
                                      SkBitmap::kZeroPixels_AllocFlag)) {
        CG_LOG_ERROR("Failed to allocate image mask in mask filter!");
        return;
    }
    Surface shape(coverage.pixmap(), deviceHeight, surface.origin() + area.topLeft());
    draw(shape, {static_cast<float>(-area.left()), static_cast<float>(-area.top())});
    const SkIRect inked = inkedPart(coverage.pixmap());
    if (!inked.isEmpty())
        surface.drawMask(SkMask(coverage.getAddr8(inked.left(), inked.top()),
                                inked.makeOffset(area.topLeft()),
                                static_cast<uint32_t>(coverage.rowBytes()), SkMask::kA8_Format),
                         paint);
}

sk_sp<SkShader> shifted(const sk_sp<SkShader>& shader, SkVector by) {
    return shader ? shader->makeWithLocalMatrix(SkMatrix::Translate(by)) : nullptr;
}

} // namespace

SkIRect areaThrowingShadowInto(const SkIRect& shown, const ShadowCast& shadow) {
    // A quarter of a gigabyte of pixels; coordinates that floats tell apart.
    constexpr double kFarthest = 1 << 20, kMostPixels = 1 << 26;
    const SkVector offset = inPixels(shadow.offset);
    if (shown.isEmpty() ||
        !(std::fabs(offset.x()) < kFarthest && std::fabs(offset.y()) < kFarthest))
        return shown;
    const int reach = reachOfBlur(shadow.sigma) + 1;
    SkIRect area = shown.makeOffset(-static_cast<int>(std::lround(offset.x())),
                                    -static_cast<int>(std::lround(offset.y())));
    area.outset(reach, reach);
    area.join(shown);
    return static_cast<double>(area.width()) * area.height() <= kMostPixels ? area : shown;
}

void drawImageShadow(Surface& surface, int deviceHeight, const PlacedImage& image,
                     const ShadowCast& shadow, sk_sp<SkShader> pattern) {
    PlacedImage moved = image;
    moved.toDevice.postTranslate(shadow.offset.x(), shadow.offset.y());
    const SkRect bounds =
        SkMatrix::Concat(surface.deviceToPixels(), moved.toDevice).mapRect(image.rect);
    const bool isTiled = image.repeat == Repeat::Tiled;
    const SkIRect area = coveredArea(surface, isTiled ? nullptr : &bounds, shadow.sigma);
    if (area.isEmpty())
        return;
    filterMask(surface, deviceHeight, area, shadow.paint, [&](Surface& shape, SkVector shift) {
        SkPaint opaque;
        opaque.setAntiAlias(shadow.paint.isAntiAlias());
        opaque.setShader(shifted(pattern, shift + inPixels(shadow.offset)));
        shape.drawImage(moved, opaque);
    });
}

namespace {

// A mark's own paint, as if it were opaque, on a surface that is moved by `shift`.
SkPaint coverageOf(const SkPaint& mark, SkVector shift) {
    SkPaint opaque = mark;
    opaque.setAlpha(0xFF);
    opaque.setBlendMode(SkBlendMode::kSrcOver);
    opaque.setShader(shifted(mark.refShader(), shift));
    return opaque;
}

} // namespace

void drawPathShadow(Surface& surface, int deviceHeight, const SkPath& devicePath,
                    const SkPaint& mark, const ShadowCast& shadow) {
    SkRect storage;
    const SkVector offset = inPixels(shadow.offset);
    SkRect bounds =
        surface.deviceToPixels().mapRect(mark.computeFastBounds(devicePath.getBounds(), &storage));
    bounds.offset(offset);
    const SkIRect area = coveredArea(surface, &bounds, shadow.sigma);
    if (area.isEmpty())
        return;
    filterMask(surface, deviceHeight, area, shadow.paint, [&](Surface& shape, SkVector shift) {
        shape.drawPath(devicePath, coverageOf(mark, shift + offset), offset);
    });
}

void drawGlyphsShadow(Surface& surface, int deviceHeight, const PlacedGlyphs& glyphs,
                      const SkPaint& mark, const ShadowCast& shadow) {
    const SkVector offset = inPixels(shadow.offset);
    SkRect bounds = surface.boundsOf(glyphs, mark);
    bounds.offset(offset);
    const SkIRect area = coveredArea(surface, &bounds, shadow.sigma);
    if (area.isEmpty())
        return;
    filterMask(surface, deviceHeight, area, shadow.paint, [&](Surface& shape, SkVector shift) {
        shape.drawGlyphs(glyphs, coverageOf(mark, shift + offset), offset);
    });
}

} // namespace cg
