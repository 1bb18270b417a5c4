// RecordText.h: names in a database, read without making strings of them.
#pragma once

#include <FontManager/FMDatabase.h>

#include <optional>
#include <string>

namespace fm {

// A font's record of that kind (Database/RecordKind.h) in lower case; nothing where there is none
// or it is no UTF-8. Start-up goes over the names of all fonts.
std::optional<std::u16string> lowerCasedRecord(FMDatabaseRef database, const char* kind,
                                               FMFontId fontId);

// Whether there is such a record, and it is UTF-8.
bool isTextRecord(FMDatabaseRef database, const char* kind, FMFontId fontId);

// The file-system path in a font's location record; empty where there is none.
std::string pathInRecord(FMDatabaseRef database, FMFontId fontId);

} // namespace fm
