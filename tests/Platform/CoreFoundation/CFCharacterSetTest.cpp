// CFCharacterSetTest.cpp: sets of characters, held against ICU's properties and std::set.

#include <CoreFoundation/CFCharacterSet.h>

#include "StringTexts.h"
#include "Support/CollectedLog.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <random>
#include <set>
#include <vector>

namespace {

using Set = cf::Ref<CFCharacterSetRef>;
using MutableSet = cf::Ref<CFMutableCharacterSetRef>;

TEST(CFCharacterSet, PredefinedSetsFollowTheCategories) {
    const struct {
        const char* what;
        CFCharacterSetPredefinedSet set;
        uint32_t categories;
    } cases[] = {
        {"control", kCFCharacterSetControl, U_GC_CC_MASK | U_GC_CF_MASK},
        {"digit", kCFCharacterSetDecimalDigit, U_GC_ND_MASK},
        {"letter", kCFCharacterSetLetter, U_GC_L_MASK | U_GC_M_MASK},
        {"lower", kCFCharacterSetLowercaseLetter, U_GC_LL_MASK},
        {"upper", kCFCharacterSetUppercaseLetter, U_GC_LU_MASK | U_GC_LT_MASK},
        {"non-base", kCFCharacterSetNonBase, U_GC_M_MASK},
        {"alphanumeric", kCFCharacterSetAlphaNumeric, U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK},
        {"punctuation", kCFCharacterSetPunctuation, U_GC_P_MASK},
        {"illegal", kCFCharacterSetIllegal, U_GC_CN_MASK},
        {"capitalized", kCFCharacterSetCapitalizedLetter, U_GC_LT_MASK},
        {"symbol", kCFCharacterSetSymbol, U_GC_S_MASK},
    };
    for (const auto& [what, identifier, categories] : cases) {
        const CFCharacterSetRef set = CFCharacterSetGetPredefined(identifier);
        for (UChar32 c = 0; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 61)
            ASSERT_EQ(CFCharacterSetIsLongCharacterMember(set, UTF32Char(c)) != 0,
                      (U_GET_GC_MASK(c) & categories) != 0)
                << what << " " << c;
    }
    const CFCharacterSetRef blank = CFCharacterSetGetPredefined(kCFCharacterSetWhitespace);
    EXPECT_TRUE(CFCharacterSetIsCharacterMember(blank, '\t'));
    EXPECT_FALSE(CFCharacterSetIsCharacterMember(blank, '\n'));
    EXPECT_TRUE(CFCharacterSetIsCharacterMember(
        CFCharacterSetGetPredefined(kCFCharacterSetWhitespaceAndNewline), '\n'));
    EXPECT_TRUE(CFCharacterSetIsCharacterMember(
        CFCharacterSetGetPredefined(kCFCharacterSetDecomposable), 0xE9));
    EXPECT_EQ(CFCharacterSetGetPredefined(kCFCharacterSetSymbol),
              CFCharacterSetGetPredefined(kCFCharacterSetSymbol));
    EXPECT_EQ(CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet(0)), nullptr);
    EXPECT_EQ(CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet(16)), nullptr);
}

TEST(CFCharacterSet, FollowsEveryChange) {
    std::mt19937 random(8);
    const MutableSet changed = cf::adopt(CFCharacterSetCreateMutable(nullptr));
    std::set<UTF32Char> expected;
    for (int round = 0; round < 200; ++round) {
        const UTF32Char first = UTF32Char((random() % 2 ? 0x10000 : 0) + random() % 200);
        const CFRange range = CFRangeMake(CFIndex(first), CFIndex(random() % 30));
        const bool adds = random() % 3 != 0;
        (adds ? CFCharacterSetAddCharactersInRange
              : CFCharacterSetRemoveCharactersInRange)(changed.get(), range);
        for (UTF32Char c = first; c < first + UTF32Char(range.length); ++c)
            adds ? void(expected.insert(c)) : void(expected.erase(c));
        for (const UTF32Char base : {0u, 0x10000u})
            for (UTF32Char c = base; c < base + 240; ++c)
                ASSERT_EQ(CFCharacterSetIsLongCharacterMember(changed.get(), c) != 0,
                          expected.contains(c));
    }
}

