// NearlyEqual.h: the tolerance that geometry, paths and patterns share.
#pragma once

#include <CoreGraphics/CGBase.h>

#include <algorithm>

namespace cg {

constexpr CGFloat magnitude(CGFloat value) {
    return value < 0 ? -value : value;
}

// Whether two numbers differ by no more than a rounding error: one step of the float format at 1,
// or that relative to the larger magnitude.
//
// Deliberate: an infinity is nearly equal to every finite number, since the allowed difference is
// infinite too, and to no infinity of its own sign, since their difference is NaN.
constexpr bool nearlyEqual(CGFloat u, CGFloat v) {
    const CGFloat difference = magnitude(u - v);
    return difference <= CGFLOAT_EPSILON ||
           difference <= CGFLOAT_EPSILON * std::max(magnitude(u), magnitude(v));
}

} // namespace cg
