// FMLibraryFontReads.cpp: what a library's database knows of a font, by the font's id.

#include <CoreFoundation/CFURL.h>

#include "Library/LibraryRecord.h"

using fm::databaseOf;

bool FMLibraryGetFontMetrics(FMLibraryRef library, FMFontId fontId, FMFontMetrics* metrics) {
    return FMDatabaseGetFontMetrics(databaseOf(library), fontId, metrics);
}
FMFontFormat FMLibraryGetFontFormat(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontFormat(databaseOf(library), fontId);
}
int64_t FMLibraryGetFontFaceIndex(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontFaceIndex(databaseOf(library), fontId);
}
uint8_t FMLibraryGetFontRestrictions(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontRestrictions(databaseOf(library), fontId);
}
uint16_t FMLibraryGetFontPermFlags(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontPermFlags(databaseOf(library), fontId);
}
int32_t FMLibraryGetFontStringEncoding(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontStringEncoding(databaseOf(library), fontId);
}
CFIndex FMLibraryGetFontNumberOfGlyphs(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseGetFontNumberOfGlyphs(databaseOf(library), fontId);
}
int64_t FMLibraryGetGlyphIdCache(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontGlyphIdCache(databaseOf(library), fontId);
}

CFURLRef FMLibraryCopyFontLocationURL(FMLibraryRef library, FMFontId fontId) {
    const auto location = cf::adopt(FMDatabaseCopyFontLocation(databaseOf(library), fontId));
    return location ? CFURLCreateWithString(nullptr, location.get(), nullptr) : nullptr;
}
CFStringRef FMLibraryCopyFontStyleName(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontStyleName(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontDisplayName(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontDisplayName(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontFullName(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontFullName(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontPostScriptName(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontPostScriptName(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontWindowsIdentifier(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontWindowsIdentifier(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontUniqueId(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontUniqueId(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontNimbraId(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontNimbraId(databaseOf(library), fontId);
}
CFStringRef FMLibraryCopyFontNimbraFamilyName(FMLibraryRef library, FMFontId fontId) {
    return FMDatabaseCopyFontNimbraFamilyName(databaseOf(library), fontId);
}
