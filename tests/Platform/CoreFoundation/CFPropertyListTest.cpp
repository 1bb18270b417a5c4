// CFPropertyListTest.cpp: reading, writing, copying and checking lists.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFPropertyList.h>

#include "PropertyListFixtures.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::binarySample;
using test::makeData;
using test::makeText;
using test::textOf;
using test::textSample;
using test::xmlSample;
using List = cf::Ref<CFTypeRef>;

List read(std::string_view bytes, CFOptionFlags options = kCFPropertyListImmutable,
          CFPropertyListFormat* format = nullptr) {
    return cf::adopt<CFTypeRef>(
        CFPropertyListCreateWithData(nullptr, makeData(bytes).get(), options, format, nullptr));
}

std::string write(const List& list, CFPropertyListFormat format) {
    const auto data = cf::adopt(CFPropertyListCreateData(nullptr, list.get(), format, 0, nullptr));
    if (!data)
        return test::kNone;
    return std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
                       size_t(CFDataGetLength(data.get())));
}

List integer(int64_t value) {
    return cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
}
List real(double value) {
    return cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
}
List text(const std::string& text) {
    return cf::retain<CFTypeRef>(makeText(text).get());
}
List bytes(std::string_view bytes) {
    return cf::retain<CFTypeRef>(makeData(bytes).get());
}
List date(double time) {
    return cf::adopt<CFTypeRef>(CFDateCreate(nullptr, time));
}

List array(std::initializer_list<List> values) {
    const auto result = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const List& value : values)
        CFArrayAppendValue(result.get(), value.get());
    return cf::retain<CFTypeRef>(result.get());
}

List dictionary(std::initializer_list<std::pair<const char*, List>> entries) {
    const auto result = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (const auto& [key, value] : entries)
        CFDictionarySetValue(result.get(), makeText(key).get(), value.get());
    return cf::retain<CFTypeRef>(result.get());
}

List expectedSample() {
    return dictionary({{"a", array({integer(1), integer(255), integer(256), integer(65536),
                                    integer(int64_t{1} << 32), integer(-1)})},
                       {"b", cf::retain<CFTypeRef>(kCFBooleanTrue)},
                       {"c", real(1.5)},
                       {"d", bytes(std::string_view("\0\xFF", 2))},
                       {"e", text("\xC3\xA9")},
                       {"f", date(10)},
                       {"g", dictionary({})},
                       {"h", text("xxxxxxxxxxxxxxxx")}});
}

CFIndex errorCodeOf(std::string_view bytes) {
    CFErrorRef stored = nullptr;
    const auto list = cf::adopt<CFTypeRef>(
        CFPropertyListCreateWithData(nullptr, makeData(bytes).get(), 0, nullptr, &stored));
    const auto error = cf::adopt(stored);
    return list ? 0 : CFErrorGetCode(error.get());
}

TEST(CFPropertyList, ReadsEachFormatAndNamesIt) {
    const List table =
        dictionary({{"list", array({text("1"), text("two"), text("t\"h\xC3\xA9\xC3\x98")})},
                    {"data", bytes(std::string_view("\0\xFF", 2))},
                    {"quo ted", dictionary({})},
                    {"path", text("/a/b.c-d_$")}});
    const struct {
        const char* what;
        std::string bytes;
        List expected;
        CFPropertyListFormat format;
    } cases[] = {
        {"binary", binarySample(), expectedSample(), kCFPropertyListBinaryFormat_v1_0},
        {"XML", xmlSample(), expectedSample(), kCFPropertyListXMLFormat_v1_0},
        {"text", textSample(), table, kCFPropertyListOpenStepFormat},
        {"XML with a mark", "\xEF\xBB\xBF" + xmlSample(), expectedSample(),
         kCFPropertyListXMLFormat_v1_0},
        {"XML in Latin-1",
         "<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE9</string></plist>",
         text("\xC3\xA9"), kCFPropertyListXMLFormat_v1_0},
        {"table of strings", "\"a\" = \"b\";\nc;\n",
         dictionary({{"a", text("b")}, {"c", text("c")}}), kCFPropertyListOpenStepFormat},
        {"one word", " word ", text("word"), kCFPropertyListOpenStepFormat},
        {"text in UTF-16", std::string("\xFF\xFE\"\0\xE9\0\"\0", 8), text("\xC3\xA9"),
         kCFPropertyListOpenStepFormat},
    };
    for (const auto& [what, bytes, expected, format] : cases) {
        CFPropertyListFormat found = CFPropertyListFormat(0);
        const List list = read(bytes, kCFPropertyListImmutable, &found);
        ASSERT_TRUE(list) << what;
        EXPECT_TRUE(CFEqual(list.get(), expected.get())) << what;
        EXPECT_EQ(found, format) << what;
    }
}

