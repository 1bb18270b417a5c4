// NameLanguages.h: the languages that entries of a font's name table are in.
#pragma once

#include <CoreFoundation/CFString.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SFNT_NAMES_H

#include <array>
#include <optional>

namespace fm {

// A language and the script that it is written in, as ISO codes; the likely script and region where
// a tag leaves them out.
struct Language {
    std::array<char, 12> language{};
    std::array<char, 6> script{};
    std::array<char, 4> region{};

    // Of a BCP 47 tag, "zh-TW"; NULL and what is no tag give nothing.
    static std::optional<Language> ofTag(const char* tag);
    static const Language& english();

    bool isReadableAs(const Language& other) const {
        return language == other.language && script == other.script;
    }
};

// The language that a record says it is in; nothing when it does not say, or not in a way we know.
std::optional<Language> languageOfRecord(FT_Face face, const FT_SfntName& record);

} // namespace fm
