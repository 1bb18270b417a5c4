// CFStringTest.cpp: what strings are: storage, identity, equality, hash, parts.

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFNumber.h>

#include "StringTexts.h"
#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

namespace {

using test::string;
using test::String;
using test::text;

CF_CONST_STRING_DECL(kTestName, "a constant");

TEST(CFString, KeepsEveryTextWhateverItsStorage) {
    const std::pair<const char*, std::u16string> cases[] = {
        {"empty", u""},
        {"ASCII", u"plain"},
        {"Latin-1", u"gr\u00FC\u00DFe\u00FF"},
        {"beyond Latin-1", u"\u0100"},
        {"surrogate pair", u"\U0001F600!"},
        {"lone surrogates", std::u16string{u'a', 0xD800, u'b', 0xDC00}},
        {"NUL inside", std::u16string(u"a\0b", 3)},
    };
    for (const auto& [what, characters] : cases) {
        const String made = string(characters);
        ASSERT_TRUE(made) << what;
        EXPECT_EQ(text(made.get()), characters) << what;
        EXPECT_EQ(CFGetTypeID(made.get()), CFStringGetTypeID()) << what;
        for (size_t i = 0; i < characters.size(); ++i)
            EXPECT_EQ(CFStringGetCharacterAtIndex(made.get(), CFIndex(i)), characters[i]) << what;
    }
}

TEST(CFString, EqualsAndHashesByTextNotByStorage) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const std::u16string characters = test::randomText(random, 40);
        const String compact = string(characters);
        const String wide = cf::adopt(CFStringCreateWithCharactersNoCopy(
            nullptr, test::units(characters), CFIndex(characters.size()), kCFAllocatorNull));
        const auto changing = test::mutableString(characters);
        EXPECT_TRUE(CFEqual(compact.get(), wide.get()));
        EXPECT_TRUE(CFEqual(wide.get(), changing.get()));
        EXPECT_EQ(CFHash(compact.get()), CFHash(wide.get()));
        EXPECT_EQ(CFHash(compact.get()), CFHash(changing.get()));

        std::u16string other = characters + u'x';
        EXPECT_FALSE(CFEqual(compact.get(), string(other).get()));
        other = characters;
        if (!other.empty()) {
            other[random() % other.size()] ^= 0x100;
            EXPECT_FALSE(CFEqual(compact.get(), string(other).get()));
        }
    }
}

TEST(CFString, HashSpreadsSimilarTexts) {
    std::set<CFHashCode> hashes;
    std::set<CFHashCode> lowBits;
    constexpr int kCount = 4096;
    for (int i = 0; i < kCount; ++i) {
        const auto name = cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("key%d"), i));
        hashes.insert(CFHash(name.get()));
        lowBits.insert(CFHash(name.get()) % kCount);
    }
    EXPECT_EQ(hashes.size(), size_t(kCount));
    // Of random numbers 1 - 1/e, about 63 %, would differ.
    EXPECT_GT(lowBits.size(), size_t(kCount) * 58 / 100);
}

TEST(CFString, ConstantsAreOneObjectForOneText) {
    char copy[] = "constant text";
    EXPECT_EQ(CFSTR("constant text"), CFSTR("constant text"));
    EXPECT_EQ(CFSTR("constant text"), __CFStringMakeConstantString(copy));
    copy[0] = 'C'; // The same address with another text, as after a library was unloaded.
    EXPECT_EQ(__CFStringMakeConstantString(copy), CFSTR("Constant text"));
    EXPECT_NE(CFSTR("a"), CFSTR("b"));
    EXPECT_EQ(text(CFSTR("gr\u00FC\u00DFe \u4E16")), u"gr\u00FC\u00DFe \u4E16");
    EXPECT_EQ(text(CFSTR("\xFF")), u"\u00FF") << "not UTF-8";
    EXPECT_EQ(CFStringGetLength(CFSTR("")), 0);

    const CFStringRef constant = CFSTR("constant text");
    for (int i = 0; i < 3; ++i)
        CFRelease(constant);
    EXPECT_EQ(text(constant), u"constant text");
    EXPECT_TRUE(_CFRuntimeIsImmortal(constant));
}

