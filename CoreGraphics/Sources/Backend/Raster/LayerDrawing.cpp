// LayerDrawing.cpp: layers drawn from where their pixels lie.

#include <CoreGraphics/CGLayer.h>

#include "Backend/Raster/ImagePixels.h"
#include "Backend/Raster/ImageSampling.h"
#include "Backend/Raster/RasterBackend.h"
#include "Backend/Raster/SkiaConversions.h"
#include "Core/Color/RowTransform.h"
#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Object/Diagnostics.h"
#include "include/core/SkBitmap.h"

namespace cg {

namespace {

bool meansTheSame(CGColorSpaceRef space, CGColorSpaceRef destination) {
    return space == destination ||
           (CGColorSpaceGetModel(space) == CGColorSpaceGetModel(destination) &&
            !needsConversion(space, destination));
}

// Skia takes for opacity what opaque pixels have in its place.
bool isFullyOpaque(const SkPixmap& pixels) {
    constexpr std::uint32_t kOpacity = 0xFF000000;
    for (int y = 0; y < pixels.height(); ++y) {
        std::uint32_t common = kOpacity;
        const std::uint32_t* const row = pixels.addr32(0, y);
        for (int x = 0; x < pixels.width(); ++x)
            common &= row[x];
        if (common != kOpacity)
            return false;
    }
    return true;
}

// Whether pixels can be drawn from where they lie.
bool canStay(const SkPixmap& pixels) {
    if (!pixels.addr())
        return false;
    const int bytes = pixels.info().bytesPerPixel();
    return !pixels.isOpaque() || bytes < 4 || (bytes == 4 && isFullyOpaque(pixels));
}

// As an image is placed, its first row at the rectangle's largest y.
PlacedImage place(const SkPixmap& pixels, CGRect rect, XGGStateRef state, uint32_t flags) {
    PlacedImage image = {.pixels = pixels, .rect = toSkia(rect)};
    image.toDevice = turnedAround(image.rect);
    if (!(flags & kXGContextGeometryInDeviceSpace))
        image.toDevice.postConcat(toSkia(*XGGStateGetCombinedCTM(state)));
    image.sampling = samplingFor(XGGStateGetInterpolationQuality(state),
                                 SkMatrix::Concat(image.toDevice, image.pixelsToRect()));
    return image;
}

void SkiaContextDrawLayer() {
    CG_LOG_ERROR("Reading of layer failed, drawing empty layer instead");
}

} // namespace

void RasterBackend::drawLayerPixels(XGGStateRef state, uint32_t flags, CGRect rect,
                                    const SkPixmap& pixels) {
    const SkPaint* const paint = pixels.colorType() == kAlpha_8_SkColorType
                                     ? fillPaint(state, flags)
                                     : &paints_.image(state, flags);
    if (paint)
        drawPlaced(state, flags, place(pixels, rect, state, flags), *paint);
}

// Pixels that another space gives another meaning are converted as an image's.
void RasterBackend::drawConvertedLayer(XGGStateRef state, uint32_t flags, CGRect rect,
                                       CGContextRef layer) {
    const auto image = cf::adopt(CGBitmapContextCreateImage(layer));
    const auto pixels =
        ImagePixels::of(image.get(), space_.get(), XGGStateGetRenderingIntent(state));
    if (pixels) {
        drawLayerPixels(state, flags, rect, pixels->pixmap());
        return;
    }
    SkiaContextDrawLayer();
    drawEmptyImage(state, flags, rect);
}

void RasterBackend::drawLayer(XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef layer) {
    const CGContextRef context = CGLayerGetContext(layer);
    if (!fieldsOf(context))
        return;
    auto& source = *static_cast<RasterBackend*>(context->info);
    const Surface& target = surfaceUnderClip(state, flags); // May move a layer's own pixels.
    const SkPixmap& pixels = source.base_->pixels();
    // Coverage takes the fill colour, and means the same everywhere.
    if (pixels.colorType() != kAlpha_8_SkColorType &&
        !meansTheSame(source.space_.get(), space_.get())) {
        drawConvertedLayer(state, flags, rect, context);
        return;
    }
    if (&target != &*source.base_ && canStay(pixels)) {
        drawLayerPixels(state, flags, rect, pixels);
        return;
    }
    const SkBitmap copy = source.base_->copyPixels();
    if (!copy.isNull()) {
        drawLayerPixels(state, flags, rect, copy.pixmap());
        return;
    }
    SkiaContextDrawLayer();
    drawEmptyImage(state, flags, rect);
}

} // namespace cg
