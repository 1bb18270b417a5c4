// FMFontGlyphs.cpp: glyphs of characters and names, their measures and outlines.

#include <FontManager/FMFontGlyphs.h>

#include "Face/CharacterCodes.h"
#include "Face/GlyphNames.h"
#include "Face/GlyphOutline.h"
#include "Face/Kerning.h"
#include "Font/FMFontRecord.h"
#include "Font/FaceUse.h"

// ---- From characters and names

bool FMFontGetGlyphsForCodePoints(FMFontRef font, const UTF32Char* codePoints, CGGlyph* glyphs,
                                  size_t count) {
    return font && codePoints && glyphs && font->mapCodePoints(codePoints, glyphs, count);
}

bool FMFontGetGlyphsForCharactersBijectively(FMFontRef font, const UniChar* characters,
                                             CGGlyph* glyphs, size_t count) {
    return font && characters && glyphs && font->mapCharacters(characters, glyphs, count);
}

CGGlyph FMFontGetGlyphWithName(FMFontRef font, const char* utf8Name) {
    if (!utf8Name)
        return 0;
    const fm::FaceUse use(font);
    return use ? fm::glyphNamed(use.face(), utf8Name) : CGGlyph{0};
}

CGGlyph FMFontGetGlyphWithCFName(FMFontRef font, CFStringRef name) {
    if (!name)
        return 0;
    const fm::FaceUse use(font);
    return use ? fm::glyphNamed(use.face(), name) : CGGlyph{0};
}

CFStringRef FMFontCopyGlyphName(FMFontRef font, CGGlyph glyph) {
    const fm::FaceUse use(font);
    return use ? fm::copyGlyphName(use.face(), glyph).release() : nullptr;
}

CGGlyph FMFontGetFallbackGlyph(struct FT_FaceRec_* face, UTF32Char codePoint) {
    return face ? fm::fallbackGlyph(face, codePoint) : CGGlyph{0};
}

// ---- Measures

bool FMFontGetAdvancesForGlyphs(FMFontRef font, const CGGlyph* glyphs, CGSize* advances,
                                size_t count) {
    return font && glyphs && advances && font->advances(glyphs, advances, count);
}

bool FMFontGetBoundingRectsForGlyphs(FMFontRef font, const CGGlyph* glyphs, CGRect* rects,
                                     size_t count) {
    if (!glyphs || !rects)
        return false;
    const fm::FaceUse use(font);
    if (use)
        font->cache.bounds().bounds(use.face(), glyphs, rects, count);
    return static_cast<bool>(use);
}

CGFloat FMFontGetKerningForGlyph(FMFontRef font, CGGlyph left, CGGlyph right) {
    const fm::FaceUse use(font);
    return use ? fm::kerning(use.face(), left, right) : 0;
}

CFIndex FMFontGetLigatureCaretPositions(FMFontRef font, CGGlyph glyph, CGFloat* positions,
                                        CFIndex capacity) {
    const fm::FaceUse use(font);
    if (!use)
        return 0;
    return fm::ligatureCarets(font->cache.harfBuzzFace(use.face()), glyph, positions,
                              positions ? capacity : 0);
}

CGPathRef FMFontCopyPathForGlyph(FMFontRef font, CGGlyph glyph) {
    const fm::FaceUse use(font);
    return use ? fm::copyOutline(use.face(), glyph).release() : nullptr;
}
