// MappedCodePoints.cpp: every code point that a font maps to a glyph.

#include "Fallback/MappedCodePoints.h"

#include "Font/FaceUse.h"

namespace fm {

std::vector<std::uint32_t> mappedCodePoints(FMFontRef font) {
    std::vector<std::uint32_t> codePoints;
    const bool wasActive = FMFontIsActive(font);
    const FaceUse use(font);
    if (!use)
        return codePoints;
    FT_UInt glyph = 0;
    FT_ULong codePoint = FT_Get_First_Char(use.face(), &glyph);
    while (glyph != 0) {
        codePoints.push_back(static_cast<std::uint32_t>(codePoint));
        codePoint = FT_Get_Next_Char(use.face(), codePoint, &glyph);
    }
    if (!wasActive)
        FMFontClearFaceData(font);
    return codePoints;
}

} // namespace fm
