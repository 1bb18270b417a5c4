/* FMBase.h: the types that the font manager's headers share.
 *
 * What CGBase.h says of ownership, NULL and failure holds here, too. Fonts, libraries and databases
 * may be used by any number of threads at once.
 *
 * Locks are taken in this order, each at most once on the way down but for the recursive ones: the
 * font manager's (FMLock, recursive); a font's own (FMFontLock, recursive); a fallback's; a
 * database's (recursive); the one around FreeType's opening and closing of faces. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct FMFont* FMFontRef;
typedef struct FMLibrary* FMLibraryRef;
typedef struct FMDatabase* FMDatabaseRef;
typedef struct FMConfig* FMConfigRef;

/** A font's place in a database, from 1; 0 for a font in none. */
typedef int32_t FMFontId;

/** What a font looks like, as bits that may be or-ed; the top four bits are the family class of the
 *  OS/2 table, as a signed number. */
CG_OPTIONS(uint32_t, FMFontTraits){
    kFMFontTraitItalic = 0x1,     kFMFontTraitBold = 0x2,         kFMFontTraitExpanded = 0x20,
    kFMFontTraitCondensed = 0x40, kFMFontTraitFixedPitch = 0x400,
};

/** How a font is stored; see FMFontGetFormat. */
CG_ENUM(uint8_t, FMFontFormat){
    kFMFontFormatUnknown = 0,
    kFMFontFormatOther = 1,          /**< No SFNT wrapper, no outlines, no bitmaps. */
    kFMFontFormatOpenType = 2,       /**< With layout tables, scalable. */
    kFMFontFormatOpenTypeBitmap = 3, /**< With layout tables, not scalable. */
    kFMFontFormatTrueType = 4,       /**< Without layout tables. */
    kFMFontFormatPostScript = 5,     /**< No SFNT wrapper, scalable. */
    kFMFontFormatBitmap = 6,         /**< No SFNT wrapper, bitmaps of fixed sizes. */
};

CG_OPTIONS(uint16_t, FMFontPermFlags){
    kFMFontPermHasColorBitmap = 2,
    kFMFontPermIsPlatformEmoji = 4,
};

/** Measures of a font, in its units where nothing else is said. */
typedef struct FMFontMetrics {
    uint32_t unitsPerEm;
    uint32_t reserved4; /**< The font's own; databases do not keep it. */
    uint32_t traits;    /**< FMFontTraits and the family class. */
    int32_t weight;     /**< 0 regular, 400 bold, negative lighter. */
    int32_t reserved16; /**< Kept by databases as it stands. */
    int32_t ascent;
    int32_t descent; /**< Negative below the baseline. */
    int32_t leading;
    int32_t italicAngle; /**< Degrees, 16.16 fixed point. */
    int32_t stemV;
    int32_t xHeight;
    int32_t capHeight;
    int32_t reserved48; /**< Kept by databases as it stands. */
    int32_t underlinePosition;
    int32_t underlineThickness;
    uint8_t panose[10];
    CGRect bbox;
    CGFloat heightMultiple;
    CGFloat heightMultipleForUIKit;
} FMFontMetrics;

/** The font manager's lock, which serialises registration and the resolving of names; recursive. */
CG_EXPORT void FMLock(void);
CG_EXPORT void FMUnlock(void);

CG_END_DECLS
