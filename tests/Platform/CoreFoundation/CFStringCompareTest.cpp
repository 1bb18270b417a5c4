// CFStringCompareTest.cpp: order, prefixes, searching and replacing.

#include "StringTexts.h"
#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using test::string;
using test::String;
using test::text;

constexpr CFStringCompareFlags kCase = kCFCompareCaseInsensitive;
constexpr CFStringCompareFlags kMarks = kCFCompareDiacriticInsensitive;
constexpr CFStringCompareFlags kWidth = kCFCompareWidthInsensitive;
constexpr CFStringCompareFlags kCanonical = kCFCompareNonliteral;
constexpr CFStringCompareFlags kNumbers = kCFCompareNumerically;
constexpr CFStringCompareFlags kForced = kCFCompareForcedOrdering;
constexpr CFStringCompareFlags kBack = kCFCompareBackwards;
constexpr CFStringCompareFlags kAnchored = kCFCompareAnchored;

TEST(CFStringCompare, OrdersByTheFlags) {
    const struct {
        const char* what;
        std::u16string a;
        std::u16string b;
        CFStringCompareFlags flags;
        int expected;
    } cases[] = {
        {"same", u"abc", u"abc", 0, 0},
        {"by unit", u"abc", u"abd", 0, -1},
        {"prefix first", u"ab", u"abc", 0, -1},
        {"case by value", u"Z", u"a", 0, -1},
        {"narrow and wide", u"\u00FF", u"\u0100", 0, -1},
        {"case ignored", u"stra\u00DFe", u"STRASSE", kCase, 0},
        {"sigmas", u"\u03A3\u03C2", u"\u03C3\u03C3", kCase, 0},
        {"case ignored, still ordered", u"B", u"a", kCase, 1},
        {"composed is not decomposed", u"\u00E9", u"e\u0301", 0, 1},
        {"canonically equal", u"\u00E9", u"e\u0301", kCanonical, 0},
        {"marks in any order", u"a\u0323\u0307", u"a\u0307\u0323", kCanonical, 0},
        {"Hangul", u"\uD55C", u"\u1112\u1161\u11AB", kCanonical, 0},
        {"marks ignored", u"r\u00E9sum\u00E9", u"resume", kMarks, 0},
        {"marks ignored, case not", u"R\u00E9", u"re", kMarks, -1},
        {"voicing is no accent", u"\u304C", u"\u304B", kMarks, 1},
        {"width ignored", u"\uFF21\uFF76", u"A\u30AB", kWidth, 0},
        {"case and width", u"\uFF21", u"a", kWidth | kCase, 0},
        {"numbers by value", u"img9", u"img10", kNumbers, -1},
        {"leading zeros", u"a007b", u"a7b", kNumbers, 0},
        {"numbers of any length", u"99999999999999999999999", u"100000000000000000000000", kNumbers,
         -1},
        {"Arabic digits", u"\u0663", u"3", kNumbers, 0},
        {"digits against letters", u"1", u"a", kNumbers, -1},
        {"equal but not the same", u"a", u"A", kCase | kForced, 1},
        {"the same", u"a", u"a", kCase | kForced, 0},
    };
    for (const auto& [what, a, b, flags, expected] : cases) {
        EXPECT_EQ(CFStringCompare(string(a).get(), string(b).get(), flags), expected) << what;
        EXPECT_EQ(CFStringCompare(string(b).get(), string(a).get(), flags), -expected) << what;
    }
}

TEST(CFStringCompare, OrdersByLocale) {
    const auto swedish = cf::adopt(CFLocaleCreate(nullptr, CFSTR("sv")));
    const auto german = cf::adopt(CFLocaleCreate(nullptr, CFSTR("de")));
    const auto turkish = cf::adopt(CFLocaleCreate(nullptr, CFSTR("tr")));
    const struct {
        const char* what;
        CFLocaleRef locale;
        std::u16string a;
        std::u16string b;
        CFStringCompareFlags flags;
        int expected;
    } cases[] = {
        {"after z in Swedish", swedish.get(), u"\u00F6", u"z", kCFCompareLocalized, 1},
        {"before z in German", german.get(), u"\u00F6", u"z", kCFCompareLocalized, -1},
        {"letters before case", german.get(), u"a", u"B", kCFCompareLocalized, -1},
        {"case ignored", german.get(), u"a", u"A", kCFCompareLocalized | kCase, 0},
        {"marks ignored", german.get(), u"\u00F6", u"o", kCFCompareLocalized | kMarks, 0},
        {"marks ignored, case not", german.get(), u"\u00D6", u"o", kCFCompareLocalized | kMarks, 1},
        {"numbers", german.get(), u"a9", u"a10", kCFCompareLocalized | kNumbers, -1},
        {"dotless i", turkish.get(), u"I", u"\u0131", kCase, 0},
        {"dotted i elsewhere", german.get(), u"I", u"i", kCase, 0},
        {"dotted i in Turkish", turkish.get(), u"I", u"i", kCase, 1},
    };
    for (const auto& [what, locale, a, b, flags, expected] : cases)
        EXPECT_EQ(CFStringCompareWithOptionsAndLocale(string(a).get(), string(b).get(),
                                                      CFRangeMake(0, CFIndex(a.size())), flags,
                                                      locale),
                  expected)
            << what;
}

