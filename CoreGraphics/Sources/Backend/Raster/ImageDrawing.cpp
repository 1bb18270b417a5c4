// ImageDrawing.cpp: pictures and image masks drawn by the raster backend.

#include "Backend/Raster/ImagePixels.h"
#include "Backend/Raster/ImageSampling.h"
#include "Backend/Raster/ImageShadow.h"
#include "Backend/Raster/RasterBackend.h"
#include "Backend/Raster/SkiaConversions.h"
#include "Core/Object/Diagnostics.h"

namespace cg {

namespace {

SkMatrix userToDevice(XGGStateRef state, uint32_t flags) {
    const bool inDeviceSpace = flags & kXGContextGeometryInDeviceSpace;
    return inDeviceSpace ? SkMatrix::I() : toSkia(*XGGStateGetCombinedCTM(state));
}

// Whether the size that pixels get has a say in how they are sampled.
bool dependsOnSize(CGInterpolationQuality quality) {
    return quality == kCGInterpolationDefault || quality == kCGInterpolationMedium ||
           quality == kCGInterpolationHigh;
}

PlacedImage place(const ImagePixels& pixels, CGRect rect, const SkMatrix& userToDevice,
                  CGInterpolationQuality quality, uint32_t flags) {
    PlacedImage image = {
        .pixels = pixels.pixmap(), .rect = toSkia(rect), .bitmap = pixels.bitmap()};
    image.toDevice = SkMatrix::Concat(userToDevice, turnedAround(image.rect));
    image.repeat = flags & kXGContextTiledImage ? Repeat::Tiled : Repeat::Once;
    SkMatrix matrix;
    if (dependsOnSize(quality))
        matrix.setConcat(image.toDevice, image.pixelsToRect());
    image.sampling = samplingFor(quality, matrix);
    SkSize scale;
    if (image.sampling.mipmap == SkMipmapMode::kNearest && matrix.decomposeScale(&scale)) {
        // As Skia would do it, but that it forgets the halved images after the call.
        if (const auto halved = pixels.halved(scale)) {
            image.pixels = *halved;
            image.bitmap = nullptr;
            image.sampling = SkSamplingOptions(SkFilterMode::kLinear);
        }
    }
    return image;
}

CGInterpolationQuality qualityFor(XGGStateRef state, CGImageRef image) {
    return CGImageGetShouldInterpolate(image) ? XGGStateGetInterpolationQuality(state)
                                              : kCGInterpolationNone;
}

std::optional<ImagePixels> SkiaContextDrawImage(CGImageRef image, CGColorSpaceRef destination,
                                                CGColorRenderingIntent intent) {
    auto pixels = ImagePixels::of(image, destination, intent);
    if (!pixels)
        CG_LOG_ERROR("Reading of bitmap failed, drawing empty image instead");
    return pixels;
}

} // namespace

void RasterBackend::drawPlaced(XGGStateRef state, uint32_t flags, const PlacedImage& image,
                               const SkPaint& paint) {
    Surface& target = surfaceUnderClip(state, flags);
    if (!(flags & kXGContextShadowPass)) {
        target.drawImage(image, paint);
        return;
    }
    drawImageShadow(target, deviceHeight(), image, shadowOf(state, paint), paint.refShader());
}

// Deliberate: an image that cannot be read is transparent, which some blend modes make visible.
void RasterBackend::drawEmptyImage(XGGStateRef state, uint32_t flags, CGRect rect) {
    if (flags & (kXGContextShadowPass | kXGContextTiledImage))
        return;
    SkPaint paint = paints_.image(state, flags);
    paint.setAlpha(0);
    drawMark(state, flags, SkPath::Rect(toSkia(rect)), paint);
}

void RasterBackend::drawImage(XGGStateRef state, uint32_t flags, CGRect rect, CGImageRef image) {
    const auto pixels =
        SkiaContextDrawImage(image, space_.get(), XGGStateGetRenderingIntent(state));
    if (!pixels) {
        drawEmptyImage(state, flags, rect);
        return;
    }
    const SkPaint* const paint =
        pixels->isCoverage() ? fillPaint(state, flags) : &paints_.image(state, flags);
    if (!paint)
        return;
    drawPlaced(state, flags,
               place(*pixels, rect, userToDevice(state, flags), qualityFor(state, image), flags),
               *paint);
}

} // namespace cg
