/* FMDatabase.h: what is known of fonts, kept between runs.
 *
 * A database is made in memory, filled, and written once as a whole; later runs open the file and
 * only read. Nothing in a file is believed: records that are missing, broken or of another size
 * read as absent, which is NULL, 0 or false. Storing into a database that was opened from a file,
 * or that has been written, is a programming error and ends the process. docs/font-database.md
 * describes the file. */
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** An empty database that may be stored into; it holds the version of its format alone. NULL when
 *  memory runs out. */
CG_EXPORT FMDatabaseRef FMDatabaseCreateInMemory(void);
/** A database to read from a file, which is mapped and must be replaced, never changed; or from the
 *  bytes of a "data" URL. NULL when it cannot be opened or is no constant database. */
CG_EXPORT FMDatabaseRef FMDatabaseOpenWithURL(CFURLRef url);
CG_EXPORT FMDatabaseRef FMDatabaseRetain(FMDatabaseRef database);
CG_EXPORT void FMDatabaseRelease(FMDatabaseRef database);

/** Whether the database was made in memory, not opened. */
CG_EXPORT bool FMDatabaseIsInMemory(FMDatabaseRef database);
/** Whether its format is the one that this library writes: its records mean nothing otherwise. */
CG_EXPORT bool FMDatabaseIsLatestVersion(FMDatabaseRef database);

/** The id that the next font will get, 1 in an empty database. With `allocate` it is given away:
 *  the next call answers one more. 0 when ids or memory run out. */
CG_EXPORT int64_t FMDatabaseGetNextFontId(FMDatabaseRef database, bool allocate);
/** How many font ids have been given away; they are 1 to this number. */
CG_EXPORT CFIndex FMDatabaseGetFontsCount(FMDatabaseRef database);

/* ---- Storing: each answers whether the record is in the database, which may lack memory. A
 * database that could not take a record is never written to disk. */

/** Stores all that is known of `font`, opening its face where needed, and gives it an id if it has
 *  none. */
CG_EXPORT bool FMDatabaseStoreFont(FMDatabaseRef database, FMFontRef font);
CG_EXPORT bool FMDatabaseStoreFontMetrics(FMDatabaseRef database, FMFontId fontId,
                                          const FMFontMetrics* metrics);
/** When the font file at a path, or the host's font of a name, was changed, in seconds since 1970.
 *  `identifier` is that path or name, in which case makes no difference. */
CG_EXPORT bool FMDatabaseStoreLastModified(FMDatabaseRef database, CFStringRef identifier,
                                           int64_t seconds);
/** The token of the system resources that the database was made with. */
CG_EXPORT bool FMDatabaseStoreSystemResourcesToken(FMDatabaseRef database, CFStringRef token);
/** The user's languages that the database was made for. */
CG_EXPORT bool FMDatabaseStoreSerializedPreferredLanguages(FMDatabaseRef database,
                                                           CFStringRef languages);
/** Fallback character maps: `count` numbers, of a meaning that fallbacks know; -1 as id stands for
 *  no font. */
CG_EXPORT bool FMDatabaseStoreCharmaps(FMDatabaseRef database, FMFontId fontId,
                                       const uint32_t* values, size_t count);

/** A record by the four characters that name its kind, and the id of its font; -1 for a record of
 * no font. A second record of a kind and font replaces the first. */
CG_EXPORT bool FMDatabaseStoreString(FMDatabaseRef database, const char* kind, FMFontId fontId,
                                     CFStringRef string);
CG_EXPORT bool FMDatabaseStoreBytes(FMDatabaseRef database, const char* kind, FMFontId fontId,
                                    const void* bytes, size_t size);
CG_EXPORT bool FMDatabaseStoreUInt64(FMDatabaseRef database, const char* kind, FMFontId fontId,
                                     uint64_t number);

/* ---- Fonts by name. */

/** Whether there is a font of the same nimbra id. */
CG_EXPORT bool FMDatabaseHasFont(FMDatabaseRef database, FMFontRef font);
/** In nimbra ids, case makes no difference. */
CG_EXPORT bool FMDatabaseHasFontNimbraId(FMDatabaseRef database, CFStringRef nimbraId);
/** The font of that nimbra id; false, and `fontId` (may be NULL) unchanged, when there is none. */
CG_EXPORT bool FMDatabaseLookupFontNimbraId(FMDatabaseRef database, CFStringRef nimbraId,
                                            FMFontId* fontId);

/* ---- Fonts by id: what the FMFont function of the name answered when the font was stored. */

CG_EXPORT CFStringRef FMDatabaseCopyFontNimbraId(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontUniqueId(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontPostScriptName(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontFullName(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontStyleName(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontNimbraFamilyName(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontDisplayName(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFStringRef FMDatabaseCopyFontWindowsIdentifier(FMDatabaseRef database, FMFontId fontId);
/** The URL of the font's file, as a string. */
CG_EXPORT CFStringRef FMDatabaseCopyFontLocation(FMDatabaseRef database, FMFontId fontId);

/** Fills in all fields but `reserved4`; false, and nothing filled in, when there is no record. */
CG_EXPORT bool FMDatabaseGetFontMetrics(FMDatabaseRef database, FMFontId fontId,
                                        FMFontMetrics* metrics);
CG_EXPORT int64_t FMDatabaseGetFontFaceIndex(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT uint8_t FMDatabaseGetFontRestrictions(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT uint16_t FMDatabaseGetFontPermFlags(FMDatabaseRef database, FMFontId fontId);
/** A CFStringEncoding, or -1 for a font without character map. */
CG_EXPORT int32_t FMDatabaseGetFontStringEncoding(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT CFIndex FMDatabaseGetFontNumberOfGlyphs(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT FMFontFormat FMDatabaseGetFontFormat(FMDatabaseRef database, FMFontId fontId);
CG_EXPORT int64_t FMDatabaseCopyFontGlyphIdCache(FMDatabaseRef database, FMFontId fontId);

/* ---- Other records. */

/** What FMDatabaseStoreLastModified stored; false, and `seconds` (may be NULL) unchanged, when
 *  there is no record. */
CG_EXPORT bool FMDatabaseFetchLastModified(FMDatabaseRef database, CFStringRef identifier,
                                           int64_t* seconds);
CG_EXPORT CFStringRef FMDatabaseCopySystemResourcesToken(FMDatabaseRef database);
CG_EXPORT CFStringRef FMDatabaseCopySerializedPreferredLanguages(FMDatabaseRef database);
CG_EXPORT CFStringRef FMDatabaseCopyBaseFontLocation(FMDatabaseRef database);
/** Character maps as they were stored, in memory that the caller gives back with free(). False,
 *  with NULL and 0, when there are none or memory runs out. */
CG_EXPORT bool FMDatabaseCopyCharmaps(FMDatabaseRef database, FMFontId fontId, uint32_t** values,
                                      size_t* count);

/** Writes a database that was made in memory to the file that `url` names, in place of the one that
 *  is there. Whoever opens the file finds the old database or the new one, whole, at any time, also
 *  when several processes write at once or one of them is killed; power failures may leave a file
 *  that is refused. From the first attempt on nothing more can be stored. False when the file could
 *  not be written, and the old one stays. */
CG_EXPORT bool FMDatabasePersistToDisk(FMDatabaseRef database, CFURLRef url);

/** Lists all records in the log, at the level of debug messages. */
CG_EXPORT void FMDatabasePrint(FMDatabaseRef database);

CG_END_DECLS
