// CFStringCase.cpp: case, normalisation, transliteration and white space of mutable strings.

#include "CFLocaleInternal.h"
#include "CFStringICU.h"
#include "CFStringInternal.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utrans.h>

#include <algorithm>
#include <array>

namespace {

// Has `function(result, capacity, source, length, status)` write the text anew. The string stays as
// it was when that fails or the text is longer than ICU can take.
template <typename Function>
void rewrite(CFMutableStringRef string, Function function) {
    if (!CF_STRING_IS_MUTABLE(string) || string->length == 0 || string->length > INT32_MAX / 2)
        return;
    const cf::WideText source(string);
    cf::TextBuilder result;
    CFIndex capacity = string->length;
    for (int attempt = 0; attempt < 2; ++attempt) {
        result.truncate(0);
        auto* const room = reinterpret_cast<char16_t*>(result.extend(capacity));
        if (!room)
            return;
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = function(room, static_cast<int32_t>(capacity), source.utf16(),
                                        static_cast<int32_t>(source.length()), &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            capacity = length;
            continue;
        }
        result.truncate(length);
        if (U_SUCCESS(status))
            cf::replaceAll(string, result);
        return;
    }
}

// Without a locale the root's rules hold, not those of the process.
const char* identifierOrRoot(CFLocaleRef locale) {
    return locale ? cf::localeIdentifier(locale) : "";
}

const UNormalizer2* normalizerOf(CFStringNormalizationForm form) {
    UErrorCode status = U_ZERO_ERROR;
    switch (form) {
    case kCFStringNormalizationFormD:
        return unorm2_getNFDInstance(&status);
    case kCFStringNormalizationFormKD:
        return unorm2_getNFKDInstance(&status);
    case kCFStringNormalizationFormC:
        return unorm2_getNFCInstance(&status);
    case kCFStringNormalizationFormKC:
        return unorm2_getNFKCInstance(&status);
    }
    return nullptr;
}

} // namespace

void CFStringLowercase(CFMutableStringRef string, CFLocaleRef locale) {
    const char* const identifier = identifierOrRoot(locale);
    rewrite(string, [identifier](char16_t* result, int32_t capacity, const char16_t* source,
                                 int32_t length, UErrorCode* status) {
        return u_strToLower(result, capacity, source, length, identifier, status);
    });
}

void CFStringUppercase(CFMutableStringRef string, CFLocaleRef locale) {
    const char* const identifier = identifierOrRoot(locale);
    rewrite(string, [identifier](char16_t* result, int32_t capacity, const char16_t* source,
                                 int32_t length, UErrorCode* status) {
        return u_strToUpper(result, capacity, source, length, identifier, status);
    });
}

void CFStringCapitalize(CFMutableStringRef string, CFLocaleRef locale) {
    const char* const identifier = identifierOrRoot(locale);
    rewrite(string, [identifier](char16_t* result, int32_t capacity, const char16_t* source,
                                 int32_t length, UErrorCode* status) {
        return u_strToTitle(result, capacity, source, length, nullptr, identifier, status);
    });
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    if (const UNormalizer2* const normalizer = normalizerOf(form))
        rewrite(string, [normalizer](char16_t* result, int32_t capacity, const char16_t* source,
                                     int32_t length, UErrorCode* status) {
            return unorm2_normalize(normalizer, source, length, result, capacity, status);
        });
}

void CFStringTrimWhitespace(CFMutableStringRef string) {
    if (!CF_STRING_IS_MUTABLE(string))
        return;
    const cf::Text text(string);
    CFIndex begin = 0;
    CFIndex end = text.length();
    while (begin < end && u_isUWhiteSpace(text[begin]))
        ++begin;
    while (end > begin && u_isUWhiteSpace(text[end - 1]))
        --end;
    cf::replace(string, CFRangeMake(end, text.length() - end), cf::Text());
    cf::replace(string, CFRangeMake(0, begin), cf::Text());
}

// ---- Transliteration

