// DeviceStroke.h: what stroking a path that is already in device space puts down.
//
// The pen and the dashes belong to user space. Where the transform keeps shapes (it turns, mirrors
// and scales all directions alike) a pen of scaled width does the same in device space, which
// spares a copy of the path. Elsewhere the path is taken back to user space, outlined there, and
// the outline mapped.
#pragma once

#include "XGGState.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGPath.h>

#include <optional>

namespace cg {

constexpr bool fills(CGPathDrawingMode mode) {
    return mode == kCGPathFill || mode == kCGPathEOFill || mode == kCGPathFillStroke ||
           mode == kCGPathEOFillStroke;
}
constexpr bool strokes(CGPathDrawingMode mode) {
    return mode == kCGPathStroke || mode == kCGPathFillStroke || mode == kCGPathEOFillStroke;
}
constexpr bool isEvenOdd(CGPathDrawingMode mode) {
    return mode == kCGPathEOFill || mode == kCGPathEOFillStroke;
}

// The inverse of a transform that has a finite one.
std::optional<CGAffineTransform> inverseOf(const CGAffineTransform& transform);

enum class StrokeForm {
    Line,    // To be stroked with a pen of `width`, dashed already.
    Outline, // To be filled by the winding rule.
};

struct DeviceStroke {
    cf::Ref<CGPathRef> path; // Empty when nothing is put down.
    StrokeForm form = StrokeForm::Line;
    CGFloat width = 0;
};

// The stroke of `path` under the state's line attributes, in the form that is cheapest to draw.
DeviceStroke deviceStroke(XGGStateRef state, CGPathRef path);

// The same, always as an outline.
cf::Ref<CGPathRef> strokedOutline(XGGStateRef state, CGPathRef path);

// Draws a stroke with the state's stroke paint, as the pass that the flags name.
void drawStroke(CGContext& context, const DeviceStroke& stroke, uint32_t passFlags);

} // namespace cg
