// CFStringMutableTest.cpp: changing strings, held against std::u16string and ICU.

#include "StringTexts.h"
#include "Support/CollectedLog.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

using test::MutableString;
using test::mutableString;
using test::string;
using test::String;
using test::text;

TEST(CFMutableString, FollowsEveryChange) {
    std::mt19937 random(5);
    const auto changed = cf::adopt(CFStringCreateMutable(nullptr, 0));
    std::u16string expected;
    for (int round = 0; round < 3000; ++round) {
        const std::u16string piece = test::randomText(random, 12);
        const String other = string(piece);
        const size_t location = random() % (expected.size() + 1);
        const size_t length = std::min<size_t>(random() % 16, expected.size() - location);
        const CFRange range = CFRangeMake(CFIndex(location), CFIndex(length));
        switch (random() % 7) {
        case 0:
            CFStringAppend(changed.get(), other.get());
            expected += piece;
            break;
        case 1:
            CFStringInsert(changed.get(), CFIndex(location), other.get());
            expected.insert(location, piece);
            break;
        case 2:
        case 3:
            CFStringDelete(changed.get(), range);
            expected.erase(location, length);
            break;
        case 4:
            CFStringReplace(changed.get(), range, other.get());
            expected.replace(location, length, piece);
            break;
        case 5:
            CFStringAppendCharacters(changed.get(), test::units(piece), CFIndex(piece.size()));
            expected += piece;
            break;
        case 6:
            CFStringAppendFormat(changed.get(), nullptr, CFSTR("%@-%d"), other.get(), round);
            expected += piece + u"-";
            for (const char c : std::to_string(round))
                expected += char16_t(c);
            break;
        }
        ASSERT_EQ(text(changed.get()), expected) << round;
        if (expected.size() > 400) {
            CFStringReplaceAll(changed.get(), other.get());
            expected = piece;
        }
    }
}

TEST(CFMutableString, TakesItselfAsSource) {
    const MutableString changed = mutableString(u"abcdef");
    CFStringInsert(changed.get(), 3, changed.get());
    EXPECT_EQ(text(changed.get()), u"abcabcdefdef");
    CFStringAppend(changed.get(), changed.get());
    EXPECT_EQ(text(changed.get()), u"abcabcdefdefabcabcdefdef");
    CFStringReplaceAll(changed.get(), changed.get());
    EXPECT_EQ(CFStringGetLength(changed.get()), 24);
    CFStringAppendCharacters(changed.get(), CFStringGetCharactersPtr(changed.get()) + 3, 3);
    EXPECT_EQ(text(changed.get()).substr(24), u"abc");
}

TEST(CFMutableString, RefusesImmutableStringsAndBadRanges) {
    CollectedLog log;
    const auto constant = const_cast<CFMutableStringRef>(CFSTR("constant"));
    CFStringAppend(constant, CFSTR("x"));
    CFStringUppercase(constant, nullptr);
    CFStringTrimWhitespace(constant);
    EXPECT_EQ(text(CFSTR("constant")), u"constant");
    EXPECT_EQ(log.lines().size(), 3u);

    const MutableString changed = mutableString(u"abc");
    CFStringDelete(changed.get(), CFRangeMake(2, 2));
    CFStringInsert(changed.get(), 4, CFSTR("x"));
    CFStringReplace(changed.get(), CFRangeMake(-1, 1), CFSTR("x"));
    CFStringPad(changed.get(), CFSTR("x"), -1, 0);
    CFStringPad(changed.get(), CFSTR("x"), 9, 1);
    CFStringAppendCharacters(changed.get(), nullptr, 3);
    CFStringAppendCString(changed.get(), "\xFF", kCFStringEncodingUTF8);
    EXPECT_EQ(text(changed.get()), u"abc");
}

