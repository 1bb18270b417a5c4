// FontBuilder.cpp: what a font keeps of its face.

#include "Font/FMFontRecord.h"

namespace fm {

void buildFromFace(FMFont& font, FT_Face face) {
    const bool hasColorBitmaps = FT_HAS_FIXED_SIZES(face) && FT_HAS_COLOR(face);
    font.permFlags.store(hasColorBitmaps ? kFMFontPermHasColorBitmap : 0,
                         std::memory_order_relaxed);
    font.metrics.unitsPerEm = face->units_per_EM;
    font.metrics.ascent = face->ascender;
    font.metrics.descent = face->descender;
    font.metrics.heightMultiple = 1;
    font.metrics.heightMultipleForUIKit = 1;
    font.set(kStatusMetricsValid);
}

} // namespace fm
