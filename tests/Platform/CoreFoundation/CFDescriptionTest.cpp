// CFDescriptionTest.cpp: what objects look like to people, and strings as keys.

#include <CoreFoundation/CFLRUCache.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreFoundation/CoreFoundation.h>
#include <Host/Host.h>

#include "Support/FailingAllocator.h"
#include "TestObjects.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace {

using String = cf::Ref<CFStringRef>;

std::string textOf(CFStringRef string) {
    std::string text(1000, '\0');
    if (!string ||
        !CFStringGetCString(string, text.data(), CFIndex(text.size()), kCFStringEncodingUTF8))
        return "(no text)";
    return text.c_str();
}

// The description with addresses written as @.
std::string describe(CFTypeRef object) {
    const String text = cf::adopt(CFCopyDescription(object));
    return std::regex_replace(textOf(text.get()), std::regex("([ <])0x[0-9a-f]{5,}>"), "$1@>");
}

// What "%@" makes of the object.
std::string format(CFTypeRef object) {
    const String text = cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@"), object));
    return textOf(text.get());
}

cf::Ref<CFNumberRef> make(int value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &value));
}
cf::Ref<CFNumberRef> make(double value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
}

TEST(Description, ScalarsShowTheirValue) {
    const UInt8 bytes[] = {0xde, 0xad, 0x01};
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes, 3));
    const auto date = cf::adopt(CFDateCreate(nullptr, 86400.75));
    EXPECT_EQ(describe(make(42).get()), "<CFNumber @>{value = 42, type = kCFNumberSInt32Type}");
    EXPECT_EQ(format(make(-7).get()), "-7");
    EXPECT_EQ(format(make(0.1).get()), "0.1");
    EXPECT_EQ(format(kCFNumberNegativeInfinity), "-inf");
    EXPECT_EQ(describe(kCFBooleanTrue), "<CFBoolean @>{value = true}");
    EXPECT_EQ(format(kCFBooleanFalse), "false");
    EXPECT_EQ(format(kCFNull), "<null>");
    EXPECT_EQ(describe(data.get()), "<CFData @>{length = 3, bytes = 0xdead01}");
    EXPECT_EQ(format(date.get()), "2001-01-02 00:00:00 +0000");
}

TEST(Description, LongDataShowsBothEnds) {
    const std::string bytes(99, 'a');
    const auto data =
        cf::adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), 99));
    std::string expected = "<CFData @>{length = 99, bytes = 0x";
    for (int i = 0; i < 16; ++i)
        expected += "61";
    expected += " … ";
    for (int i = 0; i < 8; ++i)
        expected += "61";
    EXPECT_EQ(describe(data.get()), expected + "}");
}

TEST(Description, CollectionsShowTheirValues) {
    const auto array = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(array.get(), kCFBooleanTrue);
    CFArrayAppendValue(array.get(), nullptr);
    EXPECT_EQ(describe(array.get()), "<CFArray @>{type = mutable, count = 2, values = (\n"
                                     "\t0 : <CFBoolean @>{value = true}\n"
                                     "\t1 : <0x0>\n)}");
    const void* keys[] = {kCFBooleanTrue};
    const void* values[] = {test::pointer(0x123456)};
    const auto dictionary = cf::adopt(
        CFDictionaryCreate(nullptr, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, nullptr));
    EXPECT_EQ(describe(dictionary.get()), "<CFDictionary @>{type = immutable dict, count = 1, "
                                          "entries =>\n\t<CFBoolean @>{value = true} = <@>\n}");
    const auto set = cf::adopt(CFSetCreate(nullptr, keys, 1, &kCFTypeSetCallBacks));
    EXPECT_EQ(describe(set.get()), "<CFSet @>{type = immutable set, count = 1, values =>\n"
                                   "\t<CFBoolean @>{value = true}\n}");
}

TEST(Description, CollectionThatHoldsItselfIsCutOff) {
    const auto array = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(array.get(), array.get());
    const String text = cf::adopt(CFCopyDescription(array.get()));
    const String mark = cf::retain(CFSTR("…"));
    EXPECT_EQ(CFStringFind(text.get(), mark.get(), 0).length, 1);
    CFArrayRemoveAllValues(array.get());
}

TEST(Description, OtherObjectsShowClassAndAddress) {
    const CFRuntimeClass record = {.className = "Plain"};
    const auto plain = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &record, 0));
    EXPECT_EQ(describe(plain.get()), "<Plain @>");
    const auto cache = cf::adopt(_CFLRUCacheCreate(nullptr, 5, nullptr, nullptr));
    EXPECT_EQ(describe(cache.get()), "<CFLRUCache @>{count = 0, capacity = 5, hits = 0, "
                                     "misses = 0}");
    EXPECT_EQ(CFCopyDescription(nullptr), nullptr);

    const String name = cf::adopt(CFCopyTypeIDDescription(CFArrayGetTypeID()));
    EXPECT_EQ(textOf(name.get()), "CFArray");
    EXPECT_EQ(CFCopyTypeIDDescription(0), nullptr);
    EXPECT_EQ(CFCopyTypeIDDescription(99999), nullptr);
}

TEST(Description, ShowsOnTheErrorStream) {
    testing::internal::CaptureStderr();
    CFShow(kCFBooleanTrue);
    CFShow(nullptr);
    const std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(std::regex_match(
        shown, std::regex("<CFBoolean 0x[0-9a-f]+>\\{value = true\\}\n\\(null\\)\n")))
        << shown;
}

TEST(StringKeys, AreFoundByTextAndKeptAsCopies) {
    const auto dictionary = cf::adopt(
        CFDictionaryCreateMutable(nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, nullptr));
    const auto set = cf::adopt(CFSetCreateMutable(nullptr, 0, &kCFCopyStringSetCallBacks));
    const auto key = cf::adopt(CFStringCreateMutable(nullptr, 0));
    CFStringAppend(key.get(), CFSTR("name"));
    CFDictionarySetValue(dictionary.get(), key.get(), test::pointer(5));
    CFSetAddValue(set.get(), key.get());
    CFStringAppend(key.get(), CFSTR("less"));
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("name")), test::pointer(5));
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), key.get()), nullptr);
    EXPECT_TRUE(CFSetContainsValue(set.get(), CFSTR("name")));
}

TEST(StringKeys, LeaveNothingBehindWhenMemoryRunsOut) {
    HostLogSetThreshold(static_cast<HostLogLevel>(0)); // Each failure would say so.
    const auto sweep = test::failEachAllocation([] {
        const auto key = cf::adopt(CFStringCreateMutable(nullptr, 0));
        CFStringAppend(key.get(), CFSTR("a text that no constant has"));
        const auto dictionary = cf::adopt(CFDictionaryCreateMutable(
            nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
        CFDictionarySetValue(dictionary.get(), key.get(), key.get());
        const String description = cf::adopt(CFCopyDescription(dictionary.get()));
    });
    HostLogSetThreshold(kHostLogError);
    EXPECT_GT(sweep.failures, 5u);
    EXPECT_EQ(sweep.leakedBytes, 0);
}

} // namespace
