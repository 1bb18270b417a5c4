/* CGFont.h: fonts at no particular size: glyphs, outlines and tables.
 *
 * A font is immutable and may be used by any number of threads. Measures are in font units, of
 * which CGFontGetUnitsPerEm make up the size that a font is set in; y counts up from the baseline.
 * What has no face that can be read answers as a font without glyphs. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGFont* CGFontRef;

/** A glyph's place in its font. */
typedef unsigned short CGFontIndex;
typedef CGFontIndex CGGlyph;

enum {
    kCGFontIndexMax = 65534,
    kCGFontIndexInvalid = 65535,
    kCGGlyphMin = 0,
    kCGGlyphMax = kCGFontIndexMax
};

/** The PostScript font types that a font can be written as. */
CG_ENUM(int32_t, CGFontPostScriptFormat){kCGFontPostScriptFormatType1 = 1,
                                         kCGFontPostScriptFormatType3 = 3,
                                         kCGFontPostScriptFormatType42 = 42};

/* ---- Making and keeping fonts -------------------------------------------------------------- */

/** The first face of the font file that `provider` holds; the provider is retained. NULL where it
 *  holds none. */
CG_EXPORT CGFontRef CGFontCreateWithDataProvider(CGDataProviderRef provider);
/** A font of the library's by its full, display or PostScript name, in any case; else the one of
 * the family that the name tells of which comes nearest in style and weight. NULL where there is no
 *  such family. */
CG_EXPORT CGFontRef CGFontCreateWithFontName(CFStringRef name);
/** A font that says of itself that it has `variations`, a dictionary from axis names to values
 * (NULL for none). They are recorded for those who ask; glyphs stay as they are. */
CG_EXPORT CGFontRef CGFontCreateCopyWithVariations(CGFontRef font, CFDictionaryRef variations);
CG_EXPORT CGFontRef CGFontRetain(CGFontRef font);
CG_EXPORT void CGFontRelease(CGFontRef font);
CG_EXPORT CFTypeID CGFontGetTypeID(void);

/* ---- Measures ------------------------------------------------------------------------------ */

CG_EXPORT int CGFontGetUnitsPerEm(CGFontRef font);
/** The highest that letters reach above the baseline. */
CG_EXPORT int CGFontGetAscent(CGFontRef font);
/** The lowest that letters reach, negative below the baseline. */
CG_EXPORT int CGFontGetDescent(CGFontRef font);
/** What lines want between them. */
CG_EXPORT int CGFontGetLeading(CGFontRef font);
/** The height of a capital letter, and of a small one such as x. */
CG_EXPORT int CGFontGetCapHeight(CGFontRef font);
CG_EXPORT int CGFontGetXHeight(CGFontRef font);
/** In degrees, counterclockwise from the vertical: negative for letters that lean to the right. */
CG_EXPORT CGFloat CGFontGetItalicAngle(CGFontRef font);
/** The thickness of upright stems. */
CG_EXPORT CGFloat CGFontGetStemV(CGFontRef font);
/** A rectangle around all glyphs, put one upon the other. */
CG_EXPORT CGRect CGFontGetFontBBox(CGFontRef font);
/** Whether all glyphs have one advance. */
CG_EXPORT bool CGFontIsFixedPitch(CGFontRef font);
CG_EXPORT size_t CGFontGetNumberOfGlyphs(CGFontRef font);

/* ---- Names and tables ---------------------------------------------------------------------- */

/** The typographic family where the font has one, else its family. */
CG_EXPORT CFStringRef CGFontCopyFamilyName(CGFontRef font);
CG_EXPORT CFStringRef CGFontCopyFullName(CGFontRef font);
CG_EXPORT CFStringRef CGFontCopyPostScriptName(CGFontRef font);
/** The bytes of a table of the font's file; the tag's first character is in the highest byte. NULL
 *  where there is none. */
