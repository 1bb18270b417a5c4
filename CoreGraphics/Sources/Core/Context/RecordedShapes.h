// RecordedShapes.h: paths that simpler shapes can stand for, to the pixel.
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGPath.h>

#include "Core/Context/Edges.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace cg {

// The square around a path that is, to the bit, the circle in that square. Edges of others that
// pass for circles are several steps off: at a tangent, the least rounding decides whether a curve
// touches the next row of pixels.
std::optional<CGRect> circleOf(CGPathRef path);

struct LineStyle {
    CGFloat width = 1;
    CGLineCap cap = kCGLineCapButt;
    CGLineJoin join = kCGLineJoinMiter;
    CGFloat miterLimit = 0;
};

// The stroke of a path along the axes as rectangles that do not overlap.
class StrokeRects {
public:
    // False where rectangles of whole pixels, and few, do not add up to the stroke.
    bool collect(CGPathRef path, const LineStyle& style);
    std::span<const Edges> all() const { return {rects_.data(), count_}; }

private:
    static constexpr std::size_t kMostPoints = 16;
    struct Contour {
        std::array<CGPoint, kMostPoints> points;
        std::size_t count = 0;
        bool isClosed = false;
    };

    static bool append(Contour& contour, CGPoint point);
    bool addContour(const Contour& contour);
    bool addSegment(CGPoint from, CGPoint to, CGFloat before, CGFloat after);
    bool overlap() const;

    LineStyle style_;
    std::array<Edges, kMostPoints> rects_;
    std::size_t count_ = 0;
};

} // namespace cg
