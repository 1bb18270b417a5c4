// PaintSetup.cpp: colours, alpha, blend mode and line attributes as Skia paints.

#include "Backend/Raster/PaintSetup.h"

#include "XGColor.h"
#include "XGContext.h"

#include "Backend/Raster/SkiaConversions.h"
#include "include/core/SkBlurTypes.h"
#include "include/core/SkMaskFilter.h"

#include <cmath>
#include <utility>

namespace cg {

namespace {

// A component in 0 … 1 as a byte; NaN is 0.
U8CPU toByte(CGFloat component) {
    if (!(component > 0))
        return 0;
    return component >= 1 ? 255 : static_cast<U8CPU>(std::lround(component * 255));
}

SkColor toARGB(CGColorRef color) {
    CGFloat red = 0, green = 0, blue = 0, alpha = 0;
    _CGColorGetRGBA(color, &red, &green, &blue, &alpha);
    return SkColorSetARGB(toByte(alpha), toByte(red), toByte(green), toByte(blue));
}

} // namespace

Antialias antialiasing(XGGStateRef state, uint32_t flags) {
    const bool isOn = (flags & kXGContextAllowsAntialiasing) && XGGStateShouldAntialias(state);
    return isOn ? Antialias::Yes : Antialias::No;
}

SkColor CachedColor::convert(CGColorRef color) {
    if (!color)
        return SK_ColorBLACK;
    if (CGColorGetPattern(color)) // Has an opacity alone, and is not kept longer than needed.
        return SkColorSetA(SK_ColorBLACK, toByte(CGColorGetAlpha(color)));
    if (!color_ || !CGColorEqualToColor(color, color_.get())) {
        color_ = cf::retain(color);
        argb_ = toARGB(color);
    }
    return argb_;
}

void PaintSetup::setUp(XGGStateRef state, uint32_t flags, SkColor color) {
    if (!(flags & kXGContextPaintPrepared))
        paint_.reset();
    paint_.setAntiAlias(antialiasing(state, flags) == Antialias::Yes);
    paint_.setBlendMode(toSkia(XGGStateGetBlendMode(state)));
    const U8CPU opacity = flags & kXGContextIgnoresColorAlpha ? 0xFF : SkColorGetA(color);
    const auto alpha = std::lround(XGGStateGetAlpha(state) * static_cast<CGFloat>(opacity));
    paint_.setColor(SkColorSetA(color, static_cast<U8CPU>(alpha)));
}

const SkPaint& PaintSetup::fill(XGGStateRef state, uint32_t flags, sk_sp<SkShader> pattern) {
    setUp(state, flags, fillColor_.convert(XGGStateGetFillColor(state)));
    paint_.setStyle(SkPaint::kFill_Style);
    paint_.setShader(std::move(pattern));
    return paint_;
}

const SkPaint& PaintSetup::stroke(XGGStateRef state, uint32_t flags, sk_sp<SkShader> pattern) {
    setUp(state, flags, strokeColor_.convert(XGGStateGetStrokeColor(state)));
    paint_.setStyle(SkPaint::kStroke_Style);
    paint_.setShader(std::move(pattern));
    paint_.setStrokeWidth(XGGStateGetLineWidth(state));
    paint_.setStrokeMiter(XGGStateGetMiterLimit(state));
    paint_.setStrokeCap(toSkiaCap(XGGStateGetLineCap(state)));
    paint_.setStrokeJoin(toSkiaJoin(XGGStateGetLineJoin(state)));
    return paint_;
}

const SkPaint& PaintSetup::image(XGGStateRef state, uint32_t flags) {
    setUp(state, flags, SK_ColorBLACK);
    paint_.setStyle(SkPaint::kFill_Style);
    paint_.setShader(nullptr);
    return paint_;
}

SkPaint PaintSetup::shadowOf(const SkPaint& paint, XGGStateRef state) {
    SkPaint shadow = paint;
    shadow.setShader(nullptr);
    const SkColor color = shadowColor_.convert(XGGStateGetShadowColor(state));
    // A translucent mark throws a fainter shadow.
    shadow.setColor(SkColorSetA(color, SkMulDiv255Round(SkColorGetA(color), paint.getAlpha())));
    const CGFloat sigma = XGGStateGetShadowBlur(state) / 2;
    if (sigma > 0 && std::isfinite(sigma))
        shadow.setMaskFilter(SkMaskFilter::MakeBlur(kNormal_SkBlurStyle, sigma, false));
    return shadow;
}

SkPaint PaintSetup::group(XGGStateRef state) {
    SkPaint paint;
    paint.setBlendMode(toSkia(XGGStateGetBlendMode(state)));
    paint.setAlpha(toByte(XGGStateGetAlpha(state)));
    return paint;
}

} // namespace cg
