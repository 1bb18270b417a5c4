// GlyphAdvances.h: the horizontal advances of a font's glyphs, remembered.
#pragma once

#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGGeometry.h>

#include "Face/FreeType.h"
#include "Face/PagedTable.h"

#include <cstddef>
#include <limits>

namespace fm {

// A glyph's advance in font units as the face says it: 0 for a glyph that it lacks. Bitmaps without
// metrics of their own are measured in the largest strike and scaled.
float unscaledAdvance(FT_Face face, CGGlyph glyph);

// Guarded by the font's lock; of one face for as long as it is not cleared.
class GlyphAdvances {
public:
    float advance(FT_Face face, CGGlyph glyph);
    void advances(FT_Face face, const CGGlyph* glyphs, CGSize* advances, size_t count);
    void clear() { advances_.clear(); }

private:
    using Table = PagedTable<float>;
    Table::Page* makePage(FT_Face face, CGGlyph glyph);
    float measure(FT_Face face, CGGlyph glyph);

    Table advances_{std::numeric_limits<float>::quiet_NaN()};
};

} // namespace fm
