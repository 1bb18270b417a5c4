// GlyphBounds.h: the boxes around a font's glyphs, remembered.
#pragma once

#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGGeometry.h>

#include "Face/PagedTable.h"
#include "Face/StrikeSize.h"

#include <cstddef>
#include <limits>
#include <optional>

namespace fm {

// To measure a glyph is to load it. Guarded by the font's lock; of one face for as long as it is
// not cleared.
class GlyphBounds {
public:
    // The smallest rectangle around each glyph: of the curves themselves, not of their control
    // points. Bitmaps are measured in the largest strike. CGRectZero for what has no extent.
    void bounds(FT_Face face, const CGGlyph* glyphs, CGRect* bounds, size_t count);
    void clear() { bounds_.clear(); }

private:
    PagedTable<CGRect> bounds_{{{std::numeric_limits<CGFloat>::quiet_NaN(), 0}, {0, 0}}};
};

} // namespace fm
