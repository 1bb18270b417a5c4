// CGPathCircle.cpp: telling whether curves add up to a circle.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "PathElements.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kCloseness = 0.01;
constexpr double kLargestCosineOfRightAngle = 0.005;

// In radii: the handle of a quarter circle drawn as a cubic, between the values that different
// drawing programs use; and for an eighth drawn as a quadratic, how far its control point lies from
// its ends (the tangent of half an eighth turn) and from the centre (the inverse of the cosine).
constexpr double kCubicHandle = 0.552;
constexpr double kQuadHandle = 0.41421357;
constexpr double kQuadControlRadius = 1.0823922;

constexpr int kCubicsInCircle = 4;
constexpr int kQuadsInCircle = 8;

// Doubles hold the squares of all coordinates, and their differences exactly enough.
struct Vector {
    double x, y;

    double length() const { return std::sqrt(x * x + y * y); }
    friend Vector operator-(const Vector& a, const Vector& b) { return {a.x - b.x, a.y - b.y}; }
    friend double dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y; }
    friend double cross(const Vector& a, const Vector& b) { return a.x * b.y - a.y * b.x; }
};

Vector vector(SkPoint p) {
    return {p.fX, p.fY};
}

bool agree(double u, double v) {
    return u == v || std::abs(u - v) / std::max(std::abs(u), std::abs(v)) < kCloseness;
}

bool perpendicular(const Vector& a, const Vector& b) {
    return std::abs(dot(a, b)) / (a.length() * b.length()) < kLargestCosineOfRightAngle;
}

// Looks at curves one by one, each given with its start point, relative to the common centre.
class CircleTest {
public:
    explicit CircleTest(Vector centre) : centre_(centre) {}

    bool hasCurves() const { return cubics_ + quads_ > 0; }
    bool isComplete() const {
        return (cubics_ == kCubicsInCircle && quads_ == 0) ||
               (quads_ == kQuadsInCircle && cubics_ == 0);
    }
    double radius() const { return radius_; }

    bool acceptsCubic(const SkPoint* p) {
        const Vector from = spoke(p[0]), control1 = spoke(p[1]), control2 = spoke(p[2]),
                     to = spoke(p[3]);
        start(from, to);
        const double handle = kCubicHandle * radius_;
        return quads_ == 0 && ++cubics_ <= kCubicsInCircle && turns(from, to) &&
               agree(to.length(), radius_) && perpendicular(from, to) &&
               isHandle(from, control1, handle) && isHandle(to, control2, handle) &&
               turns(from, control1) && turns(control2, to);
    }

    bool acceptsQuad(const SkPoint* p) {
        const Vector from = spoke(p[0]), control = spoke(p[1]), to = spoke(p[2]);
        start(from, to);
        const double handle = kQuadHandle * radius_;
        return cubics_ == 0 && ++quads_ <= kQuadsInCircle && turns(from, to) &&
               agree(to.length(), radius_) &&
               agree(control.length(), kQuadControlRadius * radius_) &&
               isHandle(from, control, handle) && isHandle(to, control, handle) &&
               turns(from, control) && turns(control, to);
    }

private:
    Vector spoke(SkPoint p) const { return vector(p) - centre_; }

    // The first curve says how large the circle is and which way it runs.
    void start(const Vector& from, const Vector& to) {
        if (hasCurves())
            return;
        radius_ = from.length();
        positive_ = cross(from, to) > 0;
    }
    bool turns(const Vector& from, const Vector& to) const {
        return (cross(from, to) > 0) == positive_;
    }
    // Whether a control point lies along the tangent at the end of a spoke, as far as it should.
    static bool isHandle(const Vector& spoke, const Vector& control, double length) {
        const Vector handle = control - spoke;
        return agree(handle.length(), length) && perpendicular(handle, spoke);
    }

    Vector centre_;
    double radius_ = 0;
    bool positive_ = false;
    int cubics_ = 0;
    int quads_ = 0;
};

bool isCircle(const SkPath& path, CircleTest& test) {
    const SkPoint* points = SkPathPriv::PointData(path);
    for (const uint8_t verb : cg::verbsOf(path)) {
        switch (verb) {
        case SkPath::kMove_Verb:
            if (test.hasCurves())
                return false;
            break;
        case SkPath::kQuad_Verb:
            if (!test.acceptsQuad(points - 1))
                return false;
            break;
        case SkPath::kCubic_Verb:
            if (!test.acceptsCubic(points - 1))
                return false;
            break;
        case SkPath::kClose_Verb:
            if (!test.isComplete())
                return false;
            break;
        default:
            return false;
        }
        points += cg::pointCount(verb);
    }
    return test.isComplete();
}

} // namespace

bool _CGPathICantBelieveItsNotACircle(CGPathRef path, CGRect* rect) {
    if (CGPathIsEmpty(path))
        return false;
    const SkRect& bounds = path->path.getBounds();
    if (!agree(double{bounds.width()}, double{bounds.height()}))
        return false;
    CGRect circle = cg::rectOf(bounds);
    if (!path->path.isOval(nullptr)) {
        const Vector centre = vector(bounds.center());
        CircleTest test(centre);
        if (!isCircle(path->path, test))
            return false;
        const double r = test.radius();
        circle = {{static_cast<CGFloat>(centre.x - r), static_cast<CGFloat>(centre.y - r)},
                  {static_cast<CGFloat>(2 * r), static_cast<CGFloat>(2 * r)}};
    }
    if (rect)
        *rect = circle;
    return true;
}