TEST(CFPropertyList, RoundTripsInBothWrittenFormats) {
    const float single = 0.1f;
    const struct {
        const char* what;
        List list;
    } cases[] = {
        {"all kinds", expectedSample()},
        {"the least integer", integer(std::numeric_limits<int64_t>::min())},
        {"the greatest integer", integer(std::numeric_limits<int64_t>::max())},
        {"a real with all its digits", real(0.1 + 0.2)},
        {"the smallest real", real(std::numeric_limits<double>::denorm_min())},
        {"infinity", real(std::numeric_limits<double>::infinity())},
        {"minus infinity", real(-std::numeric_limits<double>::infinity())},
        {"not a number", real(std::nan(""))},
        {"a 32-bit real",
         cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberFloat32Type, &single))},
        {"no text", text("")},
        {"text that XML must escape", text("<a & 'b' \"c\" \r\n\t]]> \xF0\x9F\x98\x80")},
        {"white space alone", text("  \n ")},
        {"no data", bytes("")},
        {"data of each remainder", array({bytes("a"), bytes("ab"), bytes("abc"), bytes("abcd")})},
        {"data of several lines", bytes(std::string(200, '\x5A'))},
        {"a date before the epoch", date(-1)},
        {"the first of March in a leap year of a century", date(-26438400)},
        {"many values",
         [] {
             const auto many = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
             for (int i = 0; i < 70000; ++i)
                 CFArrayAppendValue(many.get(), integer(i).get());
             return cf::retain<CFTypeRef>(many.get());
         }()},
    };
    for (const auto& [what, list] : cases) {
        for (const auto format :
             {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0}) {
            const List back = read(write(list, format));
            ASSERT_TRUE(back) << what << " in format " << format;
            EXPECT_TRUE(CFEqual(back.get(), list.get())) << what << " in format " << format;
        }
    }
}

TEST(CFPropertyList, KeepsNumbersThatAreEqualApart) {
    const float single = 1;
    const List list =
        array({integer(1), real(1),
               cf::adopt<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberFloat32Type, &single)),
               cf::retain<CFTypeRef>(kCFBooleanTrue)});
    const List back = read(write(list, kCFPropertyListBinaryFormat_v1_0));
    const auto type = [&](CFIndex i) {
        return CFNumberGetType(static_cast<CFNumberRef>(
            CFArrayGetValueAtIndex(static_cast<CFArrayRef>(back.get()), i)));
    };
    EXPECT_EQ(type(0), kCFNumberSInt64Type);
    EXPECT_EQ(type(1), kCFNumberFloat64Type);
    EXPECT_EQ(type(2), kCFNumberFloat32Type);
    EXPECT_EQ(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(back.get()), 3), kCFBooleanTrue);
}

TEST(CFPropertyList, WritesEqualLeavesOnceAndEqualListsAlike) {
    const List one = dictionary({{"x", text("a long text")}, {"y", text("a long text")}});
    const List other = dictionary({{"y", text("a long text")}, {"x", text("a long text")}});
    for (const auto format : {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0})
        EXPECT_EQ(write(one, format), write(other, format));
    const std::string binary = write(one, kCFPropertyListBinaryFormat_v1_0);
    EXPECT_EQ(binary.find("a long text"), binary.rfind("a long text"));
    EXPECT_EQ(
        write(dictionary({{"b", integer(1)}, {"a", array({})}}), kCFPropertyListXMLFormat_v1_0),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        "\t<key>a</key>\n\t<array/>\n\t<key>b</key>\n\t<integer>1</integer>\n</dict>\n"
        "</plist>\n");
}