TEST(CFMutableString, WorksInACallersBuffer) {
    std::array<UniChar, 8> buffer = {'a', 'b'};
    const MutableString changed = cf::adopt(CFStringCreateMutableWithExternalCharactersNoCopy(
        nullptr, buffer.data(), 2, buffer.size(), kCFAllocatorNull));
    CFStringAppend(changed.get(), CFSTR("cd"));
    EXPECT_EQ(buffer[3], 'd');
    CollectedLog log;
    CFStringAppend(changed.get(), CFSTR("too long for it"));
    EXPECT_EQ(text(changed.get()), u"abcd") << "it neither moves nor overruns";
    EXPECT_EQ(log.lines().size(), 1u);

    std::array<UniChar, 4> other = {'x', 'y', 'z', 0};
    CFStringSetExternalCharactersNoCopy(changed.get(), other.data(), 3, 4);
    EXPECT_EQ(text(changed.get()), u"xyz");
    CFStringAppend(changed.get(), CFSTR("!"));
    EXPECT_EQ(other[3], '!');

    const MutableString own = mutableString(u"own");
    CFStringSetExternalCharactersNoCopy(own.get(), other.data(), 3, 4);
    EXPECT_EQ(text(own.get()), u"own");
}

TEST(CFMutableString, GrowsACallersBufferByItsAllocator) {
    auto* const buffer = static_cast<UniChar*>(CFAllocatorAllocate(nullptr, 4, 0));
    buffer[0] = 'a';
    const MutableString changed = cf::adopt(
        CFStringCreateMutableWithExternalCharactersNoCopy(nullptr, buffer, 1, 2, nullptr));
    for (int i = 0; i < 100; ++i)
        CFStringAppend(changed.get(), CFSTR("bc"));
    EXPECT_EQ(CFStringGetLength(changed.get()), 201);
}

TEST(CFMutableString, PadsAndTrims) {
    const struct {
        const char* what;
        std::u16string characters;
        void (*change)(CFMutableStringRef);
        std::u16string expected;
    } cases[] = {
        {"pad", u"abc", [](auto s) { CFStringPad(s, CFSTR(" "), 6, 0); }, u"abc   "},
        {"pad from within", u"abc", [](auto s) { CFStringPad(s, CFSTR("123"), 8, 1); },
         u"abc23123"},
        {"pad by nothing", u"abc", [](auto s) { CFStringPad(s, nullptr, 6, 0); }, u"abc"},
        {"cut", u"abc", [](auto s) { CFStringPad(s, nullptr, 2, 0); }, u"ab"},
        {"trim", u"xxaxbxx", [](auto s) { CFStringTrim(s, CFSTR("x")); }, u"axb"},
        {"trim pairs", u"abaXab", [](auto s) { CFStringTrim(s, CFSTR("ab")); }, u"aX"},
        {"trim all", u"xx", [](auto s) { CFStringTrim(s, CFSTR("x")); }, u""},
        {"trim nothing", u"xx", [](auto s) { CFStringTrim(s, CFSTR("")); }, u"xx"},
        {"white space", u" \t\n\u3000a b\u00A0\r\n", CFStringTrimWhitespace, u"a b"},
        {"only white space", u" \n ", CFStringTrimWhitespace, u""},
        {"no white space", u"ab", CFStringTrimWhitespace, u"ab"},
    };
    for (const auto& [what, characters, change, expected] : cases) {
        const MutableString changed = mutableString(characters);
        change(changed.get());
        EXPECT_EQ(text(changed.get()), expected) << what;
    }
}

icu::UnicodeString unicode(const std::u16string& text) {
    return {text.data(), int32_t(text.size())};
}

std::u16string plain(const icu::UnicodeString& text) {
    return {text.getBuffer(), size_t(text.length())};
}

TEST(CFMutableString, ChangesCaseLikeICU) {
    std::mt19937 random(6);
    std::u16string samples[40] = {u"", u"stra\u00DFe", u"\u0130I\u0131i", u"\uFB03", u"o'neil mc"};
    for (size_t i = 5; i < std::size(samples); ++i)
        samples[i] = test::randomText(random, 60);
    for (const char* const name : {"", "tr", "lt", "de"}) {
        const auto identifier =
            cf::adopt(CFStringCreateWithCString(nullptr, name, kCFStringEncodingASCII));
        const auto locale = *name ? cf::adopt(CFLocaleCreate(nullptr, identifier.get())) : nullptr;
        const icu::Locale oracle(name);
        for (const std::u16string& sample : samples) {
            const MutableString lower = mutableString(sample);
            CFStringLowercase(lower.get(), locale.get());
            EXPECT_EQ(text(lower.get()), plain(unicode(sample).toLower(oracle))) << name;
            const MutableString upper = mutableString(sample);
            CFStringUppercase(upper.get(), locale.get());
            EXPECT_EQ(text(upper.get()), plain(unicode(sample).toUpper(oracle))) << name;
            const MutableString title = mutableString(sample);
            CFStringCapitalize(title.get(), locale.get());
            EXPECT_EQ(text(title.get()), plain(unicode(sample).toTitle(nullptr, oracle))) << name;
        }
    }
}

