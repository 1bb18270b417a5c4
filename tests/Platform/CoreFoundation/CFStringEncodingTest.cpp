// CFStringEncodingTest.cpp: strings to bytes and back.

#include <CoreFoundation/CFStringEncodingExt.h>

#include "StringTexts.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <set>
#include <string>
#include <vector>

namespace {

using test::string;
using test::String;
using test::text;

String decoded(std::string_view bytes, CFStringEncoding encoding, bool isExternal = false) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                             CFIndex(bytes.size()), encoding, isExternal));
}

struct Encoded {
    CFIndex converted = 0;
    std::string bytes;
};

Encoded encoded(CFStringRef string, CFStringEncoding encoding, UInt8 lossByte = 0,
                CFIndex capacity = 4096, bool isExternal = false) {
    std::string buffer(size_t(capacity), '#');
    CFIndex used = -1;
    const CFIndex converted =
        CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), encoding, lossByte,
                         isExternal, reinterpret_cast<UInt8*>(buffer.data()), capacity, &used);
    return {converted, buffer.substr(0, size_t(used))};
}

TEST(CFStringEncoding, WritesAndReadsKnownBytes) {
    using namespace std::string_literals;
    const struct {
        const char* what;
        CFStringEncoding encoding;
        std::u16string characters;
        std::string bytes;
    } cases[] = {
        {"UTF-8", kCFStringEncodingUTF8, u"z\u00DF\u6C34\U0001F34C",
         "z\xC3\x9F\xE6\xB0\xB4\xF0\x9F\x8D\x8C"},
        {"UTF-16BE", kCFStringEncodingUTF16BE, u"a\U0001F34C", "\0a\xD8\x3C\xDF\x4C"s},
        {"UTF-16LE", kCFStringEncodingUTF16LE, u"a\U0001F34C", "a\0\x3C\xD8\x4C\xDF"s},
        {"UTF-32BE", kCFStringEncodingUTF32BE, u"\U0001F34C", "\0\x01\xF3\x4C"s},
        {"UTF-32LE", kCFStringEncodingUTF32LE, u"\U0001F34C", "\x4C\xF3\x01\0"s},
        {"Latin-1", kCFStringEncodingISOLatin1, u"\u00E9\u00FF", "\xE9\xFF"},
        {"ASCII", kCFStringEncodingASCII, u"~\x7F", "~\x7F"},
        {"Mac Roman", kCFStringEncodingMacRoman, u"\u00C4\u2020\u20AC\uF8FF", "\x80\xA0\xDB\xF0"},
        {"NextStep", kCFStringEncodingNextStepLatin, u"\u00A0\u00C0\uFB01\u00FF",
         "\x80\x81\xAE\xFD"},
        {"Windows Latin 1", kCFStringEncodingWindowsLatin1, u"\u20AC\u2019", "\x80\x92"},
        {"Windows Cyrillic", kCFStringEncodingWindowsCyrillic, u"\u041F", "\xCF"},
        {"KOI8-R", kCFStringEncodingKOI8_R, u"\u043F", "\xD0"},
        {"Thai", kCFStringEncodingISOLatinThai, u"\u0E01", "\xA1"},
        {"Shift JIS", kCFStringEncodingShiftJIS, u"\u65E5\u672C", "\x93\xFA\x96\x7B"},
        {"EUC-JP", kCFStringEncodingEUC_JP, u"\u65E5\u672C", "\xC6\xFC\xCB\xDC"},
        {"ISO 2022-JP", kCFStringEncodingISO_2022_JP, u"a\u65E5b", "a\x1B$BF|\x1B(Bb"},
        {"EUC-KR", kCFStringEncodingEUC_KR, u"\uD55C", "\xC7\xD1"},
        {"Big5", kCFStringEncodingBig5, u"\u4E2D", "\xA4\xA4"},
        {"GB 2312", kCFStringEncodingEUC_CN, u"\u4E2D", "\xD6\xD0"},
        {"GB 18030", kCFStringEncodingGB_18030_2000, u"\U0001F600", "\x94\x39\xFC\x36"},
        {"UTF-7", kCFStringEncodingUTF7, u"A\u2262", "A+ImI-"},
        {"non-lossy", kCFStringEncodingNonLossyASCII, u"a\\\u00E9\u6C34", "a\\\\\\351\\u6c34"},
    };
    for (const auto& [what, encoding, characters, bytes] : cases) {
        const Encoded written = encoded(string(characters).get(), encoding);
        EXPECT_EQ(written.bytes, bytes) << what;
        EXPECT_EQ(written.converted, CFIndex(characters.size())) << what;
        const String read = decoded(bytes, encoding);
        ASSERT_TRUE(read) << what;
        EXPECT_EQ(text(read.get()), characters) << what;
    }
}

