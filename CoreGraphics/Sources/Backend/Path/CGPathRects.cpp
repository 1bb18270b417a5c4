// CGPathRects.cpp: telling whether rectangles can stand for a path.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "PathElements.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <numbers>
#include <optional>
#include <span>

namespace {

// The corners of one contour: without those that repeat the one before, or that lie on the way from
// there to the next one.
class Contour {
public:
    void add(SkPoint point) {
        runsAlongX_ &= count_ == 0 || point.fY == corners_[0].fY;
        runsAlongY_ &= count_ == 0 || point.fX == corners_[0].fX;
        if (count_ > corners_.size() || (count_ > 0 && corners_[count_ - 1] == point))
            return;
        if (count_ > 1 && liesBetween(corners_[count_ - 2], corners_[count_ - 1], point))
            --count_;
        if (count_ < corners_.size())
            corners_[count_] = point;
        ++count_;
    }

    // The rectangle that the contour fills, empty where it encloses nothing; none for any other
    // shape.
    std::optional<SkRect> rect() const {
        if (runsAlongX_ || runsAlongY_ || count_ < 3)
            return SkRect::MakeEmpty();
        if (count_ > corners_.size())
            return std::nullopt;
        const auto corners = closed();
        if (corners.size() != 4 || !(turnsFrom(corners, 0) || turnsFrom(corners, 1)))
            return std::nullopt;
        SkRect rect = {corners[0].fX, corners[0].fY, corners[2].fX, corners[2].fY};
        rect.sort();
        return rect;
    }

private:
    static bool liesBetween(SkPoint from, SkPoint middle, SkPoint to) {
        const auto isOrdered = [](float a, float b, float c) {
            return (a <= b && b <= c) || (a >= b && b >= c);
        };
        return (from.fX == middle.fX && middle.fX == to.fX &&
                isOrdered(from.fY, middle.fY, to.fY)) ||
               (from.fY == middle.fY && middle.fY == to.fY && isOrdered(from.fX, middle.fX, to.fX));
    }

    // Without the corners at which a contour around a rectangle begins and ends half-way along a
    // side, or twice in one place.
    std::span<const SkPoint> closed() const {
        std::span<const SkPoint> corners(corners_.data(), count_);
        if (corners.back() == corners.front())
            corners = corners.first(corners.size() - 1);
        if (corners.size() > 4 &&
            liesBetween(corners[corners.size() - 2], corners.back(), corners.front()))
            corners = corners.first(corners.size() - 1);
        if (corners.size() > 4 && liesBetween(corners.back(), corners[0], corners[1]))
            corners = corners.subspan(1);
        return corners;
    }

    // Whether sides run along x and y in turn, the first one or the second one along x.
    static bool turnsFrom(std::span<const SkPoint> corners, std::size_t first) {
        const auto corner = [&](std::size_t i) { return corners[(first + i) % 4]; };
        return corner(0).fY == corner(1).fY && corner(1).fX == corner(2).fX &&
               corner(2).fY == corner(3).fY && corner(3).fX == corner(0).fX;
    }

    std::array<SkPoint, 6> corners_; // A rectangle's, begun half-way along a side and closed.
    std::size_t count_ = 0;          // One more than fits where there are more.
    bool runsAlongX_ = true, runsAlongY_ = true;
};

// Room for as many rectangles as a path has contours, on the stack where that is few.
class RectList {
public:
    explicit RectList(std::size_t capacity) {
        if (capacity > few_.size())
            many_.reset(new (std::nothrow) SkRect[capacity]);
        hasRoom_ = capacity <= few_.size() || many_;
    }

    bool hasRoom() const { return hasRoom_; }
    void add(const SkRect& rect) { data()[count_++] = rect; }
    std::span<SkRect> all() { return {data(), count_}; }

private:
    SkRect* data() { return many_ ? many_.get() : few_.data(); }

    std::array<SkRect, 16> few_;
    std::unique_ptr<SkRect[]> many_;
    std::size_t count_ = 0;
    bool hasRoom_;
};

std::size_t contourCount(const SkPath& path) {
    return static_cast<std::size_t>(std::ranges::count(cg::verbsOf(path), SkPath::kMove_Verb));
}

bool addRect(const Contour& contour, RectList& rects) {
    const auto rect = contour.rect();
    if (rect && !rect->isEmpty())
        rects.add(*rect);
    return rect.has_value();
}

// The rectangles of a path that has nothing else; false otherwise.
bool collectRects(const SkPath& path, RectList& rects) {
    const SkPoint* point = SkPathPriv::PointData(path);
    Contour contour;
    for (const uint8_t verb : cg::verbsOf(path)) {
        switch (verb) {
        case SkPath::kMove_Verb:
            if (!addRect(contour, rects))
                return false;
            contour = {};
            [[fallthrough]];
        case SkPath::kLine_Verb:
            contour.add(*point++);
            break;
        case SkPath::kClose_Verb:
            break;
        default:
            return false;
        }
    }
    return addRect(contour, rects);
}

// Sorts them by their left sides, so that each is held only against those that begin within it.
bool overlap(std::span<SkRect> rects) {
    std::ranges::sort(rects, {}, &SkRect::fLeft);
    for (auto one = rects.begin(); one != rects.end(); ++one)
        for (auto other = one + 1; other != rects.end() && other->fLeft < one->fRight; ++other)
            if (SkRect::Intersects(*one, *other))
                return true;
    return false;
}

bool hasConics(const SkPath& path) {
    return (path.getSegmentMasks() & SkPath::kConic_SegmentMask) != 0;
}

} // namespace

bool _CGPathCanBeFilledByRects(CGPathRef path, CGRect* rects, size_t capacity, size_t* count) {
    if (!path || !path->path.isFinite())
        return false;
    RectList found(contourCount(path->path));
    if (!found.hasRoom() || !collectRects(path->path, found) || overlap(found.all()))
        return false;
    const auto all = found.all();
    if (rects)
        std::transform(all.begin(),
                       all.begin() + static_cast<std::ptrdiff_t>(std::min(capacity, all.size())),
                       rects, cg::rectOf);
    if (count)
        *count = all.size();
    return true;
}

bool _CGPathCanBeStrokedByRects(CGPathRef path, CGLineCap cap, CGLineJoin join,
                                CGFloat miterLimit) {
    return path && path->path.isFinite() && !hasConics(path->path) && _CGPathIsRectilinear(path) &&
           (cap == kCGLineCapButt || cap == kCGLineCapSquare) && join == kCGLineJoinMiter &&
           double{miterLimit} >= std::numbers::sqrt2_v<float>;
}
