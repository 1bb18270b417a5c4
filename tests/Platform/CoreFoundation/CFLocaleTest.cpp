// CFLocaleTest.cpp: locales, their names and the user's languages.

#include <CoreFoundation/CFLocale.h>
#include <CoreFoundation/CFNumber.h>

#include "StringTexts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

using Locale = cf::Ref<CFLocaleRef>;
using test::String;
using test::utf8;

String ascii(const char* text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
}

Locale locale(const char* identifier) {
    return cf::adopt(CFLocaleCreate(nullptr, ascii(identifier).get()));
}

std::string value(CFLocaleRef locale, CFStringRef key) {
    const CFTypeRef found = CFLocaleGetValue(locale, key);
    return found ? utf8(static_cast<CFStringRef>(found)) : "(none)";
}

// Sets environment variables for a scope and puts back what was there.
class Environment {
public:
    explicit Environment(const std::map<std::string, std::string>& values) {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* const before = std::getenv(name);
            before_[name] = before ? std::optional<std::string>(before) : std::nullopt;
            const auto found = values.find(name);
            set(name, found == values.end() ? std::nullopt : std::optional(found->second));
        }
    }
    ~Environment() {
        for (const auto& [name, text] : before_)
            set(name.c_str(), text);
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    static void set(const char* name, const std::optional<std::string>& text) {
        if (text)
            setenv(name, text->c_str(), 1);
        else
            unsetenv(name);
    }

    std::map<std::string, std::optional<std::string>> before_;
};

TEST(CFLocale, KnowsItsParts) {
    const struct {
        const char* identifier;
        const char* canonical;
        const char* language;
        const char* script;
        const char* country;
    } cases[] = {
        {"de_AT", "de_AT", "de", "(none)", "AT"},
        {"de-at", "de_AT", "de", "(none)", "AT"},
        {"zh-Hant-TW", "zh_Hant_TW", "zh", "Hant", "TW"},
        {"zh_hans", "zh_Hans", "zh", "Hans", "(none)"},
        {"en_US.UTF-8", "en_US", "en", "(none)", "US"},
        {"fr", "fr", "fr", "(none)", "(none)"},
        {"", "", "(none)", "(none)", "(none)"},
    };
    for (const auto& [identifier, canonical, language, script, country] : cases) {
        const Locale made = locale(identifier);
        EXPECT_EQ(utf8(CFLocaleGetIdentifier(made.get())), canonical) << identifier;
        EXPECT_EQ(value(made.get(), kCFLocaleIdentifier), canonical) << identifier;
        EXPECT_EQ(value(made.get(), kCFLocaleLanguageCode), language) << identifier;
        EXPECT_EQ(value(made.get(), kCFLocaleScriptCode), script) << identifier;
        EXPECT_EQ(value(made.get(), kCFLocaleCountryCode), country) << identifier;
    }
}

TEST(CFLocale, KnowsConventions) {
    const Locale german = locale("de_DE");
    const Locale american = locale("en_US");
    EXPECT_EQ(value(german.get(), kCFLocaleDecimalSeparator), ",");
    EXPECT_EQ(value(american.get(), kCFLocaleDecimalSeparator), ".");
    EXPECT_EQ(value(german.get(), kCFLocaleGroupingSeparator), ".");
    EXPECT_EQ(value(german.get(), kCFLocaleCurrencyCode), "EUR");
    EXPECT_EQ(value(american.get(), kCFLocaleCurrencySymbol), "$");
    EXPECT_EQ(value(german.get(), kCFLocaleMeasurementSystem), "Metric");
    EXPECT_EQ(value(american.get(), kCFLocaleMeasurementSystem), "U.S.");
    EXPECT_EQ(value(german.get(), kCFLocaleQuotationBeginDelimiterKey), "\u201E");
    EXPECT_EQ(CFLocaleGetValue(german.get(), kCFLocaleUsesMetricSystem), kCFBooleanTrue);
    EXPECT_EQ(CFLocaleGetValue(american.get(), kCFLocaleUsesMetricSystem), kCFBooleanFalse);
    EXPECT_EQ(CFLocaleGetValue(german.get(), CFSTR("no such key")), nullptr);
}

