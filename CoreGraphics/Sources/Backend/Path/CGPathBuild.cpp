// CGPathBuild.cpp: adding lines, curves, rectangles and whole paths.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Context/XGBackend.h"
#include "Core/Geometry/Interval.h"
#include "Core/Object/Diagnostics.h"
#include "PathBuild.h"
#include "PathElements.h"
#include "PathPoint.h"

#include <include/pathops/SkPathOps.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace {

// Without a branch for each point, so that it runs as wide as the machine is; NaN needs no pinning.
bool needNoPinning(std::span<const CGPoint> points) {
    unsigned beyond = 0;
    for (const CGPoint& p : points) {
        beyond |= unsigned{std::abs(p.x) > cg::kLargestCoordinate};
        beyond |= unsigned{std::abs(p.y) > cg::kLargestCoordinate};
    }
    return beyond == 0;
}

// How many points or elements a path counts in an int, with room for those it already has.
constexpr size_t kMostAtOnce = std::numeric_limits<int>::max() / 16;

} // namespace

void cg::moveTo(SkPath& path, SkPoint point) {
    if (endsWith(path, SkPath::kMove_Verb))
        path.setLastPt(point);
    else
        path.moveTo(point);
}

void cg::addPolygon(SkPath& path, std::span<const SkPoint> corners, Closed closed) {
    // A move just before would stay as a contour of its own.
    if (!endsWith(path, SkPath::kMove_Verb)) {
        path.addPoly({corners.data(), corners.size()}, closed == Closed::Yes);
        return;
    }
    path.setLastPt(corners.front());
    for (const SkPoint& corner : corners.subspan(1))
        path.lineTo(corner);
    if (closed == Closed::Yes)
        path.close();
}

void cg::addRect(SkPath& path, const CGAffineTransform* m, const CGRect& rect) {
    const auto [minX, maxX] = horizontal(rect);
    const auto [minY, maxY] = vertical(rect);
    const std::array corners = {stored(m, minX, minY), stored(m, maxX, minY), stored(m, maxX, maxY),
                                stored(m, minX, maxY)};
    addPolygon(path, corners, Closed::Yes);
}

void cg::reportNoCurrentPoint(const char* function) {
    if (HostLogIsEnabled(kHostLogWarning))
        logMessage(kHostLogWarning, function, "no current point to go on from");
}

void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y) {
    if (SkPath* const points = cg::editablePoints(path))
        cg::moveTo(*points, cg::stored(m, x, y));
}

// A context's current path comes into being with its first point.
void cg::addLine(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y,
                 const char* function) {
    SkPath* const points = editablePoints(path);
    if (!points)
        reportNoCurrentPoint(function);
    else if (hasCurrentPoint(*points, function))
        points->lineTo(stored(m, x, y));
}

void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y) {
    if (cg::editablePoints(path))
        cg::addLine(path, m, x, y, __func__);
}

void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cpx,
                               CGFloat cpy, CGFloat x, CGFloat y) {
    SkPath* const points = cg::editablePoints(path);
    if (points && cg::hasCurrentPoint(*points, __func__))
        points->quadTo(cg::stored(m, cpx, cpy), cg::stored(m, x, y));
}

void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat cp1x,
                           CGFloat cp1y, CGFloat cp2x, CGFloat cp2y, CGFloat x, CGFloat y) {
    SkPath* const points = cg::editablePoints(path);
    if (points && cg::hasCurrentPoint(*points, __func__))
        points->cubicTo(cg::stored(m, cp1x, cp1y), cg::stored(m, cp2x, cp2y), cg::stored(m, x, y));
}

void CGPathCloseSubpath(CGMutablePathRef path) {
    if (SkPath* const points = cg::editablePoints(path))
        points->close();
}

void CGPathAddLines(CGMutablePathRef path, const CGAffineTransform* m, const CGPoint* points,
                    size_t count) {
    SkPath* const own = cg::editablePoints(path);
    if (!own || !points || count == 0)
        return;
    if (count > kMostAtOnce) {
        CG_LOG_ERROR("%zu points are more than a path can take at once", count);
        return;
    }
    if (!m && needNoPinning({points, count})) {
        cg::addPolygon(*own, {reinterpret_cast<const SkPoint*>(points), count}, cg::Closed::No);
        return;
    }
    own->incReserve(static_cast<int>(count));
    cg::moveTo(*own, cg::stored(m, points->x, points->y));
    for (const CGPoint& p : std::span(points + 1, count - 1))
        own->lineTo(cg::stored(m, p.x, p.y));
}

void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect) {
    if (SkPath* const points = cg::editablePoints(path))
        cg::addRect(*points, m, rect);
}

void CGPathAddRects(CGMutablePathRef path, const CGAffineTransform* m, const CGRect* rects,
                    size_t count) {
    SkPath* const points = cg::editablePoints(path);
    if (!points || !rects)
        return;
    if (count > kMostAtOnce) {
        CG_LOG_ERROR("%zu rectangles are more than a path can take at once", count);
        return;
    }
    points->incReserve(static_cast<int>(count * 4), static_cast<int>(count * 5));
    for (const CGRect& rect : std::span(rects, count))
        cg::addRect(*points, m, rect);
}

void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform* m, CGPathRef other) {
    SkPath* const points = cg::editablePoints(path);
    if (!points || !other || path == other)
        return;
    const SkMatrix matrix = m ? cg::skiaMatrix(*m) : SkMatrix::I();
    // Skia lets an empty path share the points of the first one that is added to it as it is.
    if (matrix.isIdentity() && !cg::hasElements(*points))
        cg::settle(other->path);
    points->addPath(other->path, matrix);
}

void _CGPathConcatCTM(CGMutablePathRef path, CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx,
                      CGFloat ty) {
    if (SkPath* const points = cg::editablePoints(path))
        points->transform(cg::skiaMatrix({a, b, c, d, tx, ty}));
}

bool CGPathIntersectWithRect(CGMutablePathRef path, CGRect rect) {
    if (!path)
        return false;
    SkPath area;
    cg::addRect(area, nullptr, rect);
    SkPath result;
    if (!path->path.isFinite() || !area.isFinite() ||
        !Op(path->path, area, kIntersect_SkPathOp, &result)) {
        CG_LOG_WARNING("the intersection of a path with a rectangle did not come out");
        return false;
    }
    path->path = result;
    path->evenOddFlag = result.getFillType() == SkPathFillType::kEvenOdd;
    cg::settle(path->path);
    return true;
}
