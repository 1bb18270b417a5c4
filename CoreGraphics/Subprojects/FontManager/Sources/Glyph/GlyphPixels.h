// GlyphPixels.h: FreeType's bitmaps as records.
#pragma once

#include "Glyph/GlyphRecord.h"

#include <ft2build.h>
#include FT_FREETYPE_H

namespace fm {

// The bitmap of a slot, where it lies, in the format that holds it: bits and grey levels become
// coverage from 0 to 255. Empty when memory runs out, and for sizes past 16 bits.
GlyphPointer copyBitmap(const GlyphKey& key, const FT_GlyphSlotRec& slot);

} // namespace fm