TEST(CFString, CompiledConstantsAreWholeStrings) {
    EXPECT_EQ(CFGetTypeID(kTestName), CFStringGetTypeID());
    EXPECT_TRUE(_CFRuntimeIsImmortal(kTestName));
    EXPECT_TRUE(CFEqual(kTestName, CFSTR("a constant")));
    EXPECT_EQ(CFHash(kTestName), CFHash(CFSTR("a constant")));
    EXPECT_STREQ(CFStringGetCStringPtr(kTestName, kCFStringEncodingUTF8), "a constant");
    CFRelease(kTestName);
    EXPECT_EQ(text(kTestName), u"a constant");
}

TEST(CFString, DescribesItselfByItsText) {
    const auto description = cf::adopt(CFCopyDescription(kTestName));
    EXPECT_NE(test::utf8(description.get()).find("{contents = \"a constant\"}"), std::string::npos);
    const auto shown =
        cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@"), kTestName));
    EXPECT_EQ(text(shown.get()), u"a constant");
}

TEST(CFString, LendsItsContentsOnlyInTheirOwnForm) {
    const String ascii = string(u"ascii");
    const String latin = string(u"\u00E9t\u00E9");
    const String wide = string(u"\u4E16");
    const String withNul = string(std::u16string_view(u"a\0b", 3));
    const struct {
        const char* what;
        CFStringRef string;
        CFStringEncoding encoding;
        const char* bytes;
    } cases[] = {
        {"ASCII as ASCII", ascii.get(), kCFStringEncodingASCII, "ascii"},
        {"ASCII as UTF-8", ascii.get(), kCFStringEncodingUTF8, "ascii"},
        {"ASCII as Mac Roman", ascii.get(), kCFStringEncodingMacRoman, "ascii"},
        {"ASCII as UTF-16", ascii.get(), kCFStringEncodingUTF16, nullptr},
        {"Latin-1 as Latin-1", latin.get(), kCFStringEncodingISOLatin1, "\xE9t\xE9"},
        {"Latin-1 as UTF-8", latin.get(), kCFStringEncodingUTF8, nullptr},
        {"wide as UTF-8", wide.get(), kCFStringEncodingUTF8, nullptr},
        {"NUL inside", withNul.get(), kCFStringEncodingASCII, nullptr},
    };
    for (const auto& [what, string, encoding, bytes] : cases)
        EXPECT_STREQ(CFStringGetCStringPtr(string, encoding), bytes) << what;
    EXPECT_EQ(CFStringGetCharactersPtr(ascii.get()), nullptr);
    ASSERT_NE(CFStringGetCharactersPtr(wide.get()), nullptr);
    EXPECT_EQ(CFStringGetCharactersPtr(wide.get())[0], 0x4E16);
}

// ---- Buffers that are not copied

int freedBuffers = 0;

cf::Ref<CFAllocatorRef> countingDeallocator() {
    CFAllocatorContext context = {};
    context.deallocate = [](void* memory, void*) {
        ++freedBuffers;
        std::free(memory);
    };
    return cf::adopt(CFAllocatorCreate(nullptr, &context));
}

template <typename Unit>
Unit* onHeap(std::initializer_list<Unit> units) {
    auto* const buffer = static_cast<Unit*>(std::malloc(units.size() * sizeof(Unit)));
    std::copy(units.begin(), units.end(), buffer);
    return buffer;
}

TEST(CFString, FreesACallersBufferExactlyOnce) {
    const auto owner = countingDeallocator();
    const auto expectFreedOnce = [&](const char* what, CFStringRef made,
                                     std::u16string_view expected) {
        ASSERT_NE(made, nullptr) << what;
        EXPECT_EQ(text(made), expected) << what;
        CFRelease(made);
        EXPECT_EQ(freedBuffers, 1) << what;
        freedBuffers = 0;
    };
    expectFreedOnce("units",
                    CFStringCreateWithCharactersNoCopy(nullptr, onHeap<UniChar>({u'\u4E16', u'a'}),
                                                       2, owner.get()),
                    u"\u4E16a");
    expectFreedOnce("bytes in their form",
                    CFStringCreateWithBytesNoCopy(nullptr, onHeap<UInt8>({'a', 'b'}), 2,
                                                  kCFStringEncodingUTF8, false, owner.get()),
                    u"ab");
    expectFreedOnce("bytes that need converting",
                    CFStringCreateWithBytesNoCopy(nullptr, onHeap<UInt8>({0xC3, 0xA9}), 2,
                                                  kCFStringEncodingUTF8, false, owner.get()),
                    u"\u00E9");
    expectFreedOnce("C string",
                    CFStringCreateWithCStringNoCopy(nullptr, onHeap<char>({'a', 0}),
                                                    kCFStringEncodingASCII, owner.get()),
                    u"a");
    expectFreedOnce("counted",
                    CFStringCreateWithPascalStringNoCopy(nullptr, onHeap<UInt8>({1, 'p', 'x'}),
                                                         kCFStringEncodingASCII, owner.get()),
                    u"p");
}

