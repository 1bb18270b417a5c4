// GlyphMap.cpp: mapping runs of text.

#include "Face/GlyphMap.h"

namespace fm {

namespace {

bool isHighSurrogate(UniChar unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(UniChar unit) {
    return (unit & 0xFC00) == 0xDC00;
}

uint32_t joinSurrogates(UniChar high, UniChar low) {
    return 0x10000 + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
}

} // namespace

CGGlyph GlyphMap::glyph(FT_Face face, uint32_t codePoint) {
    if (codePoint >= glyphs_.kEnd)
        return 0;
    auto* page = glyphs_.find(codePoint);
    if (!page) [[unlikely]] {
        page = glyphs_.make(codePoint);
        if (!page)
            return glyphToDraw(face, codePoint);
    }
    CGGlyph& known = (*page)[codePoint % glyphs_.kPageSize];
    if (known == kCGFontIndexInvalid) [[unlikely]]
        known = glyphToDraw(face, codePoint);
    return known;
}

bool GlyphMap::map(FT_Face face, const UTF32Char* codePoints, CGGlyph* glyphs, size_t count) {
    bool areAllMapped = true;
    for (size_t i = 0; i < count; ++i) {
        glyphs[i] = glyph(face, codePoints[i]);
        areAllMapped &= glyphs[i] != 0;
    }
    return areAllMapped;
}

bool GlyphMap::map(FT_Face face, const UniChar* characters, CGGlyph* glyphs, size_t count) {
    bool areAllMapped = true;
    for (size_t i = 0; i < count; ++i) {
        const UniChar unit = characters[i];
        if (isHighSurrogate(unit) && i + 1 < count && isLowSurrogate(characters[i + 1])) {
            const uint32_t codePoint = joinSurrogates(unit, characters[i + 1]);
            glyphs[i] = glyph(face, codePoint);
            areAllMapped &= glyphs[i] != 0;
            glyphs[++i] = 0;
            continue;
        }
        glyphs[i] = isHighSurrogate(unit) || isLowSurrogate(unit) ? CGGlyph{0} : glyph(face, unit);
        areAllMapped &= glyphs[i] != 0;
    }
    return areAllMapped;
}

} // namespace fm