TEST(CFStringEncoding, MacRomanAgreesWithICU) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open("macintosh", &status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (int byte = 0; byte < 256; ++byte) {
        const char source = char(byte);
        char16_t expected = 0;
        ucnv_toUChars(converter, &expected, 1, &source, 1, &status);
        status = U_ZERO_ERROR;
        EXPECT_EQ(text(decoded({&source, 1}, kCFStringEncodingMacRoman).get()),
                  std::u16string(1, expected))
            << byte;
    }
    ucnv_close(converter);
}

TEST(CFStringEncoding, UnicodeFormsRoundTripAndAgreeWithICU) {
    std::mt19937 random(2);
    const struct {
        CFStringEncoding encoding;
        const char* name;
    } forms[] = {
        {kCFStringEncodingUTF8, "UTF-8"},       {kCFStringEncodingUTF16BE, "UTF-16BE"},
        {kCFStringEncodingUTF16LE, "UTF-16LE"}, {kCFStringEncodingUTF32BE, "UTF-32BE"},
        {kCFStringEncodingUTF32LE, "UTF-32LE"}, {kCFStringEncodingGB_18030_2000, "gb18030"},
    };
    for (int round = 0; round < 200; ++round) {
        const std::u16string characters = test::randomText(random, 300);
        for (const auto& [encoding, name] : forms) {
            const Encoded written = encoded(string(characters).get(), encoding);
            std::string expected(4096, '\0');
            UErrorCode status = U_ZERO_ERROR;
            UConverter* const converter = ucnv_open(name, &status);
            const int32_t size =
                ucnv_fromUChars(converter, expected.data(), 4096, characters.data(),
                                int32_t(characters.size()), &status);
            ucnv_close(converter);
            expected.resize(size_t(size));
            EXPECT_EQ(written.bytes, expected) << name;
            EXPECT_EQ(text(decoded(expected, encoding).get()), characters) << name;
            EXPECT_LE(CFIndex(expected.size()),
                      CFStringGetMaximumSizeForEncoding(CFIndex(characters.size()), encoding));
        }
    }
}

TEST(CFStringEncoding, RefusesMalformedBytes) {
    using namespace std::string_literals;
    const struct {
        const char* what;
        CFStringEncoding encoding;
        std::string bytes;
    } cases[] = {
        {"cut sequence", kCFStringEncodingUTF8, "a\xC3"},
        {"continuation alone", kCFStringEncodingUTF8, "\x80"},
        {"overlong slash", kCFStringEncodingUTF8, "\xC0\xAF"},
        {"encoded surrogate", kCFStringEncodingUTF8, "\xED\xA0\x80"},
        {"beyond Unicode", kCFStringEncodingUTF8, "\xF4\x90\x80\x80"},
        {"never a byte of UTF-8", kCFStringEncodingUTF8, "\xFF"},
        {"half a unit", kCFStringEncodingUTF16LE, "abc"},
        {"UTF-32 surrogate", kCFStringEncodingUTF32BE, "\0\0\xD8\0"s},
        {"UTF-32 beyond Unicode", kCFStringEncodingUTF32BE, "\0\x11\0\0"s},
        {"UTF-32 of odd size", kCFStringEncodingUTF32BE, "\0\0\0"s},
        {"high bit in ASCII", kCFStringEncodingASCII, "\x80"},
        {"no NextStep character", kCFStringEncodingNextStepLatin, "\xFF"},
        {"half a Shift JIS character", kCFStringEncodingShiftJIS, "\x93"},
        {"escape without digits", kCFStringEncodingNonLossyASCII, "\\u12"},
        {"escape of no digits", kCFStringEncodingNonLossyASCII, "\\9zz"},
        {"lone backslash", kCFStringEncodingNonLossyASCII, "\\"},
    };
    for (const auto& [what, encoding, bytes] : cases)
        EXPECT_FALSE(decoded(bytes, encoding)) << what;
}