CG_EXPORT CFDataRef CGFontCopyTableForTag(CGFontRef font, uint32_t tag);
/** The tags of all tables, as uintptr_t values rather than objects; NULL for a font without any. */
CG_EXPORT CFArrayRef CGFontCopyTableTags(CGFontRef font);

/* ---- Glyphs -------------------------------------------------------------------------------- */

/** A glyph's name, such as "Aacute"; NULL for glyph 0 and where there is none. */
CG_EXPORT CFStringRef CGFontCopyGlyphNameForGlyph(CGFontRef font, CGGlyph glyph);
/** The glyph of a name; 0 where there is none. */
CG_EXPORT CGGlyph CGFontGetGlyphWithGlyphName(CGFontRef font, CFStringRef name);
/** A glyph for each of `count` UTF-16 units: of a surrogate pair the first gets its glyph and the
 *  second 0, and what the font lacks gets 0. True when every character has a glyph. */
CG_EXPORT bool CGFontGetGlyphsForUnichars(CGFontRef font, const UniChar* characters,
                                          CGGlyph* glyphs, size_t count);
/** The rectangle around each glyph's outline, CGRectZero around none. False, with nothing written,
 *  when an argument is NULL or `count` is 0. */
CG_EXPORT bool CGFontGetGlyphBBoxes(CGFontRef font, const CGGlyph* glyphs, size_t count,
                                    CGRect* boxes);
/** How far each glyph moves the next one, fractions cut off. False, with nothing written, when an
 *  argument is NULL or `count` is 0. */
CG_EXPORT bool CGFontGetGlyphAdvances(CGFontRef font, const CGGlyph* glyphs, size_t count,
                                      int* advances);
/** The advances under `transform` (NULL: the identity), in ems: one that scales by a size gives
 *  them at that size. `style` is not looked at. False as above. */
CG_EXPORT bool CGFontGetGlyphAdvancesForStyle(CGFontRef font, const CGAffineTransform* transform,
                                              int style, const CGGlyph* glyphs, size_t count,
                                              CGSize* advances);

/* ---- Variations ---------------------------------------------------------------------------- */

/** A dictionary for each axis along which the font varies, in its order, with the keys below. NULL
 *  for a font without axes. */
CG_EXPORT CFArrayRef CGFontCopyVariationAxes(CGFontRef font);
/** The variations that the font was made with; otherwise a dictionary from the name of each named
 *  axis to one of its values, with the last three of the keys below. NULL for a font without such
 *  axes. */
CG_EXPORT CFDictionaryRef CGFontCopyVariations(CGFontRef font);

/** The keys of an axis: its name, a string that may be absent, and numbers in its own measure. */
CG_EXPORT const CFStringRef kCGFontVariationAxisName;
CG_EXPORT const CFStringRef kCGFontVariationAxisMinValue;
CG_EXPORT const CFStringRef kCGFontVariationAxisMaxValue;
CG_EXPORT const CFStringRef kCGFontVariationAxisDefaultValue;

/* ---- PostScript ---------------------------------------------------------------------------- */

/** Whether the font may be written in a format: its maker does not restrict embedding, and the
 *  format is type 1 or 42. */
CG_EXPORT bool CGFontCanCreatePostScriptSubset(CGFontRef font, CGFontPostScriptFormat format);
/** A PostScript font of some glyphs under the name `subsetName`. `encoding` holds a glyph for each
 *  of the 256 codes, 0 where there is none. NULL when an argument is missing, and for fonts and
 *  formats that cannot be written. */
CG_EXPORT CFDataRef CGFontCreatePostScriptSubset(CGFontRef font, CFStringRef subsetName,
                                                 CGFontPostScriptFormat format,
                                                 const CGGlyph* glyphs, size_t count,
                                                 const CGGlyph* encoding);
/** The PostScript encoding vector of 256 glyphs. NULL when an argument is missing. */
CG_EXPORT CFDataRef CGFontCreatePostScriptEncoding(CGFontRef font, const CGGlyph* encoding);

CG_END_DECLS
