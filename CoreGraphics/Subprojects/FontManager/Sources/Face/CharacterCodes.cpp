// CharacterCodes.cpp: looking code points up in a face's charmap.

#include "Face/CharacterCodes.h"

namespace fm {

namespace {

constexpr uint32_t kSymbolBase = 0xF000;
constexpr uint32_t kLastSymbolCode = 0xFF;

bool isSymbolEncoded(FT_Face face) {
    return face->charmap && face->charmap->encoding == FT_ENCODING_MS_SYMBOL;
}

uint32_t standIn(uint32_t codePoint) {
    switch (codePoint) {
    case 0x0009: // tab
    case 0x000A: // line feed
    case 0x000D: // carriage return
    case 0x00A0: // no-break space
    case 0x2028: // line separator
    case 0x2029: // paragraph separator
    case 0xFFFC: // object replacement character
        return 0x0020;
    case 0x2011: // non-breaking hyphen
        return 0x2010;
    case 0x202F: // narrow no-break space
        return 0x2009;
    default:
        return 0;
    }
}

} // namespace

CGGlyph mappedGlyph(FT_Face face, uint32_t codePoint) {
    const FT_UInt glyph = FT_Get_Char_Index(face, codePoint);
    return hasGlyph(face, glyph) ? static_cast<CGGlyph>(glyph) : CGGlyph{0};
}

CGGlyph fallbackGlyph(FT_Face face, uint32_t codePoint) {
    const uint32_t other = standIn(codePoint);
    return other ? mappedGlyph(face, other) : CGGlyph{0};
}

CGGlyph glyphToDraw(FT_Face face, uint32_t codePoint) {
    CGGlyph glyph = mappedGlyph(face, codePoint);
    if (!glyph && codePoint <= kLastSymbolCode && isSymbolEncoded(face))
        glyph = mappedGlyph(face, kSymbolBase + codePoint);
    return glyph ? glyph : fallbackGlyph(face, codePoint);
}

} // namespace fm
