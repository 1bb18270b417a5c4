// XGGStateAccessors.cpp: the fields of a graphics state that are set one by one.

#include "XGGState.h"

#include "Core/Object/Diagnostics.h"
#include "Core/State/BlendMode.h"
#include "Core/State/StateReuse.h"
#include "Core/State/XGGStateRecord.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

// ---- Compositing

CGFloat XGGStateGetAlpha(XGGStateRef state) {
    return state ? state->values.alpha : 0;
}

void XGGStateSetAlpha(XGGStateRef state, CGFloat alpha) {
    if (state)
        state->values.alpha = std::isfinite(alpha) && alpha >= 0 ? std::min(alpha, 1.0f) : 0;
}

CGBlendMode XGGStateGetBlendMode(XGGStateRef state) {
    return state ? state->values.blendMode : kCGBlendModeNormal;
}

void XGGStateSetBlendMode(XGGStateRef state, CGBlendMode mode) {
    if (!state)
        return;
    state->values.blendMode = mode;
    state->values.isPorterDuff = cg::isPorterDuff(mode);
}

bool XGGStateBlendModeIsPorterDuff(XGGStateRef state) {
    return state && state->values.isPorterDuff;
}

// Deliberate: no state at all asks for the nearest pixel, a new state for the default quality.
CGInterpolationQuality XGGStateGetInterpolationQuality(XGGStateRef state) {
    return state ? state->values.interpolationQuality : kCGInterpolationNone;
}

void XGGStateSetInterpolationQuality(XGGStateRef state, CGInterpolationQuality quality) {
    if (state)
        state->values.interpolationQuality = quality;
}

CGColorRenderingIntent XGGStateGetRenderingIntent(XGGStateRef state) {
    return state ? state->values.renderingIntent : kCGRenderingIntentDefault;
}

void XGGStateSetRenderingIntent(XGGStateRef state, CGColorRenderingIntent intent) {
    if (state)
        state->values.renderingIntent = intent;
}

int32_t XGGStateGetCompositeOperation(XGGStateRef state) {
    return state ? state->values.compositeOperation : 0;
}

void XGGStateSetCompositeOperation(XGGStateRef state, int32_t operation) {
    if (state)
        state->values.compositeOperation = operation;
}

// ---- Colours and shadow

namespace {

void replaceColor(cf::Ref<CGColorRef>& current, CGColorRef color) {
    if (!CGColorEqualToColor(current.get(), color))
        current = cf::adopt(CGColorCreateCopy(color));
}

} // namespace

CGColorRef XGGStateGetFillColor(XGGStateRef state) {
    return state ? state->values.fillColor.get() : nullptr;
}

void XGGStateSetFillColor(XGGStateRef state, CGColorRef color) {
    if (state)
        replaceColor(state->values.fillColor, color);
}

CGColorRef XGGStateGetStrokeColor(XGGStateRef state) {
    return state ? state->values.strokeColor.get() : nullptr;
}

void XGGStateSetStrokeColor(XGGStateRef state, CGColorRef color) {
    if (state)
        replaceColor(state->values.strokeColor, color);
}

void XGGStateSetShadow(XGGStateRef state, CGColorRef color, CGFloat offsetWidth,
                       CGFloat offsetHeight, CGFloat blur) {
    if (!state)
        return;
    replaceColor(state->values.shadowColor, color);
    state->values.shadowOffset = {offsetWidth, offsetHeight};
    state->values.shadowBlur = blur;
}

CGColorRef XGGStateGetShadowColor(XGGStateRef state) {
    return state ? state->values.shadowColor.get() : nullptr;
}

bool XGGStateHasShadow(XGGStateRef state) {
    constexpr CGFloat kFaintest = 0.001f;
    return CGColorGetAlpha(XGGStateGetShadowColor(state)) > kFaintest;
}

CGSize XGGStateGetShadowOffset(XGGStateRef state) {
    if (!state)
        return {0, 0};
    const cg::StateValues& values = state->values;
    const CGSize scaled = {values.shadowOffset.width * values.xScale,
                           values.shadowOffset.height * values.yScale};
    // Deliberate: a flipped context's offset is not divided by the device scale. Compositors that
    // flip their contexts give offsets in device units already.
    if (!(values.yScale > 0))
        return scaled;
    return {scaled.width / values.deviceScale, scaled.height / values.deviceScale};
}

CGFloat XGGStateGetShadowBlur(XGGStateRef state) {
    if (!state)
        return 0;
    const cg::StateValues& values = state->values;
    CGFloat scale = std::sqrt(values.xScale * std::fabs(values.yScale));
    if (values.yScale > 0)
        scale /= values.deviceScale;
    return scale * values.shadowBlur;
}

CGSize XGGStateGetPatternPhase(XGGStateRef state) {
    return state ? state->values.patternPhase : CGSize{0, 0};
}

void XGGStateSetPatternPhase(XGGStateRef state, CGSize phase) {
    if (state)
        state->values.patternPhase = phase;
}

// ---- Lines

CGFloat XGGStateGetLineWidth(XGGStateRef state) {
    return state ? state->values.lineWidth : 0;
}

void XGGStateSetLineWidth(XGGStateRef state, CGFloat width) {
    if (state)
        state->values.lineWidth = width;
}

CGLineCap XGGStateGetLineCap(XGGStateRef state) {
    return state ? state->values.lineCap : kCGLineCapButt;
}

void XGGStateSetLineCap(XGGStateRef state, CGLineCap cap) {
    if (state)
        state->values.lineCap = cap;
}

CGLineJoin XGGStateGetLineJoin(XGGStateRef state) {
    return state ? state->values.lineJoin : kCGLineJoinMiter;
}

