// CGGeometry.cpp: points, sizes and rectangles.

#include <CoreGraphics/CGGeometry.h>

#include "Core/Geometry/Interval.h"
#include "Core/Geometry/NearlyEqual.h"

#include <cmath>
#include <limits>

namespace {

constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();

constexpr bool containsNearly(cg::Interval outer, cg::Interval inner) {
    const bool fitsBelow =
        inner.minimum >= outer.minimum || cg::nearlyEqual(inner.minimum, outer.minimum);
    const bool fitsAbove =
        inner.maximum <= outer.maximum || cg::nearlyEqual(inner.maximum, outer.maximum);
    return fitsBelow && fitsAbove;
}

constexpr bool overlap(cg::Interval a, cg::Interval b) {
    return (a.minimum <= b.minimum && b.minimum < a.maximum) ||
           (b.minimum <= a.minimum && a.minimum < b.maximum);
}

// The whole number that `value` is a rounding error away from, else `otherwise`.
CGFloat snapToInteger(CGFloat value, CGFloat otherwise) {
    const CGFloat rounded = std::round(value);
    return cg::nearlyEqual(rounded, value) ? rounded : otherwise;
}

// Formed in double precision: twice the inset may overflow a float.
CGFloat insetExtent(CGFloat size, CGFloat inset) {
    return static_cast<CGFloat>(std::fabs(static_cast<double>(size)) - 2.0 * inset);
}

} // namespace

const CGPoint CGPointZero = {0, 0};
const CGSize CGSizeZero = {0, 0};
const CGRect CGRectZero = {{0, 0}, {0, 0}};
const CGRect CGRectNull = {{kInfinity, kInfinity}, {0, 0}};
const CGRect CGRectInfinite = {{-CGFLOAT_MAX / 2, -CGFLOAT_MAX / 2}, {CGFLOAT_MAX, CGFLOAT_MAX}};

bool CGPointEqualToPoint(CGPoint a, CGPoint b) {
    return a.x == b.x && a.y == b.y;
}

bool CGSizeEqualToSize(CGSize a, CGSize b) {
    return a.width == b.width && a.height == b.height;
}

CGFloat CGRectGetMinX(CGRect rect) {
    return cg::horizontal(rect).minimum;
}
CGFloat CGRectGetMaxX(CGRect rect) {
    return cg::horizontal(rect).maximum;
}
CGFloat CGRectGetMinY(CGRect rect) {
    return cg::vertical(rect).minimum;
}
CGFloat CGRectGetMaxY(CGRect rect) {
    return cg::vertical(rect).maximum;
}

CGFloat CGRectGetMidX(CGRect rect) {
    return (rect.size.width + 2 * rect.origin.x) * 0.5f;
}
CGFloat CGRectGetMidY(CGRect rect) {
    return (rect.size.height + 2 * rect.origin.y) * 0.5f;
}

CGFloat CGRectGetWidth(CGRect rect) {
    return std::fabs(rect.size.width);
}
CGFloat CGRectGetHeight(CGRect rect) {
    return std::fabs(rect.size.height);
}

CGRect CGRectStandardize(CGRect rect) {
    if (rect.size.width < 0) {
        rect.origin.x += rect.size.width;
        rect.size.width = -rect.size.width;
    }
    if (rect.size.height < 0) {
        rect.origin.y += rect.size.height;
        rect.size.height = -rect.size.height;
    }
    return rect;
}

bool CGRectIsNull(CGRect rect) {
    return !std::isfinite(rect.origin.x) || !std::isfinite(rect.origin.y);
}

bool CGRectIsEmpty(CGRect rect) {
    return CGRectIsNull(rect) || rect.size.width == 0 || rect.size.height == 0;
}

bool CGRectIsInfinite(CGRect rect) {
    return CGRectEqualToRect(rect, CGRectInfinite);
}

bool CGRectEqualToRect(CGRect a, CGRect b) {
    a = CGRectStandardize(a);
    b = CGRectStandardize(b);
    return CGPointEqualToPoint(a.origin, b.origin) && CGSizeEqualToSize(a.size, b.size);
}

