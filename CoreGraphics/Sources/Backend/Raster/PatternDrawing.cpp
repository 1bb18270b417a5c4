// PatternDrawing.cpp: the raster backend's paints, in colours or in patterns.

#include "XGPattern.h"

#include "Backend/Raster/RasterBackend.h"
#include "Core/State/XGGStateRecord.h"

#include <cmath>
#include <utility>

namespace cg {

// Pattern space to a surface's columns and rows. Composed by hand: every mark comes by here.
CGAffineTransform RasterBackend::patternToPixels(XGGStateRef state, CGPatternRef pattern,
                                                 const Surface& target) const {
    CGAffineTransform matrix = XGPatternGetMatrix(pattern);
    const CGSize phase = XGGStateGetPatternPhase(state);
    matrix.tx += phase.width;
    matrix.ty += phase.height;
    const StateValues& values = state->values;
    const CGFloat x = values.xScale / values.deviceScale;
    const CGFloat y = std::fabs(values.yScale) / values.deviceScale;
    if (patternBase_)
        matrix = CGAffineTransformConcat(matrix, *patternBase_);
    else if (x != 1 || y != 1)
        matrix = CGAffineTransformConcat(matrix, CGAffineTransformMakeScale(x, y));
    const SkMatrix& toPixels = target.deviceToPixels(); // Turns y around and moves.
    return {matrix.a,
            -matrix.b,
            matrix.c,
            -matrix.d,
            matrix.tx + toPixels.getTranslateX(),
            toPixels.getTranslateY() - matrix.ty};
}

// Calls out to the pattern where its cell is not kept: surfaces and paints are to be looked up
// after it.
sk_sp<SkShader> RasterBackend::patternShader(XGGStateRef state, uint32_t flags, CGColorRef color) {
    const Surface& target = surfaceUnderClip(state, flags);
    const PatternInk ink = {CGColorGetPattern(color), color, space_.get()};
    const CGAffineTransform matrix = patternToPixels(state, ink.pattern, target);
    const SkIRect clip = target.clip().getBounds();
    if (auto shader = patterns_.find(ink, matrix, clip))
        return shader;
    auto keptState = cf::retain(state);
    const auto keptColor = cf::retain(color);
    auto shader = patterns_.make(ink, matrix, clip);
    if (CFGetRetainCount(state) == 1) // The context has let go of it.
        restoredAway_ = std::move(keptState);
    return shader;
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
