// RecordedShapes.cpp: rectangles by their edges, circles, and strokes along the axes.

#include "Core/Context/RecordedShapes.h"

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace cg {

// ---- Edges

Edges Edges::of(const CGRect& rect) {
    return {CGRectGetMinX(rect), CGRectGetMinY(rect), CGRectGetMaxX(rect), CGRectGetMaxY(rect)};
}

bool Edges::isFinite() const {
    return std::isfinite(left) && std::isfinite(bottom) && std::isfinite(right) &&
           std::isfinite(top);
}

bool Edges::isWhole() const {
    const auto isWholeNumber = [](CGFloat value) { return value == std::floor(value); };
    return isWholeNumber(left) && isWholeNumber(bottom) && isWholeNumber(right) &&
           isWholeNumber(top);
}

bool Edges::contains(const Edges& other) const {
    return left <= other.left && bottom <= other.bottom && other.right <= right && other.top <= top;
}

Edges Edges::within(const Edges& other) const {
    return {std::max(left, other.left), std::max(bottom, other.bottom),
            std::min(right, other.right), std::min(top, other.top)};
}

Edges Edges::including(const Edges& other) const {
    return {std::min(left, other.left), std::min(bottom, other.bottom),
            std::max(right, other.right), std::max(top, other.top)};
}

Edges Edges::outset(CGFloat by) const {
    return {left - by, bottom - by, right + by, top + by};
}

Edges Edges::mapped(const CGAffineTransform& t) const {
    const bool isTurned = t.a == 0 && t.d == 0 && !(t.b == 0 && t.c == 0);
    const CGFloat x0 = isTurned ? bottom * t.c + t.tx : left * t.a + t.tx;
    const CGFloat x1 = isTurned ? top * t.c + t.tx : right * t.a + t.tx;
    const CGFloat y0 = isTurned ? left * t.b + t.ty : bottom * t.d + t.ty;
    const CGFloat y1 = isTurned ? right * t.b + t.ty : top * t.d + t.ty;
    return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
}

namespace {

// The length that takes `from` to `to` by one rounded addition; NaN if none does.
CGFloat lengthBetween(CGFloat from, CGFloat to) {
    constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
    const CGFloat length = to - from;
    for (const CGFloat each :
         {length, std::nextafter(length, kInfinity), std::nextafter(length, -kInfinity)})
        if (from + each == to)
            return each;
    return std::numeric_limits<CGFloat>::quiet_NaN();
}

} // namespace

std::optional<CGRect> Edges::rect() const {
    const CGRect rect = {{left, bottom}, {lengthBetween(left, right), lengthBetween(bottom, top)}};
    const bool isExact = !std::isnan(rect.size.width) && !std::isnan(rect.size.height);
    return isExact ? std::optional(rect) : std::nullopt;
}

CGRect Edges::enclosingRect() const {
    if (const auto exact = rect())
        return *exact;
    constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
    return {{left, bottom},
            {std::nextafter(right - left, kInfinity), std::nextafter(top - bottom, kInfinity)}};
}

// ---- Circles

namespace {

// The points of up to four cubics.
struct CubicPoints {
    std::array<CGPoint, 13> points;
    std::size_t count = 0;
    bool isComplete = true;

    void add(CGPoint point) {
        if (count < points.size())
            points[count++] = point;
        else
            isComplete = false;
    }
};

void addElement(void* info, const CGPathElement* element) {
    auto& cubics = *static_cast<CubicPoints*>(info);
    switch (element->type) {
    case kCGPathElementMoveToPoint:
        cubics.count = 0;
        cubics.add(element->points[0]);
        break;
    case kCGPathElementAddCurveToPoint:
        for (std::size_t i = 0; i < 3; ++i)
            cubics.add(element->points[i]);
        break;
    case kCGPathElementCloseSubpath:
        break;
    default:
        cubics.isComplete = false;
    }
}

CubicPoints cubicsOf(CGPathRef path) {
    CubicPoints cubics;
    CGPathApply(path, &cubics, addElement);
    cubics.isComplete = cubics.isComplete && cubics.count == cubics.points.size();
    return cubics;
}

bool areEqual(CGPoint a, CGPoint b) {
    return a.x == b.x && a.y == b.y;
}

} // namespace

std::optional<CGRect> circleOf(CGPathRef path) {
    const auto square = Edges::of(CGPathGetBoundingBox(path)).rect();
    if (!square || !_CGPathICantBelieveItsNotACircle(path, nullptr))
        return std::nullopt;
    const CubicPoints drawn = cubicsOf(path);
    const auto circle = cf::adopt(CGPathCreateWithEllipseInRect(*square, nullptr));
    if (!drawn.isComplete || !circle)
        return std::nullopt;
    const CubicPoints redrawn = cubicsOf(circle.get());
    const bool isSame = std::ranges::equal(drawn.points, redrawn.points, areEqual);
    return isSame ? square : std::nullopt;
}

// ---- Strokes

namespace {

// Of a segment along an axis, -1, 0 or 1 on each.
CGPoint directionOf(CGPoint from, CGPoint to) {
    const auto sign = [](CGFloat value) { return static_cast<CGFloat>((value > 0) - (value < 0)); };
    return {sign(to.x - from.x), sign(to.y - from.y)};
}

enum class Turn { None, Right, Back };

Turn turnBetween(CGPoint before, CGPoint after) {
    const CGFloat along = before.x * after.x + before.y * after.y;
    return along > 0 ? Turn::None : along < 0 ? Turn::Back : Turn::Right;
}

} // namespace

bool StrokeRects::append(Contour& contour, CGPoint point) {
    if (contour.count > 0 && areEqual(contour.points[contour.count - 1], point))
        return true;
    if (contour.count == contour.points.size())
        return false;
    contour.points[contour.count++] = point;
    return true;
}

// `before` and `after` are by how much it is longer than its points say.
bool StrokeRects::addSegment(CGPoint from, CGPoint to, CGFloat before, CGFloat after) {
    if (count_ == rects_.size())
        return false;
    const CGPoint along = directionOf(from, to);
    const CGPoint start = {from.x - along.x * before, from.y - along.y * before};
    const CGPoint end = {to.x + along.x * after, to.y + along.y * after};
    const CGFloat across = style_.width / 2;
    const CGFloat x = along.x == 0 ? across : 0, y = along.y == 0 ? across : 0;
    const Edges rect = {std::min(start.x, end.x) - x, std::min(start.y, end.y) - y,
                        std::max(start.x, end.x) + x, std::max(start.y, end.y) + y};
    rects_[count_++] = rect;
    return !rect.isEmpty() && rect.isWhole();
}

// At a corner the segment that comes takes the square that both cover.
bool StrokeRects::addContour(const Contour& contour) {
    const bool returns =
        contour.isClosed && areEqual(contour.points[0], contour.points[contour.count - 1]);
    const std::size_t points = contour.count - (returns ? 1 : 0);
    const std::size_t segments = contour.isClosed ? points : points - 1;
    if (points < 2)
        return false; // A dot, perhaps.
    const CGFloat half = style_.width / 2;
    const CGFloat cap = style_.cap == kCGLineCapSquare ? half : 0;
    const auto pointAt = [&](std::size_t i) { return contour.points[i % points]; };
    const auto directionAt = [&](std::size_t i) {
        return directionOf(pointAt(i % segments), pointAt(i % segments + 1));
    };
    for (std::size_t i = 0; i < segments; ++i) {
        const bool hasBefore = i > 0 || contour.isClosed;
        const bool hasAfter = i + 1 < segments || contour.isClosed;
        const Turn before =
            hasBefore ? turnBetween(directionAt(i + segments - 1), directionAt(i)) : Turn::None;
        const Turn after = hasAfter ? turnBetween(directionAt(i), directionAt(i + 1)) : Turn::None;
        if (before == Turn::Back || after == Turn::Back)
            return false;
        const CGFloat atStart = !hasBefore ? cap : before == Turn::Right ? -half : 0;
        const CGFloat atEnd = !hasAfter ? cap : after == Turn::Right ? half : 0;
        if (!addSegment(pointAt(i), pointAt(i + 1), atStart, atEnd))
            return false;
    }
    return true;
}

bool StrokeRects::overlap() const {
    const auto rects = all();
    for (std::size_t i = 0; i < rects.size(); ++i)
        for (std::size_t j = i + 1; j < rects.size(); ++j)
            if (!rects[i].within(rects[j]).isEmpty())
                return true;
    return false;
}

bool StrokeRects::collect(CGPathRef path, const LineStyle& style) {
    if (!(style.width > 0) ||
        !_CGPathCanBeStrokedByRects(path, style.cap, style.join, style.miterLimit))
        return false;
    style_ = style;
    struct Walk {
        StrokeRects& rects;
        Contour contour;
        bool isFine = true;

        void finish() {
            if (contour.count > 0)
                isFine = isFine && rects.addContour(contour);
            contour = {};
        }
    } walk = {.rects = *this, .contour = {}};
    CGPathApply(path, &walk, [](void* info, const CGPathElement* element) {
        auto& walk = *static_cast<Walk*>(info);
        switch (element->type) {
        case kCGPathElementMoveToPoint:
            walk.finish();
            walk.isFine = walk.isFine && append(walk.contour, element->points[0]);
            break;
        case kCGPathElementAddLineToPoint:
            // A line that goes on behind a closed contour has no start of its own.
            walk.isFine =
                walk.isFine && walk.contour.count > 0 && append(walk.contour, element->points[0]);
            break;
        case kCGPathElementCloseSubpath:
            walk.contour.isClosed = true;
            walk.finish();
            break;
        default:
            walk.isFine = false;
        }
    });
    walk.finish();
    return walk.isFine && count_ > 0 && !overlap();
}

} // namespace cg
