// Edges.h: rectangles that are clipped without rounding.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace cg {

// A rectangle by its edges. All is inline: recording a rectangle is a dozen of these.
struct Edges {
    CGFloat left = 0, bottom = 0, right = 0, top = 0;

    // The standardised rectangle's.
    static Edges of(const CGRect& rect) {
        const CGFloat x = rect.origin.x + rect.size.width, y = rect.origin.y + rect.size.height;
        return {std::min(rect.origin.x, x), std::min(rect.origin.y, y), std::max(rect.origin.x, x),
                std::max(rect.origin.y, y)};
    }
    friend bool operator==(const Edges&, const Edges&) = default;

    bool isEmpty() const { return !(left < right && bottom < top); }
    // A sum is finite only if all of its numbers are, or overflows as no edge of a mark does.
    bool isFinite() const { return std::isfinite((left + right) + (bottom + top)); }
    // All between pixels.
    bool isWhole() const {
        return isWholeNumber(left) && isWholeNumber(bottom) && isWholeNumber(right) &&
               isWholeNumber(top);
    }
    bool contains(const Edges& other) const {
        return left <= other.left && bottom <= other.bottom && other.right <= right &&
               other.top <= top;
    }
    Edges within(const Edges& other) const {
        return {std::max(left, other.left), std::max(bottom, other.bottom),
                std::min(right, other.right), std::min(top, other.top)};
    }
    Edges including(const Edges& other) const {
        return {std::min(left, other.left), std::min(bottom, other.bottom),
                std::max(right, other.right), std::max(top, other.top)};
    }
    Edges outset(CGFloat by) const { return {left - by, bottom - by, right + by, top + by}; }

    // By a transform that turns by right angles alone.
    Edges mapped(const CGAffineTransform& t) const {
        const bool isTurned = t.a == 0 && t.d == 0 && !(t.b == 0 && t.c == 0);
        const CGFloat x0 = isTurned ? bottom * t.c + t.tx : left * t.a + t.tx;
        const CGFloat x1 = isTurned ? top * t.c + t.tx : right * t.a + t.tx;
        const CGFloat y0 = isTurned ? left * t.b + t.ty : bottom * t.d + t.ty;
        const CGFloat y1 = isTurned ? right * t.b + t.ty : top * t.d + t.ty;
        return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
    }

    // The rectangle whose edges, added up again, are exactly these. None if there is no such.
    std::optional<CGRect> rect() const {
        const CGFloat width = lengthBetween(left, right), height = lengthBetween(bottom, top);
        if (left + width == right && bottom + height == top)
            return CGRect{{left, bottom}, {width, height}};
        return std::nullopt;
    }
    // One that is as large or larger, by less than shows.
    CGRect enclosingRect() const {
        constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
        if (const auto exact = rect())
            return *exact;
        return {{left, bottom},
                {std::nextafter(right - left, kInfinity), std::nextafter(top - bottom, kInfinity)}};
    }

private:
    static bool isWholeNumber(CGFloat value) {
        constexpr CGFloat kNoFractions = 1 << 24; // From here on up.
        return !(std::fabs(value) < kNoFractions) ||
               value == static_cast<CGFloat>(static_cast<std::int32_t>(value));
    }
    // What takes `from` to `to` by one rounded addition, if anything does.
    static CGFloat lengthBetween(CGFloat from, CGFloat to) {
        constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
        const CGFloat length = to - from;
        if (from + length == to)
            return length;
        return std::nextafter(length, from + length < to ? kInfinity : -kInfinity);
    }
};

} // namespace cg