void XGGStateSetLineJoin(XGGStateRef state, CGLineJoin join) {
    if (state)
        state->values.lineJoin = join;
}

CGFloat XGGStateGetMiterLimit(XGGStateRef state) {
    return state ? state->values.miterLimit : 0;
}

void XGGStateSetMiterLimit(XGGStateRef state, CGFloat limit) {
    if (state)
        state->values.miterLimit = limit;
}

CGFloat XGGStateGetFlatness(XGGStateRef state) {
    return state ? state->values.flatness : 0;
}

void XGGStateSetFlatness(XGGStateRef state, CGFloat flatness) {
    if (state)
        state->values.flatness = flatness;
}

XGLineDashRef XGGStateGetLineDash(XGGStateRef state) {
    return state ? state->values.lineDash.get() : nullptr;
}

namespace {

// A dash that nobody else has is written over; solid lines in between keep it for the next.
void setDash(XGGState& state, const CGFloat* lengths, uint32_t count, CGFloat phase) {
    cf::Ref<XGLineDashRef>& dash = state.values.lineDash;
    if (cg::refillDash(dash.get(), lengths, count, phase))
        return;
    dash = nullptr;
    if (cg::refillDash(state.spareDash.get(), lengths, count, phase))
        dash.swap(state.spareDash);
    else
        dash = cf::adopt(XGLineDashCreate(lengths, count, phase));
}

} // namespace

void XGGStateSetLineDash(XGGStateRef state, const CGFloat* lengths, size_t count, CGFloat phase) {
    if (!state)
        return;
    if (lengths && count > 0 && count <= std::numeric_limits<uint32_t>::max()) {
        setDash(*state, lengths, static_cast<uint32_t>(count), phase);
        return;
    }
    if (state->values.lineDash)
        state->spareDash = std::move(state->values.lineDash);
    if (lengths && count > 0)
        CG_LOG_WARNING("a dash of %zu lengths is too long; lines stay solid", count);
}

// ---- Text

CGFontRef XGGStateGetFont(XGGStateRef state) {
    return state ? state->values.font.get() : nullptr;
}

void XGGStateSetFont(XGGStateRef state, CGFontRef font) {
    if (state && !cf::equalOrBothAbsent(state->values.font.get(), font))
        state->values.font = cf::retain(font);
}

CGFloat XGGStateGetFontSize(XGGStateRef state) {
    return state ? state->values.fontSize : 0;
}

void XGGStateSetFontSize(XGGStateRef state, CGFloat size) {
    if (state && !(size < 0))
        state->values.fontSize = size;
}

CGTextDrawingMode XGGStateGetTextDrawingMode(XGGStateRef state) {
    return state ? state->values.textDrawingMode : kCGTextFill;
}

void XGGStateSetTextDrawingMode(XGGStateRef state, CGTextDrawingMode mode) {
    if (state)
        state->values.textDrawingMode = mode;
}

CGFloat XGGStateGetCharacterSpacing(XGGStateRef state) {
    return state ? state->values.characterSpacing : 0;
}

void XGGStateSetCharacterSpacing(XGGStateRef state, CGFloat spacing) {
    if (state)
        state->values.characterSpacing = spacing;
}

int32_t XGGStateGetFontAntialiasingStyle(XGGStateRef state) {
    return state ? state->values.fontAntialiasingStyle : 0;
}

void XGGStateSetFontAntialiasingStyle(XGGStateRef state, int32_t style) {
    if (state)
        state->values.fontAntialiasingStyle = style;
}

// ---- Flags

namespace {

bool hasFlag(XGGStateRef state, cg::StateFlag flag) {
    return state && (state->values.flags & flag) != 0;
}

void setFlag(XGGStateRef state, cg::StateFlag flag, bool value) {
    if (!state)
        return;
    state->values.flags &= ~uint32_t{flag};
    state->values.flags |= value ? uint32_t{flag} : 0;
}

} // namespace

bool XGGStateShouldAntialias(XGGStateRef state) {
    return hasFlag(state, cg::kShouldAntialias);
}

void XGGStateSetShouldAntialias(XGGStateRef state, bool should) {
    setFlag(state, cg::kShouldAntialias, should);
}

bool XGGStateShouldSmoothFonts(XGGStateRef state) {
    return hasFlag(state, cg::kShouldSmoothFonts);
}

void XGGStateSetShouldSmoothFonts(XGGStateRef state, bool should) {
    setFlag(state, cg::kShouldSmoothFonts, should);
}

bool XGGStateShouldSubpixelPositionFonts(XGGStateRef state) {
    return hasFlag(state, cg::kShouldSubpixelPositionFonts);
}

void XGGStateSetShouldSubpixelPositionFonts(XGGStateRef state, bool should) {
    setFlag(state, cg::kShouldSubpixelPositionFonts, should);
}

bool XGGStateShouldSubpixelQuantizeFonts(XGGStateRef state) {
    return hasFlag(state, cg::kShouldSubpixelQuantizeFonts);
}

void XGGStateSetShouldSubpixelQuantizeFonts(XGGStateRef state, bool should) {
    setFlag(state, cg::kShouldSubpixelQuantizeFonts, should);
}

bool XGGStateDidModifyClipRegion(XGGStateRef state) {
    return hasFlag(state, cg::kDidModifyClipRegion);
}

void XGGStateSetDidModifyClipRegion(XGGStateRef state, bool did) {
    setFlag(state, cg::kDidModifyClipRegion, did);
}

bool XGGStateShouldRasterizeClipRegion(XGGStateRef state) {
    return hasFlag(state, cg::kShouldRasterizeClipRegion);
}

void XGGStateSetShouldRasterizeClipRegion(XGGStateRef state, bool should) {
    setFlag(state, cg::kShouldRasterizeClipRegion, should);
}
