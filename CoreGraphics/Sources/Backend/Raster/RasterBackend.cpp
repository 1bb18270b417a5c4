// RasterBackend.cpp: paths, rectangles and shadings drawn into a bitmap's pixels.

#include "Backend/Raster/RasterBackend.h"

#include "XGPath.h"

#include "Backend/Raster/ForeignPixels.h"
#include "Backend/Raster/ImageShadow.h"
#include "Backend/Raster/NativeBufferPixels.h"
#include "Backend/Raster/PixelFormat.h"
#include "Backend/Raster/Shading.h"
#include "Backend/Raster/SkiaConversions.h"
#include "Core/Object/Diagnostics.h"
#include "include/core/SkGraphics.h"

#include <new>

namespace cg {

namespace {

const SkPath& nativePath(CGPathRef path) {
    return *static_cast<const SkPath*>(_CGPathGetNativeObject(path));
}

SkPathFillType fillType(bool evenOdd) {
    return evenOdd ? SkPathFillType::kEvenOdd : SkPathFillType::kWinding;
}

} // namespace

RasterBackend::RasterBackend() {
    scratchPath_.setIsVolatile(true);
}

bool RasterBackend::setBitmap(const Bitmap& bitmap) {
    const auto format = surfaceFormat(bitmap);
    if (!format)
        return false;
    const SkImageInfo& info = format->info;
    if (format->isInPlace && !bitmap.buffer) {
        base_.emplace(SkPixmap(info, bitmap.pixels, bitmap.bytesPerRow), info.height(),
                      SkIPoint{0, 0});
    } else {
        std::unique_ptr<PixelLender> lender;
        if (format->isInPlace)
            lender.reset(new (std::nothrow) NativeBufferPixels(bitmap, info));
        else
            lender = ForeignPixels::create(bitmap, info);
        if (!lender)
            return false;
        base_.emplace(info, std::move(lender));
    }
    space_ = cf::retain(bitmap.space);
    paints_.setSpace(bitmap.space);
    clipIsStale_ = true;
    outerClipsAreStale_ = !layers_.empty();
    return true;
}

bool RasterBackend::takeBackPixels() {
    if (takeBack_ && !takeBack_(pixelOwner_))
        return false;
    takeBack_ = nullptr;
    return true;
}

void RasterBackend::drawMark(XGGStateRef state, uint32_t flags, const SkPath& path,
                             const SkPaint& paint) {
    Surface& target = surfaceUnderClip(state, flags);
    const SkPath* devicePath = &path;
    if (!(flags & kXGContextGeometryInDeviceSpace)) {
        path.transform(toSkia(*XGGStateGetCombinedCTM(state)), &scratchPath_);
        devicePath = &scratchPath_;
    }
    if (!(flags & kXGContextShadowPass)) {
        target.drawPath(*devicePath, paint);
        return;
    }
    const ShadowCast shadow = shadowOf(state, paint);
    if (paint.getShader())
        drawPathShadow(target, deviceHeight(), *devicePath, paint, shadow);
    else
        target.drawPath(*devicePath, shadow.paint, {shadow.offset.x(), -shadow.offset.y()});
}

void RasterBackend::drawPath(XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                             bool evenOdd) {
    const SkPaint* paint = fill ? fillPaint(state, flags) : nullptr;
    if (paint) {
        const SkPath& path = nativePath(fill);
        if (path.getFillType() == fillType(evenOdd)) {
            drawMark(state, flags, path, *paint);
        } else {
            SkPath ruled = path; // Shares the points.
            ruled.setFillType(fillType(evenOdd));
            drawMark(state, flags, ruled, *paint);
        }
    }
    paint = stroke ? strokePaint(state, flags) : nullptr;
    if (paint)
        drawMark(state, flags, nativePath(stroke), *paint);
}

void RasterBackend::fillRects(XGGStateRef state, uint32_t flags, const CGRect* rects,
                              size_t count) {
    const SkPaint* const paint = fillPaint(state, flags);
    if (!paint)
        return;
    const bool inDeviceSpace = flags & kXGContextGeometryInDeviceSpace;
    const SkMatrix matrix = inDeviceSpace ? SkMatrix::I() : toSkia(*XGGStateGetCombinedCTM(state));
    const bool staysRect = matrix.rectStaysRect() && !(flags & kXGContextShadowPass);
    for (size_t index = 0; index < count; ++index) {
        SkRect rect = toSkia(rects[index]);
        if (staysRect) {
            matrix.mapRect(&rect);
            surfaceUnderClip(state, flags).drawRect(rect, *paint);
        } else {
            drawMark(state, flags, SkPath::Rect(rect), *paint);
        }
    }
}

void RasterBackend::drawShading(XGGStateRef state, uint32_t flags, CGShadingRef shading) {
    paintShading(surfaceUnderClip(state, flags), state, flags, shading, space_.get());
}

// ---- The seam

namespace {

RasterBackend& backend(void* info) {
    return *static_cast<RasterBackend*>(info);
}

constexpr XGContextCallbacks kCallbacks = {
    .version = 0,
    .releaseInfo = [](void* info) { delete static_cast<RasterBackend*>(info); },
    .drawPath = [](XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                   bool evenOdd,
                   void* info) { backend(info).drawPath(state, flags, fill, stroke, evenOdd); },
    .fillRects = [](XGGStateRef state, uint32_t flags, const CGRect* rects, size_t count,
                    void* info) { backend(info).fillRects(state, flags, rects, count); },
    .drawShading = [](XGGStateRef state, uint32_t flags, CGShadingRef shading,
                      void* info) { backend(info).drawShading(state, flags, shading); },
    .drawImage = [](XGGStateRef state, uint32_t flags, CGRect rect, CGImageRef image,
                    void* info) { backend(info).drawImage(state, flags, rect, image); },
    .drawLayer = [](XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef layer,
                    void* info) { backend(info).drawLayer(state, flags, rect, layer); },
    .drawSprites =
        [](XGGStateRef state, uint32_t flags, CGFontRef font, const void* glyphs,
           const CGPoint* positions, size_t count, void* info) {
            backend(info).drawSprites(state, flags, font, static_cast<const CGGlyph*>(glyphs),
                                      positions, count);
        },
    .beginTransparencyLayer =
        [](XGGStateRef state, uint32_t flags, void* info) {
            backend(info).beginTransparencyLayer(state, flags);
        },
    .endTransparencyLayer = [](XGGStateRef state, uint32_t flags,
                               void* info) { backend(info).endTransparencyLayer(state, flags); },
};

// Chooses the instructions of this processor; drawing before it takes Skia's slowest code. The
// cache of glyphs is large enough for a page of Chinese in two sizes.
void initializeSkia() {
    constexpr std::size_t kGlyphCacheBytes = std::size_t{8} << 20;
    [[maybe_unused]] static const bool once =
        (SkGraphics::Init(), SkGraphics::SetFontCacheLimit(kGlyphCacheBytes), true);
}

} // namespace

bool rasterBackendAccepts(const Bitmap& bitmap) {
    return surfaceFormat(bitmap).has_value();
}

void* createRasterBackend(const Bitmap& bitmap) {
    initializeSkia();
    std::unique_ptr<RasterBackend> backend(new (std::nothrow) RasterBackend);
    if (!backend || !backend->setBitmap(bitmap))
        return nullptr;
    return backend.release();
}

bool reinterpretPixels(void* backend, const Bitmap& bitmap) {
    return static_cast<RasterBackend*>(backend)->setBitmap(bitmap);
}

void callBeforeNextMark(void* backend, bool (*takeBack)(void* owner), void* owner) {
    static_cast<RasterBackend*>(backend)->callBeforeNextMark(takeBack, owner);
}

void movePixels(void* backend, void* pixels) {
    static_cast<RasterBackend*>(backend)->movePixels(pixels);
}

const XGContextCallbacks& rasterBackendCallbacks() {
    return kCallbacks;
}

} // namespace cg
