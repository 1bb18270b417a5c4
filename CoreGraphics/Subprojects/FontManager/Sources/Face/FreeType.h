// FreeType.h: what the folder asks of FreeType, and a face's own scale.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>

namespace fm {

// Faces count glyphs in a signed long that broken fonts make negative; glyph ids end at 65,534.
inline uint32_t glyphCount(FT_Face face) {
    constexpr FT_Long kMost = 65535;
    const FT_Long count = face->num_glyphs;
    return static_cast<uint32_t>(count < 0 ? 0 : count > kMost ? kMost : count);
}

inline bool hasGlyph(FT_Face face, uint32_t glyph) {
    return glyph < glyphCount(face);
}

// The units that a face's measures are in, to the em: those of the face, for bitmaps in an SFNT
// wrapper those of the `head` table, for other bitmaps the pixels of the first strike. Never 0.
uint32_t unitsPerEm(FT_Face face);

// The face's largest strike, which loses least when scaled to font units; -1 where there is none.
FT_Int largestStrike(FT_Face face);

// Whether advances can be had in font units although the face may be made of bitmaps alone.
bool hasHorizontalMetrics(FT_Face face);

} // namespace fm
