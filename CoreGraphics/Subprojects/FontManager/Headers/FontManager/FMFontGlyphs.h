/* FMFontGlyphs.h: a font's glyphs: which ones, what they are named, how large they are and how they
 * look.
 *
 * Measures are in font units: those that FMFontMetrics::unitsPerEm counts. All of these open the
 * font's face, that of the last-resort font apart, which has none. A font that is NULL, or whose
 * face cannot be opened, answers 0, false or NULL. Glyph ids may be anything: a glyph that the font
 * lacks has no advance, no extent, no name and no outline. */
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGPath.h>
#include <FontManager/FMBase.h>

struct FT_FaceRec_;

CG_BEGIN_DECLS

/* ---- From characters and names ----------------------------------------------------------- */

/* A character that the font's charmap lacks gets glyph 0, but for these: fonts whose charmap is for
 * symbols answer for U+0020 to U+00FF from U+F020 to U+F0FF, and characters that fonts commonly
 * lack get the glyph of another (see FMFontGetFallbackGlyph). */

/** Writes a glyph for each code point. True when all have one; false also for NULL arrays, with
 *  nothing written. */
CG_EXPORT bool FMFontGetGlyphsForCodePoints(FMFontRef font, const UTF32Char* codePoints,
                                            CGGlyph* glyphs, size_t count);
/** Writes a glyph for each UTF-16 unit: of a surrogate pair, the first gets its glyph and the
 *  second 0; half a pair gets 0. True when every character has a glyph; false also for NULL arrays,
 *  with nothing written. */
CG_EXPORT bool FMFontGetGlyphsForCharactersBijectively(FMFontRef font, const UniChar* characters,
                                                       CGGlyph* glyphs, size_t count);

/** The glyph of a name, such as "Aacute"; 0 where there is none, and in fonts without names. */
CG_EXPORT CGGlyph FMFontGetGlyphWithName(FMFontRef font, const char* utf8Name);
CG_EXPORT CGGlyph FMFontGetGlyphWithCFName(FMFontRef font, CFStringRef name);
/** NULL for a glyph without a name. */
CG_EXPORT CFStringRef FMFontCopyGlyphName(FMFontRef font, CGGlyph glyph);

/** The glyph that stands in for a character that fonts commonly lack: the space for tab, line feed,
 *  carriage return, U+00A0, U+2028, U+2029 and U+FFFC, the hyphen U+2010 for U+2011, the thin space
 *  U+2009 for U+202F. 0 for other characters, where the face lacks the one that stands in, and for
 *  a NULL face. Of FreeType's face, which the caller has locked. */
CG_EXPORT CGGlyph FMFontGetFallbackGlyph(struct FT_FaceRec_* face, UTF32Char codePoint);

/* ---- Measures ---------------------------------------------------------------------------- */

/** Writes the horizontal advance of each glyph, unhinted, with a height of 0. Bitmaps without
 *  metrics in font units are measured in the font's largest size and scaled. False for NULL arrays,
 *  with nothing written. */
CG_EXPORT bool FMFontGetAdvancesForGlyphs(FMFontRef font, const CGGlyph* glyphs, CGSize* advances,
                                          size_t count);
/** Writes the smallest rectangle around each glyph's outline, y up from the baseline; CGRectZero
 *  for a glyph that draws nothing. Bitmaps are measured as for advances. False for NULL arrays,
 *  with nothing written. */
CG_EXPORT bool FMFontGetBoundingRectsForGlyphs(FMFontRef font, const CGGlyph* glyphs, CGRect* rects,
                                               size_t count);
/** What the `kern` table adds to the advance of `left` before `right`. */
CG_EXPORT CGFloat FMFontGetKerningForGlyph(FMFontRef font, CGGlyph left, CGGlyph right);
/** Writes where a caret may stand within a ligature, along the line from its origin, as the `GDEF`
 *  table has it: at most `capacity` positions. Returns how many there are, so that NULL and 0 ask
 *  for the number. */
CG_EXPORT CFIndex FMFontGetLigatureCaretPositions(FMFontRef font, CGGlyph glyph, CGFloat* positions,
                                                  CFIndex capacity);

/** The glyph's outline, y up from the baseline, with quadratic and cubic curves as the font has
 *  them, each contour closed. Empty for a glyph such as the space; NULL for a glyph that is a
 *  bitmap. */
CG_EXPORT CGPathRef FMFontCopyPathForGlyph(FMFontRef font, CGGlyph glyph);

CG_END_DECLS