TEST(CFPropertyList, RefusesWhatItCannotHold) {
    const auto loop = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(loop.get(), loop.get());
    const auto odd = cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                         &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(odd.get(), integer(1).get(), integer(2).get());
    const UniChar surrogate = 0xD800;
    const List lone = cf::adopt<CFTypeRef>(CFStringCreateWithCharacters(nullptr, &surrogate, 1));
    const struct {
        const char* what;
        List list;
        CFPropertyListFormat format;
        bool isValid;
    } cases[] = {
        {"nothing", nullptr, kCFPropertyListXMLFormat_v1_0, false},
        {"null", cf::retain<CFTypeRef>(kCFNull), kCFPropertyListXMLFormat_v1_0, false},
        {"a list that contains itself", cf::retain<CFTypeRef>(loop.get()),
         kCFPropertyListBinaryFormat_v1_0, false},
        {"a key that is no string", cf::retain<CFTypeRef>(odd.get()),
         kCFPropertyListBinaryFormat_v1_0, false},
        {"a control character in XML", text("\x01"), kCFPropertyListXMLFormat_v1_0, true},
        {"a noncharacter in XML", text("\xEF\xBF\xBF"), kCFPropertyListXMLFormat_v1_0, true},
        {"a lone surrogate in XML", lone, kCFPropertyListXMLFormat_v1_0, true},
        {"a date too late for XML", date(1e15), kCFPropertyListXMLFormat_v1_0, true},
        {"a date that is none in XML", date(std::nan("")), kCFPropertyListXMLFormat_v1_0, true},
        {"the old text format", text("a"), kCFPropertyListOpenStepFormat, true},
        {"a number in the old text format", integer(1), kCFPropertyListOpenStepFormat, false},
        {"an unknown format", text("a"), CFPropertyListFormat(3), false},
    };
    for (const auto& [what, list, format, isValid] : cases) {
        CFErrorRef stored = nullptr;
        const auto data =
            cf::adopt(CFPropertyListCreateData(nullptr, list.get(), format, 0, &stored));
        const auto error = cf::adopt(stored);
        EXPECT_FALSE(data) << what;
        EXPECT_EQ(CFErrorGetCode(error.get()), kCFPropertyListWriteStreamError) << what;
        EXPECT_EQ(bool(CFPropertyListIsValid(list.get(), format)), isValid) << what;
    }
    CFArrayRemoveAllValues(loop.get());
    EXPECT_TRUE(CFEqual(read(write(lone, kCFPropertyListBinaryFormat_v1_0)).get(), lone.get()))
        << "the binary format keeps units as they are";
}

TEST(CFPropertyList, IsAsMutableAsAskedFor) {
    const struct {
        CFOptionFlags options;
        bool containers;
        bool leaves;
    } cases[] = {{kCFPropertyListImmutable, false, false},
                 {kCFPropertyListMutableContainers, true, false},
                 {kCFPropertyListMutableContainersAndLeaves, true, true}};
    const List source = dictionary({{"a", array({})}, {"s", text("x")}});
    for (const auto& [options, containers, leaves] : cases) {
        const List copies[] = {
            read(write(source, kCFPropertyListXMLFormat_v1_0), options),
            read(write(source, kCFPropertyListBinaryFormat_v1_0), options),
            read("{ a = (); s = x; }", options),
            cf::adopt<CFTypeRef>(CFPropertyListCreateDeepCopy(nullptr, source.get(), options)),
        };
        for (const List& copy : copies) {
            ASSERT_TRUE(CFEqual(copy.get(), source.get()));
            const auto root = static_cast<CFDictionaryRef>(copy.get());
            const void* const inner = CFDictionaryGetValue(root, CFSTR("a"));
            const void* const leaf = CFDictionaryGetValue(root, CFSTR("s"));
            CFArrayAppendValue(static_cast<CFMutableArrayRef>(const_cast<void*>(inner)),
                               kCFBooleanTrue);
            CFStringAppend(static_cast<CFMutableStringRef>(const_cast<void*>(leaf)), CFSTR("y"));
            EXPECT_EQ(CFArrayGetCount(static_cast<CFArrayRef>(inner)), containers ? 1 : 0);
            EXPECT_EQ(CFStringGetLength(static_cast<CFStringRef>(leaf)), leaves ? 2 : 1);
        }
    }
}