TEST(CFCharacterSet, CombinesSets) {
    const Set digits = cf::adopt(CFCharacterSetCreateWithCharactersInRange(nullptr, {'0', 10}));
    const Set odd =
        cf::adopt(CFCharacterSetCreateWithCharactersInString(nullptr, CFSTR("13579\U0001F600")));
    const MutableSet changed = cf::adopt(CFCharacterSetCreateMutableCopy(nullptr, digits.get()));
    EXPECT_FALSE(CFCharacterSetIsSupersetOfSet(digits.get(), odd.get()));
    CFCharacterSetIntersect(changed.get(), odd.get());
    EXPECT_TRUE(CFCharacterSetIsSupersetOfSet(digits.get(), changed.get()));
    EXPECT_FALSE(CFCharacterSetIsCharacterMember(changed.get(), '2'));
    CFCharacterSetUnion(changed.get(), odd.get());
    EXPECT_TRUE(CFEqual(changed.get(), odd.get()));
    EXPECT_EQ(CFHash(changed.get()), CFHash(odd.get()));
    EXPECT_TRUE(CFCharacterSetHasMemberInPlane(changed.get(), 1));
    EXPECT_FALSE(CFCharacterSetHasMemberInPlane(changed.get(), 2));
    CFCharacterSetInvert(changed.get());
    const Set inverted = cf::adopt(CFCharacterSetCreateInvertedSet(nullptr, odd.get()));
    EXPECT_TRUE(CFEqual(changed.get(), inverted.get()));
    EXPECT_FALSE(CFCharacterSetIsLongCharacterMember(changed.get(), 0x1F600));
    CFCharacterSetAddCharactersInString(changed.get(), CFSTR("\U0001F600"));
    EXPECT_TRUE(CFCharacterSetIsLongCharacterMember(changed.get(), 0x1F600));
    CFCharacterSetRemoveCharactersInString(changed.get(), CFSTR("\U0001F600"));
    EXPECT_TRUE(CFEqual(changed.get(), inverted.get()));
}

TEST(CFCharacterSet, BitmapsRoundTrip) {
    const Set set = cf::adopt(
        CFCharacterSetCreateWithCharactersInString(nullptr, CFSTR("a\u4E16\U0001F600\U00100000")));
    const auto bitmap = cf::adopt(CFCharacterSetCreateBitmapRepresentation(nullptr, set.get()));
    ASSERT_EQ(CFDataGetLength(bitmap.get()), 8192 + 2 * 8193);
    const UInt8* const bytes = CFDataGetBytePtr(bitmap.get());
    EXPECT_EQ(bytes['a' / 8], 1 << ('a' % 8));
    EXPECT_EQ(bytes[8192], 1);
    EXPECT_EQ(bytes[8192 + 8193], 16);
    const Set back = cf::adopt(CFCharacterSetCreateWithBitmapRepresentation(nullptr, bitmap.get()));
    EXPECT_TRUE(CFEqual(back.get(), set.get()));

    const UInt8 few[] = {0x02};
    const auto shortData = cf::adopt(CFDataCreate(nullptr, few, 1));
    const Set one =
        cf::adopt(CFCharacterSetCreateWithBitmapRepresentation(nullptr, shortData.get()));
    EXPECT_TRUE(CFCharacterSetIsCharacterMember(one.get(), 1));
    EXPECT_FALSE(CFCharacterSetIsCharacterMember(one.get(), 0));
}

TEST(CFCharacterSet, ToleratesBadInput) {
    CollectedLog log;
    const Set set =
        cf::adopt(CFCharacterSetCreateWithCharactersInRange(nullptr, {0x10FFFF, LONG_MAX}));
    EXPECT_TRUE(CFCharacterSetIsLongCharacterMember(set.get(), 0x10FFFF));
    EXPECT_FALSE(CFCharacterSetIsLongCharacterMember(set.get(), 0x110000));
    CFCharacterSetInvert(const_cast<CFMutableCharacterSetRef>(set.get()));
    EXPECT_TRUE(CFCharacterSetIsLongCharacterMember(set.get(), 0x10FFFF));
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(cf::adopt(CFCharacterSetCreateCopy(nullptr, set.get())), set);
    EXPECT_EQ(CFCharacterSetCreateWithCharactersInRange(nullptr, {-1, 1}), nullptr);
}

TEST(CFCharacterSet, IsSearchedForInStrings) {
    const CFCharacterSetRef digits = CFCharacterSetGetPredefined(kCFCharacterSetDecimalDigit);
    const Set emoji = cf::adopt(CFCharacterSetCreateWithCharactersInRange(nullptr, {0x1F600, 64}));
    const struct {
        const char* what;
        CFStringRef string;
        CFCharacterSetRef set;
        CFStringCompareFlags flags;
        CFRange expected;
    } cases[] = {
        {"first", CFSTR("ab12"), digits, 0, {2, 1}},
        {"last", CFSTR("ab12c"), digits, kCFCompareBackwards, {3, 1}},
        {"anchored", CFSTR("ab12"), digits, kCFCompareAnchored, {kCFNotFound, 0}},
        {"anchored at the end",
         CFSTR("ab12"),
         digits,
         kCFCompareAnchored | kCFCompareBackwards,
         {3, 1}},
        {"pair", CFSTR("x\U0001F600y"), emoji.get(), 0, {1, 2}},
        {"pair from the end", CFSTR("x\U0001F600y"), emoji.get(), kCFCompareBackwards, {1, 2}},
        {"none", CFSTR("abc"), digits, 0, {kCFNotFound, 0}},
        {"no set", CFSTR("abc"), nullptr, 0, {kCFNotFound, 0}},
    };
    for (const auto& [what, string, set, flags, expected] : cases) {
        CFRange found = {kCFNotFound, 0};
        CFStringFindCharacterFromSet(string, set, CFRangeMake(0, CFStringGetLength(string)), flags,
                                     &found);
        EXPECT_EQ(found, expected) << what;
    }
}

} // namespace
