// NameTable.h: the texts in a font's name table.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SFNT_NAMES_H

#include <cstdint>

namespace fm {

// In which language a name is wanted.
enum class NameLanguage {
    Preferred,   // The user's, in order; else English; else whichever there is.
    English,     // English, else whichever there is.
    OnlyEnglish, // English or none.
};

// The best text for a name id: the language decides, then the platform, Windows' Unicode before
// others. Records whose bytes are not text in their encoding, or are empty, do not count. NULL when
// there is none, as for a face without a name table.
cf::Ref<CFStringRef> readName(FT_Face face, std::uint16_t nameId, NameLanguage language);

// A record's text, whatever its platform and encoding; NULL when it has none.
cf::Ref<CFStringRef> decodeName(const FT_SfntName& record);

} // namespace fm