TEST(CFString, LeavesTheBufferToTheCallerOnFailure) {
    const auto owner = countingDeallocator();
    UInt8* const malformed = onHeap<UInt8>({0xC3});
    EXPECT_EQ(CFStringCreateWithBytesNoCopy(nullptr, malformed, 1, kCFStringEncodingUTF8, false,
                                            owner.get()),
              nullptr);
    EXPECT_EQ(freedBuffers, 0);
    std::free(malformed);
}

TEST(CFString, CopyOfABorrowedBufferOutlivesIt) {
    char buffer[] = "borrowed";
    const String borrowed = cf::adopt(
        CFStringCreateWithCStringNoCopy(nullptr, buffer, kCFStringEncodingASCII, kCFAllocatorNull));
    EXPECT_EQ(CFStringGetCStringPtr(borrowed.get(), kCFStringEncodingASCII), buffer);
    const String copy = cf::adopt(CFStringCreateCopy(nullptr, borrowed.get()));
    std::memset(buffer, 'x', sizeof buffer - 1);
    EXPECT_EQ(text(copy.get()), u"borrowed");
    const String again = cf::adopt(CFStringCreateCopy(nullptr, copy.get()));
    EXPECT_EQ(again.get(), copy.get()) << "immutable strings are shared";
}

// ---- Bad input

TEST(CFString, AnswersNeutrallyWithoutAString) {
    const int number = 1;
    const auto other = cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &number));
    for (const CFStringRef none : {CFStringRef(nullptr), CFStringRef(other.get())}) {
        char buffer[4] = "abc";
        EXPECT_EQ(CFStringGetLength(none), 0);
        EXPECT_EQ(CFStringGetCharacterAtIndex(none, 0), 0);
        EXPECT_EQ(CFStringGetCharactersPtr(none), nullptr);
        EXPECT_EQ(CFStringGetCStringPtr(none, kCFStringEncodingASCII), nullptr);
        EXPECT_FALSE(CFStringGetCString(none, buffer, 4, kCFStringEncodingASCII));
        EXPECT_STREQ(buffer, "");
        EXPECT_EQ(CFStringCreateCopy(nullptr, none), nullptr);
        EXPECT_EQ(CFStringCreateMutableCopy(nullptr, 0, none), nullptr);
        EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, none), nullptr);
        EXPECT_EQ(CFStringCompare(none, CFSTR("a"), 0), kCFCompareLessThan);
        EXPECT_EQ(CFStringFind(none, CFSTR("a"), 0), CFRangeMake(kCFNotFound, 0));
        EXPECT_FALSE(CFStringHasPrefix(CFSTR("a"), none));
        EXPECT_EQ(CFStringGetIntValue(none), 0);
        EXPECT_EQ(CFStringGetDoubleValue(none), 0);
        EXPECT_EQ(CFStringCreateArrayBySeparatingStrings(nullptr, none, none), nullptr);
        CFStringAppend(const_cast<CFMutableStringRef>(none), CFSTR("a"));
    }
}

