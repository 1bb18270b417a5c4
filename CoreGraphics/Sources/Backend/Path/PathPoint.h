// PathPoint.h: how a caller's points become the points that a path stores.
#pragma once

#include <CoreGraphics/CGPath.h>

#include <include/core/SkPoint.h>

#include <cstddef>

namespace cg {

// The largest coordinate that is stored: sums, differences and products by small factors of such
// coordinates stay finite, and fixed-point rasterisers can still scale them down.
inline constexpr float kLargestCoordinate = 536869920; // 0x4DFFFFE1

// The comparisons are this way round so that NaN goes through, and so that each is one instruction.
constexpr float pinned(float coordinate) {
    const float raised = coordinate < -kLargestCoordinate ? -kLargestCoordinate : coordinate;
    return raised > kLargestCoordinate ? kLargestCoordinate : raised;
}

inline SkPoint pinned(SkPoint point) {
    return {pinned(point.fX), pinned(point.fY)};
}

// A given point as it is stored. CGPointApplyAffineTransform's rule, in its order of operations.
inline SkPoint stored(const CGAffineTransform* m, CGFloat x, CGFloat y) {
    if (!m)
        return {pinned(x), pinned(y)};
    return {pinned(m->a * x + m->c * y + m->tx), pinned(m->b * x + m->d * y + m->ty)};
}

static_assert(sizeof(SkPoint) == sizeof(CGPoint) && offsetof(SkPoint, fX) == offsetof(CGPoint, x) &&
                  offsetof(SkPoint, fY) == offsetof(CGPoint, y),
              "arrays of points are handed to Skia as they are");

} // namespace cg
