// GlyphOutline.h: outlines of a face's glyphs in font units.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGPath.h>

#include "Face/FreeType.h"

namespace fm {

// Loads a glyph into the face's slot in whole font units, as the designer drew it. Nothing for a
// glyph that is not made of an outline, or that the face lacks.
const FT_Outline* loadOutline(FT_Face face, CGGlyph glyph);

// Empty for a glyph without contours; none for a glyph without an outline.
cf::Ref<CGPathRef> copyOutline(FT_Face face, CGGlyph glyph);

} // namespace fm
