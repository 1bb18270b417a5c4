// CGPathSegment.cpp: points along one segment of a path.

#include "XGPath.h"

#include <array>

namespace {

struct Point {
    double x, y;
};

Point point(CGPoint p) {
    return {p.x, p.y};
}

// The point at `share` of the way from a to b.
Point between(Point a, Point b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

// The control points of a cubic that runs just as the segment whose points are given does.
using Cubic = std::array<Point, 4>;

Cubic cubicFrom(const CGPoint* p, uint32_t count) {
    const Point first = point(p[0]);
    const Point last = point(p[count - 1]);
    if (count == 4)
        return {first, point(p[1]), point(p[2]), last};
    if (count == 3) {
        const Point control = point(p[1]);
        return {first, between(first, control, 2.0 / 3), between(last, control, 2.0 / 3), last};
    }
    return {first, between(first, last, 1.0 / 3), between(first, last, 2.0 / 3), last};
}

CGPoint pointOn(const Cubic& p, double t) {
    const double s = 1 - t;
    const double w0 = s * s * s, w1 = 3 * t * s * s, w2 = 3 * t * t * s, w3 = t * t * t;
    return {static_cast<CGFloat>(w0 * p[0].x + w1 * p[1].x + w2 * p[2].x + w3 * p[3].x),
            static_cast<CGFloat>(w0 * p[0].y + w1 * p[1].y + w2 * p[2].y + w3 * p[3].y)};
}

} // namespace

// Deliberate: the end point is never produced. It is the next segment's first one, so that samples
// of segment after segment make one polyline without doubles.
CGPoint* _CGPathSegmentEvaluate(const CGPathElement* element, CGPoint* points, uint32_t count) {
    uint32_t own = 0;
    const CGPoint* const given = _CGPathElementGetAllPoints(element, &own);
    if (!given || own == 0 || !points)
        return nullptr;
    const Cubic cubic = cubicFrom(given, own);
    for (uint32_t i = 0; i < count; ++i)
        *points++ = pointOn(cubic, static_cast<double>(i) / count);
    return points;
}
