// PaintSetup.cpp: colours, alpha, blend mode and line attributes as Skia paints.

#include "Backend/Raster/PaintSetup.h"

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

SkColor toARGB(CGColorRef color, const ColorTarget& target) {
    const auto [red, green, blue, alpha] = displayedColor(color, target);
    return SkColorSetARGB(toByte(alpha), toByte(red), toByte(green), toByte(blue));
}

} // namespace

Antialias antialiasing(XGGStateRef state, uint32_t flags) {
    const bool isOn = (flags & kXGContextAllowsAntialiasing) && XGGStateShouldAntialias(state);
    return isOn ? Antialias::Yes : Antialias::No;
}

// Equal colours may still be of profiles that show them differently.
bool CachedColor::isOf(CGColorRef color, CGColorRenderingIntent intent) const {
    if (!color_ || intent != intent_)
        return false;
    return color == color_.get() ||
           (CGColorGetColorSpace(color) == CGColorGetColorSpace(color_.get()) &&
            CGColorEqualToColor(color, color_.get()));
}

SkColor CachedColor::convert(CGColorRef color, const ColorTarget& target) {
    if (!color)
        return SK_ColorBLACK;
    if (CGColorGetPattern(color)) // Has an opacity alone, and is not kept longer than needed.
        return SkColorSetA(SK_ColorBLACK, toByte(CGColorGetAlpha(color)));
    if (!isOf(color, target.intent)) {
        color_ = cf::retain(color);
        intent_ = target.intent;
        argb_ = toARGB(color, target);
    }
    return argb_;
}

void PaintSetup::setSpace(CGColorSpaceRef space) {
    space_ = space;
    for (CachedColor* const cache : {&fillColor_, &strokeColor_, &shadowColor_})
        cache->forget();
}

SkColor PaintSetup::convert(XGGStateRef state, CGColorRef color, CachedColor& cache) {
    return cache.convert(color, {space_, XGGStateGetRenderingIntent(state)});
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
    setUp(state, flags, convert(state, XGGStateGetFillColor(state), fillColor_));
    paint_.setStyle(SkPaint::kFill_Style);
    paint_.setShader(std::move(pattern));
    return paint_;
}

const SkPaint& PaintSetup::stroke(XGGStateRef state, uint32_t flags, sk_sp<SkShader> pattern) {
    setUp(state, flags, convert(state, XGGStateGetStrokeColor(state), strokeColor_));
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
    const SkColor color = convert(state, XGGStateGetShadowColor(state), shadowColor_);
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
