// ThreadTest.cpp: what many threads may do at once.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRuntime.h>

#include "Support/Threads.h"
#include "TestObjects.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <set>

namespace {

using test::kThreads;
using test::onThreads;

std::atomic<int> finalized = 0;

// The finaliser reads what the threads wrote, which a missing barrier would make a race.
struct Shared {
    CFRuntimeBase base;
    std::array<int, kThreads> written;
};

const CFRuntimeClass kSharedClass = {
    .className = "Shared",
    .finalize =
        [](CFTypeRef object) {
            for (const int written : static_cast<const Shared*>(object)->written)
                EXPECT_EQ(written, 1);
            ++finalized;
        },
};

TEST(Threads, RetainAndReleaseOneObjectAndFinaliseItOnce) {
    for (int round = 0; round < 200; ++round) {
        finalized = 0;
        auto* const shared = static_cast<Shared*>(const_cast<void*>(_CFRuntimeCreateUntypedInstance(
            nullptr, &kSharedClass, sizeof(Shared) - sizeof(CFRuntimeBase))));
        for (size_t i = 1; i < kThreads; ++i)
            CFRetain(shared);
        onThreads([&](std::size_t thread) {
            for (int i = 0; i < 100; ++i) {
                CFRetain(shared);
                CFRelease(shared);
            }
            shared->written[thread] = 1;
            CFRelease(shared);
        });
        ASSERT_EQ(finalized, 1);
    }
}

TEST(Threads, RegisterClassesWithoutSharingAnIdentifier) {
    static const std::array<CFRuntimeClass, kThreads* 16> records = [] {
        std::array<CFRuntimeClass, kThreads* 16> made = {};
        for (CFRuntimeClass& record : made)
            record.className = "Registered";
        return made;
    }();
    std::array<CFTypeID, records.size()> types = {};
    onThreads([&](std::size_t thread) {
        for (size_t i = 0; i < 16; ++i) {
            const size_t index = thread * 16 + i;
            types[index] = _CFRuntimeRegisterClass(&records[index]);
            const auto object =
                cf::adopt(_CFRuntimeCreateInstance(nullptr, types[index], 0, nullptr));
            EXPECT_EQ(CFGetTypeID(object.get()), types[index]);
        }
    });
    EXPECT_EQ(std::set<CFTypeID>(types.begin(), types.end()).size(), types.size());
    for (size_t i = 0; i < types.size(); ++i)
        EXPECT_EQ(_CFRuntimeGetClassWithTypeID(types[i]), &records[i]);
}

TEST(Threads, MeetBuiltInTypesForTheFirstTime) {
    std::array<CFTypeID, kThreads> types = {};
    onThreads([&](std::size_t thread) {
        const auto set = cf::adopt(CFSetCreateMutable(nullptr, 0, &kCFTypeSetCallBacks));
        const auto array = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
        CFSetAddValue(set.get(), array.get());
        CFArrayAppendValue(array.get(), kCFBooleanTrue);
        types[thread] = CFGetTypeID(array.get());
    });
    for (const CFTypeID type : types)
        EXPECT_EQ(type, CFArrayGetTypeID());
}

TEST(Threads, ReadOneDictionaryTogether) {
    const auto dictionary = cf::adopt(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    for (intptr_t key = 1; key <= 1000; ++key)
        CFDictionarySetValue(dictionary.get(), test::pointer(key), test::pointer(key * 2));
    std::atomic<int> wrong = 0;
    onThreads([&](std::size_t) {
        for (intptr_t key = 1; key <= 1000; ++key) {
            const void* const value = CFDictionaryGetValue(dictionary.get(), test::pointer(key));
            wrong += value == test::pointer(key * 2) ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
