// FMFontVirtuals.cpp: how a font with a face maps and measures.

#include "Font/FMFontRecord.h"
#include "Font/FaceUse.h"

#include <algorithm>

// What the face itself maps: symbols do not count for the letters that they answer for, nor stand-
// ins for what they stand in for, or every font of symbols would be a fallback for Latin.
bool FMFont::hasGlyph(UTF32Char codePoint) {
    const fm::FaceUse use(this);
    return use && fm::mappedGlyph(use.face(), codePoint) != 0;
}

bool FMFont::mapCharacters(const UniChar* characters, CGGlyph* glyphs, std::size_t count) {
    const fm::FaceUse use(this);
    if (use)
        return cache.glyphs().map(use.face(), characters, glyphs, count);
    std::fill_n(glyphs, count, CGGlyph{0});
    return false;
}

bool FMFont::mapCodePoints(const UTF32Char* codePoints, CGGlyph* glyphs, std::size_t count) {
    const fm::FaceUse use(this);
    if (use)
        return cache.glyphs().map(use.face(), codePoints, glyphs, count);
    std::fill_n(glyphs, count, CGGlyph{0});
    return false;
}

bool FMFont::advances(const CGGlyph* glyphs, CGSize* advances, std::size_t count) {
    const fm::FaceUse use(this);
    if (use)
        cache.advances().advances(use.face(), glyphs, advances, count);
    return static_cast<bool>(use);
}
