// CGPathQuery.cpp: what can be read off a path without changing it.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Object/Diagnostics.h"
#include "PathElements.h"

bool CGPathIsEmpty(CGPathRef path) {
    return !path || !cg::hasElements(path->path);
}

CGPoint CGPathGetCurrentPoint(CGPathRef path) {
    SkPoint point = {0, 0};
    if (path)
        path->path.getLastPt(&point);
    return {point.fX, point.fY};
}

bool CGPathIsRect(CGPathRef path, CGRect* rect) {
    SkRect recognised;
    if (!path || !path->path.isRect(&recognised))
        return false;
    if (rect)
        *rect = cg::rectOf(recognised);
    return true;
}

bool _CGPathIsClosed(CGPathRef path) {
    if (!path)
        return false;
    const auto points = cg::pointsOf(path->path);
    return points.size() >= 2 && points.front() == points.back();
}

bool _CGPathIsRectilinear(CGPathRef path) {
    if (!path)
        return false;
    const SkPoint* end = cg::pointsOf(path->path).data();
    for (const uint8_t verb : cg::verbsOf(path->path)) {
        switch (verb) {
        case SkPath::kMove_Verb:
        case SkPath::kClose_Verb:
            break;
        case SkPath::kLine_Verb:
            if (end[-1].fX != end[0].fX && end[-1].fY != end[0].fY)
                return false;
            break;
        case SkPath::kQuad_Verb:
        case SkPath::kCubic_Verb:
            return false;
        default:
            CG_LOG(kHostLogFault, "[%p] verb %d not recognized.", static_cast<const void*>(path),
                   static_cast<int>(verb));
        }
        end += cg::pointCount(verb);
    }
    return true;
}

CGRect CGPathGetBoundingBox(CGPathRef path) {
    return CGPathIsEmpty(path) ? CGRectNull : cg::rectOf(path->path.getBounds());
}

CGRect CGPathGetPathBoundingBox(CGPathRef path) {
    if (CGPathIsEmpty(path) || !path->path.isFinite())
        return CGRectNull;
    return cg::rectOf(path->path.computeTightBounds());
}

bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform* m, CGPoint point, bool eoFill) {
    if (!path)
        return false;
    const CGPoint tested = m ? CGPointApplyAffineTransform(point, *m) : point;
    SkPath filled = path->path;
    filled.setFillType(eoFill ? SkPathFillType::kEvenOdd : SkPathFillType::kWinding);
    return filled.contains(tested.x, tested.y);
}
