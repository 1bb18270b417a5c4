// GlyphOutline.cpp: reading outlines from a face.

#include "Face/GlyphOutline.h"

#include "Face/StrikeSize.h"

#include FT_BBOX_H
#include FT_OUTLINE_H

#include <algorithm>
#include <span>

namespace fm {

namespace {

// Loads a glyph into the face's slot in font units, as the designer drew it.
const FT_Outline* loadOutline(FT_Face face, CGGlyph glyph) {
    constexpr FT_Int32 kFlags = FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM;
    if (!FT_IS_SCALABLE(face) || !hasGlyph(face, glyph) || FT_Load_Glyph(face, glyph, kFlags))
        return nullptr;
    return face->glyph->format == FT_GLYPH_FORMAT_OUTLINE ? &face->glyph->outline : nullptr;
}

// Between two control points of a quadratic curve lies a point that the font leaves out: FreeType
// rounds it, and the extremes of curves, to whole numbers. In 64ths of a unit they are exact.
constexpr int kFractionBits = 6;
constexpr CGFloat kUnitsPerStep = 1.0f / (1 << kFractionBits);

CGPoint point(const FT_Vector& vector) {
    return {static_cast<CGFloat>(vector.x) * kUnitsPerStep,
            static_cast<CGFloat>(vector.y) * kUnitsPerStep};
}

// FreeType ends each contour with a line back to its start. Closing draws that line, so that it is
// held back until something else follows it.
class PathBuilder {
public:
    explicit PathBuilder(CGMutablePathRef path) : path_(path) {}

    void moveTo(const FT_Vector& to) {
        close();
        start_ = point(to);
        isOpen_ = true;
        CGPathMoveToPoint(path_, nullptr, start_.x, start_.y);
    }
    void lineTo(const FT_Vector& to) {
        addPendingLine();
        pendingLine_ = point(to);
        hasPendingLine_ = true;
    }
    void quadTo(const FT_Vector& control, const FT_Vector& to) {
        addPendingLine();
        const CGPoint c = point(control), end = point(to);
        CGPathAddQuadCurveToPoint(path_, nullptr, c.x, c.y, end.x, end.y);
    }
    void cubicTo(const FT_Vector& control1, const FT_Vector& control2, const FT_Vector& to) {
        addPendingLine();
        const CGPoint c1 = point(control1), c2 = point(control2), end = point(to);
        CGPathAddCurveToPoint(path_, nullptr, c1.x, c1.y, c2.x, c2.y, end.x, end.y);
    }
    void close() {
        if (!isOpen_)
            return;
        if (hasPendingLine_ && (pendingLine_.x != start_.x || pendingLine_.y != start_.y))
            addPendingLine();
        hasPendingLine_ = false;
        CGPathCloseSubpath(path_);
        isOpen_ = false;
    }

private:
    void addPendingLine() {
        if (hasPendingLine_)
            CGPathAddLineToPoint(path_, nullptr, pendingLine_.x, pendingLine_.y);
        hasPendingLine_ = false;
    }

    CGMutablePathRef path_;
    CGPoint start_ = {};
    CGPoint pendingLine_ = {};
    bool hasPendingLine_ = false;
    bool isOpen_ = false;
};

constexpr FT_Outline_Funcs kPathFunctions = {
    .move_to =
        [](const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->moveTo(*to);
            return 0;
        },
    .line_to =
        [](const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->lineTo(*to);
            return 0;
        },
    .conic_to =
        [](const FT_Vector* control, const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->quadTo(*control, *to);
            return 0;
        },
    .cubic_to =
        [](const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
           void* builder) {
            static_cast<PathBuilder*>(builder)->cubicTo(*control1, *control2, *to);
            return 0;
        },
    .shift = kFractionBits,
    .delta = 0,
};

CGRect rect(const FT_BBox& box, float scale) {
    const auto x = static_cast<float>(box.xMin), y = static_cast<float>(box.yMin);
    const auto width = static_cast<float>(box.xMax - box.xMin);
    const auto height = static_cast<float>(box.yMax - box.yMin);
    return {{x * scale, y * scale}, {width * scale, height * scale}};
}

std::span<FT_Vector> points(const FT_Outline& outline) {
    return {outline.points, static_cast<size_t>(std::max<short>(outline.n_points, 0))};
}

// Coordinates too large to be a real glyph's stay within their control box.
CGRect outlineBounds(const FT_Outline& outline) {
    constexpr FT_Pos kLargest = FT_Pos{1} << 20;
    FT_BBox box;
    FT_Outline_Get_CBox(&outline, &box);
    if (box.xMin < -kLargest || box.yMin < -kLargest || box.xMax > kLargest || box.yMax > kLargest)
        return rect(box, 1);
    for (FT_Vector& point : points(outline)) {
        point.x *= 1 << kFractionBits;
        point.y *= 1 << kFractionBits;
    }
    FT_Outline copy = outline;
    return FT_Outline_Get_BBox(&copy, &box) ? CGRectZero : rect(box, kUnitsPerStep);
}

CGRect bitmapBounds(FT_Face face, const StrikeSize& strike, CGGlyph glyph) {
    if (!strike || !hasGlyph(face, glyph) || FT_Load_Glyph(face, glyph, FT_LOAD_DEFAULT) ||
        face->glyph->format != FT_GLYPH_FORMAT_BITMAP)
        return CGRectZero;
    const FT_GlyphSlot slot = face->glyph;
    const auto width = static_cast<float>(slot->bitmap.width);
    const auto height = static_cast<float>(slot->bitmap.rows);
    const auto left = static_cast<float>(slot->bitmap_left);
    const float bottom = static_cast<float>(slot->bitmap_top) - height;
    const float x = strike.horizontalScale(), y = strike.verticalScale();
    return {{left * x, bottom * y}, {width * x, height * y}};
}

} // namespace

cf::Ref<CGPathRef> copyOutline(FT_Face face, CGGlyph glyph) {
    const FT_Outline* const outline = loadOutline(face, glyph);
    const auto path = outline ? CGPathCreateMutable() : nullptr;
    if (!path)
        return nullptr;
    auto owned = cf::adopt<CGPathRef>(path);
    PathBuilder builder(path);
    FT_Outline copy = *outline;
    if (FT_Outline_Decompose(&copy, &kPathFunctions, &builder))
        return nullptr;
    builder.close();
    return owned;
}

void glyphBounds(FT_Face face, const CGGlyph* glyphs, CGRect* bounds, size_t count) {
    if (FT_IS_SCALABLE(face)) {
        for (size_t i = 0; i < count; ++i) {
            const FT_Outline* const outline = loadOutline(face, glyphs[i]);
            bounds[i] = outline && outline->n_points > 0 ? outlineBounds(*outline) : CGRectZero;
        }
        return;
    }
    const StrikeSize strike(face);
    for (size_t i = 0; i < count; ++i)
        bounds[i] = bitmapBounds(face, strike, glyphs[i]);
}

} // namespace fm