TEST(CFString, RefusesBadArgumentsOfCreation) {
    EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
    EXPECT_EQ(CFStringCreateWithCharacters(nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false), nullptr);
    const UniChar unit = 'a';
    EXPECT_EQ(CFStringCreateWithCharacters(nullptr, &unit, -1), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "a", kCFStringEncodingInvalidId), nullptr);
    EXPECT_EQ(CFStringCreateMutable(nullptr, -1), nullptr);
    for (const CFStringEncoding encoding : {kCFStringEncodingUTF8, kCFStringEncodingUTF16,
                                            kCFStringEncodingUTF32, kCFStringEncodingMacRoman}) {
        const String empty =
            cf::adopt(CFStringCreateWithBytes(nullptr, nullptr, 0, encoding, true));
        ASSERT_TRUE(empty) << encoding;
        EXPECT_EQ(CFStringGetLength(empty.get()), 0);
    }
}

TEST(CFString, RefusesRangesThatReachOutside) {
    const CFRange outside[] = {{-1, 1}, {0, 4},        {3, 1},       {4, 0},
                               {0, -1}, {1, LONG_MAX}, {LONG_MAX, 1}};
    for (const CFRange range : outside) {
        CollectedLog log;
        UniChar buffer[4] = {1, 1, 1, 1};
        CFStringGetCharacters(CFSTR("abc"), range, buffer);
        EXPECT_EQ(buffer[0], 1) << range;
        EXPECT_EQ(CFStringCreateWithSubstring(nullptr, CFSTR("abc"), range), nullptr) << range;
        CFIndex used = 7;
        EXPECT_EQ(CFStringGetBytes(CFSTR("abc"), range, kCFStringEncodingUTF8, 0, false, nullptr, 0,
                                   &used),
                  0);
        EXPECT_EQ(used, 0);
        EXPECT_FALSE(CFStringFindWithOptions(CFSTR("abc"), CFSTR("a"), range, 0, nullptr));
        EXPECT_GE(log.lines().size(), 4u) << range;
    }
    CollectedLog log;
    EXPECT_EQ(CFStringGetCharacterAtIndex(CFSTR("abc"), 3), 0);
    EXPECT_EQ(log.lines().size(), 1u);
}

// ---- Parts

TEST(CFString, SplitsAndJoinsBackToTheSame) {
    const struct {
        const char* what;
        CFStringRef string;
        CFStringRef separator;
        std::vector<std::u16string> parts;
    } cases[] = {
        {"plain", CFSTR("a,b,c"), CFSTR(","), {u"a", u"b", u"c"}},
        {"empty parts", CFSTR(",a,,"), CFSTR(","), {u"", u"a", u"", u""}},
        {"no separator inside", CFSTR("abc"), CFSTR("--"), {u"abc"}},
        {"long separator", CFSTR("a--b---c"), CFSTR("--"), {u"a", u"b", u"-c"}},
        {"empty string", CFSTR(""), CFSTR(","), {u""}},
        {"empty separator", CFSTR("ab"), CFSTR(""), {u"ab"}},
        {"wide", CFSTR("\u4E16\u3001\u754C"), CFSTR("\u3001"), {u"\u4E16", u"\u754C"}},
    };
    for (const auto& [what, string, separator, parts] : cases) {
        const auto array =
            cf::adopt(CFStringCreateArrayBySeparatingStrings(nullptr, string, separator));
        ASSERT_EQ(CFArrayGetCount(array.get()), CFIndex(parts.size())) << what;
        for (size_t i = 0; i < parts.size(); ++i)
            EXPECT_EQ(text(CFStringRef(CFArrayGetValueAtIndex(array.get(), CFIndex(i)))), parts[i])
                << what;
        const String joined =
            cf::adopt(CFStringCreateByCombiningStrings(nullptr, array.get(), separator));
        EXPECT_TRUE(CFEqual(joined.get(), string)) << what;
    }
}

TEST(CFString, FindsWhatPeopleSeeAsOneCharacter) {
    const std::u16string family = u"a\U0001F468\u200D\U0001F469\u200D\U0001F467b";
    const struct {
        const char* what;
        std::u16string characters;
        CFIndex index;
        CFRange expected;
    } cases[] = {
        {"letter", u"abc", 1, {1, 1}},
        {"mark of a letter", u"xe\u0301y", 2, {1, 2}},
        {"letter with a mark", u"xe\u0301y", 1, {1, 2}},
        {"letter after a mark", u"xe\u0301y", 3, {3, 1}},
        {"second half of a pair", u"\U0001F600\U0001F601", 3, {2, 2}},
        {"conjoining letters", u"\u1112\u1161\u11AB", 1, {0, 3}},
        {"joined emoji", family, 4, {1, 8}},
        {"carriage return before line feed", u"\r\n", 0, {0, 1}},
    };
    for (const auto& [what, characters, index, expected] : cases)
        EXPECT_EQ(CFStringGetRangeOfComposedCharactersAtIndex(string(characters).get(), index),
                  expected)
            << what;
}

