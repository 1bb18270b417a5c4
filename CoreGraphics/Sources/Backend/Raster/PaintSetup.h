// PaintSetup.h: the graphics state as Skia paints.
#pragma once

#include "XGGState.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGColor.h>

#include "Backend/Raster/Surface.h"
#include "Core/Color/DisplayedColor.h"
#include "include/core/SkPaint.h"
#include "include/core/SkShader.h"

#include <cstdint>

namespace cg {

// Edges are smooth when the context allows it and the state asks for it.
Antialias antialiasing(XGGStateRef state, uint32_t flags);

// A colour and what it is painted with as 32-bit ARGB, so that a run of draws in one colour
// converts it once.
class CachedColor {
public:
    // No colour is opaque black.
    SkColor convert(CGColorRef color, const ColorTarget& target);
    void forget() { color_ = nullptr; }

private:
    bool isOf(CGColorRef color, CGColorRenderingIntent intent) const;

    cf::Ref<CGColorRef> color_;
    CGColorRenderingIntent intent_ = kCGRenderingIntentDefault;
    SkColor argb_ = SK_ColorBLACK;
};

// One paint for a backend's whole life, set up anew for each operation.
class PaintSetup {
public:
    // The space of the pixels that are painted, which outlives this.
    void setSpace(CGColorSpaceRef space);

    // Fill style, in the fill colour under the state's alpha and blend mode. `pattern` is what
    // paints in a pattern colour's place, with the opacity of that.
    const SkPaint& fill(XGGStateRef state, uint32_t flags, sk_sp<SkShader> pattern = nullptr);
    // Stroke style, in the stroke colour with the line attributes.
    const SkPaint& stroke(XGGStateRef state, uint32_t flags, sk_sp<SkShader> pattern = nullptr);
    // For pictures, which bring their own colours: the state's alpha and blend mode.
    const SkPaint& image(XGGStateRef state, uint32_t flags);
    // The shadow of a mark that `paint` makes: its colour and blur instead of the mark's own.
    SkPaint shadowOf(const SkPaint& paint, XGGStateRef state);
    // How a finished group is put down: alpha and blend mode alone.
    static SkPaint group(XGGStateRef state);

private:
    void setUp(XGGStateRef state, uint32_t flags, SkColor color);
    SkColor convert(XGGStateRef state, CGColorRef color, CachedColor& cache);

    CGColorSpaceRef space_ = nullptr;
    SkPaint paint_;
    CachedColor fillColor_;
    CachedColor strokeColor_;
    CachedColor shadowColor_;
};

} // namespace cg
