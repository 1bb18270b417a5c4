// CGPathRounded.cpp: ellipses and rectangles with rounded corners.

#include "CGPathRecord.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Context/XGBackend.h"
#include "Core/Geometry/Interval.h"
#include "PathBuild.h"
#include "PathElements.h"
#include "PathPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <tuple>

namespace {

// How far from the corner, in radii, the control points of a quarter ellipse lie. The cubic that
// meets the circle at 45° bulges by 0.027 % of the radius elsewhere; with this one, which leaves
// 0.55191505 between end and control point, the largest error either way is 0.02 %.
constexpr float kCornerToControl = 0.44808495f; // 0x3EE56B64

enum class Sides { Drawn, None };

// The start, then for each corner the end of the side before it and the points of its cubic.
using RoundedPoints = std::array<SkPoint, 17>;

template <typename At>
RoundedPoints roundedPoints(const CGRect& rect, CGFloat rx, CGFloat ry, At at) {
    const auto [minX, maxX] = cg::horizontal(rect);
    const auto [minY, maxY] = cg::vertical(rect);
    const CGFloat kx = kCornerToControl * rx;
    const CGFloat ky = kCornerToControl * ry;
    return {at(maxX, CGRectGetMidY(rect)), at(maxX, maxY - ry), at(maxX, maxY - ky),
            at(maxX - kx, maxY),           at(maxX - rx, maxY), at(minX + rx, maxY),
            at(minX + kx, maxY),           at(minX, maxY - ky), at(minX, maxY - ry),
            at(minX, minY + ry),           at(minX, minY + ky), at(minX + kx, minY),
            at(minX + rx, minY),           at(maxX - rx, minY), at(maxX - kx, minY),
            at(maxX, minY + ky),           at(maxX, minY + ry)};
}

bool isWithinCoordinates(const CGRect& rect) {
    const auto [minX, maxX] = cg::horizontal(rect);
    const auto [minY, maxY] = cg::vertical(rect);
    return minX >= -cg::kLargestCoordinate && maxX <= cg::kLargestCoordinate &&
           minY >= -cg::kLargestCoordinate && maxY <= cg::kLargestCoordinate;
}

// The points lie between the edges, so where those need no pinning nor mapping, no point does: the
// ellipses of most callers, which cost a tenth less that way.
RoundedPoints storedPoints(const CGAffineTransform* m, const CGRect& rect, CGFloat rx, CGFloat ry) {
    if (!m && isWithinCoordinates(rect))
        return roundedPoints(rect, rx, ry, [](CGFloat x, CGFloat y) { return SkPoint{x, y}; });
    return roundedPoints(rect, rx, ry, [m](CGFloat x, CGFloat y) { return cg::stored(m, x, y); });
}

void addRounded(SkPath& path, const CGAffineTransform* m, const CGRect& rect, CGFloat rx,
                CGFloat ry, Sides sides) {
    const RoundedPoints points = storedPoints(m, rect, rx, ry);
    cg::moveTo(path, points[0]);
    for (std::size_t i = 1; i < points.size(); i += 4) {
        if (sides == Sides::Drawn)
            path.lineTo(points[i]);
        path.cubicTo(points[i + 1], points[i + 2], points[i + 3]);
    }
    path.close();
}

void addSharp(SkPath& path, const CGAffineTransform* m, const CGRect& rect) {
    const auto [minX, maxX] = cg::horizontal(rect);
    const auto [minY, maxY] = cg::vertical(rect);
    const std::array corners = {cg::stored(m, maxX, CGRectGetMidY(rect)), cg::stored(m, maxX, maxY),
                                cg::stored(m, minX, maxY), cg::stored(m, minX, minY),
                                cg::stored(m, maxX, minY)};
    cg::addPolygon(path, corners, cg::Closed::Yes);
}

// Between 0 and half the side; 0 where either is NaN.
CGFloat cornerWithin(CGFloat corner, CGFloat side) {
    const CGFloat half = std::abs(side) * 0.5f;
    return half > 0 ? std::min(std::max(CGFloat{0}, corner), half) : 0;
}

// Mutable though it is, the caller sees a path to read, and may well share it between threads.
template <typename Add>
CGPathRef createWith(Add add) {
    const CGMutablePathRef path = CGPathCreateMutable();
    if (!path)
        return nullptr;
    add(path);
    cg::settle(path->path);
    return path;
}

} // namespace

bool cg::isEllipse(CGPathRef path, CGRect rect) {
    static constexpr std::array kVerbs = {SkPath::kMove_Verb,  SkPath::kCubic_Verb,
                                          SkPath::kCubic_Verb, SkPath::kCubic_Verb,
                                          SkPath::kCubic_Verb, SkPath::kClose_Verb};
    if (!std::ranges::equal(cg::verbsOf(path->path), kVerbs))
        return false;
    const RoundedPoints expected = storedPoints(nullptr, rect, std::abs(rect.size.width) * 0.5f,
                                                std::abs(rect.size.height) * 0.5f);
    const SkPoint* point = SkPathPriv::PointData(path->path);
    bool isSame = *point++ == expected[0];
    for (std::size_t i = 1; i < expected.size(); ++i)
        isSame = isSame && (i % 4 == 1 || *point++ == expected[i]); // No lines between curves.
    return isSame;
}

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