TEST(CFStringEncoding, HonoursByteOrderMarksInExternalForms) {
    using namespace std::string_literals;
    const struct {
        const char* what;
        CFStringEncoding encoding;
        std::string bytes;
        bool isExternal;
        std::u16string characters;
    } cases[] = {
        {"UTF-8 mark", kCFStringEncodingUTF8,
         "\xEF\xBB\xBF"
         "a",
         true, u"a"},
        {"UTF-8 mark as a character", kCFStringEncodingUTF8,
         "\xEF\xBB\xBF"
         "a",
         false, u"\uFEFFa"},
        {"big mark", kCFStringEncodingUTF16, "\xFE\xFF\0a"s, true, u"a"},
        {"little mark", kCFStringEncodingUTF16,
         "\xFF\xFE"
         "a\0"s,
         true, u"a"},
        {"no mark", kCFStringEncodingUTF16, "a\0"s, true, u"a"},
        {"mark of a stated order", kCFStringEncodingUTF16BE, "\xFE\xFF\0a"s, true, u"a"},
        {"big UTF-32", kCFStringEncodingUTF32, "\0\0\xFE\xFF\0\0\0a"s, true, u"a"},
        {"little UTF-32", kCFStringEncodingUTF32, "\xFF\xFE\0\0a\0\0\0"s, true, u"a"},
    };
    for (const auto& [what, encoding, bytes, isExternal, characters] : cases)
        EXPECT_EQ(text(decoded(bytes, encoding, isExternal).get()), characters) << what;

    EXPECT_EQ(encoded(CFSTR("a"), kCFStringEncodingUTF16, 0, 64, true).bytes, "\xFF\xFE"
                                                                              "a\0"s);
    EXPECT_EQ(encoded(CFSTR("a"), kCFStringEncodingUTF16BE, 0, 64, true).bytes, "\0a"s);
    EXPECT_EQ(encoded(CFSTR("a"), kCFStringEncodingUTF8, 0, 64, true).bytes, "a");
}

TEST(CFStringEncoding, ExternalRepresentationsRoundTrip) {
    const String sample = string(u"a\u00E9\u65E5\U0001F600");
    for (const CFStringEncoding encoding :
         {kCFStringEncodingUTF8, kCFStringEncodingUTF16, kCFStringEncodingUTF16LE,
          kCFStringEncodingUTF32, kCFStringEncodingNonLossyASCII}) {
        const auto data =
            cf::adopt(CFStringCreateExternalRepresentation(nullptr, sample.get(), encoding, 0));
        ASSERT_TRUE(data) << encoding;
        const String back =
            cf::adopt(CFStringCreateFromExternalRepresentation(nullptr, data.get(), encoding));
        EXPECT_TRUE(CFEqual(back.get(), sample.get())) << encoding;
    }
    EXPECT_EQ(
        CFStringCreateExternalRepresentation(nullptr, sample.get(), kCFStringEncodingASCII, 0),
        nullptr);
    const auto lossy = cf::adopt(
        CFStringCreateExternalRepresentation(nullptr, sample.get(), kCFStringEncodingASCII, '?'));
    ASSERT_EQ(CFDataGetLength(lossy.get()), 4);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(lossy.get())), 4), "a???");
}

