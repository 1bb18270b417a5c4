// CGPathRounded.cpp: ellipses and rectangles with rounded corners.

#include "CGPathRecord.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Geometry/Interval.h"
#include "PathBuild.h"
#include "PathPoint.h"

#include <algorithm>
#include <cmath>

namespace {

// How far from the corner, in radii, the control points of a quarter ellipse lie. The cubic that
// meets the circle at 45° bulges by 0.027 % of the radius elsewhere; with this one, which leaves
// 0.55191505 between end and control point, the largest error either way is 0.02 %.
constexpr float kCornerToControl = 0.44808495f; // 0x3EE56B64

enum class Sides { Drawn, None };

// Writes the four corners of one contour, from its maximum x side towards its maximum y.
struct RoundedContour {
    SkPath& path;
    const CGAffineTransform* m;
    cg::Interval x;
    cg::Interval y;
    CGFloat rx;
    CGFloat ry;
    Sides sides;

    SkPoint at(CGFloat px, CGFloat py) const { return cg::stored(m, px, py); }

    void side(CGFloat px, CGFloat py) {
        if (sides == Sides::Drawn)
            path.lineTo(at(px, py));
    }
    void maxXMaxY() {
        side(x.maximum, y.maximum - ry);
        path.cubicTo(at(x.maximum, y.maximum - kCornerToControl * ry),
                     at(x.maximum - kCornerToControl * rx, y.maximum),
                     at(x.maximum - rx, y.maximum));
    }
    void minXMaxY() {
        side(x.minimum + rx, y.maximum);
        path.cubicTo(at(x.minimum + kCornerToControl * rx, y.maximum),
                     at(x.minimum, y.maximum - kCornerToControl * ry),
                     at(x.minimum, y.maximum - ry));
    }
    void minXMinY() {
        side(x.minimum, y.minimum + ry);
        path.cubicTo(at(x.minimum, y.minimum + kCornerToControl * ry),
                     at(x.minimum + kCornerToControl * rx, y.minimum),
                     at(x.minimum + rx, y.minimum));
    }
    void maxXMinY() {
        side(x.maximum - rx, y.minimum);
        path.cubicTo(at(x.maximum - kCornerToControl * rx, y.minimum),
                     at(x.maximum, y.minimum + kCornerToControl * ry),
                     at(x.maximum, y.minimum + ry));
    }
};

// In the order of operations of CGRectGetMidY.
CGFloat midY(const CGRect& r) {
    return (r.size.height + 2 * r.origin.y) * 0.5f;
}

void addRounded(SkPath& path, const CGAffineTransform* m, const CGRect& rect, CGFloat rx,
                CGFloat ry, Sides sides) {
    RoundedContour contour = {path, m, cg::horizontal(rect), cg::vertical(rect), rx, ry, sides};
    path.incReserve(17, 10);
    cg::moveTo(path, contour.at(contour.x.maximum, midY(rect)));
    contour.maxXMaxY();
    contour.minXMaxY();
    contour.minXMinY();
    contour.maxXMinY();
    path.close();
}

void addSharp(SkPath& path, const CGAffineTransform* m, const CGRect& rect) {
    const auto [minX, maxX] = cg::horizontal(rect);
    const auto [minY, maxY] = cg::vertical(rect);
    cg::moveTo(path, cg::stored(m, maxX, midY(rect)));
    path.lineTo(cg::stored(m, maxX, maxY));
    path.lineTo(cg::stored(m, minX, maxY));
    path.lineTo(cg::stored(m, minX, minY));
    path.lineTo(cg::stored(m, maxX, minY));
    path.close();
}

// At least 0, also for NaN.
CGFloat cornerWithin(CGFloat corner, CGFloat side) {
    return std::min(std::max(CGFloat{0}, corner), std::abs(side) * 0.5f);
}

template <typename Add>
CGPathRef createWith(Add add) {
    const CGMutablePathRef path = CGPathCreateMutable();
    if (path)
        add(path);
    return path;
}

} // namespace

void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect) {
    SkPath* const points = cg::editablePoints(path);
    if (points)
        addRounded(*points, m, rect, std::abs(rect.size.width) * 0.5f,
                   std::abs(rect.size.height) * 0.5f, Sides::None);
}

void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect,
                          CGFloat cornerWidth, CGFloat cornerHeight) {
    SkPath* const points = cg::editablePoints(path);
    if (!points)
        return;
    const CGFloat rx = cornerWithin(cornerWidth, rect.size.width);
    const CGFloat ry = cornerWithin(cornerHeight, rect.size.height);
    if (rx > 0 && ry > 0)
        addRounded(*points, m, rect, rx, ry, Sides::Drawn);
    else
        addSharp(*points, m, rect);
}

CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform* m) {
    return createWith([&](CGMutablePathRef path) { CGPathAddRect(path, m, rect); });
}

CGPathRef CGPathCreateWithEllipseInRect(CGRect rect, const CGAffineTransform* m) {
    return createWith([&](CGMutablePathRef path) { CGPathAddEllipseInRect(path, m, rect); });
}

CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform* m) {
    return createWith([&](CGMutablePathRef path) {
        CGPathAddRoundedRect(path, m, rect, cornerWidth, cornerHeight);
    });
}
