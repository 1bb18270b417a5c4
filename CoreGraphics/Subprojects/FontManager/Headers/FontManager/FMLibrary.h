/* FMLibrary.h: the fonts that a process can use, and how their names become fonts. */
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** Splits a font's name into words (at " ", "-" and where an upper-case letter follows one that is
 *  not) and sorts them: `family` is the lower-cased words without separators that tell of neither
 *  style nor weight, or what else that family is known by ("arialmt" gives "arial"), `traits` are
 *  bits of FMFontTraits, and `weight` is one of FMFontMetrics, 0 where the name names none. The
 *  caller owns `family`. Any of the last three may be NULL. Without a name: NULL, 0 and 0. */
CG_EXPORT void FMLibraryInferFromName(CFStringRef name, CFStringRef* family, uint32_t* traits,
                                      int32_t* weight);

/* ---- What is known of a font ---------------------------------------------------------------- */

/* Answers from the library's database, by the id that it has for the font and without opening it:
 * what the FMFont function of the name would answer, and 0, NULL or false where nothing is known.
 * Copy functions give an object that the caller owns. */

/** Fills in all fields but `reserved4`; false, and nothing filled in, when there is no record. */
CG_EXPORT bool FMLibraryGetFontMetrics(FMLibraryRef library, FMFontId fontId,
                                       FMFontMetrics* metrics);
CG_EXPORT FMFontFormat FMLibraryGetFontFormat(FMLibraryRef library, FMFontId fontId);
CG_EXPORT int64_t FMLibraryGetFontFaceIndex(FMLibraryRef library, FMFontId fontId);
CG_EXPORT uint8_t FMLibraryGetFontRestrictions(FMLibraryRef library, FMFontId fontId);
CG_EXPORT uint16_t FMLibraryGetFontPermFlags(FMLibraryRef library, FMFontId fontId);
CG_EXPORT int32_t FMLibraryGetFontStringEncoding(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFIndex FMLibraryGetFontNumberOfGlyphs(FMLibraryRef library, FMFontId fontId);
/** How glyphs of the font are cached; a number that the font alone understands. */
CG_EXPORT int64_t FMLibraryGetGlyphIdCache(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFURLRef FMLibraryCopyFontLocationURL(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontStyleName(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontDisplayName(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontFullName(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontPostScriptName(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontWindowsIdentifier(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontUniqueId(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontNimbraId(FMLibraryRef library, FMFontId fontId);
CG_EXPORT CFStringRef FMLibraryCopyFontNimbraFamilyName(FMLibraryRef library, FMFontId fontId);

CG_END_DECLS
