// NameLanguages.cpp: language numbers of name tables, and tags, as languages.

#include "Font/NameLanguages.h"

#include FT_TRUETYPE_IDS_H

#include <unicode/uloc.h>

#include <cstring>
#include <string_view>

namespace fm {

namespace {

using Subtags = std::array<char, ULOC_FULLNAME_CAPACITY>;

// Macintosh language codes in order, as they stand for languages in TrueType's name table; "" where
// a number stands for nothing.
constexpr std::array<const char*, 95> kMacLanguages = {
    "en",      "fr", "de", "it",      "nl",      "sv", "es", "da",      "pt",      "nb",
    "he",      "ja", "ar", "fi",      "el",      "is", "mt", "tr",      "hr",      "zh-Hant",
    "ur",      "hi", "th", "ko",      "lt",      "pl", "hu", "et",      "lv",      "se",
    "fo",      "fa", "ru", "zh-Hans", "nl",      "ga", "sq", "ro",      "cs",      "sk",
    "sl",      "yi", "sr", "mk",      "bg",      "uk", "be", "uz",      "kk",      "az-Cyrl",
    "az-Arab", "hy", "ka", "ro-MD",   "ky",      "tg", "tk", "mn-Mong", "mn-Cyrl", "ps",
    "ku",      "ks", "sd", "bo",      "ne",      "sa", "mr", "bn",      "as",      "gu",
    "pa",      "or", "ml", "kn",      "ta",      "te", "si", "my",      "km",      "lo",
    "vi",      "id", "tl", "ms",      "ms-Arab", "am", "ti", "om",      "so",      "sw",
    "rw",      "rn", "ny", "mg",      "eo",
};
constexpr FT_UShort kFirstLaterMacLanguage = 128;
constexpr std::array<const char*, 23> kLaterMacLanguages = {
    "cy", "eu", "ca", "la", "qu", "gn", "ay", "tt", "ug", "dz", "jv",      "su",
    "gl", "af", "br", "iu", "gd", "gv", "ga", "to", "el", "kl", "az-Latn",
};

const char* macLanguage(FT_UShort code) {
    if (code < kMacLanguages.size())
        return kMacLanguages[code];
    if (code >= kFirstLaterMacLanguage &&
        code - kFirstLaterMacLanguage < int{kLaterMacLanguages.size()})
        return kLaterMacLanguages[code - kFirstLaterMacLanguage];
    return nullptr;
}

// ICU's name of a locale with likely subtags filled in.
std::optional<Language> ofLocale(const char* locale) {
    Subtags full;
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(locale, full.data(), int32_t{full.size()}, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return std::nullopt;

    Language found;
    uloc_getLanguage(full.data(), found.language.data(), int32_t{found.language.size()}, &status);
    uloc_getScript(full.data(), found.script.data(), int32_t{found.script.size()}, &status);
    uloc_getCountry(full.data(), found.region.data(), int32_t{found.region.size()}, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING || !found.language[0])
        return std::nullopt;
    return found;
}

std::optional<Language> ofWindowsIdentifier(FT_UShort identifier) {
    // Nearly every record there is.
    if (identifier == TT_MS_LANGID_ENGLISH_UNITED_STATES)
        return Language::english();
    Subtags locale;
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLocaleForLCID(identifier, locale.data(), int32_t{locale.size()}, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return std::nullopt;
    return ofLocale(locale.data());
}

// A tag that the table itself lists, in UTF-16, big end first; all tags are ASCII.
std::optional<Language> ofListedTag(FT_Face face, FT_UShort number) {
    FT_SfntLangTag listed{};
    std::array<char, ULOC_FULLNAME_CAPACITY> tag{};
    if (FT_Get_Sfnt_LangTag(face, number, &listed) != 0 || listed.string_len / 2 >= tag.size())
        return std::nullopt;
    for (FT_UInt i = 0; i < listed.string_len / 2; ++i)
        tag[i] = static_cast<char>(listed.string[2 * i + 1]);
    return Language::ofTag(tag.data());
}

} // namespace

const Language& Language::english() {
    static constexpr Language english{{"en"}, {"Latn"}, {"US"}};
    return english;
}

std::optional<Language> Language::ofTag(const char* tag) {
    if (!tag)
        return std::nullopt;
    if (std::string_view(tag) == "en" || std::string_view(tag) == "en-US")
        return english();
    Subtags locale;
    UErrorCode status = U_ZERO_ERROR;
    uloc_forLanguageTag(tag, locale.data(), int32_t{locale.size()}, nullptr, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING)
        return std::nullopt;
    return ofLocale(locale.data());
}

std::optional<Language> languageOfRecord(FT_Face face, const FT_SfntName& record) {
    constexpr FT_UShort kFirstListedTag = 0x8000;
    if (record.language_id >= kFirstListedTag)
        return ofListedTag(face, record.language_id);
    switch (record.platform_id) {
    case TT_PLATFORM_MACINTOSH:
        return Language::ofTag(macLanguage(record.language_id));
    case TT_PLATFORM_MICROSOFT:
        return ofWindowsIdentifier(record.language_id);
    default:
        return std::nullopt;
    }
}

} // namespace fm