TEST(CFStringCompare, ComparesARangeOfTheFirst) {
    EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("abc"), CFRangeMake(1, 3), 0),
              kCFCompareEqualTo);
    EXPECT_EQ(CFStringCompareWithOptions(CFSTR("xabcx"), CFSTR("ABC"), CFRangeMake(1, 3), kCase),
              kCFCompareEqualTo);
}

TEST(CFStringCompare, IsAnOrderForEverySetOfFlags) {
    std::mt19937 random(3);
    std::vector<String> strings;
    for (int i = 0; i < 24; ++i)
        strings.push_back(string(test::randomText(random, 4)));
    for (const CFStringCompareFlags flags :
         {CFStringCompareFlags{0}, kCase, kMarks, kCanonical, kNumbers | kCase,
          CFStringCompareFlags{kCFCompareLocalized}}) {
        const auto compare = [&](size_t i, size_t j) {
            return CFStringCompare(strings[i].get(), strings[j].get(), flags);
        };
        for (size_t i = 0; i < strings.size(); ++i)
            for (size_t j = 0; j < strings.size(); ++j) {
                EXPECT_EQ(compare(i, j), -compare(j, i));
                for (size_t k = 0; k < strings.size(); ++k)
                    if (compare(i, j) <= 0 && compare(j, k) <= 0)
                        EXPECT_LE(compare(i, k), 0);
            }
    }
}

TEST(CFStringCompare, KnowsPrefixesAndSuffixes) {
    EXPECT_TRUE(CFStringHasPrefix(CFSTR("prefix"), CFSTR("pre")));
    EXPECT_TRUE(CFStringHasPrefix(CFSTR("prefix"), CFSTR("")));
    EXPECT_FALSE(CFStringHasPrefix(CFSTR("pre"), CFSTR("prefix")));
    EXPECT_FALSE(CFStringHasPrefix(CFSTR("Prefix"), CFSTR("pre")));
    EXPECT_TRUE(CFStringHasSuffix(CFSTR("name.png"), CFSTR(".png")));
    EXPECT_FALSE(CFStringHasSuffix(CFSTR("png"), CFSTR(".png")));
    EXPECT_TRUE(CFStringHasSuffix(CFSTR("\u65E5.png"), CFSTR(".png")));
}

// ---- Searching

TEST(CFStringFind, FindsByTheFlags) {
    const struct {
        const char* what;
        std::u16string characters;
        std::u16string sought;
        CFStringCompareFlags flags;
        CFRange expected;
    } cases[] = {
        {"first", u"abcabc", u"bc", 0, {1, 2}},
        {"last", u"abcabc", u"bc", kBack, {4, 2}},
        {"none", u"abc", u"x", 0, {kCFNotFound, 0}},
        {"nothing sought", u"abc", u"", 0, {kCFNotFound, 0}},
        {"longer than the text", u"ab", u"abc", 0, {kCFNotFound, 0}},
        {"whole", u"abc", u"abc", kBack, {0, 3}},
        {"anchored", u"abab", u"ab", kAnchored, {0, 2}},
        {"anchored elsewhere", u"xab", u"ab", kAnchored, {kCFNotFound, 0}},
        {"anchored at the end", u"abab", u"ab", kAnchored | kBack, {2, 2}},
        {"anchored at the end, elsewhere", u"abx", u"ab", kAnchored | kBack, {kCFNotFound, 0}},
        {"case", u"xABC", u"abc", kCase, {1, 3}},
        {"case that changes length", u"xSTRASSEy", u"stra\u00DFe", kCase, {1, 7}},
        {"found is shorter", u"xstra\u00DFey", u"STRASSE", kCase, {1, 6}},
        {"not within a folded character", u"\u00DF", u"s", kCase, {kCFNotFound, 0}},
        {"marks ignored", u"un caf\u00E9", u"cafe", kMarks, {3, 4}},
        {"marks ignored, found longer", u"un cafe\u0301!", u"cafe", kMarks, {3, 5}},
        {"canonical", u"xe\u0301y", u"\u00E9", kCanonical, {1, 2}},
        {"letter without its mark, canonical", u"xe\u0301y", u"e", kCanonical, {kCFNotFound, 0}},
        {"letter without its mark, literal", u"xe\u0301y", u"e", 0, {1, 1}},
        {"width", u"x\uFF21\uFF22", u"AB", kWidth, {1, 2}},
        {"in wide text", u"\u4E16\u754Cabc", u"abc", 0, {2, 3}},
        {"wide in narrow text", u"abc", u"\u4E16", 0, {kCFNotFound, 0}},
    };
    for (const auto& [what, characters, sought, flags, expected] : cases)
        EXPECT_EQ(CFStringFind(string(characters).get(), string(sought).get(), flags), expected)
            << what;
}

