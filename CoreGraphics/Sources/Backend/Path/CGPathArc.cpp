// CGPathArc.cpp: circular arcs, given by angles or by the lines that they touch.

#include "CGPathRecord.h"
#include "XGGeometry.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Geometry/NearlyEqual.h"
#include "Core/Object/Diagnostics.h"
#include "PathBuild.h"
#include "PathElements.h"
#include "PathPoint.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr float kTurn = 2 * std::numbers::pi_v<float>;
constexpr float kQuarterTurn = 0.5f * std::numbers::pi_v<float>;

// Points this close are one. In the units of the space that they are compared in.
constexpr float kSamePoint = 0.001f;

// Beyond it floats stand more than 1/256 apart, too coarse to tell where on the circle an angle
// points, and counting turns down to it one by one would take noticeable time and memory.
constexpr float kLargestAngle = 65536;

struct Sweep {
    float start;
    float end;
    bool clockwise;

    bool isEmpty() const { return cg::nearlyEqual(start, end); }
    float remaining(float angle) const { return clockwise ? angle - end : end - angle; }
};

// The angle of the same spot within half a turn of 0. Sine and cosine of any double are exact to
// the last bit, which a remainder of dividing by a rounded turn is not.
float withoutTurns(float angle) {
    return static_cast<float>(std::atan2(std::sin(double{angle}), std::cos(double{angle})));
}

// Drops whole turns from angles that have too many. A sweep that was one turn or more stays one.
Sweep withoutExcessTurns(const Sweep& sweep) {
    if (std::max(std::abs(sweep.start), std::abs(sweep.end)) <= kLargestAngle)
        return sweep;
    const Sweep reduced = {withoutTurns(sweep.start), withoutTurns(sweep.end), sweep.clockwise};
    if (!reduced.isEmpty() || sweep.isEmpty())
        return reduced;
    return {reduced.start, reduced.start + (sweep.clockwise ? -kTurn : kTurn), sweep.clockwise};
}

// The sweep with its start moved by whole turns to the side of its end that the direction asks for.
Sweep directed(Sweep sweep) {
    if (sweep.isEmpty())
        return {sweep.end, sweep.end, sweep.clockwise};
    sweep = withoutExcessTurns(sweep);
    const float step = sweep.clockwise ? kTurn : -kTurn;
    while (sweep.isEmpty() || sweep.remaining(sweep.start) <= 0)
        sweep.start += step;
    return sweep;
}

// Where the next segment of a path starts: after a close, that is the start of the closed contour.
SkPoint segmentStart(const SkPath& path) {
    const auto verbs = cg::verbsOf(path);
    auto point = cg::pointsOf(path).rbegin();
    if (verbs.back() != SkPath::kClose_Verb)
        return *point;
    for (auto verb = verbs.rbegin(); *verb != SkPath::kMove_Verb; ++verb)
        point += static_cast<std::ptrdiff_t>(cg::pointCount(*verb));
    return *point;
}

// A circle whose arcs go into a path, by way of the caller's transform.
class ArcPen {
public:
    ArcPen(SkPath& path, const CGAffineTransform* m, CGPoint centre, CGFloat radius)
        : path_(path), m_(m), centre_(centre), radius_(radius) {}

    // The circle's point at an angle, and the unit vector towards growing angles there.
    struct Spot {
        CGPoint point;
        CGPoint tangent;
    };

    Spot at(float angle) const {
        const float cosine = std::cos(angle);
        const float sine = std::sin(angle);
        return {{centre_.x + radius_ * cosine, centre_.y + radius_ * sine}, {-sine, cosine}};
    }

    void start(const Spot& spot) {
        const SkPoint point = storedPoint(spot.point);
        if (!cg::hasElements(path_)) {
            path_.moveTo(point);
            return;
        }
        const SkPoint current = segmentStart(path_);
        if (XGPointDistance({current.fX, current.fY}, {point.fX, point.fY}) > kSamePoint)
            path_.lineTo(point);
    }

