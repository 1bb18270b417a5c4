// GlyphOutline.cpp: reading outlines from a face.

#include "Face/GlyphOutline.h"

#include <algorithm>

namespace fm {

namespace {

CGPoint midpoint(CGPoint a, CGPoint b) {
    return {(a.x + b.x) * 0.5f, (a.y + b.y) * 0.5f};
}

bool isSame(CGPoint a, CGPoint b) {
    return a.x == b.x && a.y == b.y;
}

// One closed contour, walked point by point. FreeType can do that, too, but rounds the points that
// quadratic curves leave out between two of their control points, and calls back for each element.
class Contour {
public:
    Contour(const FT_Outline& outline, int first, int last)
        : points_(outline.points), tags_(outline.tags), next_(first), last_(last) {}

    // False where curves are not put together as they must be.
    bool addTo(CGMutablePathRef path) {
        if (!findStart())
            return false;
        CGPathMoveToPoint(path, nullptr, start_.x, start_.y);
        bool isSound = true;
        while (isSound && next_ <= last_)
            isSound = addElement(path);
        CGPathCloseSubpath(path);
        return isSound;
    }

private:
    int kind(int index) const { return FT_CURVE_TAG(tags_[index]); }
    CGPoint point(int index) const {
        return {static_cast<CGFloat>(points_[index].x), static_cast<CGFloat>(points_[index].y)};
    }

    // Contours may begin with a control point: then they start where they end.
    bool findStart() {
        if (kind(next_) == FT_CURVE_TAG_ON)
            start_ = point(next_++);
        else if (kind(next_) == FT_CURVE_TAG_CONIC && kind(last_) == FT_CURVE_TAG_ON)
            start_ = point(last_--);
        else if (kind(next_) == FT_CURVE_TAG_CONIC)
            start_ = midpoint(point(next_), point(last_));
        else
            return false;
        return true;
    }

    bool addElement(CGMutablePathRef path) {
        const int element = kind(next_);
        if (element == FT_CURVE_TAG_CONIC)
            return addQuad(path);
        if (element == FT_CURVE_TAG_CUBIC)
            return addCubic(path);
        // Closing draws the last line.
        const CGPoint end = point(next_++);
        if (next_ <= last_ || !isSame(end, start_))
            CGPathAddLineToPoint(path, nullptr, end.x, end.y);
        return true;
    }

    bool addQuad(CGMutablePathRef path) {
        const CGPoint control = point(next_++);
        CGPoint end = start_;
        if (next_ <= last_) {
            const int following = kind(next_);
            if (following == FT_CURVE_TAG_CUBIC)
                return false;
            end = following == FT_CURVE_TAG_ON ? point(next_++) : midpoint(control, point(next_));
        }
        CGPathAddQuadCurveToPoint(path, nullptr, control.x, control.y, end.x, end.y);
        return true;
    }

    bool addCubic(CGMutablePathRef path) {
        if (next_ + 1 > last_ || kind(next_ + 1) != FT_CURVE_TAG_CUBIC)
            return false;
        const CGPoint first = point(next_), second = point(next_ + 1);
        const CGPoint end = next_ + 2 <= last_ ? point(next_ + 2) : start_;
        next_ += 3;
        CGPathAddCurveToPoint(path, nullptr, first.x, first.y, second.x, second.y, end.x, end.y);
        return true;
    }

    const FT_Vector* points_;
    const char* tags_;
    CGPoint start_ = {};
    int next_;
    int last_;
};

} // namespace

const FT_Outline* loadOutline(FT_Face face, CGGlyph glyph) {
    constexpr FT_Int32 kFlags = FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM;
    if (!FT_IS_SCALABLE(face) || !hasGlyph(face, glyph) || FT_Load_Glyph(face, glyph, kFlags))
        return nullptr;
    return face->glyph->format == FT_GLYPH_FORMAT_OUTLINE ? &face->glyph->outline : nullptr;
}

cf::Ref<CGPathRef> copyOutline(FT_Face face, CGGlyph glyph) {
    const FT_Outline* const outline = loadOutline(face, glyph);
    const auto path = outline ? CGPathCreateMutable() : nullptr;
    if (!path)
        return nullptr;
    auto owned = cf::adopt<CGPathRef>(path);
    int first = 0;
    for (int i = 0; i < outline->n_contours; ++i) {
        const int last = outline->contours[i];
        if (last >= outline->n_points ||
            (last >= first && !Contour(*outline, first, last).addTo(path)))
            return nullptr;
        first = std::max(first, last + 1);
    }
    return owned;
}

} // namespace fm
