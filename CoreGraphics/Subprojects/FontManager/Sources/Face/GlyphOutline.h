// GlyphOutline.h: outlines of a face's glyphs in font units: as paths, and their bounds.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGPath.h>

#include "Face/FreeType.h"

#include <cstddef>

namespace fm {

// Empty for a glyph without contours; none for a glyph that is not made of an outline, or that the
// face lacks.
cf::Ref<CGPathRef> copyOutline(FT_Face face, CGGlyph glyph);

// The smallest rectangle around each glyph: of the curves themselves, not of their control points.
// Glyphs that are bitmaps are measured in the largest strike. CGRectZero for what has no extent.
void glyphBounds(FT_Face face, const CGGlyph* glyphs, CGRect* bounds, size_t count);

} // namespace fm