TEST(CFStringEncoding, StopsAtWhatItCannotWrite) {
    const std::u16string lone = {u'a', 0xD800, u'b'};
    const struct {
        const char* what;
        std::u16string characters;
        CFStringEncoding encoding;
        UInt8 lossByte;
        CFIndex converted;
        std::string bytes;
    } cases[] = {
        {"ASCII, strict", u"ab\u00E9c", kCFStringEncodingASCII, 0, 2, "ab"},
        {"ASCII, lossy", u"ab\u00E9c", kCFStringEncodingASCII, '?', 4, "ab?c"},
        {"one byte for a pair", u"\U0001F600c", kCFStringEncodingISOLatin1, '?', 3, "?c"},
        {"lone surrogate, strict", lone, kCFStringEncodingUTF8, 0, 1, "a"},
        {"lone surrogate, lossy", lone, kCFStringEncodingUTF8, '?', 3, "a?b"},
        {"by converter, strict", u"a\u65E5b", kCFStringEncodingWindowsLatin1, 0, 1, "a"},
        {"by converter, lossy", u"a\u65E5b", kCFStringEncodingWindowsLatin1, '?', 3, "a?b"},
        {"pair by converter", u"a\U0001F600b", kCFStringEncodingKOI8_R, '.', 4, "a.b"},
        {"loss between shifts", u"\u65E5\uAC00\u65E5", kCFStringEncodingISO_2022_JP, '?', 3,
         "\x1B$BF|\x1B(B?\x1B$BF|\x1B(B"},
        {"encoding that is not there", u"a", kCFStringEncodingMacDingbats, '?', 0, ""},
    };
    for (const auto& [what, characters, encoding, lossByte, converted, bytes] : cases) {
        const Encoded written = encoded(string(characters).get(), encoding, lossByte);
        EXPECT_EQ(written.bytes, bytes) << what;
        EXPECT_EQ(written.converted, converted) << what;
    }
}

TEST(CFStringEncoding, NeverWritesHalfACharacter) {
    const std::u16string characters = u"a\u00E9\u65E5\U0001F600z";
    const String sample = string(characters);
    for (const CFStringEncoding encoding :
         {CFStringEncoding(kCFStringEncodingUTF8), CFStringEncoding(kCFStringEncodingUTF16LE),
          CFStringEncoding(kCFStringEncodingUTF32BE),
          CFStringEncoding(kCFStringEncodingGB_18030_2000)}) {
        const Encoded whole = encoded(sample.get(), encoding);
        for (CFIndex capacity = 0; capacity <= CFIndex(whole.bytes.size()); ++capacity) {
            const Encoded part = encoded(sample.get(), encoding, 0, capacity);
            EXPECT_EQ(part.bytes, whole.bytes.substr(0, part.bytes.size()));
            const String read = decoded(part.bytes, encoding);
            EXPECT_EQ(text(read.get()), characters.substr(0, size_t(part.converted)))
                << encoding << " in " << capacity;
        }
        CFIndex counted = 0;
        EXPECT_EQ(CFStringGetBytes(sample.get(), CFRangeMake(0, 6), encoding, 0, false, nullptr, 0,
                                   &counted),
                  6);
        EXPECT_EQ(counted, CFIndex(whole.bytes.size())) << encoding;
    }
}

