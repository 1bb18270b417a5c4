// GlyphBounds.cpp: measuring outlines and bitmaps.

#include "Face/GlyphBounds.h"

#include "Face/GlyphOutline.h"

#include FT_BBOX_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <span>

namespace fm {

namespace {

// FreeType rounds the extremes of curves to whole numbers: in 64ths of a unit, next to nothing.
constexpr int kFractionBits = 6;
constexpr CGFloat kUnitsPerStep = 1.0f / (1 << kFractionBits);

CGRect rect(const FT_BBox& box, float scale) {
    const auto x = static_cast<float>(box.xMin), y = static_cast<float>(box.yMin);
    const float width = static_cast<float>(box.xMax) - x;
    const float height = static_cast<float>(box.yMax) - y;
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

CGRect measure(FT_Face face, CGGlyph glyph, std::optional<StrikeSize>& strike) {
    if (FT_IS_SCALABLE(face)) {
        const FT_Outline* const outline = loadOutline(face, glyph);
        return outline && outline->n_points > 0 ? outlineBounds(*outline) : CGRectZero;
    }
    if (!strike)
        strike.emplace(face);
    return bitmapBounds(face, *strike, glyph);
}

} // namespace

void GlyphBounds::bounds(FT_Face face, const CGGlyph* glyphs, CGRect* bounds, size_t count) {
    std::optional<StrikeSize> strike;
    for (size_t i = 0; i < count; ++i) {
        auto* const page = bounds_.make(glyphs[i]);
        CGRect* const known = page ? &(*page)[glyphs[i] % bounds_.kPageSize] : &bounds[i];
        if (!page || std::isnan(known->origin.x))
            *known = measure(face, glyphs[i], strike);
        bounds[i] = *known;
    }
}

} // namespace fm
