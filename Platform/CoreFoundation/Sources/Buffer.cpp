// Buffer.cpp: how the memory of buffers grows.

#include "Buffer.h"

#include <algorithm>
#include <limits>

namespace cf::detail {

namespace {

constexpr CFIndex kMost = std::numeric_limits<CFIndex>::max();

} // namespace

void* resizeBlock(CFAllocatorRef allocator, void* block, std::size_t usedBytes, CFIndex capacity,
                  std::size_t itemSize) {
    CFIndex size = 0;
    if (__builtin_mul_overflow(capacity, itemSize, &size))
        return nullptr;
    if (void* const resized = CFAllocatorReallocate(allocator, block, size, 0))
        return resized;
    if (!block)
        return nullptr;
    // The allocator may be one that cannot change a block's size.
    void* const other = CFAllocatorAllocate(allocator, size, 0);
    if (other) {
        std::memcpy(other, block, usedBytes);
        CFAllocatorDeallocate(allocator, block);
    }
    return other;
}

CFIndex grownCapacity(CFIndex capacity, CFIndex needed) {
    const CFIndex half = capacity / 2;
    const CFIndex grown = capacity > kMost - half ? kMost : capacity + half;
    return std::max({grown, needed, CFIndex{4}});
}

} // namespace cf::detail
