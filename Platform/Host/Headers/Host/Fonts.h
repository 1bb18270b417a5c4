/* Fonts.h: the fonts that are installed on the machine. */
#pragma once

#include <Host/Host.h>

HOST_BEGIN_DECLS

/** A font as the host lists it: a file, which may hold several faces, or a font that the host keeps
 *  elsewhere and knows by name. */
typedef struct HostFont {
    const char* path;         /**< NULL for a font without a file that can be named. */
    const char* name;         /**< Of a font without path, for HostFontMapByName; else NULL. */
    int64_t modificationTime; /**< Seconds since 1970, rounded down. */
} HostFont;

typedef void (*HostFontFunction)(const HostFont* font, void* context);

/** Calls `function` for each installed font that can be read, files once and in the order of their
 *  paths. The record is lent for the call. False when the host cannot list its fonts. */
HOST_EXPORT bool HostFontEnumerate(HostFontFunction function, void* context);

/** Maps the file of the installed font with that PostScript name or full name, in any case, and
 *  tells which of its faces it is (`faceIndex` may be NULL). False, with an empty mapping, when
 * there is none. HostFileUnmap gives the mapping back. */
HOST_EXPORT bool HostFontMapByName(const char* name, HostMapping* mapping, int64_t* faceIndex);

/** Whether a font of that family is installed; case makes no difference. */
HOST_EXPORT bool HostFontHasFamily(const char* family);
/** The family that the host shows text in when a generic family, such as "sans-serif", is asked
 * for; of a language (may be NULL or empty) where the host chooses by language. False, with an
 * empty `buffer`, when no font is installed or the name does not fit. */
HOST_EXPORT bool HostFontGetDefaultFamily(const char* generic, const char* language, char* buffer,
                                          size_t capacity);

HOST_END_DECLS
