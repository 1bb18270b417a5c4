// TextureAtlas.h: glyphs' places in a compositor's texture.
#pragma once

#include "Glyph/GlyphRecord.h"

namespace fm {

// Sees to it that a record of pixels has a place in the atlas; false where there is none.
bool addSprite(GlyphRecord& record);
// Gives the place of a record that nobody uses any more back, if it has one.
void removeSprite(GlyphRecord& record);

} // namespace fm
