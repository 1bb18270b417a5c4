// PathFlattening.h: paths as polygons.
#pragma once

#include "PathElements.h"

#include <include/core/SkPath.h>
#include <src/core/SkGeometry.h>
#include <src/core/SkPathPriv.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace cg {

// How many even steps in the parameter keep a chord within `tolerance` of a curve whose control
// polygon has second differences of length `bend` at most: the distance is bounded by the second
// derivative over eight, for a curve of that degree.
inline int stepsFor(double bend, int degree, double tolerance) {
    constexpr double most = 1 << 12;
    const double steps = std::sqrt(degree * (degree - 1) * bend / (8 * tolerance));
    return static_cast<int>(std::clamp(std::ceil(steps), 1.0, most));
}

// Hands a path's contours over as polygons that keep within `tolerance`, which is positive, of its
// curves: `sink.beginContour()`, then `sink.add(SkPoint)` for each corner. Contours close by
// themselves. The path's points are finite.
template <typename Sink>
class PathFlattener {
public:
    PathFlattener(double tolerance, Sink& sink) : tolerance_(tolerance), sink_(sink) {}

    void flatten(const SkPath& path) {
        const SkPoint* points = SkPathPriv::PointData(path);
        const SkScalar* weights = SkPathPriv::ConicWeightData(path);
        for (const uint8_t verb : verbsOf(path)) {
            switch (verb) {
            case SkPath::kMove_Verb:
                sink_.beginContour();
                sink_.add(points[0]);
                break;
            case SkPath::kLine_Verb:
                sink_.add(points[0]);
                break;
            case SkPath::kQuad_Verb:
                addQuad(points - 1);
                break;
            case SkPath::kConic_Verb:
                addConic(points - 1, *weights++);
                break;
            case SkPath::kCubic_Verb:
                addCubic(points - 1);
                break;
            default:
                break;
            }
            points += pointCount(verb);
        }
    }

private:
    static double bendAt(const SkPoint* p) {
        return std::hypot(double{p[0].fX} - 2 * double{p[1].fX} + p[2].fX,
                          double{p[0].fY} - 2 * double{p[1].fY} + p[2].fY);
    }

    template <typename Curve>
    void addSteps(const Curve& curve, int steps, SkPoint end) {
        for (int i = 1; i < steps; ++i)
            sink_.add(curve(static_cast<float>(i) / static_cast<float>(steps)));
        sink_.add(end);
    }

    void addQuad(const SkPoint* p) {
        const SkQuadCoeff curve(p);
        addSteps([&](float t) { return toPoint(curve.eval(t)); },
                 stepsFor(bendAt(p), 2, tolerance_), p[2]);
    }

    void addCubic(const SkPoint* p) {
        const SkCubicCoeff curve(p);
        addSteps([&](float t) { return toPoint(curve.eval(t)); },
                 stepsFor(std::max(bendAt(p), bendAt(p + 1)), 3, tolerance_), p[3]);
    }

    // By quadratics that keep within half of the tolerance, and their chords within the other half.
    void addConic(const SkPoint* p, float weight) {
        constexpr int mostSplits = 5;
        const SkConic conic(p, weight);
        const auto half = static_cast<float>(tolerance_ / 2);
        const int splits = std::min(conic.computeQuadPOW2(half), mostSplits);
        std::array<SkPoint, 1 + (2 << mostSplits)> quads;
        const int count = conic.chopIntoQuadsPOW2(quads.data(), splits);
        for (int i = 0; i < count; ++i) {
            const SkPoint* const quad = &quads[static_cast<std::size_t>(2 * i)];
            const SkQuadCoeff curve(quad);
            addSteps([&](float t) { return toPoint(curve.eval(t)); },
                     stepsFor(bendAt(quad), 2, tolerance_ / 2), quad[2]);
        }
    }

    static SkPoint toPoint(const skvx::float2& p) { return {p[0], p[1]}; }

    double tolerance_;
    Sink& sink_;
};

} // namespace cg
