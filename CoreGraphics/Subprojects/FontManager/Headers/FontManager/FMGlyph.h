/* FMGlyph.h: glyphs as they are drawn, a record each: masks, colour pixels and outlines.
 *
 * Records of a size come from a cache that all threads share; it keeps what was used last, within
 * as many bytes as the runtime option NIMBRA_FM_GLYPH_CACHE_SIZE says (8 MiB at first). A record
 * never changes, and lives until its last user lets go of it, whatever the cache and the font do
 * meanwhile. Pixels are in a space with y up, but rows run from the top. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGPath.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** What a record shows of its glyph. */
CG_ENUM(uint8_t, FMGlyphFormat){
    kFMGlyphFormatOutline = 0,      /**< A path. */
    kFMGlyphFormatGreyMask = 1,     /**< A byte of coverage for each pixel. */
    kFMGlyphFormatSubpixelMask = 2, /**< Three: of the pixel's red, green and blue part. */
    kFMGlyphFormatColor = 3,        /**< Blue, green, red, alpha: a byte each, premultiplied. */
};

typedef struct FMGlyph {
    int32_t count; /**< Its users; FMGlyphRetain and FMGlyphRelease change it. */
    FMGlyphFormat format;
    CGGlyph glyph;
    int32_t info;          /**< The left side bearing, in font units. */
    CGSize advance;        /**< In pixels, y up; of a record without a size in font units. */
    int32_t left;          /**< From the pixel of the glyph's origin to its leftmost column. */
    int32_t top;           /**< From the same pixel's lower edge up to the upper edge of row 0. */
    uint32_t width;        /**< In pixels; 0 for a glyph that marks none. */
    uint32_t height;       /**< In pixels. */
    uint32_t bytesPerRow;  /**< There is nothing between rows. */
    const uint8_t* pixels; /**< Row 0 is the top one; in the record's own block. Or NULL. */
    CGPathRef path; /**< An outline's, in pixels, y up; without a size in font units. Or NULL. */
    void* sprite;   /**< Where the texture atlas has it; see FMFontCopyBitmapGlyphWithSprite. */
} FMGlyph;
typedef FMGlyph* FMGlyphRef;

CG_OPTIONS(uint32_t, FMGlyphOptions){
    /** Edge pixels are covered in part. Without it masks hold 0 and 255 alone. */
    kFMGlyphAntialias = 1,
    /** Masks may tell the coverage of a pixel's three parts, for displays that have them in a row;
     *  with kFMGlyphAntialias. */
    kFMGlyphSmooth = 2,
    /** The glyph's origin may lie within a pixel; without it it lies at the pixel's corner. */
    kFMGlyphSubpixelPosition = 4,
    /** Of such places there are four by four in a pixel; without it as many as 64 by 64. */
    kFMGlyphSubpixelQuantize = 8,
    /** An outline, whatever the size. Glyphs that are pixels in the font stay pixels. */
    kFMGlyphAsOutline = 16,
};

/** How large and where a glyph is drawn. */
typedef struct FMGlyphDescription {
    CGFloat size;                /**< Pixels per em, before the transform. */
    CGAffineTransform transform; /**< Of the upright glyph, y up; its translation plays no part. */
    CGPoint position;            /**< Of the origin. Whole pixels play no part; the rest is rounded
                                  *   down to the next place that the options allow. */
    FMGlyphOptions options;
} FMGlyphDescription;

/** A glyph's record, which the caller owns and hands to FMGlyphRelease.
 *
 *  Without a description it is for measuring: advance, bearing and outline in font units; a glyph
 *  that is pixels in the font has their format, but no pixels. With one, it is a mask or, for a
 *  glyph in colours, their pixels. Glyphs larger than 256 pixels become outlines; larger ones in
 *  colours are NULL beyond 2048 pixels. Masks equal FreeType's, unhinted, for the same size (to
 *  1/64 pixel), transform (to 1/65536) and place. Bitmaps of a font without outlines are scaled.
 *
 *  NULL for no font, a glyph past the font's last, a font that cannot be opened, a size that is not
 *  positive, a number that is not finite, and a glyph that cannot be read. */
CG_EXPORT FMGlyphRef FMFontCopyGlyph(FMFontRef font, CGGlyph glyph,
                                     const FMGlyphDescription* description);
/** The same, lent: until the font is asked in this way again, and not beyond FMFontUnlock. Call it
 *  between FMFontLock and FMFontUnlock. */
CG_EXPORT const FMGlyph* FMFontGetGlyphUnsafe(FMFontRef font, CGGlyph glyph,
                                              const FMGlyphDescription* description);
/** Frees a record whose count has come to 0, and gives its sprite back to the atlas. Called by
 *  FMGlyphRelease, and by those who count themselves. */
CG_EXPORT void FMGlyphFree(FMGlyphRef glyph);

CG_INLINE FMGlyphRef FMGlyphRetain(FMGlyphRef glyph) {
    if (glyph)
        __atomic_fetch_add(&glyph->count, 1, __ATOMIC_RELAXED);
    return glyph;
}

CG_INLINE void FMGlyphRelease(FMGlyphRef glyph) {
    if (glyph && __atomic_fetch_sub(&glyph->count, 1, __ATOMIC_ACQ_REL) == 1)
        FMGlyphFree(glyph);
}

/* ---- Texture atlases --------------------------------------------------------------------- */

/** A compositor that keeps glyphs in a texture. It is called from any thread, one call at a time,
 *  and must not ask for glyphs meanwhile. */
typedef struct FMTextureAtlasCallbacks {
    uint32_t version; /**< 0 */
    void* info;       /**< Handed to each call. */
    /** Makes room for a glyph's pixels and takes a copy of them. Answers what stands for the
     *  place, or NULL where there is no room. */
    void* (*addSprite)(void* info, const FMGlyph* glyph);
    /** The record that a place was made for is no more. */
    void (*removeSprite)(void* info, void* sprite);
} FMTextureAtlasCallbacks;

/** Keeps the address of the compositor's callbacks for the process. Those before are not called any
 *  more when it returns: their atlas and all places in it count as gone, and glyphs get new ones
 *  when they are asked for again. NULL, another version, a missing callback: there is no atlas. */
CG_EXPORT void FMFontSetTextureAtlasCallbacks(const FMTextureAtlasCallbacks* callbacks);
/** FMFontCopyGlyph for a compositor: a record of pixels that has a place in the atlas. NULL also
 *  where there is no atlas, where the atlas has no room, and for outlines. A glyph that marks
 *  nothing has no place, and its record no sprite. */
CG_EXPORT FMGlyphRef FMFontCopyBitmapGlyphWithSprite(FMFontRef font, CGGlyph glyph,
                                                     const FMGlyphDescription* description);

/* ---- Shaping ----------------------------------------------------------------------------- */

struct hb_font_t;

/** The font for HarfBuzz, in font units: its tables, and our glyphs, advances and boxes. Immutable,
 *  for any number of threads; made once and lent until FMFontPurge or the font's end, which its
 *  own users must not outlive either. NULL for no font, one that cannot be opened, and without
 *  memory. */
CG_EXPORT struct hb_font_t* FMFontGetHarfBuzzFont(FMFontRef font);

CG_END_DECLS