TEST(CFStringFind, AgreesWithTheStandardLibrary) {
    std::mt19937 random(4);
    for (int round = 0; round < 2000; ++round) {
        std::u16string characters(random() % 30, u'a');
        for (char16_t& unit : characters)
            unit = static_cast<char16_t>((round % 2 ? u'a' : u'\u4E00') + random() % 2);
        std::u16string sought = characters.substr(
            characters.empty() ? 0 : random() % characters.size(), 1 + random() % 4);
        if (sought.empty() || random() % 4 == 0)
            sought += u'a';
        const size_t location = random() % (characters.size() + 1);
        const size_t length = random() % (characters.size() - location + 1);
        const std::u16string part = characters.substr(location, length);
        for (const CFStringCompareFlags flags : {CFStringCompareFlags{0}, kBack}) {
            const size_t expected = flags ? part.rfind(sought) : part.find(sought);
            CFRange found = {-7, -7};
            const bool isFound = CFStringFindWithOptions(
                string(characters).get(), string(sought).get(),
                CFRangeMake(CFIndex(location), CFIndex(length)), flags, &found);
            ASSERT_EQ(isFound, expected != std::u16string::npos);
            EXPECT_EQ(found, isFound
                                 ? CFRangeMake(CFIndex(location + expected), CFIndex(sought.size()))
                                 : CFRangeMake(-7, -7));
        }
    }
}

TEST(CFStringFind, ReplacesEveryOccurrence) {
    const struct {
        const char* what;
        std::u16string characters;
        CFStringRef sought;
        CFStringRef replacement;
        CFRange range;
        CFStringCompareFlags flags;
        CFIndex count;
        std::u16string expected;
    } cases[] = {
        {"longer", u"a.b.c", CFSTR("."), CFSTR("::"), {0, 5}, 0, 2, u"a::b::c"},
        {"shorter", u"aXXbXX", CFSTR("XX"), CFSTR(""), {0, 6}, 0, 2, u"ab"},
        {"within a range", u"....", CFSTR("."), CFSTR("x"), {1, 2}, 0, 2, u".xx."},
        {"not overlapping", u"aaa", CFSTR("aa"), CFSTR("b"), {0, 3}, 0, 1, u"ba"},
        {"from the end", u"aaa", CFSTR("aa"), CFSTR("b"), {0, 3}, kBack, 1, u"ab"},
        {"anchored run", u"xxaxx", CFSTR("x"), CFSTR("-"), {0, 5}, kAnchored, 2, u"--axx"},
        {"case", u"aBAb", CFSTR("ab"), CFSTR("-"), {0, 4}, kCase, 2, u"--"},
        {"none", u"abc", CFSTR("x"), CFSTR("y"), {0, 3}, 0, 0, u"abc"},
        {"outside", u"abc", CFSTR("a"), CFSTR("y"), {2, 2}, 0, 0, u"abc"},
    };
    CollectedLog log; // Of the range outside.
    for (const auto& [what, characters, sought, replacement, range, flags, count, expected] :
         cases) {
        const auto changed = test::mutableString(characters);
        EXPECT_EQ(CFStringFindAndReplace(changed.get(), sought, replacement, range, flags), count)
            << what;
        EXPECT_EQ(text(changed.get()), expected) << what;
    }
    const auto itself = test::mutableString(u"ab");
    CFStringFindAndReplace(itself.get(), CFSTR("a"), itself.get(), CFRangeMake(0, 2), 0);
    EXPECT_EQ(text(itself.get()), u"abb");
}

TEST(CFStringFind, ListsAllOccurrences) {
    const auto results = cf::adopt(CFStringCreateArrayWithFindResults(
        nullptr, CFSTR("a-a-a"), CFSTR("a"), CFRangeMake(1, 4), 0));
    ASSERT_EQ(CFArrayGetCount(results.get()), 2);
    EXPECT_EQ(*static_cast<const CFRange*>(CFArrayGetValueAtIndex(results.get(), 0)),
              CFRangeMake(2, 1));
    EXPECT_EQ(*static_cast<const CFRange*>(CFArrayGetValueAtIndex(results.get(), 1)),
              CFRangeMake(4, 1));
    EXPECT_EQ(
        CFStringCreateArrayWithFindResults(nullptr, CFSTR("abc"), CFSTR("x"), CFRangeMake(0, 3), 0),
        nullptr);
}

} // namespace
