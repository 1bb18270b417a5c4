// PatternDrawing.cpp: the raster backend's paints, in colours or in patterns.

#include "XGPattern.h"

#include "Backend/Raster/RasterBackend.h"
#include "Backend/Raster/SkiaConversions.h"
#include "Core/State/XGGStateRecord.h"

#include <cmath>

namespace cg {

namespace {

SkMatrix baseToDevice(const StateValues& values) {
    const CGFloat x = values.xScale / values.deviceScale;
    const CGFloat y = std::fabs(values.yScale) / values.deviceScale;
    return x == 1 && y == 1 ? SkMatrix::I() : SkMatrix::Scale(x, y);
}

} // namespace

SkMatrix RasterBackend::patternToPixels(XGGStateRef state, CGPatternRef pattern,
                                        const Surface& target) const {
    const CGSize phase = XGGStateGetPatternPhase(state);
    SkMatrix matrix = toSkia(XGPatternGetMatrix(pattern));
    matrix.postTranslate(phase.width, phase.height);
    matrix.postConcat(patternBase_ ? toSkia(*patternBase_) : baseToDevice(state->values));
    matrix.postConcat(target.deviceToPixels());
    return matrix;
}

// Calls out to the pattern where its cell is not kept: surfaces and paints are to be looked up
// after it.
sk_sp<SkShader> RasterBackend::patternShader(XGGStateRef state, uint32_t flags, CGColorRef color) {
    const Surface& target = surfaceUnderClip(state, flags);
    const PatternInk ink = {CGColorGetPattern(color), color, space_.get()};
    const SkMatrix matrix = patternToPixels(state, ink.pattern, target);
    const SkIRect clip = target.clip().getBounds();
    if (auto shader = patterns_.find(ink, matrix, clip))
        return shader;
    calledOutUnder_ = cf::retain(state);
    const auto kept = cf::retain(color);
    return patterns_.make(ink, matrix, clip);
}

// NULL when nothing is to be painted.
const SkPaint* RasterBackend::fillPaint(XGGStateRef state, uint32_t flags) {
    const CGColorRef color = XGGStateGetFillColor(state);
    if (!CGColorGetPattern(color)) {
        const SkPaint& paint = paints_.fill(state, flags);
        surface().noteColor(color, paint);
        return &paint;
    }
    auto shader = patternShader(state, flags, color);
    return shader ? &paints_.fill(state, flags, std::move(shader)) : nullptr;
}

const SkPaint* RasterBackend::strokePaint(XGGStateRef state, uint32_t flags) {
    const CGColorRef color = XGGStateGetStrokeColor(state);
    if (!CGColorGetPattern(color)) {
        const SkPaint& paint = paints_.stroke(state, flags);
        surface().noteColor(color, paint);
        return &paint;
    }
    auto shader = patternShader(state, flags, color);
    return shader ? &paints_.stroke(state, flags, std::move(shader)) : nullptr;
}

ShadowCast RasterBackend::shadowOf(XGGStateRef state, const SkPaint& paint) {
    const CGSize offset = XGGStateGetShadowOffset(state);
    return {.offset = {offset.width, offset.height},
            .sigma = XGGStateGetShadowBlur(state) / 2,
            .paint = paints_.shadowOf(paint, state)};
}

} // namespace cg
