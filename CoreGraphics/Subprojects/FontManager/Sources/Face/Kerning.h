// Kerning.h: how much closer, or further apart, a face's kern table sets two glyphs.
#pragma once

#include <CoreGraphics/CGFont.h>

#include "Face/FreeType.h"

namespace fm {

// What is added to the advance of `left` before `right`, in font units; 0 for glyphs that the face
// lacks.
float kerning(FT_Face face, CGGlyph left, CGGlyph right);

} // namespace fm
