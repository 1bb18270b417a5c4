// RecordedShapes.cpp: circles, and strokes along the axes.

#include "Core/Context/RecordedShapes.h"

#include "XGPath.h"

#include "Core/Context/XGBackend.h"

#include <algorithm>

namespace cg {

// ---- Circles

std::optional<CGRect> circleOf(CGPathRef path) {
    const auto square = Edges::of(CGPathGetBoundingBox(path)).rect();
    const bool isSame = square && isEllipse(path, *square);
    return isSame && _CGPathICantBelieveItsNotACircle(path, nullptr) ? square : std::nullopt;
}

// ---- Strokes

namespace {

bool areEqual(CGPoint a, CGPoint b) {
    return a.x == b.x && a.y == b.y;
}

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
