// FMFontVirtuals.cpp: how a font with a face maps and measures.

#include "Font/FMFontRecord.h"
#include "Font/FaceUse.h"

#include FT_ADVANCES_H

#include <limits>

bool FMFont::hasGlyph(UTF32Char codePoint) {
    const fm::FaceUse use(this);
    return use && FT_Get_Char_Index(use.face(), codePoint) != 0;
}

bool FMFont::mapCharacters(const UniChar* characters, CGGlyph* glyphs, std::size_t count) {
    const fm::FaceUse use(this);
    bool haveAll = use.face() != nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        const FT_UInt glyph = use ? FT_Get_Char_Index(use.face(), characters[i]) : 0;
        glyphs[i] = glyph <= kCGFontIndexMax ? static_cast<CGGlyph>(glyph) : CGGlyph{0};
        haveAll = haveAll && glyphs[i] != 0;
    }
    return haveAll;
}

bool FMFont::advances(const CGGlyph* glyphs, CGSize* advances, std::size_t count) {
    const fm::FaceUse use(this);
    if (!use)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        FT_Fixed advance = 0;
        if (FT_Get_Advance(use.face(), glyphs[i], FT_LOAD_NO_SCALE, &advance) != 0)
            return false;
        advances[i] = {static_cast<CGFloat>(advance), 0};
    }
    return true;
}
