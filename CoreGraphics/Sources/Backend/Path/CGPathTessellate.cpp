// CGPathTessellate.cpp: a path's inside as triangles.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "ContourGroups.h"
#include "Core/Object/Diagnostics.h"
#include "PathFlattening.h"
#include "PathPolygons.h"
#include "PolygonCut.h"
#include "PolygonSweep.h"
#include "TriangleList.h"

#include <optional>
#include <vector>

// Half a unit is hardly seen where a unit is a pixel.
double _CGPathDefaultTessellateTolerance = 0.5;

namespace {

using cg::PathPolygons;

// From here on a sweep's time grows faster than its corners, and halves are quicker.
constexpr std::size_t kMostCornersInSweep = 256;

// None when curves of huge coordinates have overflown.
std::optional<std::vector<SkRect>> boxesOf(const PathPolygons& polygons) {
    std::vector<SkRect> boxes(polygons.contourCount());
    for (std::size_t index = 0; index < boxes.size(); ++index) {
        const auto contour = polygons.contour(index);
        if (!boxes[index].setBoundsCheck({contour.data(), contour.size()}))
            return std::nullopt;
    }
    return boxes;
}

// Some of the contours, turned for their sweep.
PathPolygons selected(const PathPolygons& polygons, std::span<const std::size_t> members,
                      cg::Sweep sweep) {
    PathPolygons chosen;
    for (const std::size_t member : members) {
        chosen.beginContour();
        for (const SkPoint point : polygons.contour(member))
            chosen.add(sweep == cg::Sweep::AlongX ? point : cg::turned(point));
    }
    chosen.finish();
    return chosen;
}

void sweepInParts(cg::PolygonSweep& sweep, const PathPolygons& polygons, cg::Sweep direction) {
    if (polygons.points().size() > kMostCornersInSweep) {
        if (const auto halves = cg::cutInTwo(polygons)) {
            sweepInParts(sweep, halves->first, direction);
            sweepInParts(sweep, halves->second, direction);
            return;
        }
    }
    if (sweep.isGood())
        sweep.run(polygons, direction);
}

// Along the longer side a sweep meets fewer edges at a time; turning has its price.
cg::Sweep sweepFor(const SkRect& box) {
    return 2 * box.width() < box.height() ? cg::Sweep::AlongY : cg::Sweep::AlongX;
}

// False when memory ran out.
bool sweepAll(const PathPolygons& polygons, std::span<const SkRect> boxes,
              cg::PolygonSweep& sweep) {
    const cg::ContourGroups groups = cg::groupBoxes(boxes);
    for (std::size_t index = 0; index < groups.ends.size() && sweep.isGood(); ++index) {
        const auto members = groups.group(index);
        SkRect box = boxes[members.front()];
        for (const std::size_t member : members)
            box.joinPossiblyEmptyRect(boxes[member]);
        const cg::Sweep direction = sweepFor(box);
        if (members.size() == boxes.size() && direction == cg::Sweep::AlongX)
            sweepInParts(sweep, polygons, direction);
        else
            sweepInParts(sweep, selected(polygons, members, direction), direction);
    }
    return sweep.isGood();
}

PathPolygons polygonsOf(const SkPath& path, double tolerance) {
    if (!(tolerance > 0))
        tolerance = _CGPathDefaultTessellateTolerance;
    if (!(tolerance > 0))
        tolerance = 0.5; // A default that somebody made useless.
    PathPolygons polygons;
    polygons.reserve(cg::pointsOf(path).size() * 4);
    cg::PathFlattener(tolerance, polygons).flatten(path);
    polygons.finish();
    return polygons;
}

} // namespace

bool _CGPathTessellate(CGPathRef path, uint32_t fillRule, double tolerance,
                       XGPathTessellateFunction function, void* info, CGRect* bounds) {
    if (bounds)
        *bounds = CGRectNull;
    if (!path || !function)
        return false;
    CG_BUG_UNLESS(fillRule == kXGPathFillWinding || fillRule == kXGPathFillEvenOdd);
    if (!path->path.isFinite())
        return false;
    const PathPolygons polygons = polygonsOf(path->path, tolerance);
    const auto boxes = boxesOf(polygons);
    if (!boxes)
        return false;
    cg::TriangleList triangles;
    triangles.reserve(polygons.points().size());
    cg::PolygonSweep sweep(fillRule == kXGPathFillEvenOdd, triangles);
    if (!sweep.isGood() || !sweepAll(polygons, *boxes, sweep)) {
        CG_LOG_ERROR("no memory to tessellate [%p]", static_cast<const void*>(path));
        return false;
    }
    if (bounds)
        *bounds = triangles.bounds();
    triangles.handOver(function, info);
    return true;
}
