// CGPathApply.cpp: handing a path's elements to the caller, one by one.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "PathElements.h"

#include <src/core/SkGeometry.h>

#include <algorithm>
#include <array>

namespace {

// How far, in the path's units, the quadratics that stand for a conic may lie off it. Splitting
// once is the least: arcs of small paths are often drawn enlarged.
constexpr float kConicTolerance = 1.0f / 16;
constexpr int kFewestConicSplits = 1;
constexpr int kMostConicSplits = 5;

// Feeds the caller's function from one buffer: the end of the previous element, then the points of
// this one. That the end lies just before is what _CGPathElementGetAllPoints relies on. A buffer of
// our own keeps the function's hands off the points that paths share.
class Applier {
public:
    Applier(void* info, CGPathApplierFunction function) : info_(info), function_(function) {}

    // `points` begins with the element's first point of its own.
    void apply(CGPathElementType type, const SkPoint* points, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            buffer_[i + 1] = {points[i].fX, points[i].fY};
        const CGPathElement element = {type, &buffer_[1]};
        function_(info_, &element);
        if (count > 0)
            buffer_[0] = {points[count - 1].fX, points[count - 1].fY};
    }

    void applyConic(const SkPoint* points, float weight) {
        const SkConic conic(points[-1], points[0], points[1], weight);
        const int splits = std::clamp(conic.computeQuadPOW2(kConicTolerance), kFewestConicSplits,
                                      kMostConicSplits);
        std::array<SkPoint, 1 + (2 << kMostConicSplits)> quads;
        const int count = conic.chopIntoQuadsPOW2(quads.data(), splits);
        for (int i = 0; i < count; ++i)
            apply(kCGPathElementAddQuadCurveToPoint, &quads[static_cast<std::size_t>(1 + 2 * i)],
                  2);
    }

private:
    void* info_;
    CGPathApplierFunction function_;
    std::array<CGPoint, 4> buffer_ = {};
};

CGPathElementType elementType(uint8_t verb) {
    switch (verb) {
    case SkPath::kMove_Verb:
        return kCGPathElementMoveToPoint;
    case SkPath::kLine_Verb:
        return kCGPathElementAddLineToPoint;
    case SkPath::kQuad_Verb:
        return kCGPathElementAddQuadCurveToPoint;
    case SkPath::kCubic_Verb:
        return kCGPathElementAddCurveToPoint;
    default:
        return kCGPathElementCloseSubpath;
    }
}

} // namespace

void CGPathApply(CGPathRef path, void* info, CGPathApplierFunction function) {
    if (!path || !function)
        return;
    const SkPath unchanging = path->path;
    Applier applier(info, function);
    const SkPoint* points = SkPathPriv::PointData(unchanging);
    const SkScalar* weights = SkPathPriv::ConicWeightData(unchanging);
    for (const uint8_t verb : cg::verbsOf(unchanging)) {
        const std::size_t count = cg::pointCount(verb);
        if (verb == SkPath::kConic_Verb)
            applier.applyConic(points, *weights++);
        else
            applier.apply(elementType(verb), points, count);
        points += count;
    }
}

CGPoint* _CGPathElementGetAllPoints(const CGPathElement* element, uint32_t* count) {
    if (!element || !element->points)
        return nullptr;
    if (element->type == kCGPathElementMoveToPoint)
        return element->points;
    // Line, quadratic and cubic are numbered by how many points they have of their own.
    if (count) {
        const bool isSegment =
            element->type > kCGPathElementMoveToPoint && element->type < kCGPathElementCloseSubpath;
        *count = isSegment ? static_cast<uint32_t>(element->type) + 1 : 0;
    }
    return element->points - 1;
}