TEST(CFPropertyList, MalformedBytesGiveAnError) {
    const std::string deep = [] {
        std::string text = "<plist>";
        for (int i = 0; i < 100000; ++i)
            text += "<array>";
        return text;
    }();
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"nothing", ""},
        {"XML without a root", "<?xml version='1.0'?>"},
        {"another root", "<?xml version='1.0'?><list><string/></list>"},
        {"no value", "<plist></plist>"},
        {"two values", "<plist><string/><string/></plist>"},
        {"text beside a value", "<plist>x<string/></plist>"},
        {"no end", "<plist><array><string/></array>"},
        {"an unknown element", "<plist><text>a</text></plist>"},
        {"an element in a string", "<plist><string>a<b/></string></plist>"},
        {"a value without a key", "<plist><dict><string/></dict></plist>"},
        {"a key without a value", "<plist><dict><key>a</key></dict></plist>"},
        {"an integer that is none", "<plist><integer>1x</integer></plist>"},
        {"an empty integer", "<plist><integer/></plist>"},
        {"a real that is none", "<plist><real>1,5</real></plist>"},
        {"a month that is none", "<plist><date>2001-13-01T00:00:00Z</date></plist>"},
        {"data that are none", "<plist><data>A*==</data></plist>"},
        {"data cut short", "<plist><data>AAAAA</data></plist>"},
        {"an entity", "<plist><string>&x;</string></plist>"},
        {"declared entities",
         "<!DOCTYPE plist [<!ENTITY x 'y'>]><plist><string>&x;</string></plist>"},
        {"declarations behind quotes",
         "<!DOCTYPE plist PUBLIC \">\" '<' [<!ENTITY x 'y'>]><plist><string/></plist>"},
        {"XML that nests too deep", deep},
        {"bytes that are not UTF-8", "<plist><string>\xFF</string></plist>"},
        {"text that nests too deep", std::string(100000, '(')},
        {"an array that does not end", "(a, b"},
        {"a dictionary without '='", "{ a b }"},
        {"a string that does not end", "\"abc"},
        {"half a byte", "<abc>"},
        {"a comment that does not end", "/* a"},
        {"text behind the value", "{} x"},
    };
    for (const auto& [what, bytes] : cases)
        EXPECT_EQ(errorCodeOf(bytes), kCFPropertyListReadCorruptError) << what;
    EXPECT_EQ(errorCodeOf("bplist15garbage"), kCFPropertyListReadUnknownVersionError);
    EXPECT_FALSE(
        cf::adopt<CFTypeRef>(CFPropertyListCreateWithData(nullptr, nullptr, 0, nullptr, nullptr)));
}

// A binary list of objects that are given in order, with one-byte references and offsets.
std::string binaryList(std::initializer_list<std::string> objects) {
    std::string list = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets.push_back(char(list.size()));
        list += object;
    }
    const char table = char(list.size());
    list += offsets + std::string(6, '\0') + "\x01\x01" + std::string(7, '\0');
    list.push_back(char(objects.size()));
    list += std::string(8 + 7, '\0');
    list.push_back(table);
    return list;
}

TEST(CFPropertyList, BinaryReferencesAndSizesAreChecked) {
    const std::string wide("\x14\0\0\0\0\0\0\0\0\x80\0\0\0\0\0\0\0", 17);
    ASSERT_TRUE(read(binaryList({"\xA2\x01\x01", "\x51x"}))) << "the helper makes good lists";
    double value = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(read(binaryList({wide})).get()), kCFNumberFloat64Type,
                     &value);
    EXPECT_EQ(value, 0x1p63) << "an unsigned number beyond the signed ones";
    EXPECT_TRUE(
        CFEqual(read(binaryList({"\x80\x05"})).get(), dictionary({{"CF$UID", integer(5)}}).get()));

    std::string laughs[26];
    for (int i = 0; i < 25; ++i)
        laughs[i] = std::string("\xA2") + char(i + 1) + char(i + 1);
    laughs[25] = "\x51x";
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"a reference past the end", binaryList({"\xA1\x05"})},
        {"an array that contains itself", binaryList({std::string("\xA1\0", 2)})},
        {"a key that is no string", binaryList({"\xD1\x01\x01", "\x10\x01"})},
        {"a kind that is none", binaryList({"\x70"})},
        {"null", binaryList({std::string(1, '\0')})},
        {"a string past the end", binaryList({"\x5Axx"})},
        {"a count past the end", binaryList({"\x4F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"})},
        {"a count whose bytes overflow",
         binaryList({"\x6F\x13\x80" + std::string(6, '\0') + "\x01"})},
        {"a count that is no number", binaryList({"\x4F\x51x"})},
        {"an integer of 32 bytes", binaryList({"\x15" + std::string(32, 'x')})},
        {"a real of two bytes", binaryList({"\x21xx"})},
        {"a date that is none", binaryList({"\x33\x7F\xFF" + std::string(6, '\xFF')})},
        {"letters beyond ASCII", binaryList({"\x51\xE9"})},
        {"a list that unfolds to millions",
         binaryList({laughs[0],  laughs[1],  laughs[2],  laughs[3],  laughs[4],  laughs[5],
                     laughs[6],  laughs[7],  laughs[8],  laughs[9],  laughs[10], laughs[11],
                     laughs[12], laughs[13], laughs[14], laughs[15], laughs[16], laughs[17],
                     laughs[18], laughs[19], laughs[20], laughs[21], laughs[22], laughs[23],
                     laughs[24], laughs[25]})},
    };
    for (const auto& [what, bytes] : cases)
        EXPECT_EQ(errorCodeOf(bytes), kCFPropertyListReadCorruptError) << what;
}

