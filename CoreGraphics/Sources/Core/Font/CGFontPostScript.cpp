// CGFontPostScript.cpp: fonts as PostScript programs.

#include <CoreGraphics/CGFont.h>
#include <FontManager/FMPostScript.h>

#include "Core/Font/CGFontRecord.h"

bool CGFontCanCreatePostScriptSubset(CGFontRef font, CGFontPostScriptFormat format) {
    return font && FMFontGetRestrictions(font->font.get()) == 0 &&
           (format == kCGFontPostScriptFormatType1 || format == kCGFontPostScriptFormatType42);
}

CFDataRef CGFontCreatePostScriptSubset(CGFontRef font, CFStringRef name,
                                       CGFontPostScriptFormat format, const CGGlyph* glyphs,
                                       size_t count, const CGGlyph* encoding) {
    if (!font || !name || !glyphs || count == 0 || !encoding)
        return nullptr;
    return FMFontCreatePostScriptSubset(font->font.get(), name, format, glyphs, count, encoding);
}

CFDataRef CGFontCreatePostScriptEncoding(CGFontRef font, const CGGlyph* encoding) {
    return encoding ? FMFontCreatePostScriptEncoding(XGFontGetFMFont(font), encoding) : nullptr;
}
