// CFDateTest.cpp: instants and their order.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFRef.h>

#include <gtest/gtest.h>

#include <ctime>

namespace {

cf::Ref<CFDateRef> make(CFAbsoluteTime time) {
    return cf::adopt(CFDateCreate(nullptr, time));
}

TEST(CFDate, OrdersAndSubtractsInstants) {
    const auto early = make(-10.5), late = make(20);
    EXPECT_EQ(CFDateGetAbsoluteTime(early.get()), -10.5);
    EXPECT_EQ(CFDateGetTimeIntervalSinceDate(late.get(), early.get()), 30.5);
    EXPECT_EQ(CFDateCompare(early.get(), late.get(), nullptr), kCFCompareLessThan);
    EXPECT_EQ(CFDateCompare(late.get(), early.get(), nullptr), kCFCompareGreaterThan);
    EXPECT_EQ(CFDateCompare(late.get(), make(20).get(), nullptr), kCFCompareEqualTo);
    EXPECT_TRUE(CFEqual(late.get(), make(20).get()));
    EXPECT_FALSE(CFEqual(late.get(), early.get()));
    EXPECT_EQ(CFHash(make(0.0).get()), CFHash(make(-0.0).get()));
}

TEST(CFDate, NullComesFirst) {
    EXPECT_EQ(CFDateCompare(nullptr, make(0).get(), nullptr), kCFCompareLessThan);
    EXPECT_EQ(CFDateCompare(nullptr, nullptr, nullptr), kCFCompareEqualTo);
    EXPECT_EQ(CFDateGetAbsoluteTime(nullptr), 0);
    EXPECT_EQ(CFDateGetTimeIntervalSinceDate(make(5).get(), nullptr), 0);
}

TEST(CFDate, CurrentTimeFollowsTheHostsClock) {
    // The moment zero, by the C library's calendar.
    std::tm zero = {};
    zero.tm_year = 101;
    zero.tm_mday = 1;
    EXPECT_EQ(double(timegm(&zero)), kCFAbsoluteTimeIntervalSince1970);
    const auto now = double(std::time(nullptr)) - kCFAbsoluteTimeIntervalSince1970;
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent(), now, 2);
    // 97 years, 24 of them leap years.
    EXPECT_EQ(kCFAbsoluteTimeIntervalSince1904, (97 * 365 + 25) * 86400.0);
}

} // namespace
