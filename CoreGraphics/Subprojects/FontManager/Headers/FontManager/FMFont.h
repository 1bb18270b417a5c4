/* FMFont.h: one face of one font file.
 *
 * A font knows where its bytes are and opens its face only when something needs it; most of what it
 * is asked often it remembers. A font that a library's database knows has a font id, and answers
 * from there without a face. Copy functions give an object that the caller owns. NULL as a font
 * gives NULL, 0 or false everywhere. Measures are in font units. */
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataProvider.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

struct FT_FaceRec_;

/* ---- Making and keeping fonts -------------------------------------------------------------- */

/* The face is opened at once; NULL when there is none at `faceIndex`, which counts from 0 (in bits
 * 16 to 30, the named instance of a variable font, from 1). A standalone font belongs to no
 * library. */

/** Of a font file. `path` is a file-system path. */
CG_EXPORT FMFontRef FMFontCreateWithPath(CFStringRef path, int64_t faceIndex, bool standalone);
/** Of a copy of `length` bytes. Always standalone, whatever the argument. */
CG_EXPORT FMFontRef FMFontCreateFromMemory(const void* bytes, size_t length, int64_t faceIndex,
                                           bool standalone);
/** Of what `provider`, which is retained, gives; read in place where it is in memory. Always
 *  standalone, whatever the argument. */
CG_EXPORT FMFontRef FMFontCreateWithDataProvider(CGDataProviderRef provider, int64_t faceIndex,
                                                 bool standalone);

/** Of a font that the library's database knows; no face is opened. The process ends, with a line in
 *  the log, when the database has no measures of it. NULL without a library and for 0. */
CG_EXPORT FMFontRef FMFontCreateWithFontId(FMLibraryRef library, FMFontId fontId);
/** The font that is there when no other is: without a face, of fixed measures, its names
 *  "LastResort". It draws with the glyphs of a font that its library gives it. */
CG_EXPORT FMFontRef FMFontCreateLastResortFont(void);

CG_EXPORT FMFontRef FMFontRetain(FMFontRef font);
CG_EXPORT void FMFontRelease(FMFontRef font);
/** Whether both are the same object; a font equals no other. */
CG_EXPORT bool FMFontEqual(FMFontRef a, FMFontRef b);
CG_EXPORT CFHashCode FMFontHash(FMFontRef font);

/** Gives up all that can be had again: the face, names, and what shaping and variations keep. */
CG_EXPORT void FMFontPurge(FMFontRef font);
/** Gives up the face and the host's bytes beneath it; names stay. */
CG_EXPORT void FMFontClearFaceData(FMFontRef font);

/* ---- The face ------------------------------------------------------------------------------ */

/** The FreeType face, lent: to be used with the font locked. One that is not open is opened when
 *  `open`, else NULL. A face that cannot be opened is logged ("Failed to activate font …"). */
CG_EXPORT struct FT_FaceRec_* FMFontGetFTFaceUnsafe(FMFontRef font, bool open);
/** The font's own lock, recursive. */
CG_EXPORT void FMFontLock(FMFontRef font);
CG_EXPORT void FMFontUnlock(FMFontRef font);
/** Whether the face is open. */
CG_EXPORT bool FMFontIsActive(FMFontRef font);

/* ---- Where it comes from ------------------------------------------------------------------- */

CG_EXPORT int64_t FMFontGetFaceIndex(FMFontRef font);
/** Where the font's file is; NULL for a font from memory. */
CG_EXPORT CFURLRef FMFontCopyLocationURL(FMFontRef font);
/** The name by which the host knows the font, where it does. */
CG_EXPORT void FMFontCacheWindowsIdentifier(FMFontRef font, CFStringRef identifier);
CG_EXPORT CFStringRef FMFontCopyWindowsIdentifier(FMFontRef font);
/** When the font's file was last changed, in seconds since 1970, as it was told. */
CG_EXPORT int64_t FMFontGetLastModtime(FMFontRef font);
CG_EXPORT void FMFontSetLastModtime(FMFontRef font, int64_t seconds);
/** The font's place in its library's database; 0 outside one. */
CG_EXPORT FMFontId FMFontGetFontId(FMFontRef font);
CG_EXPORT void FMFontSetFontId(FMFontRef font, FMFontId fontId);

/* ---- Facts --------------------------------------------------------------------------------- */

/** How many glyphs there are; 0 when the face cannot be opened. */
CG_EXPORT CFIndex FMFontGetNumberOfGlyphs(FMFontRef font);
CG_EXPORT bool FMFontIsStandalone(FMFontRef font);
/** Whether the font is one of its library's, kept until the library goes. */
CG_EXPORT bool FMFontIsPermanent(FMFontRef font);
CG_EXPORT uint16_t FMFontGetPermFlags(FMFontRef font);
CG_EXPORT void FMFontSetPermFlags(FMFontRef font, uint16_t flags);
/** Whether the font has bitmaps in colour. */
CG_EXPORT bool FMFontHasColorBitmap(FMFontRef font);
/** Whether the font is the one that draws emoji here. */
CG_EXPORT bool FMFontIsPlatformEmoji(FMFontRef font);
/** How the font is stored: read off the face once, or off the database. */
CG_EXPORT FMFontFormat FMFontGetFormat(FMFontRef font);
/** What the font's licence keeps from being done with it, as the embedding bits of its OS/2 table
 *  (or its PostScript header) say: bit 0 is their bit 0, bit 1 no subsetting, bit 2 a restricted
 *  licence or bitmaps only. */
