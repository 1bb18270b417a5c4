// ExemplarCharacters.cpp: reading exemplar characters from ICU's locale data.

#include "Face/ExemplarCharacters.h"

#include "Face/RecordList.h"

#include <unicode/uloc.h>
#include <unicode/ulocdata.h>

#include <new>

namespace fm {

namespace {

using LocaleData = std::unique_ptr<ULocaleData, DestroyBy<ulocdata_close>>;

// A country or a variant does not change what a language is written with.
bool isLanguageOrScript(const char* locale) {
    std::array<char, ULOC_FULLNAME_CAPACITY> part;
    const auto capacity = static_cast<int32_t>(part.size());
    UErrorCode status = U_ZERO_ERROR;
    return uloc_getCountry(locale, part.data(), capacity, &status) == 0 &&
           uloc_getVariant(locale, part.data(), capacity, &status) == 0 && U_SUCCESS(status);
}

// Letters of both cases. Left out are modifier letters, which are apostrophes to most who write
// them, and the capitals of Georgian, which no text uses for proper case.
CharacterRanges exemplars(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    const LocaleData data(ulocdata_open(locale, &status));
    if (!data || U_FAILURE(status))
        return nullptr;
    CharacterRanges characters(ulocdata_getExemplarSet(data.get(), nullptr, USET_ADD_CASE_MAPPINGS,
                                                       ULOCDATA_ES_STANDARD, &status));
    if (!characters || U_FAILURE(status) || status == U_USING_DEFAULT_WARNING)
        return nullptr;
    uset_removeAllStrings(characters.get());
    uset_removeRange(characters.get(), 0x02B0, 0x02FF);
    uset_removeRange(characters.get(), 0x1C90, 0x1CBF);
    uset_compact(characters.get());
    return uset_isEmpty(characters.get()) ? nullptr : std::move(characters);
}

bool read(const char* locale, ExemplarCharacters* language) {
    UErrorCode status = U_ZERO_ERROR;
    const auto capacity = static_cast<int32_t>(language->tag.size());
    if (!isLanguageOrScript(locale) ||
        uloc_toLanguageTag(locale, language->tag.data(), capacity, false, &status) >= capacity ||
        U_FAILURE(status))
        return false;
    language->characters = exemplars(locale);
    return language->characters != nullptr;
}

RecordList<ExemplarCharacters> readAll() {
    const int32_t count = uloc_countAvailable();
    RecordList<ExemplarCharacters> languages(static_cast<size_t>(count));
    size_t read = 0;
    for (int32_t i = 0; !languages.empty() && i < count; ++i)
        if (fm::read(uloc_getAvailable(i), &languages[read]))
            ++read;
    languages.truncate(read);
    return languages;
}

} // namespace

std::span<const ExemplarCharacters> exemplarCharacters() {
    // Never destroyed: threads may ask while the process ends.
    static const auto* const languages =
        new (std::nothrow) RecordList<ExemplarCharacters>(readAll());
    if (!languages)
        return {};
    return {languages->data(), languages->size()};
}

} // namespace fm
