// RasterBackend.h: what draws the marks of bitmap contexts.
#pragma once

#include "Backend/Raster/PaintSetup.h"
#include "Backend/Raster/Surface.h"
#include "Backend/Raster/TransparencyLayer.h"
#include "Core/Context/XGBackend.h"

#include <memory>

namespace cg {

// One per bitmap context, and used on that context's thread alone.
class RasterBackend {
public:
    RasterBackend(const SkPixmap& pixels);

    void drawPath(XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                  bool evenOdd);
    void fillRects(XGGStateRef state, uint32_t flags, const CGRect* rects, size_t count);
    void drawShading(XGGStateRef state, uint32_t flags, CGShadingRef shading);
    void beginTransparencyLayer(XGGStateRef state, uint32_t flags);
    void endTransparencyLayer(XGGStateRef state, uint32_t flags);

private:
    Surface& surfaceUnderClip(XGGStateRef state, uint32_t flags);
    Surface& surface() { return layer_ ? layer_->surface() : base_; }
    void drawMark(XGGStateRef state, uint32_t flags, const SkPath& path, const SkPaint& paint);

    Surface base_;
    std::unique_ptr<TransparencyLayer> layer_; // The innermost open layer.
    int unmadeLayers_ = 0;    // Layers begun, innermost, for which there was no memory.
    bool clipIsStale_ = true; // The surface's clip is not the state's, whatever the state says.
    PaintSetup paints_;
    SkPath scratchPath_;
};

} // namespace cg
