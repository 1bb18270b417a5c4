// CGPathIntersection.cpp: where a straight line crosses a path.

#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

// Distances below this share of a curve's largest one count as none: a curve that touches the line
// seldom does so in a value that is exactly 0.
constexpr double kTouch = 1e-9;

// A segment's signed distance from the line, as the Bernstein coefficients of a polynomial of
// degree 1 to 3 in the segment's parameter.
class Distance {
public:
    void add(double coefficient) { c_[count_++] = coefficient; }

    double operator()(double t) const {
        std::array<double, 4> level = c_;
        for (std::size_t n = count_; n > 1; --n)
            for (std::size_t i = 0; i + 1 < n; ++i)
                level[i] += (level[i + 1] - level[i]) * t;
        return level[0];
    }

    bool isNone(double distance) const {
        double largest = 0;
        for (std::size_t i = 0; i < count_; ++i)
            largest = std::max(largest, std::abs(c_[i]));
        return std::abs(distance) <= largest * kTouch;
    }

    // 0, the places within 0…1 where the distance stops growing or shrinking, and 1.
    std::size_t bounds(std::array<double, 4>& t) const {
        std::size_t count = 0;
        t[count++] = 0;
        const auto add = [&](double place) {
            if (place > 0 && place < 1)
                t[count++] = place;
        };
        const double d0 = c_[1] - c_[0], d1 = c_[2] - c_[1], d2 = c_[3] - c_[2];
        if (count_ == 3)
            add(d0 / (d0 - d1));
        if (count_ == 4) {
            // d0 (1 − t)² + 2 d1 t (1 − t) + d2 t² = 0, divided by whichever half is larger.
            const double a = d0 - 2 * d1 + d2, half = d1 - d0;
            const double q = -(half + std::copysign(std::sqrt(half * half - a * d0), half));
            add(q / a);
            add(d0 / q);
        }
        if (count == 3 && t[2] < t[1])
            std::swap(t[1], t[2]);
        t[count++] = 1;
        return count;
    }

private:
    std::array<double, 4> c_ = {};
    std::size_t count_ = 0;
};

// The one zero between two places on different sides of the line.
double zeroBetween(const Distance& distance, double low, double high) {
    const bool rises = distance(low) < 0;
    while (true) {
        const double middle = low + (high - low) / 2;
        if (middle <= low || middle >= high)
            return middle;
        ((distance(middle) < 0) == rises ? low : high) = middle;
    }
}

class Line {
public:
    Line(CGPoint from, CGPoint to)
        : from_(from), dx_(double{to.x} - from.x), dy_(double{to.y} - from.y) {}

    bool hasDirection() const {
        return std::isfinite(dx_) && std::isfinite(dy_) && (dx_ != 0 || dy_ != 0);
    }
    double distance(CGPoint p) const {
        return dx_ * (double{p.y} - from_.y) - dy_ * (double{p.x} - from_.x);
    }

private:
    CGPoint from_;
    double dx_, dy_;
};

// Collects crossings while a path is walked. A segment answers for its start and what follows, the
// end being the next one's start; the end of a contour that stays open is looked at when it is
// over.
class Crossings {
public:
    Crossings(const Line& line, XGPathIntersection* results, std::size_t capacity)
        : line_(line), results_(results), capacity_(capacity) {}

    void take(const CGPathElement& element) {
        uint32_t count = 0;
        const CGPoint* const points = _CGPathElementGetAllPoints(&element, &count);
        switch (element.type) {
        case kCGPathElementMoveToPoint:
            endContour();
            start_ = end_ = points[0];
            break;
        case kCGPathElementCloseSubpath: {
            const std::array closing = {end_, start_};
            if (!CGPointEqualToPoint(end_, start_))
                cross(closing.data(), 2);
            isOpen_ = false;
            end_ = start_;
            break;
        }
        default:
            cross(points, count);
            end_ = points[count - 1];
            isOpen_ = true;
        }
        ++element_;
    }

    void endContour() {
        if (isOpen_ && line_.distance(end_) == 0)
            store({end_, element_ - 1, 1});
        isOpen_ = false;
    }

    std::size_t count() const { return count_; }

private:
    void cross(const CGPoint* points, uint32_t count) {
        Distance distance;
        for (uint32_t i = 0; i < count; ++i)
            distance.add(line_.distance(points[i]));
        std::array<double, 4> t, at;
        const std::size_t bounds = distance.bounds(t);
        for (std::size_t i = 0; i < bounds; ++i) {
            at[i] = distance(t[i]);
            const bool isTurningPoint = i > 0 && i + 1 < bounds;
            if (isTurningPoint && distance.isNone(at[i]))
                at[i] = 0;
        }
        for (std::size_t i = 0; i + 1 < bounds; ++i) {
            if (at[i] == 0)
                storeAt(points, count, t[i]);
            else if (at[i] * at[i + 1] < 0)
                storeAt(points, count, zeroBetween(distance, t[i], t[i + 1]));
        }
    }

    void storeAt(const CGPoint* points, uint32_t count, double t) {
        Distance x, y;
        for (uint32_t i = 0; i < count; ++i) {
            x.add(points[i].x);
            y.add(points[i].y);
        }
        store({{static_cast<CGFloat>(x(t)), static_cast<CGFloat>(y(t))},
               element_,
               static_cast<CGFloat>(t)});
    }

    void store(const XGPathIntersection& crossing) {
        if (count_ < capacity_)
            results_[count_++] = crossing;
    }

    const Line& line_;
    XGPathIntersection* results_;
    std::size_t capacity_, count_ = 0;
    CGPoint start_ = {0, 0}, end_ = {0, 0};
    uint32_t element_ = 0;
    bool isOpen_ = false;
};

} // namespace

size_t _CGPathLineIntersection(CGPathRef path, XGPathIntersection* results, size_t capacity,
                               CGPoint p0, CGPoint p1) {
    const Line line(p0, p1);
    if (!path || !results || !line.hasDirection())
        return 0;
    Crossings crossings(line, results, capacity);
    CGPathApply(path, &crossings, [](void* info, const CGPathElement* element) {
        static_cast<Crossings*>(info)->take(*element);
    });
    crossings.endContour();
    return crossings.count();
}
