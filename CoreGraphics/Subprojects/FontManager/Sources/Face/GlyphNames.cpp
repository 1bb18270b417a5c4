// GlyphNames.cpp: asking a face for glyphs' names.

#include "Face/GlyphNames.h"

namespace fm {

namespace {

// PostScript's names end at 127 bytes, those of OpenType at 63.
constexpr CFIndex kNameSize = 256;

} // namespace

CGGlyph glyphNamed(FT_Face face, const char* name) {
    // FreeType's search takes the string as one that may be written to, but only reads it.
    const FT_UInt glyph = FT_Get_Name_Index(face, const_cast<FT_String*>(name));
    return hasGlyph(face, glyph) ? static_cast<CGGlyph>(glyph) : CGGlyph{0};
}

CGGlyph glyphNamed(FT_Face face, CFStringRef name) {
    char utf8[kNameSize];
    return CFStringGetCString(name, utf8, kNameSize, kCFStringEncodingUTF8) ? glyphNamed(face, utf8)
                                                                            : CGGlyph{0};
}

cf::Ref<CFStringRef> copyGlyphName(FT_Face face, CGGlyph glyph) {
    char utf8[kNameSize] = "";
    if (!FT_HAS_GLYPH_NAMES(face) || !hasGlyph(face, glyph) ||
        FT_Get_Glyph_Name(face, glyph, utf8, kNameSize) || !utf8[0])
        return nullptr;
    return cf::adopt(CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8));
}

} // namespace fm