    // At most a quarter turn. The handles have the length that brings the cubic's middle onto the
    // circle.
    void addPiece(const Spot& from, const Spot& to, float sweep) {
        if (XGPointDistance(from.point, to.point) < kSamePoint) {
            path_.lineTo(storedPoint(to.point));
            return;
        }
        const float handle =
            static_cast<float>(4.0 / 3.0 * double{std::tan(sweep / 4)} * double{radius_});
        path_.cubicTo(storedPoint(along(from, handle)), storedPoint(along(to, -handle)),
                      storedPoint(to.point));
    }

private:
    SkPoint storedPoint(CGPoint p) const { return cg::stored(m_, p.x, p.y); }

    static CGPoint along(const Spot& spot, float length) {
        return {spot.point.x + length * spot.tangent.x, spot.point.y + length * spot.tangent.y};
    }

    SkPath& path_;
    const CGAffineTransform* m_;
    CGPoint centre_;
    CGFloat radius_;
};

void addSweep(ArcPen pen, const Sweep& sweep) {
    float angle = sweep.start;
    ArcPen::Spot from = pen.at(angle);
    pen.start(from);
    while (sweep.remaining(angle) > 0 && !cg::nearlyEqual(angle, sweep.end)) {
        const float step = std::min(kQuarterTurn, sweep.remaining(angle));
        const float signedStep = sweep.clockwise ? -step : step;
        const float next = angle + signedStep;
        const ArcPen::Spot to = pen.at(next);
        pen.addPiece(from, to, next - angle);
        angle = next;
        from = to;
    }
}

// Appends to the current contour what `other` holds after its first move, mapped through `m`.
void continueWith(SkPath& path, const SkPath& other, const CGAffineTransform& m) {
    SkPath mapped;
    other.transform(cg::skiaMatrix(m), &mapped);
    const SkPoint* point = SkPathPriv::PointData(mapped) + 1;
    const SkScalar* weight = SkPathPriv::ConicWeightData(mapped);
    for (const uint8_t verb : cg::verbsOf(mapped).subspan(1)) {
        if (verb == SkPath::kConic_Verb)
            path.conicTo(cg::pinned(point[0]), cg::pinned(point[1]), *weight++);
        else
            path.lineTo(cg::pinned(point[0]));
        point += cg::pointCount(verb);
    }
}

} // namespace

void CGPathAddArc(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y,
                  CGFloat radius, CGFloat startAngle, CGFloat endAngle, bool clockwise) {
    SkPath* const points = cg::editablePoints(path);
    if (!points)
        return;
    if (!std::isfinite(startAngle) || !std::isfinite(endAngle)) {
        CG_LOG_WARNING("an arc has no direction to angle %g or %g", double{startAngle},
                       double{endAngle});
        return;
    }
    addSweep({*points, m, {x, y}, radius}, directed({startAngle, endAngle, clockwise}));
}

void CGPathAddRelativeArc(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y,
                          CGFloat radius, CGFloat startAngle, CGFloat delta) {
    CGPathAddArc(path, m, x, y, radius, startAngle, startAngle + delta, delta < 0);
}

// Skia makes the arc: a conic, which is exact, unlike the cubics of the arcs above. A circle is one
// in the caller's space only, so under a transform it is made there and then mapped.
void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x1, CGFloat y1,
                         CGFloat x2, CGFloat y2, CGFloat radius) {
    SkPath* const points = cg::editablePoints(path);
    if (!points || !cg::hasCurrentPoint(*points, __func__))
        return;
    const SkPoint corner = cg::stored(nullptr, x1, y1);
    const SkPoint far = cg::stored(nullptr, x2, y2);
    // Pinned too, so that the points computed from it are finite.
    const float pinnedRadius = cg::pinned(radius);
    if (!m) {
        points->arcTo(corner, far, pinnedRadius);
        return;
    }
    const SkPoint current = segmentStart(*points);
    const CGPoint start = XGPointApplyInverseAffineTransform({current.fX, current.fY}, *m);
    SkPath arc;
    arc.moveTo(cg::stored(nullptr, start.x, start.y));
    arc.arcTo(corner, far, pinnedRadius);
    continueWith(*points, arc, *m);
}