bool CGRectContainsPoint(CGRect rect, CGPoint point) {
    const cg::Interval x = cg::horizontal(rect);
    const cg::Interval y = cg::vertical(rect);
    return x.minimum <= point.x && point.x < x.maximum && y.minimum <= point.y &&
           point.y < y.maximum;
}

bool CGRectContainsRect(CGRect outer, CGRect inner) {
    if (CGRectIsNull(outer))
        return false;
    if (CGRectIsNull(inner))
        return true;
    return containsNearly(cg::horizontal(outer), cg::horizontal(inner)) &&
           containsNearly(cg::vertical(outer), cg::vertical(inner));
}

bool CGRectIntersectsRect(CGRect a, CGRect b) {
    return overlap(cg::horizontal(a), cg::horizontal(b)) &&
           overlap(cg::vertical(a), cg::vertical(b));
}

CGRect CGRectIntersection(CGRect a, CGRect b) {
    a = CGRectStandardize(a);
    b = CGRectStandardize(b);
    if (CGRectIsNull(a) || CGRectIsNull(b))
        return CGRectNull;
    const cg::Interval x = cg::intersection(cg::horizontal(a), cg::horizontal(b));
    const cg::Interval y = cg::intersection(cg::vertical(a), cg::vertical(b));
    if (x.maximum < x.minimum || y.maximum < y.minimum)
        return CGRectNull;
    return cg::rectOf(x, y);
}

CGRect CGRectUnion(CGRect a, CGRect b) {
    if (CGRectIsNull(a))
        return b;
    if (CGRectIsNull(b))
        return a;
    return cg::rectOf(cg::hull(cg::horizontal(a), cg::horizontal(b)),
                      cg::hull(cg::vertical(a), cg::vertical(b)));
}

CGRect CGRectOffset(CGRect rect, CGFloat dx, CGFloat dy) {
    if (CGRectIsNull(rect))
        return rect;
    rect = CGRectStandardize(rect);
    rect.origin.x += dx;
    rect.origin.y += dy;
    return rect;
}

CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy) {
    const CGFloat width = insetExtent(rect.size.width, dx);
    const CGFloat height = insetExtent(rect.size.height, dy);
    if (width < 0 || height < 0)
        return CGRectNull;
    const CGPoint origin = CGRectStandardize(rect).origin;
    return {{origin.x + dx, origin.y + dy}, {width, height}};
}

CGRect CGRectIntegral(CGRect rect) {
    rect = CGRectStandardize(rect);
    const CGFloat x = snapToInteger(rect.origin.x, std::floor(rect.origin.x));
    const CGFloat y = snapToInteger(rect.origin.y, std::floor(rect.origin.y));
    const CGFloat width = (rect.origin.x + rect.size.width) - x;
    const CGFloat height = (rect.origin.y + rect.size.height) - y;
    return {{x, y},
            {snapToInteger(width, std::ceil(width)), snapToInteger(height, std::ceil(height))}};
}

void CGRectDivide(CGRect rect, CGRect* slice, CGRect* remainder, CGFloat amount, CGRectEdge edge) {
    CGRect cut = CGRectNull;
    CGRect rest = CGRectNull;
    if (!CGRectIsNull(rect)) {
        cut = rest = CGRectStandardize(rect);
        const bool isVerticalCut = edge == CGRectMinXEdge || edge == CGRectMaxXEdge;
        const CGFloat extent = isVerticalCut ? cut.size.width : cut.size.height;
        amount = std::min(std::max(amount, 0.0f), extent);

        switch (edge) {
        case CGRectMinXEdge:
            rest.origin.x += amount;
            break;
        case CGRectMinYEdge:
            rest.origin.y += amount;
            break;
        case CGRectMaxXEdge:
            cut.origin.x = CGRectGetMaxX(rect) - amount;
            break;
        case CGRectMaxYEdge:
            cut.origin.y = CGRectGetMaxY(rect) - amount;
            break;
        default:
            return;
        }
        (isVerticalCut ? cut.size.width : cut.size.height) = amount;
        (isVerticalCut ? rest.size.width : rest.size.height) = extent - amount;
    }
    if (slice)
        *slice = cut;
    if (remainder)
        *remainder = rest;
}
