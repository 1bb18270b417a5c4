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

// The layouts that need no look at the pixels before they are drawn.
SkColorType premultipliedType(const BitmapFields& bitmap) {
    constexpr CGBitmapInfo kLayout = kCGBitmapAlphaInfoMask | kCGBitmapByteOrderMask;
    constexpr CGBitmapInfo kBGRA =
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
    constexpr CGBitmapInfo kRGBA = kCGImageAlphaPremultipliedLast;
    if (bitmap.bitsPerPixel != 32 || bitmap.bitsPerComponent != 8 || bitmap.bytesPerRow % 4 != 0 ||
        CGColorSpaceGetModel(bitmap.space.get()) != kCGColorSpaceModelRGB)
        return kUnknown_SkColorType;
    switch (bitmap.info & kLayout) {
    case kBGRA:
        return kBGRA_8888_SkColorType;
    case kRGBA:
    case kRGBA | CGBitmapInfo{kCGBitmapByteOrder32Big}:
        return kRGBA_8888_SkColorType;
    default:
        return kUnknown_SkColorType;
    }
}

bool meansTheSame(CGColorSpaceRef space, CGColorSpaceRef destination) {
    return space == destination || (CGColorSpaceGetModel(destination) == kCGColorSpaceModelRGB &&
                                    !needsConversion(space, destination));
}

PlacedImage place(const SkPixmap& pixels, CGRect rect, XGGStateRef state, uint32_t flags) {
    PlacedImage image = {.pixels = pixels, .rect = toSkia(rect)};
    image.toDevice = turnedAround(image.rect);
    if (!(flags & kXGContextGeometryInDeviceSpace))
        image.toDevice.postConcat(toSkia(*XGGStateGetCombinedCTM(state)));
    image.sampling = samplingFor(XGGStateGetInterpolationQuality(state),
                                 SkMatrix::Concat(image.toDevice, image.pixelsToRect()));
    return image;
}

std::optional<ImagePixels> SkiaContextDrawLayer(CGImageRef image, CGColorSpaceRef destination,
                                                CGColorRenderingIntent intent) {
    auto pixels = ImagePixels::of(image, destination, intent);
    if (!pixels)
        CG_LOG_ERROR("Reading of layer failed, drawing empty layer instead");
    return pixels;
}

} // namespace

std::optional<SkPixmap> RasterBackend::directPixels(CGContextRef layer) const {
    const BitmapFields* const bitmap = fieldsOf(layer);
    const SkColorType type = bitmap ? premultipliedType(*bitmap) : kUnknown_SkColorType;
    if (type == kUnknown_SkColorType || !bitmap->pixels ||
        !meansTheSame(bitmap->space.get(), space_.get()))
        return std::nullopt;
    return SkPixmap(SkImageInfo::Make(static_cast<int>(bitmap->width),
                                      static_cast<int>(bitmap->height), type, kPremul_SkAlphaType),
                    bitmap->pixels, bitmap->bytesPerRow);
}

void RasterBackend::drawLayer(XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef layer) {
    const CGContextRef context = CGLayerGetContext(layer);
    const Surface& target = surfaceUnderClip(state, flags); // May move a layer's own pixels.
    if (auto pixels = directPixels(context)) {
        SkBitmap before; // Of a layer that is drawn into itself.
        if (pixels->addr() == target.pixels().addr()) {
            if (!before.tryAllocPixels(pixels->info()) || !before.writePixels(*pixels)) {
                CG_LOG_ERROR("Allocation of bitmap failed.");
                return;
            }
            pixels = before.pixmap();
        }
        drawPlaced(state, flags, place(*pixels, rect, state, flags), paints_.image(state, flags));
        return;
    }
    const auto image = cf::adopt(CGBitmapContextCreateImage(context));
    const auto pixels =
        SkiaContextDrawLayer(image.get(), space_.get(), XGGStateGetRenderingIntent(state));
    if (!pixels) {
        drawEmptyImage(state, flags, rect);
        return;
    }
    const SkPaint* const paint =
        pixels->isCoverage() ? fillPaint(state, flags) : &paints_.image(state, flags);
    if (paint)
        drawPlaced(state, flags, place(pixels->pixmap(), rect, state, flags), *paint);
}

} // namespace cg