// The texts are ICU's own identifiers, so that a constant needs no translation.
CF_CONST_STRING_DECL(kCFStringTransformStripCombiningMarks, "NFD; [:Mn:] Remove; NFC");
CF_CONST_STRING_DECL(kCFStringTransformToLatin, "Any-Latin");
CF_CONST_STRING_DECL(kCFStringTransformFullwidthHalfwidth, "Fullwidth-Halfwidth");
CF_CONST_STRING_DECL(kCFStringTransformLatinKatakana, "Latin-Katakana");
CF_CONST_STRING_DECL(kCFStringTransformLatinHiragana, "Latin-Hiragana");
CF_CONST_STRING_DECL(kCFStringTransformHiraganaKatakana, "Hiragana-Katakana");
CF_CONST_STRING_DECL(kCFStringTransformMandarinLatin, "Han-Latin");
CF_CONST_STRING_DECL(kCFStringTransformLatinHangul, "Latin-Hangul");
CF_CONST_STRING_DECL(kCFStringTransformLatinArabic, "Latin-Arabic");
CF_CONST_STRING_DECL(kCFStringTransformLatinHebrew, "Latin-Hebrew");
CF_CONST_STRING_DECL(kCFStringTransformLatinThai, "Latin-Thai");
CF_CONST_STRING_DECL(kCFStringTransformLatinCyrillic, "Latin-Cyrillic");
CF_CONST_STRING_DECL(kCFStringTransformLatinGreek, "Latin-Greek");
CF_CONST_STRING_DECL(kCFStringTransformToXMLHex, "Any-Hex/XML");
CF_CONST_STRING_DECL(kCFStringTransformToUnicodeName, "Any-Name");
CF_CONST_STRING_DECL(kCFStringTransformStripDiacritics,
                     "NFD; [[:Mn:]&[:ccc=230:]] Remove; [[:Mn:]&[:ccc=220:]] Remove; NFC");

namespace {

using Transliterator = std::unique_ptr<UTransliterator, cf::CloseBy<utrans_close>>;

Transliterator openTransliterator(CFStringRef identifier, Boolean reverse) {
    const cf::WideText name(identifier);
    if (!name || name.length() > INT32_MAX)
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    Transliterator transliterator(utrans_openU(name.utf16(), static_cast<int32_t>(name.length()),
                                               reverse ? UTRANS_REVERSE : UTRANS_FORWARD, nullptr,
                                               0, nullptr, &status));
    return U_SUCCESS(status) ? std::move(transliterator) : nullptr;
}

// The transliteration of `text`, in room that grows until it is enough; false when it cannot be
// had.
bool transliterate(const UTransliterator* transliterator, const cf::Text& text,
                   cf::TextBuilder& result) {
    for (CFIndex capacity = text.length() * 2 + 64; capacity <= INT32_MAX; capacity *= 2) {
        result.truncate(0);
        UniChar* const room = result.extend(capacity);
        if (!room)
            return false;
        text.copyTo(room);
        auto length = static_cast<int32_t>(text.length());
        int32_t limit = length;
        UErrorCode status = U_ZERO_ERROR;
        utrans_transUChars(transliterator, reinterpret_cast<char16_t*>(room), &length,
                           static_cast<int32_t>(capacity), 0, &limit, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR)
            continue;
        result.truncate(length);
        return U_SUCCESS(status);
    }
    return false;
}

} // namespace

Boolean CFStringTransform(CFMutableStringRef string, CFRange* range, CFStringRef transform,
                          Boolean reverse) {
    if (!cf::isString(transform) || !CF_STRING_IS_MUTABLE(string))
        return false;
    const CFRange whole = range ? *range : CFRangeMake(0, string->length);
    if (!CF_RANGE_IS_WITHIN(whole, string->length) || whole.length > INT32_MAX / 4)
        return false;
    const auto transliterator = openTransliterator(transform, reverse);
    cf::TextBuilder result;
    if (!transliterator ||
        !transliterate(transliterator.get(), cf::Text(string).part(whole.location, whole.length),
                       result) ||
        !cf::replace(string, whole, result.text()))
        return false;
    if (range)
        range->length = result.length();
    return true;
}
