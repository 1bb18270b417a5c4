// CFAllocatorTest.cpp: allocators over callbacks, and the objects that live in their memory.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

// What an allocator under test has been asked for.
struct Ledger {
    int retained = 0;
    int liveBlocks = 0;
    CFOptionFlags lastHint = 0;
};

Ledger& ledger(const void* info) {
    return *static_cast<Ledger*>(const_cast<void*>(info));
}

CFAllocatorContext contextOver(Ledger& info) {
    CFAllocatorContext context = {};
    context.info = &info;
    context.retain = [](const void* info) {
        ++ledger(info).retained;
        return info;
    };
    context.release = [](const void* info) { --ledger(info).retained; };
    context.allocate = [](CFIndex size, CFOptionFlags hint, void* info) {
        ++ledger(info).liveBlocks;
        ledger(info).lastHint = hint;
        return std::malloc(size_t(size));
    };
    context.reallocate = [](void* memory, CFIndex size, CFOptionFlags, void*) {
        return std::realloc(memory, size_t(size));
    };
    context.deallocate = [](void* memory, void* info) {
        --ledger(info).liveBlocks;
        std::free(memory);
    };
    context.preferredSize = [](CFIndex size, CFOptionFlags, void*) {
        return (size + 63) / 64 * 64;
    };
    return context;
}

using Allocator = cf::Ref<CFAllocatorRef>;

TEST(CFAllocator, WorksThroughItsCallbacks) {
    Ledger info;
    const CFAllocatorContext context = contextOver(info);
    {
        const Allocator allocator = cf::adopt(CFAllocatorCreate(nullptr, &context));
        EXPECT_EQ(CFGetTypeID(allocator.get()), CFAllocatorGetTypeID());
        EXPECT_EQ(info.retained, 1);

        void* block = CFAllocatorAllocate(allocator.get(), 10, 5);
        EXPECT_EQ(info.liveBlocks, 1);
        EXPECT_EQ(info.lastHint, 5u);
        block = CFAllocatorReallocate(allocator.get(), block, 100, 0);
        ASSERT_TRUE(block);
        CFAllocatorDeallocate(allocator.get(), block);
        EXPECT_EQ(info.liveBlocks, 0);
        EXPECT_EQ(CFAllocatorGetPreferredSizeForSize(allocator.get(), 65, 0), 128);

        CFAllocatorContext copy = {};
        CFAllocatorGetContext(allocator.get(), &copy);
        EXPECT_EQ(copy.allocate, context.allocate);
        EXPECT_EQ(copy.info, &info);
    }
    EXPECT_EQ(info.retained, 0);
}

TEST(CFAllocator, RefusesSizesThatAreNotPositive) {
    EXPECT_EQ(CFAllocatorAllocate(nullptr, 0, 0), nullptr);
    EXPECT_EQ(CFAllocatorAllocate(nullptr, -1, 0), nullptr);
    EXPECT_EQ(CFAllocatorGetPreferredSizeForSize(nullptr, 0, 0), 0);
    EXPECT_EQ(CFAllocatorGetPreferredSizeForSize(nullptr, -5, 0), 0);
    EXPECT_GE(CFAllocatorGetPreferredSizeForSize(nullptr, 7, 0), 7);

    void* const block = CFAllocatorReallocate(nullptr, nullptr, 8, 0);
    ASSERT_TRUE(block);
    EXPECT_EQ(CFAllocatorReallocate(nullptr, block, 0, 0), nullptr) << "and frees the block";
    CFAllocatorDeallocate(nullptr, nullptr);
}

TEST(CFAllocator, NullOneHasNoMemory) {
    EXPECT_EQ(CFAllocatorAllocate(kCFAllocatorNull, 8, 0), nullptr);
    char byte = 1;
    CFAllocatorDeallocate(kCFAllocatorNull, &byte);
    const CFAllocatorContext context = {};
    EXPECT_EQ(CFAllocatorCreate(kCFAllocatorNull, &context), nullptr);
    EXPECT_EQ(CFAllocatorCreate(nullptr, nullptr), nullptr);
}

TEST(CFAllocator, CanLiveInMemoryOfItsOwn) {
    Ledger info;
    const CFAllocatorContext context = contextOver(info);
    {
        const Allocator allocator = cf::adopt(CFAllocatorCreate(kCFAllocatorUseContext, &context));
        EXPECT_EQ(info.liveBlocks, 1);
        EXPECT_EQ(CFGetAllocator(allocator.get()), allocator.get());
    }
    EXPECT_EQ(info.liveBlocks, 0);
    EXPECT_EQ(info.retained, 0);
}

TEST(CFAllocator, LivesAsLongAsItsObjects) {
    Ledger info;
    const CFAllocatorContext context = contextOver(info);
    const CFRuntimeClass record = {.className = "Tenant"};
    {
        Allocator allocator = cf::adopt(CFAllocatorCreate(nullptr, &context));
        const auto tenant =
            cf::adopt(_CFRuntimeCreateUntypedInstance(allocator.get(), &record, 24));
        EXPECT_EQ(CFGetAllocator(tenant.get()), allocator.get());
        EXPECT_EQ(info.liveBlocks, 1);
        allocator = nullptr;
        EXPECT_EQ(info.retained, 1);
    }
    EXPECT_EQ(info.liveBlocks, 0);
    EXPECT_EQ(info.retained, 0);
}

TEST(CFAllocator, DefaultBelongsToTheThread) {
    Ledger info;
    const CFAllocatorContext context = contextOver(info);
    ASSERT_EQ(CFAllocatorGetDefault(), kCFAllocatorSystemDefault);
    std::thread([&] {
        const Allocator allocator = cf::adopt(CFAllocatorCreate(nullptr, &context));
        CFAllocatorSetDefault(allocator.get());
        EXPECT_EQ(CFAllocatorGetDefault(), allocator.get());
        void* const block = CFAllocatorAllocate(kCFAllocatorDefault, 8, 0);
        EXPECT_EQ(info.liveBlocks, 1);
        CFAllocatorDeallocate(nullptr, block);
        CFAllocatorSetDefault(nullptr);
        EXPECT_EQ(CFAllocatorGetDefault(), allocator.get()) << "NULL changes nothing";
    }).join();
    EXPECT_EQ(info.retained, 0) << "the thread's end lets go of its default";
    EXPECT_EQ(CFAllocatorGetDefault(), kCFAllocatorSystemDefault);
}

} // namespace
