// XGGeometry.cpp: the geometry of sibling libraries: null points, fitting, cutting, lines.

#include "XGGeometry.h"

#include "Core/Geometry/Interval.h"
#include "Core/Geometry/NearlyEqual.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();

// The origin that centres `size` on what lies between `origin` and `origin + bounds`.
CGFloat centred(CGFloat size, CGFloat origin, CGFloat bounds) {
    const auto offset = static_cast<CGFloat>((double(size) - bounds) * 0.5);
    return origin - offset;
}

CGRect withHeight(const CGRect& bounds, CGFloat height) {
    return {{bounds.origin.x, centred(height, bounds.origin.y, bounds.size.height)},
            {bounds.size.width, height}};
}

CGRect withWidth(const CGRect& bounds, CGFloat width) {
    return {{centred(width, bounds.origin.x, bounds.size.width), bounds.origin.y},
            {width, bounds.size.height}};
}

bool isTaller(CGSize aspect, CGSize bounds) {
    return aspect.height / aspect.width > bounds.height / bounds.width;
}

// What is left of `whole` when `cut`, a part of it, is taken from one end; nothing when the cut is
// at neither end, or at both.
std::optional<cg::Interval> leftOver(cg::Interval whole, cg::Interval cut) {
    const bool atMinimum = cg::nearlyEqual(cut.minimum, whole.minimum);
    const bool atMaximum = cg::nearlyEqual(cut.maximum, whole.maximum);
    if (atMinimum && !atMaximum)
        return cg::Interval{cut.maximum, whole.maximum};
    if (atMaximum && !atMinimum)
        return cg::Interval{whole.minimum, cut.minimum};
    return std::nullopt;
}

bool areDisjoint(cg::Interval a, cg::Interval b) {
    return (a.minimum > b.minimum && !(a.minimum < b.maximum)) ||
           (b.minimum > a.minimum && !(b.minimum < a.maximum));
}

} // namespace

const CGPoint XGPointNull = {kInfinity, kInfinity};
const CGSize XGSizeNull = {kInfinity, kInfinity};

bool XGPointIsNull(CGPoint point) {
    return !std::isfinite(point.x) || !std::isfinite(point.y);
}

bool XGSizeIsNull(CGSize size) {
    return !std::isfinite(size.width) || !std::isfinite(size.height);
}

CGFloat XGPointDistance(CGPoint a, CGPoint b) {
    const CGFloat dx = a.x - b.x;
    const CGFloat dy = a.y - b.y;
    return static_cast<CGFloat>(std::sqrt(double(dx * dx + dy * dy)));
}

// Deliberate: only the x range of the segment is tested, so that on a vertical one every point of
// the line passes; callers count on that answer.
bool XGPointIsOnLine(CGPoint point, CGPoint a, CGPoint b) {
    const CGFloat u = (a.x - point.x) * (b.y - point.y);
    const CGFloat v = (a.y - point.y) * (b.x - point.x);
    if (!cg::nearlyEqual(u, v))
        return false;
    const auto [left, right] = std::minmax(a.x, b.x);
    if (point.x < left && !cg::nearlyEqual(point.x, left))
        return false;
    return !(point.x > right) || cg::nearlyEqual(point.x, right);
}

CGRect XGRectScale(CGRect rect, CGFloat sx, CGFloat sy) {
    return {{rect.origin.x * sx, rect.origin.y * sy},
            {rect.size.width * sx, rect.size.height * sy}};
}

CGRect XGRectMakeWithAspectRatioInsideRect(CGSize aspect, CGRect bounds) {
    const CGFloat ratio = aspect.height / aspect.width;
    return isTaller(aspect, bounds.size) ? withWidth(bounds, bounds.size.height / ratio)
                                         : withHeight(bounds, bounds.size.width * ratio);
}

CGRect XGRectMakeWithAspectRatioOutsideRect(CGSize aspect, CGRect bounds) {
    const CGFloat ratio = aspect.height / aspect.width;
    return isTaller(aspect, bounds.size) ? withHeight(bounds, bounds.size.width * ratio)
                                         : withWidth(bounds, bounds.size.height / ratio);
}

CGRect XGRectBoundsOfRectMinusRect(CGRect rect, CGRect minus) {
    if (CGRectContainsRect(minus, rect))
        return CGRectNull;
    rect = CGRectStandardize(rect);
    const CGRect cut = CGRectIntersection(rect, minus);
    if (CGRectIsEmpty(cut))
        return rect;

    // Only a cut from side to side leaves something with smaller bounds.
    const cg::Interval x = cg::horizontal(rect);
    const cg::Interval y = cg::vertical(rect);
    if (cut.size.width == rect.size.width) {
        if (const auto rest = leftOver(y, cg::vertical(cut)))
            return {{rect.origin.x, rest->minimum}, {rect.size.width, rest->extent()}};
    } else if (cut.size.height == rect.size.height) {
        if (const auto rest = leftOver(x, cg::horizontal(cut)))
            return {{rest->minimum, rect.origin.y}, {rest->extent(), rect.size.height}};
    }
    return rect;
}

bool _CGRectFastIntersection(const CGRect* a, const CGRect* b, CGRect* common) {
    if (!a || !b || areDisjoint(cg::horizontal(*a), cg::horizontal(*b)) ||
        areDisjoint(cg::vertical(*a), cg::vertical(*b)))
        return false;
    const cg::Interval x = cg::intersection(cg::horizontal(*a), cg::horizontal(*b));
    const cg::Interval y = cg::intersection(cg::vertical(*a), cg::vertical(*b));
    // Fails for NaN alone.
    if (!(x.minimum <= x.maximum && y.minimum <= y.maximum))
        return false;
    if (common)
        *common = cg::rectOf(x, y);
    return true;
}