TEST(CFStringEncoding, CStringsNeedRoomForTheirNul) {
    char buffer[8];
    EXPECT_FALSE(CFStringGetCString(CFSTR("abcd"), buffer, 4, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(CFStringGetCString(CFSTR("abcd"), buffer, 5, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_FALSE(CFStringGetCString(CFSTR("\u65E5"), buffer, 8, kCFStringEncodingASCII));
    EXPECT_FALSE(CFStringGetCString(CFSTR("a"), nullptr, 8, kCFStringEncodingASCII));
    EXPECT_FALSE(CFStringGetCString(CFSTR("a"), buffer, 0, kCFStringEncodingASCII));

    Str255 counted;
    EXPECT_TRUE(CFStringGetPascalString(CFSTR("abc"), counted, 4, kCFStringEncodingMacRoman));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(counted), 4), "\x03"
                                                                "abc");
    EXPECT_FALSE(CFStringGetPascalString(CFSTR("abc"), counted, 3, kCFStringEncodingMacRoman));
}

TEST(CFStringEncoding, FileNamesAreUTF8WithoutNul) {
    const String name = string(u"na\u00EFve \u65E5.txt");
    const CFIndex size = CFStringGetMaximumSizeOfFileSystemRepresentation(name.get());
    std::string buffer(size_t(size), '#');
    ASSERT_TRUE(CFStringGetFileSystemRepresentation(name.get(), buffer.data(), size));
    EXPECT_STREQ(buffer.c_str(), "na\xC3\xAFve \xE6\x97\xA5.txt");
    const String back =
        cf::adopt(CFStringCreateWithFileSystemRepresentation(nullptr, buffer.c_str()));
    EXPECT_TRUE(CFEqual(back.get(), name.get()));
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(string(std::u16string_view(u"a\0b", 3)).get(),
                                                     buffer.data(), size));
}

TEST(CFStringEncoding, EveryListedEncodingKeepsASCII) {
    int count = 0;
    for (const CFStringEncoding* encoding = CFStringGetListOfAvailableEncodings();
         *encoding != kCFStringEncodingInvalidId; ++encoding, ++count) {
        EXPECT_TRUE(CFStringIsEncodingAvailable(*encoding));
        const Encoded written = encoded(CFSTR("Plain text, 123."), *encoding);
        EXPECT_EQ(written.converted, 16) << std::hex << *encoding;
        EXPECT_EQ(text(decoded(written.bytes, *encoding).get()), u"Plain text, 123.")
            << std::hex << *encoding;
        EXPECT_NE(CFStringGetNameOfEncoding(*encoding), nullptr);
    }
    EXPECT_GE(count, 60);
    EXPECT_FALSE(CFStringIsEncodingAvailable(kCFStringEncodingMacDingbats));
    EXPECT_FALSE(CFStringIsEncodingAvailable(kCFStringEncodingInvalidId));
}

TEST(CFStringEncoding, NamesAndNumbersLeadBack) {
    const struct {
        const char* name;
        CFStringEncoding encoding;
    } names[] = {
        {"utf-8", kCFStringEncodingUTF8},
        {"UTF8", kCFStringEncodingUTF8},
        {"iso-8859-1", kCFStringEncodingISOLatin1},
        {"latin1", kCFStringEncodingISOLatin1},
        {"us-ascii", kCFStringEncodingASCII},
        {"windows-1252", kCFStringEncodingWindowsLatin1},
        {"cp1252", kCFStringEncodingWindowsLatin1},
        {"macintosh", kCFStringEncodingMacRoman},
        {"shift_jis", kCFStringEncodingShiftJIS},
        {"euc-jp", kCFStringEncodingEUC_JP},
        {"gb18030", kCFStringEncodingGB_18030_2000},
        {"big5", kCFStringEncodingBig5},
        {"koi8-r", kCFStringEncodingKOI8_R},
        {"no such set", kCFStringEncodingInvalidId},
        {"", kCFStringEncodingInvalidId},
    };
    for (const auto& [name, encoding] : names) {
        const String asked =
            cf::adopt(CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8));
        EXPECT_EQ(CFStringConvertIANACharSetNameToEncoding(asked.get()), encoding) << name;
    }
    for (const CFStringEncoding* encoding = CFStringGetListOfAvailableEncodings();
         *encoding != kCFStringEncodingInvalidId; ++encoding) {
        if (const CFStringRef name = CFStringConvertEncodingToIANACharSetName(*encoding))
            EXPECT_EQ(CFStringConvertIANACharSetNameToEncoding(name), *encoding)
                << test::utf8(name);
        EXPECT_EQ(CFStringConvertNSStringEncodingToEncoding(
                      CFStringConvertEncodingToNSStringEncoding(*encoding)),
                  *encoding);
    }
    EXPECT_EQ(CFStringConvertWindowsCodepageToEncoding(1252), kCFStringEncodingWindowsLatin1);
    EXPECT_EQ(CFStringConvertWindowsCodepageToEncoding(65001), kCFStringEncodingUTF8);
    EXPECT_EQ(CFStringConvertEncodingToWindowsCodepage(kCFStringEncodingShiftJIS), 932u);
    EXPECT_EQ(CFStringConvertWindowsCodepageToEncoding(1), kCFStringEncodingInvalidId);
    EXPECT_EQ(CFStringConvertEncodingToNSStringEncoding(kCFStringEncodingUTF8), 4u);
    EXPECT_EQ(CFStringGetMostCompatibleMacStringEncoding(kCFStringEncodingWindowsCyrillic),
              kCFStringEncodingMacCyrillic);
    EXPECT_EQ(CFStringGetSystemEncoding(), kCFStringEncodingUTF8);
    EXPECT_EQ(CFStringGetSmallestEncoding(string(u"\u00E9").get()), kCFStringEncodingISOLatin1);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(LONG_MAX, kCFStringEncodingUTF8), kCFNotFound);
}

} // namespace
