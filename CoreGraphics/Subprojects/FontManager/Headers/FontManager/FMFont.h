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

CG_END_DECLS
