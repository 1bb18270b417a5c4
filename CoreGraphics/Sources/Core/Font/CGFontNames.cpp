// CGFontNames.cpp: names and tables of a font.

#include <CoreGraphics/CGFont.h>
#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMFontTables.h>

#include "Core/Font/CGFontRecord.h"

CFStringRef CGFontCopyFamilyName(CGFontRef font) {
    const FMFontRef native = XGFontGetFMFont(font);
    const CFStringRef preferred = FMFontCopyPreferredFamilyName(native, false);
    return preferred ? preferred : FMFontCopyFamilyName(native, false);
}

CFStringRef CGFontCopyFullName(CGFontRef font) {
    return FMFontCopyFullName(XGFontGetFMFont(font), false);
}

CFStringRef CGFontCopyPostScriptName(CGFontRef font) {
    return FMFontCopyPostScriptName(XGFontGetFMFont(font), false);
}

CFDataRef CGFontCopyTableForTag(CGFontRef font, uint32_t tag) {
    return FMFontCopyTable(XGFontGetFMFont(font), tag);
}

CFArrayRef CGFontCopyTableTags(CGFontRef font) {
    return FMFontCopyAvailableTables(XGFontGetFMFont(font));
}

CFStringRef CGFontCopyGlyphNameForGlyph(CGFontRef font, CGGlyph glyph) {
    return glyph != 0 ? FMFontCopyGlyphName(XGFontGetFMFont(font), glyph) : nullptr;
}

CGGlyph CGFontGetGlyphWithGlyphName(CGFontRef font, CFStringRef name) {
    return name ? FMFontGetGlyphWithCFName(XGFontGetFMFont(font), name) : CGGlyph{0};
}
