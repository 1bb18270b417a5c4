/* FMLibrary.h: the fonts that a process can use, and how their names become fonts.
 *
 * A library knows fonts by full name, display name, PostScript name and nimbra id, and looks for
 * others by what their names say of family, style and weight. It is made from a configuration and a
 * database of fonts (FMDatabase.h), out of which it makes fonts without opening them. Any number of
 * threads may use one library; what they do with names and registered fonts goes on under FMLock.
 * NULL as library gives NULL, 0 or false everywhere. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/* ---- Libraries ------------------------------------------------------------------------------- */

/** The library that the process shares, lent; made by the first call, from the configuration's
 *  database, if it names one: that of the system's resources, or one in the application's caches,
 *  which is checked against all fonts that are installed and made anew where it does not hold. */
CG_EXPORT FMLibraryRef FMLibraryGetShared(void);
/** Retains `library` as the shared one from now on, and releases the one before, which nobody must
 *  be using. After NULL the next FMLibraryGetShared makes one. */
CG_EXPORT void FMLibrarySetShared(FMLibraryRef library);
/** A library over a database, whose fonts are made when they are asked for or by a task in the
 *  background. Without a database (NULL) all fonts that the configuration names, that are installed
 *  and that the application lists as "UIAppFonts" are opened and stored in a new one in memory. The
 *  configuration may be NULL; its overrides of metrics go to the library. NULL when memory runs
 *  out. */
CG_EXPORT FMLibraryRef FMLibraryCreate(FMConfigRef config, FMDatabaseRef database);
/** Gives up a reference to a library, which is a CF object. Fonts that are still in use stay. */
CG_EXPORT void FMLibraryRelease(FMLibraryRef library);

/** What stands for what, as configured: from family keys to arrays of them, of which the first
 *  counts. Lent. */
CG_EXPORT CFDictionaryRef FMLibraryGetSubstitutions(FMLibraryRef library);
/** The runtime option NIMBRA_FM_MAX_CACHEABLE_SIZE as it was when the library was made, in bytes;
 *  2147483647 when it is negative or not set. */
CG_EXPORT int32_t FMLibraryGetMaxCacheableOverrideSize(FMLibraryRef library);

/* ---- Registering fonts ----------------------------------------------------------------------- */

/** Enters a font, which is retained, under its names; the font that had a name first keeps it. The
 *  configuration's overrides are applied to its metrics. False when it has no PostScript name, or
 *  when a font of its nimbra id is there already. */
CG_EXPORT bool FMLibraryRegisterFont(FMLibraryRef library, FMFontRef font);
/** Takes a font out again; false when it was not registered. */
CG_EXPORT bool FMLibraryUnregisterFont(FMLibraryRef library, FMFontRef font);

/* ---- Finding fonts: each gives a font that the caller owns, or NULL. ------------------------- */

/** The font that has the name as full, display or PostScript name, in any case; else the one of the
 *  family that the name tells of (see FMLibraryInferFromName), or that the configuration puts in
 * its place, that comes nearest in style and weight. NULL when there is no such family, which is
 *  remembered until a font is registered. With the bit 1 in `options` only the family counts:
 *  neither names nor substitutes nor what was found before. */
CG_EXPORT FMFontRef FMLibraryCopyFontWithName(FMLibraryRef library, CFStringRef name,
                                              uint32_t options);
/** The font named "nimbra_sans". */
CG_EXPORT FMFontRef FMLibraryCopyDefaultFont(FMLibraryRef library);
/** The font named "LastResort", which is always there; the process ends where it is not. */
CG_EXPORT FMFontRef FMLibraryCopyLastResortFont(FMLibraryRef library);
/** The font with that id in the library's database, made by the first call and then kept as long as
 *  the library. NULL for 0 and ids that the database has not given away; 4444 stands for the last
 *  resort. A record that lacks what makes a font ends the process. */
CG_EXPORT FMFontRef FMLibraryCopyPermanentFont(FMLibraryRef library, FMFontId fontId);
/** The registered font of that nimbra id, in any case. */
CG_EXPORT FMFontRef FMLibraryCopyFontByNimbraId(FMLibraryRef library, CFStringRef nimbraId);
/** The font for Chinese, Japanese and Korean text that suits the user's first language: that named
 *  "nimbra_zh-Hant", "nimbra_ja" or else "nimbra_zh-Hans". Chosen once, and lent. */
CG_EXPORT FMFontRef FMLibraryGetPreferredCJKFont(FMLibraryRef library);

/** The full names of the fonts in the database, by ascending id. */
CG_EXPORT CFArrayRef FMLibraryCopyDBFontNames(FMLibraryRef library);
/** The PostScript names of a family's fonts in the database, by ascending id; empty when there are
 *  none. The family may be given by name or by key. */
CG_EXPORT CFArrayRef FMLibraryCopyFontPSNamesForFamily(FMLibraryRef library, CFStringRef family);

/** Splits a font's name into words (at " ", "-" and where an upper-case letter follows one that is
 *  not) and sorts them: `family` is the lower-cased words without separators that tell of neither
 *  style nor weight, or what else that family is known by ("arialmt" gives "arial"), `traits` are
 *  bits of FMFontTraits, and `weight` is one of FMFontMetrics, 0 where the name names none. The
 *  caller owns `family`. Any of the last three may be NULL. Without a name: NULL, 0 and 0. */
CG_EXPORT void FMLibraryInferFromName(CFStringRef name, CFStringRef* family, uint32_t* traits,
                                      int32_t* weight);

/* ---- Fonts for a code point ------------------------------------------------------------------ */

/** The range of code points around `codePoint`, from `start` up to, not with, `end`, of which is
 *  known that the same fonts of the database cover them, and the number of the set of those fonts.
 *  All 0 when none covers it. Ranges grow as their code points are asked for. */
CG_EXPORT void FMLibraryQueryFallback(FMLibraryRef library, UTF32Char codePoint, uint32_t* start,
                                      uint32_t* end, uint32_t* set);
/** The fonts of a set, by ascending id: from `first` up to, not with, `end`. Lent as long as the
 *  library; NULL and NULL for a number that no range has. */
CG_EXPORT void FMLibraryGetFallbackFontSet(FMLibraryRef library, uint32_t set,
                                           const FMFontRef** first, const FMFontRef** end);

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
