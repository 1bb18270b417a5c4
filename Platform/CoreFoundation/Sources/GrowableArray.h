// GrowableArray.h: working memory that grows, and remembers when it could not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

namespace cf {

// Items that may be moved as bytes, in memory from malloc. Where a standard container would end the
// process for want of memory, this one drops what does not fit and stays failed(): a builder checks
// once, at the end.
template <typename Item>
class GrowableArray {
    static_assert(std::is_trivially_copyable_v<Item>);

public:
    GrowableArray() = default;
    GrowableArray(GrowableArray&& other) noexcept { swap(other); }
    GrowableArray& operator=(GrowableArray&& other) noexcept {
        swap(other);
        return *this;
    }
    ~GrowableArray() { std::free(items_); }

    // Room for `count` more items at the end, not initialised; nullptr when there is none.
    Item* extend(size_t count) {
        if (!reserve(count))
            return nullptr;
        Item* const added = items_ + size_;
        size_ += count;
        return added;
    }
    void append(const Item& item) {
        if (Item* const room = extend(1))
            *room = item;
    }
    void append(const Item* items, size_t count) {
        if (count == 0)
            return;
        if (Item* const room = extend(count))
            std::memcpy(room, items, count * sizeof(Item));
    }
    void append(std::basic_string_view<Item> items) { append(items.data(), items.size()); }

    void truncate(size_t size) { size_ = size; }
    void removeLast() { --size_; }

    // Marks what is built as incomplete; always false.
    bool fail() {
        failed_ = true;
        return false;
    }
    bool failed() const { return failed_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    Item* data() { return items_; }
    const Item* data() const { return items_; }
    Item& operator[](size_t index) { return items_[index]; }
    const Item& operator[](size_t index) const { return items_[index]; }
    Item& last() { return items_[size_ - 1]; }
    const Item* begin() const { return items_; }
    const Item* end() const { return items_ + size_; }

    void swap(GrowableArray& other) noexcept {
        std::swap(items_, other.items_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
        std::swap(failed_, other.failed_);
    }

private:
    bool reserve(size_t count) {
        if (failed_ || count > SIZE_MAX / sizeof(Item) / 4 - size_)
            return fail();
        const size_t needed = size_ + count;
        if (needed <= capacity_ && items_)
            return true;
        size_t capacity = capacity_ + capacity_ / 2;
        if (capacity < needed)
            capacity = needed;
        if (capacity < 32)
            capacity = 32;
        auto* const moved = static_cast<Item*>(std::realloc(items_, capacity * sizeof(Item)));
        if (!moved)
            return fail();
        items_ = moved;
        capacity_ = capacity;
        return true;
    }
    Item* items_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
    bool failed_ = false;
};

using TextBuffer = GrowableArray<char>;

inline std::string_view view(const TextBuffer& buffer) {
    return {buffer.data(), buffer.size()};
}

} // namespace cf
