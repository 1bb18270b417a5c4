// CFLocaleNames.cpp: names of locales and languages: canonical forms, the user's choice, lists.

#include "CFLocaleNames.h"

#include <CoreFoundation/CFRef.h>

#include "CFStringInternal.h"

#include <unicode/ucurr.h>
#include <unicode/uenum.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

using Name = char[ULOC_FULLNAME_CAPACITY];

// Languages that old bundles name in English.
constexpr struct {
    std::string_view word;
    const char* code;
} kEnglishNames[] = {
    {"Dutch", "nl"},   {"English", "en"},  {"French", "fr"},     {"German", "de"},
    {"Italian", "it"}, {"Japanese", "ja"}, {"Portuguese", "pt"}, {"Spanish", "es"},
    {"Swedish", "sv"}, {"Korean", "ko"},   {"Russian", "ru"},    {"Chinese", "zh"},
};

const char* codeOfEnglishName(std::string_view text) {
    const auto found =
        std::ranges::find(kEnglishNames, text, [](const auto& row) { return row.word; });
    return found == std::end(kEnglishNames) ? nullptr : found->code;
}

// "de_AT.UTF-8@euro" and "de-AT" alike become "de_AT"; false when the result does not fit.
bool canonicalize(std::string_view text, char* name) {
    Name plain;
    const size_t length = std::min(text.find_first_of(".@"), text.size());
    if (length >= sizeof plain)
        return false;
    text.copy(plain, length);
    plain[length] = 0;
    if (const char* const code = codeOfEnglishName(plain)) {
        std::strcpy(name, code);
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    int32_t parsed = 0;
    uloc_forLanguageTag(plain, name, ULOC_FULLNAME_CAPACITY, &parsed, &status);
    if (U_SUCCESS(status) && static_cast<size_t>(parsed) == length)
        return status != U_STRING_NOT_TERMINATED_WARNING;
    status = U_ZERO_ERROR;
    uloc_canonicalize(plain, name, ULOC_FULLNAME_CAPACITY, &status);
    return U_SUCCESS(status) && status != U_STRING_NOT_TERMINATED_WARNING;
}

bool namesNothing(std::string_view name) {
    return name.empty() || name == "C" || name == "POSIX" || name.starts_with("C.");
}

const char* environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

// The setting for messages, by the rule of the C library.
std::string_view currentSetting() {
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const std::string_view value = environment(variable); !value.empty())
            return value;
    return {};
}

cf::Ref<CFStringRef> languageTag(std::string_view text) {
    Name name;
    Name tag;
    UErrorCode status = U_ZERO_ERROR;
    if (!canonicalize(text, name))
        return nullptr;
    uloc_toLanguageTag(name, tag, sizeof tag, false, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING ||
        std::strcmp(tag, "und") == 0)
        return nullptr;
    return cf::adopt(CFStringCreateWithCString(nullptr, tag, kCFStringEncodingASCII));
}

void addLanguage(CFMutableArrayRef languages, std::string_view text) {
    if (namesNothing(text))
        return;
    const auto tag = languageTag(text);
    const CFRange all = CFRangeMake(0, CFArrayGetCount(languages));
    if (tag && !CFArrayContainsValue(languages, all, tag.get()))
        CFArrayAppendValue(languages, tag.get());
}

cf::Ref<CFMutableArrayRef> makeArray() {
    return cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
}

void addName(CFMutableArrayRef names, const char* text) {
    const auto name = cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingASCII));
    if (name)
        CFArrayAppendValue(names, name.get());
}

CFArrayRef copyList(const char* const* names) {
    auto list = makeArray();
    for (; list && *names; ++names)
        addName(list.get(), *names);
    return list.release();
}

// The identifier as bytes; false for what no identifier is.
bool readName(CFStringRef identifier, char* name) {
    return CFStringGetCString(identifier, name, ULOC_FULLNAME_CAPACITY, kCFStringEncodingASCII);
}

} // namespace

namespace cf {

void readCurrentLocale(char* name) {
    const std::string_view setting = currentSetting();
    if (namesNothing(setting) || !canonicalize(setting, name))
        std::strcpy(name, "en_US");
}

bool canonicalizeLocale(CFStringRef identifier, char* name) {
    char text[ULOC_FULLNAME_CAPACITY];
    return readName(identifier, text) && canonicalize(text, name);
}

} // namespace cf

CFArrayRef CFLocaleCopyPreferredLanguages(void) {
    auto languages = makeArray();
    if (!languages)
        return nullptr;
    const std::string_view setting = currentSetting();
    // A list of languages counts only where the locale asks for translations at all.
    if (!namesNothing(setting)) {
        std::string_view list = environment("LANGUAGE");
        while (!list.empty()) {
            const size_t end = std::min(list.find(':'), list.size());
            addLanguage(languages.get(), list.substr(0, end));
            list.remove_prefix(std::min(end + 1, list.size()));
        }
    }
    addLanguage(languages.get(), setting);
    if (CFArrayGetCount(languages.get()) == 0)
        CFArrayAppendValue(languages.get(), CFSTR("en"));
    return languages.release();
}

CFArrayRef CFLocaleCopyAvailableLocaleIdentifiers(void) {
    auto list = makeArray();
    for (int32_t i = 0; list && i < uloc_countAvailable(); ++i)
        addName(list.get(), uloc_getAvailable(i));
    return list.release();
}

CFArrayRef CFLocaleCopyISOLanguageCodes(void) {
    return copyList(uloc_getISOLanguages());
}
CFArrayRef CFLocaleCopyISOCountryCodes(void) {
    return copyList(uloc_getISOCountries());
}

CFArrayRef CFLocaleCopyISOCurrencyCodes(void) {
    auto list = makeArray();
    UErrorCode status = U_ZERO_ERROR;
    UEnumeration* const codes = ucurr_openISOCurrencies(UCURR_ALL, &status);
    while (const char* const code = list ? uenum_next(codes, nullptr, &status) : nullptr)
        addName(list.get(), code);
    uenum_close(codes);
    return list.release();
}

CFLocaleIdentifier CFLocaleCreateCanonicalLanguageIdentifierFromString(CFAllocatorRef allocator,
                                                                       CFStringRef identifier) {
    if (!cf::isString(identifier))
        return nullptr;
    char text[ULOC_FULLNAME_CAPACITY];
    const auto tag = readName(identifier, text) ? languageTag(text) : nullptr;
    return CFStringCreateCopy(allocator, tag ? tag.get() : identifier);
}

CFLocaleIdentifier CFLocaleCreateCanonicalLocaleIdentifierFromString(CFAllocatorRef allocator,
                                                                     CFStringRef identifier) {
    if (!cf::isString(identifier))
        return nullptr;
    char name[ULOC_FULLNAME_CAPACITY];
    return cf::canonicalizeLocale(identifier, name)
               ? CFStringCreateWithCString(allocator, name, kCFStringEncodingASCII)
               : CFStringCreateCopy(allocator, identifier);
}