TEST(CFLocale, EqualsByIdentifier) {
    EXPECT_TRUE(CFEqual(locale("de-AT").get(), locale("de_AT").get()));
    EXPECT_EQ(CFHash(locale("de-AT").get()), CFHash(locale("de_AT").get()));
    EXPECT_FALSE(CFEqual(locale("de").get(), locale("de_AT").get()));
    EXPECT_EQ(CFGetTypeID(locale("de").get()), CFLocaleGetTypeID());
    EXPECT_EQ(utf8(CFLocaleGetIdentifier(CFLocaleGetSystem())), "");
    const Locale made = locale("it");
    EXPECT_EQ(cf::adopt(CFLocaleCreateCopy(nullptr, made.get())), made);
}

TEST(CFLocale, AnswersNeutrallyToBadInput) {
    EXPECT_EQ(CFLocaleGetValue(CFLocaleGetSystem(), nullptr), nullptr);
    EXPECT_EQ(CFLocaleCreate(nullptr, ascii(std::string(500, 'x').c_str()).get()), nullptr);
}

TEST(CFLocale, BringsLanguagesIntoTheirCanonicalForm) {
    const std::pair<const char*, const char*> cases[] = {
        {"en_US", "en-US"}, {"EN-us", "en-US"},     {"de_AT.UTF-8", "de-AT"}, {"English", "en"},
        {"ja", "ja"},       {"zh_Hant", "zh-Hant"}, {"\u65E5", "\u65E5"},
    };
    for (const auto& [name, expected] : cases) {
        const String tag = cf::adopt(
            CFLocaleCreateCanonicalLanguageIdentifierFromString(nullptr, ascii(name).get()));
        EXPECT_EQ(utf8(tag.get()), expected);
    }
    const String identifier =
        cf::adopt(CFLocaleCreateCanonicalLocaleIdentifierFromString(nullptr, CFSTR("pt-br")));
    EXPECT_EQ(utf8(identifier.get()), "pt_BR");
}

TEST(CFLocale, ReadsTheUsersLanguages) {
    const struct {
        const char* what;
        std::map<std::string, std::string> environment;
        std::vector<std::string> languages;
        const char* current;
    } cases[] = {
        {"nothing set", {}, {"en"}, "en_US"},
        {"C locale", {{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, {"en"}, "en_US"},
        {"LANG", {{"LANG", "de_AT.UTF-8"}}, {"de-AT"}, "de_AT"},
        {"LC_ALL wins",
         {{"LANG", "de_AT.UTF-8"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "it_IT@euro"}},
         {"it-IT"},
         "it_IT"},
        {"list, then locale",
         {{"LANG", "sv_SE.UTF-8"}, {"LANGUAGE", "pt_BR:en::sv_SE"}},
         {"pt-BR", "en", "sv-SE"},
         "sv_SE"},
        {"script",
         {{"LANG", "sr_RS@latin"}, {"LANGUAGE", "zh_Hans_CN"}},
         {"zh-Hans-CN", "sr-RS"},
         "sr_RS"},
    };
    for (const auto& [what, environment, languages, current] : cases) {
        const Environment scope(environment);
        const auto list = cf::adopt(CFLocaleCopyPreferredLanguages());
        std::vector<std::string> found;
        for (CFIndex i = 0; i < CFArrayGetCount(list.get()); ++i)
            found.push_back(utf8(CFStringRef(CFArrayGetValueAtIndex(list.get(), i))));
        EXPECT_EQ(found, languages) << what;
        const Locale made = cf::adopt(CFLocaleCopyCurrent());
        EXPECT_EQ(utf8(CFLocaleGetIdentifier(made.get())), current) << what;
    }
}

TEST(CFLocale, ListsWhatISOLists) {
    const auto contains = [](CFArrayRef list, const char* name) {
        return CFArrayContainsValue(list, CFRangeMake(0, CFArrayGetCount(list)), ascii(name).get());
    };
    const auto languages = cf::adopt(CFLocaleCopyISOLanguageCodes());
    const auto countries = cf::adopt(CFLocaleCopyISOCountryCodes());
    const auto currencies = cf::adopt(CFLocaleCopyISOCurrencyCodes());
    const auto locales = cf::adopt(CFLocaleCopyAvailableLocaleIdentifiers());
    for (const char* code : {"en", "de", "ja", "zh", "haw"})
        EXPECT_TRUE(contains(languages.get(), code)) << code;
    for (const char* code : {"DE", "US", "JP"})
        EXPECT_TRUE(contains(countries.get(), code)) << code;
    EXPECT_TRUE(contains(currencies.get(), "EUR"));
    EXPECT_TRUE(contains(locales.get(), "de_AT"));
    EXPECT_FALSE(contains(languages.get(), "xx"));
}

} // namespace
