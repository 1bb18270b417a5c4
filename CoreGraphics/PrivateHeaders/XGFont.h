/* XGFont: what drawing text needs of a font: the font manager's font beneath it, outlines, and
 * underlines. */
#pragma once

#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

struct FMFont;

/** A font over `font`, which is retained. NULL for NULL. */
CG_EXPORT CGFontRef XGFontCreateWithFMFont(struct FMFont* font);
/** Whether both are over the same font of the font manager; NULL equals nothing. */
CG_EXPORT bool XGFontEqualToFont(CGFontRef a, CGFontRef b);
/** The font of the font manager, lent. */
CG_EXPORT struct FMFont* XGFontGetFMFont(CGFontRef font);
/** Where the font's file is; NULL for one from memory. */
CG_EXPORT CFURLRef XGFontCopyURL(CGFontRef font);

/** The underline's upper edge above the baseline, mostly negative, and its thickness, in font
 *  units. */
CG_EXPORT CGFloat XGFontGetUnderlinePosition(CGFontRef font);
CG_EXPORT CGFloat XGFontGetUnderlineThickness(CGFontRef font);

/** A glyph's outline under `transform` (NULL: the identity), which starts from font units; empty
 * for a glyph such as the space. NULL for glyph 0 and for glyphs that are bitmaps. */
CG_EXPORT CGPathRef XGFontCreateGlyphPath(CGFontRef font, const CGAffineTransform* transform,
                                          CGGlyph glyph);
/** A glyph's outline at `fontSize`, then under `transform` (NULL: the identity). Stores the left
 *  side bearing in font units and the advance at the size; either output may be NULL. NULL, with
 *  nothing stored, for glyph 0, a size that is not positive, and glyphs without an outline. */
CG_EXPORT CGPathRef XGFontCreateGlyphPathAndInfo(CGFontRef font, const CGAffineTransform* transform,
                                                 CGGlyph glyph, int32_t* info, CGFloat* advance,
                                                 CGFloat fontSize);

CG_END_DECLS
