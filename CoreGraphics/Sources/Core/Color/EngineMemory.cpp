// EngineMemory.cpp: the C library's memory, and a reserve behind it.

#include "Core/Color/EngineMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

namespace cg {

namespace {

// A profile may claim any size; what the engine allows itself by default.
constexpr std::size_t kLargestBlock = std::size_t{512} << 20;

enum class Supply : unsigned char { System, Reserved, Exhausted };

// Of the calling thread: whether the reserve stands behind the system's memory, or already had to.
constinit thread_local Supply supply = Supply::System;

constexpr std::size_t kAlignment = alignof(std::max_align_t);

// Costs nothing until it is written to. Tables of a transform between two presses take about a
// tenth of it.
alignas(kAlignment) constinit std::byte memory[std::size_t{16} << 20];

// Blocks are cut off one after another, and all of it is free again once the last of them is.
class Reserve {
public:
    void* allocate(std::size_t size) {
        const std::lock_guard guard(lock_);
        const std::size_t step = sizeof(Header) + (size + kAlignment - 1) / kAlignment * kAlignment;
        if (step > sizeof memory - used_)
            return nullptr;
        auto* const header = reinterpret_cast<Header*>(memory + used_);
        header->size = size;
        used_ += step;
        ++blocks_;
        return header + 1;
    }

    void deallocate() {
        const std::lock_guard guard(lock_);
        if (--blocks_ == 0)
            used_ = 0;
    }

    static bool owns(const void* block) {
        const auto* const byte = static_cast<const std::byte*>(block);
        return byte >= memory && byte < memory + sizeof memory;
    }

    static std::size_t sizeOf(const void* block) {
        return (static_cast<const Header*>(block) - 1)->size;
    }

private:
    struct alignas(kAlignment) Header {
        std::size_t size;
    };

    std::size_t used_ = 0;
    std::size_t blocks_ = 0;
    std::mutex lock_; // Guards both.
};

constinit Reserve reserve;

void* fromReserve(std::size_t size) {
    if (supply == Supply::System)
        return nullptr;
    supply = Supply::Exhausted;
    return reserve.allocate(size);
}

void* allocate(cmsContext, cmsUInt32Number size) {
    if (size > kLargestBlock)
        return nullptr;
    void* const block = std::malloc(size);
    return block ? block : fromReserve(size);
}

void deallocate(cmsContext, void* block) {
    if (Reserve::owns(block))
        reserve.deallocate();
    else
        std::free(block);
}

void* reallocate(cmsContext context, void* block, cmsUInt32Number size) {
    if (size > kLargestBlock)
        return nullptr;
    if (!Reserve::owns(block)) {
        void* const resized = std::realloc(block, size);
        if (!resized && supply == Supply::Reserved)
            supply = Supply::Exhausted;
        return resized;
    }
    void* const moved = allocate(context, size);
    if (moved) {
        std::memcpy(moved, block, std::min<std::size_t>(size, Reserve::sizeOf(block)));
        reserve.deallocate();
    }
    return moved;
}

} // namespace

EngineTransform createEngineTransform(void* from, cmsUInt32Number fromFormat, void* to,
                                      cmsUInt32Number toFormat, cmsUInt32Number intent,
                                      cmsUInt32Number flags) {
    supply = Supply::Reserved;
    void* const transform = cmsCreateTransform(from, fromFormat, to, toFormat, intent, flags);
    if (std::exchange(supply, Supply::System) == Supply::Reserved)
        return {transform, false};
    if (transform)
        cmsDeleteTransform(transform);
    return {nullptr, true};
}

cmsPluginMemHandler engineMemoryPlugin(cmsPluginBase* next) {
    cmsPluginMemHandler plugin = {};
    plugin.base = {cmsPluginMagicNumber, 2060, cmsPluginMemHandlerSig, next};
    plugin.MallocPtr = allocate;
    plugin.FreePtr = deallocate;
    plugin.ReallocPtr = reallocate;
    return plugin;
}

} // namespace cg
