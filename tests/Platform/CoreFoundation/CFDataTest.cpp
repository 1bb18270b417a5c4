// CFDataTest.cpp: runs of bytes against std::string.

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>

#include "Support/CollectedLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

using Data = cf::Ref<CFMutableDataRef>;
constexpr CFIndex kMost = std::numeric_limits<CFIndex>::max();

const UInt8* bytes(const std::string& text) {
    return reinterpret_cast<const UInt8*>(text.data());
}

Data makeData(const std::string& text) {
    Data data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    CFDataAppendBytes(data.get(), bytes(text), CFIndex(text.size()));
    return data;
}

std::string contents(CFDataRef data) {
    return std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                       size_t(CFDataGetLength(data)));
}

TEST(CFData, AgreesWithAStringThroughRandomChanges) {
    std::mt19937 random(6);
    const Data data = makeData("");
    std::string model;
    for (int round = 0; round < 20000; ++round) {
        const size_t at = random() % (model.size() + 1);
        const size_t length = random() % (std::min<size_t>(model.size() - at, 20) + 1);
        const std::string fresh(random() % 20, char('a' + random() % 26));
        switch (random() % 4) {
        case 0:
            CFDataReplaceBytes(data.get(), {CFIndex(at), CFIndex(length)}, bytes(fresh),
                               CFIndex(fresh.size()));
            model.replace(at, length, fresh);
            break;
        case 1:
            CFDataDeleteBytes(data.get(), {CFIndex(at), CFIndex(length)});
            model.erase(at, length);
            break;
        case 2:
            CFDataIncreaseLength(data.get(), CFIndex(length));
            model.append(length, '\0');
            break;
        default:
            CFDataSetLength(data.get(), CFIndex(std::max<size_t>(at, 30)));
            model.resize(std::max<size_t>(at, 30));
        }
        if (round % 50 == 0)
            ASSERT_EQ(contents(data.get()), model);
    }
}

TEST(CFData, TakesBytesFromWithinItself) {
    const Data data = makeData("0123456789");
    for (int i = 0; i < 5; ++i)
        CFDataAppendBytes(data.get(), CFDataGetBytePtr(data.get()) + 2, 8);
    EXPECT_EQ(contents(data.get()), "0123456789"
                                    "23456789"
                                    "23456789"
                                    "23456789"
                                    "23456789"
                                    "23456789");
    const Data shifted = makeData("abcdef");
    CFDataReplaceBytes(shifted.get(), {0, 1}, CFDataGetBytePtr(shifted.get()) + 1, 3);
    EXPECT_EQ(contents(shifted.get()), "bcdbcdef");
}

TEST(CFData, FindsBytesFromEitherEnd) {
    const Data data = makeData("abcabcabd");
    const struct {
        const char* what;
        const char* sought;
        CFRange range;
        CFOptionFlags options;
        CFIndex expected;
    } cases[] = {
        {"the first", "abc", {0, 9}, 0, 0},
        {"the first in a range", "abc", {1, 8}, 0, 3},
        {"the last", "abc", {0, 9}, kCFDataSearchBackwards, 3},
        {"not across the range's end", "abd", {0, 8}, 0, kCFNotFound},
        {"at the start only", "bc", {0, 9}, kCFDataSearchAnchored, kCFNotFound},
        {"at the start", "bca", {1, 8}, kCFDataSearchAnchored, 1},
        {"at the end", "abd", {0, 9}, kCFDataSearchAnchored | kCFDataSearchBackwards, 6},
        {"at the end only",
         "abc",
         {0, 9},
         kCFDataSearchAnchored | kCFDataSearchBackwards,
         kCFNotFound},
        {"nothing", "", {0, 9}, 0, kCFNotFound},
        {"longer than the range", "abca", {0, 3}, 0, kCFNotFound},
    };
    for (const auto& [what, sought, range, options, expected] : cases) {
        const CFRange found = CFDataFind(data.get(), makeData(sought).get(), range, options);
        EXPECT_EQ(found.location, expected) << what;
        EXPECT_EQ(found.length, expected == kCFNotFound ? 0 : CFIndex(strlen(sought))) << what;
    }
}

TEST(CFData, FreesBytesThatItWasGiven) {
    auto* const own = static_cast<UInt8*>(CFAllocatorAllocate(kCFAllocatorMalloc, 4, 0));
    std::copy_n("data", 4, own);
    const auto data = cf::adopt(CFDataCreateWithBytesNoCopy(nullptr, own, 4, kCFAllocatorMalloc));
    EXPECT_EQ(CFDataGetBytePtr(data.get()), own);
    const auto copy = cf::adopt(CFDataCreateCopy(nullptr, data.get()));
    EXPECT_NE(CFDataGetBytePtr(copy.get()), own);
    EXPECT_TRUE(CFEqual(data.get(), copy.get()));
    EXPECT_EQ(CFHash(data.get()), CFHash(copy.get()));

    const std::string constant = "constant";
    const auto lent =
        cf::adopt(CFDataCreateWithBytesNoCopy(nullptr, bytes(constant), 8, kCFAllocatorNull));
    EXPECT_EQ(contents(lent.get()), constant);
}

TEST(CFData, EqualityGoesByEveryByte) {
    const std::string text(500, 'x');
    std::string other = text;
    other.back() = 'y';
    EXPECT_TRUE(CFEqual(makeData(text).get(), makeData(text).get()));
    EXPECT_FALSE(CFEqual(makeData(text).get(), makeData(other).get()));
    EXPECT_FALSE(CFEqual(makeData(text).get(), makeData(text + "x").get()));
    EXPECT_TRUE(CFEqual(makeData("").get(), makeData("").get()));
    EXPECT_NE(CFHash(makeData("ab").get()), CFHash(makeData("ba").get()));
}

TEST(CFData, LogsRangesOutsideAndLeavesTheBytes) {
    const CollectedLog log;
    const Data data = makeData("abc");
    CFDataReplaceBytes(data.get(), {2, 2}, bytes("x"), 1);
    CFDataDeleteBytes(data.get(), {-1, 1});
    CFDataDeleteBytes(data.get(), {1, kMost});
    EXPECT_EQ(CFDataFind(data.get(), data.get(), {4, 0}, 0).location, kCFNotFound);
    char buffer[] = "......";
    CFDataGetBytes(data.get(), {1, 5}, reinterpret_cast<UInt8*>(buffer));
    EXPECT_STREQ(buffer, "bc....") << "cut to what is there";
    CFDataIncreaseLength(data.get(), kMost);
    EXPECT_EQ(contents(data.get()), "abc");
    EXPECT_EQ(log.lines().size(), 6u);
}

TEST(CFData, RefusesMissingArgumentsAndChangesToImmutableData) {
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, -1), nullptr);
    EXPECT_EQ(CFDataCreateMutable(nullptr, -1), nullptr);
    EXPECT_EQ(CFDataCreateWithBytesNoCopy(nullptr, nullptr, 1, nullptr), nullptr);
    const CollectedLog log;
    const auto data =
        cf::adopt(const_cast<CFMutableDataRef>(CFDataCreate(nullptr, bytes("abc"), 3)));
    CFDataSetLength(data.get(), 1);
    CFDataAppendBytes(data.get(), bytes("d"), 1);
    EXPECT_EQ(CFDataGetMutableBytePtr(data.get()), nullptr);
    EXPECT_EQ(contents(data.get()), "abc");
    EXPECT_EQ(log.lines().size(), 3u);
}

} // namespace
