// FailingAllocatorTest.cpp: the tool is checked before others are checked with it.

#include "Support/FailingAllocator.h"

#include <CoreFoundation/CFAllocator.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace {

// Keeps the compiler from leaving out an allocation that it can see the end of.
void* opaque(void* memory) {
    asm volatile("" : "+r"(memory));
    return memory;
}

TEST(AllocationMeter, CountsBlocksAndBytesOfEveryKind) {
    const test::AllocationMeter meter;
    void* const plain = opaque(std::malloc(1000));
    EXPECT_EQ(meter.allocations(), 1u);
    EXPECT_GE(meter.liveBytes(), 1000);
    EXPECT_LT(meter.liveBytes(), 1100);
    void* const zeroed = opaque(std::calloc(10, 100));
    auto* const object = static_cast<char*>(opaque(::operator new(1000)));
    void* const aligned = opaque(std::aligned_alloc(64, 1024));
    EXPECT_EQ(meter.allocations(), 4u);
    EXPECT_GE(meter.liveBytes(), 4000);
    void* const grown = opaque(std::realloc(plain, 5000));
    EXPECT_GE(meter.liveBytes(), 8000);
    std::free(grown);
    std::free(zeroed);
    ::operator delete(object);
    std::free(aligned);
    EXPECT_EQ(meter.liveBytes(), 0);
}

TEST(AllocationFailure, FailsTheOneAllocationThatIsDue) {
    void* blocks[4] = {};
    bool happened = false;
    {
        const test::AllocationFailure failure(2);
        for (void*& block : blocks)
            block = CFAllocatorAllocate(nullptr, 16, 0);
        happened = failure.happened();
    }
    EXPECT_TRUE(happened);
    EXPECT_TRUE(blocks[0] && blocks[2] && blocks[3]);
    EXPECT_EQ(blocks[1], nullptr);
    for (void* const block : blocks)
        CFAllocatorDeallocate(nullptr, block);
}

TEST(AllocationFailure, ReachesMallocItself) {
    if (!test::allAllocationsCanFail())
        GTEST_SKIP() << "malloc is the sanitizer's: only CFAllocator fails here";
    const test::AllocationFailure failure(1);
    void* const memory = opaque(std::malloc(16));
    EXPECT_EQ(memory, nullptr);
}

TEST(FailureSweep, VisitsEachAllocationAndFindsLeaks) {
    const auto honest = test::failEachAllocation([] {
        void* const first = CFAllocatorAllocate(nullptr, 16, 0);
        void* const second = CFAllocatorAllocate(nullptr, 16, 0);
        CFAllocatorDeallocate(nullptr, first);
        CFAllocatorDeallocate(nullptr, second);
    });
    EXPECT_EQ(honest.failures, 2u);
    EXPECT_EQ(honest.leakedBytes, 0);

    static void* forgotten[8];
    static int count = 0;
    const auto leaking = test::failEachAllocation([] {
        void* const first = CFAllocatorAllocate(nullptr, 16, 0);
        void* const second = CFAllocatorAllocate(nullptr, 16, 0);
        CFAllocatorDeallocate(nullptr, second);
        if (second)
            CFAllocatorDeallocate(nullptr, first);
        else
            forgotten[count++] = first;
    });
    EXPECT_GT(leaking.leakedBytes, 0);
    while (count > 0)
        CFAllocatorDeallocate(nullptr, forgotten[--count]);
}

} // namespace
