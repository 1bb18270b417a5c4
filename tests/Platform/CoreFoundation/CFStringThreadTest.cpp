// CFStringThreadTest.cpp: what many threads do to strings at once.

#include "StringTexts.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <vector>

namespace {

using test::kThreads;

TEST(CFStringThreads, AgreeOnEveryConstant) {
    constexpr int kTexts = 2000;
    std::array<std::vector<CFStringRef>, kThreads> made;
    test::onThreads([&](std::size_t thread) {
        for (int i = 0; i < kTexts; ++i)
            made[thread].push_back(__CFStringMakeConstantString(
                ("thread constant \u00E9" + std::to_string(i)).c_str()));
    });
    for (int i = 0; i < kTexts; ++i) {
        const CFStringRef first = made[0][size_t(i)];
        EXPECT_EQ(test::utf8(first), "thread constant \u00E9" + std::to_string(i));
        for (const auto& other : made)
            EXPECT_EQ(other[size_t(i)], first);
    }
}

TEST(CFStringThreads, ShareImmutableStrings) {
    const test::String shared = test::string(u"shared by all \u4E16");
    std::array<CFHashCode, kThreads> hashes = {};
    test::onThreads([&](std::size_t thread) {
        for (int i = 0; i < 2000; ++i) {
            const auto copy = cf::adopt(CFStringCreateCopy(nullptr, shared.get()));
            hashes[thread] = CFHash(copy.get());
            const auto text = cf::adopt(
                CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ %d"), copy.get(), i));
            if (CFStringFind(text.get(), shared.get(), kCFCompareCaseInsensitive).location != 0)
                hashes[thread] = 0;
        }
    });
    for (const CFHashCode hash : hashes)
        EXPECT_EQ(hash, CFHash(shared.get()));
}

TEST(CFStringThreads, ReadOneLocale) {
    const auto locale = cf::adopt(CFLocaleCreate(nullptr, CFSTR("de_AT")));
    std::array<CFTypeRef, kThreads> values = {};
    test::onThreads([&](std::size_t thread) {
        values[thread] = CFLocaleGetValue(locale.get(), kCFLocaleCountryCode);
    });
    for (const CFTypeRef value : values) {
        EXPECT_EQ(value, values[0]);
        EXPECT_EQ(test::utf8(static_cast<CFStringRef>(value)), "AT");
    }
}

} // namespace
