// GlyphRenderer.h: glyphs made into records by FreeType.
#pragma once

#include <FontManager/FMFont.h>

#include "Glyph/GlyphRecord.h"

namespace fm {

// A new record for the key of a font. Empty when the font cannot be opened, has no such glyph, or
// it cannot be read; also for one in colours that would be too large. A mask that would be too
// large becomes an outline, the one that `outline` is the key of.
GlyphPointer renderGlyph(FMFontRef font, const GlyphKey& key, const GlyphKey& outline);

} // namespace fm
