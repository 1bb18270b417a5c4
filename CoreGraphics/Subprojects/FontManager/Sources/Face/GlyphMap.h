// GlyphMap.h: a font's code points mapped to glyphs, remembered.
#pragma once

#include <CoreFoundation/CFBase.h>

#include "Face/CharacterCodes.h"
#include "Face/PagedTable.h"

#include <cstddef>

namespace fm {

// Searching a charmap costs several times what reading a remembered answer does, and texts use few
// characters. Guarded by the font's lock; of one face for as long as it is not cleared.
class GlyphMap {
public:
    // The glyph to draw for a code point; 0 beyond Unicode.
    CGGlyph glyph(FT_Face face, uint32_t codePoint);

    // A glyph for each code point; whether all have one.
    bool map(FT_Face face, const UTF32Char* codePoints, CGGlyph* glyphs, size_t count);

    // A glyph for each UTF-16 unit: of a surrogate pair the first takes the glyph, the second 0. A
    // surrogate without its other half has none. Whether all characters have one.
    bool map(FT_Face face, const UniChar* characters, CGGlyph* glyphs, size_t count);

    void clear() { glyphs_.clear(); }

private:
    PagedTable<CGGlyph> glyphs_{kCGFontIndexInvalid};
};

} // namespace fm