TEST(CFMutableString, NormalizesLikeICU) {
    const struct {
        CFStringNormalizationForm form;
        const icu::Normalizer2* (*oracle)(UErrorCode&);
    } forms[] = {
        {kCFStringNormalizationFormC, icu::Normalizer2::getNFCInstance},
        {kCFStringNormalizationFormD, icu::Normalizer2::getNFDInstance},
        {kCFStringNormalizationFormKC, icu::Normalizer2::getNFKCInstance},
        {kCFStringNormalizationFormKD, icu::Normalizer2::getNFKDInstance},
    };
    std::mt19937 random(7);
    for (int round = 0; round < 100; ++round) {
        const std::u16string sample = test::randomText(random, 60) + u"\u00E9\uFB01\uD55C";
        for (const auto& [form, oracle] : forms) {
            UErrorCode status = U_ZERO_ERROR;
            const MutableString changed = mutableString(sample);
            CFStringNormalize(changed.get(), form);
            EXPECT_EQ(text(changed.get()),
                      plain(oracle(status)->normalize(unicode(sample), status)));
        }
    }
    const MutableString kept = mutableString(u"\u00E9");
    CFStringNormalize(kept.get(), CFStringNormalizationForm(9));
    EXPECT_EQ(text(kept.get()), u"\u00E9");
}

TEST(CFMutableString, FoldsDifferencesAway) {
    const struct {
        const char* what;
        CFStringCompareFlags flags;
        std::u16string expected;
    } cases[] = {
        {"nothing", 0, u"\u00C9t\u00E9 \uFF21 \uD55C"},
        {"case", kCFCompareCaseInsensitive, u"\u00E9t\u00E9 \uFF41 \uD55C"},
        {"marks", kCFCompareDiacriticInsensitive, u"Ete \uFF21 \uD55C"},
        {"width", kCFCompareWidthInsensitive, u"\u00C9t\u00E9 A \uD55C"},
        {"all",
         kCFCompareCaseInsensitive | kCFCompareDiacriticInsensitive | kCFCompareWidthInsensitive,
         u"ete a \uD55C"},
    };
    for (const auto& [what, flags, expected] : cases) {
        const MutableString changed = mutableString(u"\u00C9t\u00E9 \uFF21 \uD55C");
        CFStringFold(changed.get(), flags, nullptr);
        EXPECT_EQ(text(changed.get()), expected) << what;
    }
}

TEST(CFMutableString, Transliterates) {
    const MutableString greek = mutableString(u"\u0391\u03B8\u03AE\u03BD\u03B1");
    EXPECT_TRUE(CFStringTransform(greek.get(), nullptr, kCFStringTransformToLatin, false));
    EXPECT_EQ(text(greek.get()), u"Ath\u1E17na");
    EXPECT_TRUE(
        CFStringTransform(greek.get(), nullptr, kCFStringTransformStripCombiningMarks, false));
    EXPECT_EQ(text(greek.get()), u"Athena");

    CFRange range = CFRangeMake(2, 2);
    const MutableString kana = mutableString(u"ka\u3042\u3044");
    EXPECT_TRUE(CFStringTransform(kana.get(), &range, kCFStringTransformHiraganaKatakana, false));
    EXPECT_EQ(text(kana.get()), u"ka\u30A2\u30A4");
    EXPECT_EQ(range, CFRangeMake(2, 2));
    range = CFRangeMake(0, 1);
    EXPECT_TRUE(CFStringTransform(kana.get(), &range, kCFStringTransformToXMLHex, false));
    EXPECT_EQ(range, CFRangeMake(0, 6));
    EXPECT_EQ(text(kana.get()), u"&#x6B;a\u30A2\u30A4");
    EXPECT_FALSE(CFStringTransform(kana.get(), nullptr, CFSTR("No-Such"), false));
    EXPECT_FALSE(CFStringTransform(kana.get(), nullptr, nullptr, false));
}

} // namespace
