// Interval.h: a rectangle's extent along one axis, from its minimum to its maximum edge.
#pragma once

#include <CoreGraphics/CGGeometry.h>

#include <algorithm>

namespace cg {

// Of a rectangle, minimum <= maximum unless one is NaN; of an intersection it may be inverted.
struct Interval {
    CGFloat minimum;
    CGFloat maximum;

    constexpr CGFloat extent() const { return maximum - minimum; }
};

constexpr Interval intervalFrom(CGFloat origin, CGFloat size) {
    return {size < 0 ? origin + size : origin, size > 0 ? origin + size : origin};
}

constexpr Interval horizontal(const CGRect& rect) {
    return intervalFrom(rect.origin.x, rect.size.width);
}
constexpr Interval vertical(const CGRect& rect) {
    return intervalFrom(rect.origin.y, rect.size.height);
}

constexpr Interval intersection(Interval a, Interval b) {
    return {std::max(a.minimum, b.minimum), std::min(a.maximum, b.maximum)};
}
constexpr Interval hull(Interval a, Interval b) {
    return {std::min(a.minimum, b.minimum), std::max(a.maximum, b.maximum)};
}

constexpr CGRect rectOf(Interval x, Interval y) {
    return {{x.minimum, y.minimum}, {x.extent(), y.extent()}};
}

} // namespace cg
