// CharacterCodes.h: the glyphs that a face's current charmap gives to code points.
#pragma once

#include <CoreGraphics/CGFont.h>

#include "Face/FreeType.h"

namespace fm {

// What the charmap itself says; 0 for what it lacks, and for glyphs that the face does not have.
CGGlyph mappedGlyph(FT_Face face, uint32_t codePoint);

// The glyph of the character that stands in for a code point that fonts commonly lack.
CGGlyph fallbackGlyph(FT_Face face, uint32_t codePoint);

// What to draw for a code point: the charmap's glyph. Symbol fonts keep theirs at U+F000 and answer
// for U+0020 to U+00FF, too, since documents name their characters either way. Else the glyph that
// stands in.
CGGlyph glyphToDraw(FT_Face face, uint32_t codePoint);

} // namespace fm
