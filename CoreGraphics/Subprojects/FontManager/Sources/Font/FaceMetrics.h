// FaceMetrics.h: a font's measures, from the tables of its face and its letters.
#pragma once

#include <FontManager/FMBase.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace fm {

// Whether the face has bitmaps, and these in colour.
bool hasColorBitmaps(FT_Face face);

// What the tables say; for want of that, what letters measure and the style's name tells. The
// face's Unicode map is selected. Height multiples are 1.
FMFontMetrics readMetrics(FT_Face face);

} // namespace fm