TEST(CFPropertyList, DamagedListsNeverDoHarm) {
    size_t readable = 0;
    for (const std::string& sample : {binarySample(), xmlSample(), textSample()}) {
        for (size_t size = 0; size < sample.size(); ++size)
            readable += read(std::string_view(sample).substr(0, size)) ? 1 : 0;
        for (size_t bit = 0; bit < sample.size() * 8; ++bit) {
            std::string damaged = sample;
            damaged[bit / 8] = char(damaged[bit / 8] ^ (1 << bit % 8));
            const List list = read(damaged, kCFPropertyListMutableContainersAndLeaves);
            // Whatever was read is a list that can be worked with.
            if (list) {
                ++readable;
                EXPECT_TRUE(CFPropertyListIsValid(list.get(), kCFPropertyListXMLFormat_v1_0));
                EXPECT_NE(write(list, kCFPropertyListBinaryFormat_v1_0), test::kNone);
            }
        }
    }
    EXPECT_GT(readable, 0u);
}

TEST(CFPropertyList, GoesThroughStreams) {
    const List list = expectedSample();
    const auto out = cf::adopt(CFWriteStreamCreateWithAllocatedBuffers(nullptr, nullptr));
    ASSERT_TRUE(CFWriteStreamOpen(out.get()));
    const CFIndex size =
        CFPropertyListWrite(list.get(), out.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr);
    const auto data = cf::adopt(
        static_cast<CFDataRef>(CFWriteStreamCopyProperty(out.get(), kCFStreamPropertyDataWritten)));
    ASSERT_GT(size, 0);
    ASSERT_EQ(CFDataGetLength(data.get()), size);

    const auto in = cf::adopt(CFReadStreamCreateWithBytesNoCopy(
        nullptr, CFDataGetBytePtr(data.get()), size, kCFAllocatorNull));
    CFErrorRef stored = nullptr;
    EXPECT_FALSE(cf::adopt<CFTypeRef>(
        CFPropertyListCreateWithStream(nullptr, in.get(), 0, 0, nullptr, &stored)))
        << "not open";
    EXPECT_EQ(CFErrorGetCode(cf::adopt(stored).get()), kCFPropertyListReadStreamError);
    ASSERT_TRUE(CFReadStreamOpen(in.get()));
    const auto back = cf::adopt<CFTypeRef>(
        CFPropertyListCreateWithStream(nullptr, in.get(), size, 0, nullptr, nullptr));
    EXPECT_TRUE(CFEqual(back.get(), list.get()));

    UInt8 small[10];
    const auto full = cf::adopt(CFWriteStreamCreateWithBuffer(nullptr, small, sizeof small));
    CFWriteStreamOpen(full.get());
    EXPECT_EQ(
        CFPropertyListWrite(list.get(), full.get(), kCFPropertyListBinaryFormat_v1_0, 0, &stored),
        0);
    EXPECT_EQ(CFErrorGetCode(cf::adopt(stored).get()), kCFPropertyListWriteStreamError);
}

} // namespace
