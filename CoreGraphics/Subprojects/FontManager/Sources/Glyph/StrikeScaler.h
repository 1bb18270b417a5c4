// StrikeScaler.h: glyphs that are pixels in the font, at other sizes.
#pragma once

#include "Glyph/GlyphRecord.h"

#include <ft2build.h>
#include FT_FREETYPE_H

namespace fm {

// The bitmap of a slot, `scale` times as large, with the key's transform and place. A pixel is the
// mean of what it covers; without antialiasing coverage is 0 or 255. Empty when memory runs out
// and for results beyond 2048 pixels.
GlyphPointer scaleBitmap(const GlyphKey& key, const FT_GlyphSlotRec& slot, double scale);

} // namespace fm