CG_EXPORT uint8_t FMFontGetRestrictions(FMFontRef font);
/** The CFStringEncoding of the characters that the face's current map takes; plain Unicode for
 *  every form of it and for maps of unknown platforms, -1 without a map. */
CG_EXPORT int32_t FMFontGetStringEncoding(FMFontRef font);

/* ---- Measures ------------------------------------------------------------------------------ */

/** The font's measures, lent; they stay where they are while the font lives. A font that its
 *  database knows but has no measures of is a broken database: the process ends, with a line in the
 *  log. */
CG_EXPORT const FMFontMetrics* FMFontGetMetrics(FMFontRef font);
/** What lines of text set in this font are to be stretched by; 1 unless a database or a
 *  configuration says otherwise. */
CG_EXPORT CGFloat FMFontGetHeightMultiple(FMFontRef font);
CG_EXPORT CGFloat FMFontGetHeightMultipleForUIKit(FMFontRef font);
/** Whether the family class is one of those with serifs (1 to 5 and 7). */
CG_EXPORT bool FMFontIsSerif(FMFontRef font);
/** A word for a weight on the scale of FMFontMetrics: "regular" for 0; lent. The last word, beyond
 *  620, is "unknown". */
CG_EXPORT CFStringRef FMFontGetWeightString(int32_t weight);

/* ---- Names --------------------------------------------------------------------------------- */

/* A name is read once and kept, and so is that the font has none (NULL); `afresh` reads it again
 * and keeps nothing. Of several languages a name comes in the first of the user's that is there,
 * else in English, else in any. */

/* Entries of the font's name table. Fonts without one give family and style, and where they are
 * PostScript fonts also the full name, notice and version, as their headers have them. */
CG_EXPORT CFStringRef FMFontCopyCopyright(FMFontRef font, bool afresh);              /**< 0 */
CG_EXPORT CFStringRef FMFontCopyFamilyName(FMFontRef font, bool afresh);             /**< 1 */
CG_EXPORT CFStringRef FMFontCopySubFamilyName(FMFontRef font, bool afresh);          /**< 2 */
CG_EXPORT CFStringRef FMFontCopyVersion(FMFontRef font, bool afresh);                /**< 5 */
CG_EXPORT CFStringRef FMFontCopyTrademark(FMFontRef font, bool afresh);              /**< 7 */
CG_EXPORT CFStringRef FMFontCopyManufacturer(FMFontRef font, bool afresh);           /**< 8 */
CG_EXPORT CFStringRef FMFontCopyDesigner(FMFontRef font, bool afresh);               /**< 9 */
CG_EXPORT CFStringRef FMFontCopyDescription(FMFontRef font, bool afresh);            /**< 10 */
CG_EXPORT CFStringRef FMFontCopyVendorURL(FMFontRef font, bool afresh);              /**< 11 */
CG_EXPORT CFStringRef FMFontCopyDesignerURL(FMFontRef font, bool afresh);            /**< 12 */
CG_EXPORT CFStringRef FMFontCopyLicense(FMFontRef font, bool afresh);                /**< 13 */
CG_EXPORT CFStringRef FMFontCopyLicenseURL(FMFontRef font, bool afresh);             /**< 14 */
CG_EXPORT CFStringRef FMFontCopyPreferredFamilyName(FMFontRef font, bool afresh);    /**< 16 */
CG_EXPORT CFStringRef FMFontCopyPreferredSubFamilyName(FMFontRef font, bool afresh); /**< 17 */
CG_EXPORT CFStringRef FMFontCopySampleText(FMFontRef font, bool afresh);             /**< 19 */
CG_EXPORT CFStringRef FMFontCopyPostScriptCIDName(FMFontRef font, bool afresh);      /**< 20 */
CG_EXPORT CFStringRef FMFontCopyWWSFamilyName(FMFontRef font, bool afresh);          /**< 21 */
CG_EXPORT CFStringRef FMFontCopyWWSSubFamilyName(FMFontRef font, bool afresh);       /**< 22 */

/* Names of a font that its library's database knows come from there, without a face. */

/** Entry 4, else the family name. */
CG_EXPORT CFStringRef FMFontCopyFullName(FMFontRef font, bool afresh);
/** Entry 6. A bitmap font without an SFNT wrapper has one made of family and style
 *  ("MyFont-BoldItalic"), any other without the entry has none. */
CG_EXPORT CFStringRef FMFontCopyPostScriptName(FMFontRef font, bool afresh);
/** Entry 3. */
CG_EXPORT CFStringRef FMFontCopyUniqueId(FMFontRef font, bool afresh);
/** The style as FreeType tells it, else entry 17, else entry 2. */
CG_EXPORT CFStringRef FMFontCopyStyleName(FMFontRef font, bool afresh);
/** The key under which a library keeps the font's family: "dejavusans"; "Unnamed Font Family" for
 *  want of a family name. */
CG_EXPORT CFStringRef FMFontCopyNimbraFamilyName(FMFontRef font, bool afresh);
/** What tells the face from any other: family key, unique name, style, format, face index and
 *  number of glyphs, with ":" between them. */
CG_EXPORT CFStringRef FMFontCopyNimbraId(FMFontRef font, bool afresh);
/** A name to show: entry 4 where it begins with the family's name, else family and style. */
CG_EXPORT CFStringRef FMFontCopyDisplayName(FMFontRef font, bool afresh);

/** `utf8Name` in lower case, without `suffix` (may be NULL) where it ends so in any case, and
 *  without spaces and hyphens. NULL for NULL and malformed text. */
CG_EXPORT CFStringRef FMFontCopySanitizedFamilyName(const char* utf8Name, const char* suffix);

CG_END_DECLS
