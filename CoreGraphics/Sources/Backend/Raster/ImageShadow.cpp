// ImageShadow.cpp: an image's coverage drawn aside, then blurred into place.

#include "Backend/Raster/ImageShadow.h"

#include "Core/Object/Diagnostics.h"
#include "include/core/SkBitmap.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

// Beyond three sigmas nothing of a blur is seen; Skia blurs with 135 at most.
int reachOfBlur(float sigma) {
    constexpr float kLargestSigma = 135;
    return sigma > 0 ? static_cast<int>(std::ceil(3 * std::min(sigma, kLargestSigma))) : 0;
}

// Where coverage can matter: what of the image is near enough to the clip to be seen blurred.
SkIRect coveredArea(const Surface& surface, const PlacedImage& image, float sigma) {
    const int reach = reachOfBlur(sigma);
    SkIRect area = surface.clip().getBounds().makeOutset(reach, reach);
    if (image.repeat == Repeat::Tiled)
        return area;
    const SkMatrix matrix = SkMatrix::Concat(surface.deviceToPixels(), image.toDevice);
    const SkRect bounds = matrix.mapRect(image.rect);
    if (!bounds.isFinite() || !area.intersect(bounds.makeOutset(1, 1).roundOut()))
        return SkIRect::MakeEmpty();
    return area;
}

// Named for its log line.
void filterMask(Surface& surface, int deviceHeight, const PlacedImage& image, const SkIRect& area,
                const SkPaint& paint) {
    SkBitmap coverage;
    if (!coverage.tryAllocPixelsFlags(SkImageInfo::MakeA8(area.width(), area.height()),
                                      SkBitmap::kZeroPixels_AllocFlag)) {
        CG_LOG_ERROR("Failed to allocate image mask in mask filter!");
        return;
    }
    Surface shape(coverage.pixmap(), deviceHeight, surface.origin() + area.topLeft());
    SkPaint opaque;
    opaque.setAntiAlias(paint.isAntiAlias());
    shape.drawImage(image, opaque);
    surface.drawMask(SkMask(coverage.getAddr8(0, 0), area,
                            static_cast<uint32_t>(coverage.rowBytes()), SkMask::kA8_Format),
                     paint);
}

} // namespace

void drawImageShadow(Surface& surface, int deviceHeight, const PlacedImage& image, SkVector offset,
                     float sigma, const SkPaint& paint) {
    PlacedImage moved = image;
    moved.toDevice.postTranslate(offset.x(), offset.y());
    const SkIRect area = coveredArea(surface, moved, sigma);
    if (!area.isEmpty())
        filterMask(surface, deviceHeight, moved, area, paint);
}

} // namespace cg
