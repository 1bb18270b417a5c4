// RecordKind.h: the kinds of records in a font database, by the four characters that begin their
// keys.
#pragma once

namespace fm::record {

// Of the database: the kind is the whole key.
constexpr const char* kNextFontId = "0100";
constexpr const char* kVersion = "0102";
constexpr const char* kSystemResourcesToken = "0103";
constexpr const char* kBaseFontLocation = "0104";
constexpr const char* kPreferredLanguages = "0800";

// Of a font: its id follows.
constexpr const char* kNimbraId = "0200";
constexpr const char* kUniqueId = "0201";
constexpr const char* kPostScriptName = "0202";
constexpr const char* kFullName = "0203";
constexpr const char* kStyleName = "0204";
constexpr const char* kNimbraFamilyName = "0205";
constexpr const char* kLocation = "0206";
constexpr const char* kFaceIndex = "0207";
constexpr const char* kMetrics = "0208";
constexpr const char* kRestrictions = "0209";
constexpr const char* kFormat = "0210";
constexpr const char* kStringEncoding = "0211";
constexpr const char* kNumberOfGlyphs = "0212";
constexpr const char* kDisplayName = "0213";
constexpr const char* kWindowsIdentifier = "0214";
constexpr const char* kPermFlags = "0215";
constexpr const char* kGlyphIdCache = "0216";
constexpr const char* kCharmaps = "0217";

// Of a string: it follows, in lower case.
constexpr const char* kFontOfNimbraId = "0300";
constexpr const char* kLastModified = "0600";

constexpr unsigned kCurrentVersion = 9;
// What stands for no font.
constexpr int kNoFont = -1;

} // namespace fm::record
