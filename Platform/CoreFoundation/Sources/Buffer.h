// Buffer.h: a growable run of plain items in an allocator's memory.
//
// Unlike the standard containers it reports a failed allocation instead of throwing: each call that
// may need memory answers whether it got it, and a failed one changes nothing.
#pragma once

#include <CoreFoundation/CFAllocator.h>

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

namespace cf {

namespace detail {

// Moves `usedBytes` into a block of `capacity` items of `itemSize` bytes; nullptr when there is
// none, and then the old block stays.
void* resizeBlock(CFAllocatorRef allocator, void* block, std::size_t usedBytes, CFIndex capacity,
                  std::size_t itemSize);

// At least `needed`, and half as much again as `capacity`, so that appending takes constant time on
// average.
CFIndex grownCapacity(CFIndex capacity, CFIndex needed);

} // namespace detail

template <typename Item>
class Buffer {
    static_assert(std::is_trivially_copyable_v<Item>);

public:
    // The allocator is lent: the object that holds the buffer keeps it.
    explicit Buffer(CFAllocatorRef allocator) : allocator_(allocator) {}
    ~Buffer() { CFAllocatorDeallocate(allocator_, items_); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    CFIndex size() const { return size_; }
    Item* data() { return items_; }
    const Item* data() const { return items_; }
    Item& operator[](CFIndex index) { return items_[index]; }
    const Item& operator[](CFIndex index) const { return items_[index]; }
    const Item* begin() const { return items_; }
    const Item* end() const { return items_ + size_; }

    bool reserve(CFIndex capacity) {
        return capacity <= capacity_ || setCapacity(detail::grownCapacity(capacity_, capacity));
    }
    bool reserveExactly(CFIndex capacity) { return capacity <= capacity_ || setCapacity(capacity); }

    // Opens room for `count` items at `index`, whose contents are up to the caller.
    bool open(CFIndex index, CFIndex count) {
        CFIndex size = 0;
        if (__builtin_add_overflow(size_, count, &size) || !reserve(size))
            return false;
        move(index + count, index, size_ - index);
        size_ = size;
        return true;
    }
    void close(CFIndex index, CFIndex count) {
        move(index, index + count, size_ - index - count);
        size_ -= count;
    }
    bool append(Item item) {
        if (size_ == capacity_ && !reserve(size_ + 1))
            return false;
        items_[size_++] = item;
        return true;
    }
    bool append(const Item* items, CFIndex count) {
        const CFIndex end = size_;
        if (!open(end, count))
            return false;
        copyIn(end, items, count);
        return true;
    }
    void copyIn(CFIndex index, const Item* items, CFIndex count) {
        if (count > 0)
            std::memcpy(items_ + index, items, byteCount(count));
    }

    void swap(Buffer& other) noexcept {
        std::swap(allocator_, other.allocator_);
        std::swap(items_, other.items_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

private:
    static std::size_t byteCount(CFIndex count) {
        return static_cast<std::size_t>(count) * sizeof(Item);
    }
    void move(CFIndex to, CFIndex from, CFIndex count) {
        if (count > 0 && to != from)
            std::memmove(items_ + to, items_ + from, byteCount(count));
    }
    bool setCapacity(CFIndex capacity) {
        void* const block =
            detail::resizeBlock(allocator_, items_, byteCount(size_), capacity, sizeof(Item));
        if (!block)
            return false;
        items_ = static_cast<Item*>(block);
        capacity_ = capacity;
        return true;
    }

    CFAllocatorRef allocator_;
    Item* items_ = nullptr;
    CFIndex size_ = 0;
    CFIndex capacity_ = 0;
};

} // namespace cf