TEST(CFString, FindsLinesAndParagraphs) {
    const String lines = string(u"one\r\ntwo\u2028three\n\nfive");
    const struct {
        const char* what;
        CFRange range;
        std::array<CFIndex, 3> line; // begin, end, contents end
        std::array<CFIndex, 3> paragraph;
    } cases[] = {
        {"first", {1, 1}, {0, 5, 3}, {0, 5, 3}},
        {"at the line feed of a pair", {4, 1}, {0, 5, 3}, {0, 5, 3}},
        {"line separator", {6, 0}, {5, 9, 8}, {5, 15, 14}},
        {"several", {1, 9}, {0, 15, 14}, {0, 15, 14}},
        {"empty line", {15, 0}, {15, 16, 15}, {15, 16, 15}},
        {"last", {17, 2}, {16, 20, 20}, {16, 20, 20}},
        {"at the end", {20, 0}, {16, 20, 20}, {16, 20, 20}},
    };
    for (const auto& [what, range, line, paragraph] : cases) {
        std::array<CFIndex, 3> found = {};
        CFStringGetLineBounds(lines.get(), range, &found[0], &found[1], &found[2]);
        EXPECT_EQ(found, line) << what;
        CFStringGetParagraphBounds(lines.get(), range, &found[0], &found[1], &found[2]);
        EXPECT_EQ(found, paragraph) << what;
    }
}

TEST(CFString, InlineBufferReadsWhatGetCharactersReads) {
    for (const CFStringRef read : {CFSTR("0123456789"), CFSTR("01\u4E1634\u754C6789")}) {
        CFStringInlineBuffer buffer;
        CFStringInitInlineBuffer(read, &buffer, CFRangeMake(2, 5));
        for (CFIndex i = 0; i < 5; ++i)
            EXPECT_EQ(CFStringGetCharacterFromInlineBuffer(&buffer, i),
                      CFStringGetCharacterAtIndex(read, i + 2));
        EXPECT_EQ(CFStringGetCharacterFromInlineBuffer(&buffer, -1), 0);
        EXPECT_EQ(CFStringGetCharacterFromInlineBuffer(&buffer, 5), 0);
    }
    CollectedLog log;
    CFStringInlineBuffer buffer;
    CFStringInitInlineBuffer(CFSTR("abc"), &buffer, CFRangeMake(2, 5));
    EXPECT_EQ(CFStringGetCharacterFromInlineBuffer(&buffer, 0), 0);
}

TEST(CFString, ReadsNumbersAtTheStart) {
    const struct {
        const char* text;
        SInt32 integer;
        double real;
    } cases[] = {
        {"42", 42, 42},
        {" \t-17x", -17, -17},
        {"+5", 5, 5},
        {"", 0, 0},
        {"x1", 0, 0},
        {"- 1", 0, 0},
        {".5", 0, 0.5},
        {"1.", 1, 1},
        {".", 0, 0},
        {"1.5e3z", 1, 1500},
        {"1e", 1, 1},
        {"1e+", 1, 1},
        {"2147483648", INT32_MAX, 2147483648.0},
        {"-2147483648", INT32_MIN, -2147483648.0},
        {"-99999999999999999999", INT32_MIN, -1e20},
        {"0x10", 0, 0},
        {"inf", 0, 0},
        {"1e999", 1, HUGE_VAL},
        {"-1e999", -1, -HUGE_VAL},
        {"1e-999", 1, 0},
        {"0.1e-99999999999999999999", 0, 0},
    };
    for (const auto& [text, integer, real] : cases) {
        const String number =
            cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
        EXPECT_EQ(CFStringGetIntValue(number.get()), integer) << text;
        EXPECT_EQ(CFStringGetDoubleValue(number.get()), real) << text;
    }
}

} // namespace
