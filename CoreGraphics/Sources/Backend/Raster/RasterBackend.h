// RasterBackend.h: what draws the marks of bitmap contexts.
#pragma once

#include "Backend/Raster/ImageShadow.h"
#include "Backend/Raster/PaintSetup.h"
#include "Backend/Raster/PatternShaders.h"
#include "Backend/Raster/Surface.h"
#include "Backend/Raster/TransparencyLayer.h"
#include "Core/Context/XGBackend.h"

#include <memory>
#include <optional>
#include <vector>

namespace cg {

// One per bitmap context, and used on that context's thread alone.
class RasterBackend {
public:
    // Over pixels that are given by setBitmap().
    RasterBackend();

    // False, and nothing has changed, when the format is not accepted or memory runs out.
    bool setBitmap(const Bitmap& bitmap);

    void drawPath(XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                  bool evenOdd);
    void fillRects(XGGStateRef state, uint32_t flags, const CGRect* rects, size_t count);
    void drawShading(XGGStateRef state, uint32_t flags, CGShadingRef shading);
    void drawImage(XGGStateRef state, uint32_t flags, CGRect rect, CGImageRef image);
    void drawLayer(XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef layer);
    void drawSprites(XGGStateRef state, uint32_t flags, CGFontRef font, const CGGlyph* glyphs,
                     const CGPoint* positions, size_t count);
    // Patterns lie in the space that this maps to device space, if it is ever called: that of the
    // pattern whose cell the bitmap is.
    void setPatternBase(const CGAffineTransform& toDevice) { patternBase_ = toDevice; }
    void callBeforeNextMark(bool (*takeBack)(void*), void* owner) {
        takeBack_ = takeBack;
        pixelOwner_ = owner;
    }
    void movePixels(void* pixels) { base_->movePixels(pixels); }
    void beginTransparencyLayer(XGGStateRef state, uint32_t flags);
    void endTransparencyLayer(XGGStateRef state, uint32_t flags);

private:
    Surface& surfaceUnderClip(XGGStateRef state, uint32_t flags);
    Surface& clippedSurface(XGGStateRef state, uint32_t flags);
    Surface& surface();
    TransparencyLayer* innermostLayer() const;
    bool makePixels(TransparencyLayer& layer);
    bool takeBackPixels();
    int deviceHeight() const { return base_->pixels().height(); }
    CGAffineTransform patternToPixels(XGGStateRef state, CGPatternRef pattern,
                                      const Surface& target) const;
    sk_sp<SkShader> patternShader(XGGStateRef state, uint32_t flags, CGColorRef color);
    const SkPaint* fillPaint(XGGStateRef state, uint32_t flags);
    const SkPaint* strokePaint(XGGStateRef state, uint32_t flags);
    ShadowCast shadowOf(XGGStateRef state, const SkPaint& paint);
    void drawMark(XGGStateRef state, uint32_t flags, const SkPath& path, const SkPaint& paint);
    void drawPlaced(XGGStateRef state, uint32_t flags, const PlacedImage& image,
                    const SkPaint& paint);
    void drawConvertedLayer(XGGStateRef state, uint32_t flags, CGRect rect, CGContextRef layer);
    void drawLayerPixels(XGGStateRef state, uint32_t flags, CGRect rect, const SkPixmap& pixels);
    void drawEmptyImage(XGGStateRef state, uint32_t flags, CGRect rect);

    std::optional<Surface> base_;
    cf::Ref<CGColorSpaceRef> space_;
    // Open, the outermost first; NULL where there was no memory for one.
    std::vector<std::unique_ptr<TransparencyLayer>> layers_;
    bool clipIsStale_ = true; // The surface's clip is not the state's, whatever the state says.
    bool outerClipsAreStale_ = false;         // The same may hold for the surfaces beneath.
    bool (*takeBack_)(void* owner) = nullptr; // To be called before the next mark in `base_`.
    void* pixelOwner_ = nullptr;
    PaintSetup paints_;
    PatternShaders patterns_;
    std::optional<CGAffineTransform> patternBase_;
    // A state that a pattern's callback restored away, while a mark was being drawn under it.
    cf::Ref<XGGStateRef> restoredAway_;
    SkPath scratchPath_;
};

} // namespace cg
