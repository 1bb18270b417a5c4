// GlyphAdvances.cpp: reading advances from a face, a page of glyphs at a time where that is quick.

#include "Face/GlyphAdvances.h"

#include "Face/StrikeSize.h"

#include FT_ADVANCES_H

#include <cmath>

namespace fm {

namespace {

constexpr FT_Int32 kUnscaled = FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM;

float strikeAdvance(FT_Face face, CGGlyph glyph) {
    const StrikeSize strike(face);
    if (!strike || FT_Load_Glyph(face, glyph, FT_LOAD_DEFAULT))
        return 0;
    return static_cast<float>(face->glyph->advance.x) / 64 * strike.horizontalScale();
}

} // namespace

float unscaledAdvance(FT_Face face, CGGlyph glyph) {
    if (!hasGlyph(face, glyph))
        return 0;
    if (!FT_IS_SCALABLE(face) && !hasHorizontalMetrics(face))
        return strikeAdvance(face, glyph);
    FT_Fixed advance = 0;
    return FT_Get_Advance(face, glyph, kUnscaled, &advance) ? 0 : static_cast<float>(advance);
}

// Faces with a table of metrics answer for a run of glyphs at hardly more than for one. Others
// would load every glyph of the page: theirs are read one by one, as they are asked for.
GlyphAdvances::Table::Page* GlyphAdvances::makePage(FT_Face face, CGGlyph glyph) {
    Table::Page* const page = advances_.make(glyph);
    if (!page || !hasHorizontalMetrics(face) || !hasGlyph(face, glyph))
        return page;
    std::array<FT_Fixed, Table::kPageSize> run;
    const uint32_t first = glyph - glyph % Table::kPageSize;
    const uint32_t count = std::min(Table::kPageSize, glyphCount(face) - first);
    if (!FT_Get_Advances(face, first, count, kUnscaled | FT_ADVANCE_FLAG_FAST_ONLY, run.data()))
        std::transform(run.begin(), run.begin() + count, page->begin(),
                       [](FT_Fixed advance) { return static_cast<float>(advance); });
    return page;
}

float GlyphAdvances::advance(FT_Face face, CGGlyph glyph) {
    Table::Page* page = advances_.find(glyph);
    if (!page) [[unlikely]] {
        page = makePage(face, glyph);
        if (!page)
            return unscaledAdvance(face, glyph);
    }
    float& known = (*page)[glyph % Table::kPageSize];
    if (std::isnan(known)) [[unlikely]]
        known = unscaledAdvance(face, glyph);
    return known;
}

void GlyphAdvances::advances(FT_Face face, const CGGlyph* glyphs, CGSize* advances, size_t count) {
    for (size_t i = 0; i < count; ++i)
        advances[i] = {advance(face, glyphs[i]), 0};
}

} // namespace fm
