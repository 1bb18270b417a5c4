// Kerning.cpp: asking a face for a pair's kerning.

#include "Face/Kerning.h"

namespace fm {

float kerning(FT_Face face, CGGlyph left, CGGlyph right) {
    FT_Vector kerning;
    if (!FT_HAS_KERNING(face) || !hasGlyph(face, left) || !hasGlyph(face, right) ||
        FT_Get_Kerning(face, left, right, FT_KERNING_UNSCALED, &kerning))
        return 0;
    return static_cast<float>(kerning.x);
}

} // namespace fm
