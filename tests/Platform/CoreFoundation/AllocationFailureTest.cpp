// AllocationFailureTest.cpp: every allocation of every operation on the core classes fails in turn.

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFLRUCache.h>
#include <CoreFoundation/CFNumber.h>

#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"
#include "TestObjects.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

namespace {

using test::pointer;

constexpr CFIndex kCount = 40;

// Values that are objects, so that leaked references show as leaked memory.
class Objects {
public:
    Objects() {
        for (int i = 0; i < kCount; ++i)
            objects_[size_t(i)] = CFNumberCreate(nullptr, kCFNumberIntType, &i);
    }
    ~Objects() {
        for (const void* const object : objects_) {
            if (object)
                CFRelease(object);
        }
    }
    Objects(const Objects&) = delete;
    Objects& operator=(const Objects&) = delete;

    const void** list() { return objects_.data(); }
    const void* operator[](CFIndex i) const { return objects_[size_t(i)]; }

private:
    std::array<const void*, kCount> objects_ = {};
};

CFComparisonResult compareObjects(const void* a, const void* b, void*) {
    return CFNumberCompare(static_cast<CFNumberRef>(a), static_cast<CFNumberRef>(b), nullptr);
}

void useArrays() {
    Objects objects;
    const auto array =
        cf::adopt(CFArrayCreate(nullptr, objects.list(), kCount, &kCFTypeArrayCallBacks));
    const auto copy = cf::adopt(CFArrayCreateCopy(nullptr, array.get()));
    const auto changed = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (CFIndex i = 0; i < kCount; ++i)
        CFArrayInsertValueAtIndex(changed.get(), 0, objects[i]);
    CFArraySetValueAtIndex(changed.get(), 0, objects[3]);
    CFArrayAppendArray(changed.get(), copy.get(), {0, CFArrayGetCount(copy.get())});
    const CFRange whole = {0, CFArrayGetCount(changed.get())};
    CFArraySortValues(changed.get(), whole, compareObjects, nullptr);
    CFArrayReplaceValues(changed.get(), whole, objects.list(), kCount);
    const auto mutableCopy = cf::adopt(CFArrayCreateMutableCopy(nullptr, 0, changed.get()));
    CFArrayRemoveAllValues(mutableCopy.get());
}

void useDictionaries() {
    Objects objects;
    const auto* const keys = &kCFTypeDictionaryKeyCallBacks;
    const auto* const values = &kCFTypeDictionaryValueCallBacks;
    const auto dictionary = cf::adopt(
        CFDictionaryCreate(nullptr, objects.list(), objects.list(), kCount, keys, values));
    const auto copy = cf::adopt(CFDictionaryCreateCopy(nullptr, dictionary.get()));
    const auto changed = cf::adopt(CFDictionaryCreateMutable(nullptr, 0, keys, values));
    for (CFIndex i = 0; i < kCount; ++i) {
        CFDictionaryAddValue(changed.get(), objects[i], objects[i]);
        CFDictionarySetValue(changed.get(), objects[i], objects[kCount - 1 - i]);
    }
    CFDictionaryRemoveValue(changed.get(), objects[5]);
    const auto mutableCopy = cf::adopt(CFDictionaryCreateMutableCopy(nullptr, 0, changed.get()));
    CFDictionaryRemoveAllValues(mutableCopy.get());
}

void useSets() {
    Objects objects;
    const auto set = cf::adopt(CFSetCreate(nullptr, objects.list(), kCount, &kCFTypeSetCallBacks));
    const auto copy = cf::adopt(CFSetCreateCopy(nullptr, set.get()));
    const auto changed = cf::adopt(CFSetCreateMutable(nullptr, 0, &kCFTypeSetCallBacks));
    for (CFIndex i = 0; i < kCount; ++i) {
        CFSetAddValue(changed.get(), objects[i]);
        CFSetSetValue(changed.get(), objects[i]);
    }
    const auto mutableCopy = cf::adopt(CFSetCreateMutableCopy(nullptr, 0, changed.get()));
    CFSetRemoveAllValues(mutableCopy.get());
}

void useCaches() {
    Objects objects;
    const auto cache = cf::adopt(_CFLRUCacheCreate(
        nullptr, kCount / 2, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (CFIndex i = 0; i < kCount; ++i) {
        _CFLRUCacheSetValue(cache.get(), objects[i], objects[i]);
        _CFLRUCacheSetValue(cache.get(), objects[i / 2], objects[i]);
    }
}

void useData() {
    const std::array<UInt8, 100> bytes = {};
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes.data(), 100));
    const auto around =
        cf::adopt(CFDataCreateWithBytesNoCopy(nullptr, bytes.data(), 100, kCFAllocatorNull));
    const auto copy = cf::adopt(CFDataCreateCopy(nullptr, around.get()));
    const auto changed = cf::adopt(CFDataCreateMutable(nullptr, 0));
    for (int i = 0; i < 10; ++i)
        CFDataAppendBytes(changed.get(), bytes.data(), 100);
    const CFIndex length = CFDataGetLength(changed.get());
    CFDataAppendBytes(changed.get(), CFDataGetBytePtr(changed.get()), length);
    CFDataIncreaseLength(changed.get(), 5000);
    const auto mutableCopy = cf::adopt(CFDataCreateMutableCopy(nullptr, 0, changed.get()));
}

void useScalars() {
    const double real = 1.5;
    const auto number = cf::adopt(CFNumberCreate(nullptr, kCFNumberDoubleType, &real));
    const auto date = cf::adopt(CFDateCreate(nullptr, real));
    const CFAllocatorContext context = {};
    const auto allocator = cf::adopt(CFAllocatorCreate(nullptr, &context));
}

TEST(AllocationFailure, LeavesNothingBehindInAnyClass) {
    const struct {
        const char* what;
        void (*use)();
        size_t leastAllocations;
    } cases[] = {
        {"arrays", useArrays, 50}, {"dictionaries", useDictionaries, 50},
        {"sets", useSets, 50},     {"caches", useCaches, 80},
        {"data", useData, 10},     {"numbers, dates, allocators", useScalars, 3},
    };
    HostLogSetThreshold(static_cast<HostLogLevel>(0)); // Each failure would say so.
    for (const auto& [what, use, leastAllocations] : cases) {
        const auto sweep = test::failEachAllocation(use);
        EXPECT_GE(sweep.failures, leastAllocations) << what;
        EXPECT_EQ(sweep.leakedBytes, 0) << what;
    }
    HostLogSetThreshold(kHostLogError);
}

TEST(AllocationFailure, ChangesNothingAndIsLogged) {
    const auto array = cf::adopt(CFArrayCreateMutable(nullptr, 0, nullptr));
    const auto dictionary = cf::adopt(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    const auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    if (!test::allAllocationsCanFail())
        GTEST_SKIP() << "objects keep the allocator that made them, which cannot fail here";
    int lines = 0;
    HostLogSetSink([](HostLogLevel, const char*, const char*, const char*,
                      void* lines) { ++*static_cast<int*>(lines); },
                   &lines);
    {
        const test::AllocationFailure failure(1);
        CFArrayAppendValue(array.get(), pointer(1));
    }
    {
        const test::AllocationFailure failure(1);
        CFDictionarySetValue(dictionary.get(), pointer(1), pointer(1));
    }
    {
        const test::AllocationFailure failure(1);
        CFDataSetLength(data.get(), 10);
    }
    HostLogSetSink(nullptr, nullptr);
    EXPECT_EQ(CFArrayGetCount(array.get()), 0);
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
    EXPECT_EQ(CFDataGetLength(data.get()), 0);
    EXPECT_EQ(lines, 3);
}

} // namespace
