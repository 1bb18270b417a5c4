// HashTable.h: the open-addressing table beneath dictionaries, sets and caches.
//
// Entries lie in one block: the keys (each followed by its value in a table that has values), then
// a 32-bit tag for each. A tag is the upper half of the hash times a constant that spreads it, with
// the lowest bit set so that 0 can mark a free place; its top bits name the place where the search
// for the entry begins. Growing and closing gaps therefore need no hash callback, and probing
// touches the keys only where a whole tag agrees.
//
// Release callbacks may run any code, also code that changes the table: they are called last, when
// the table is whole again.
#pragma once

#include "CFDictionary.h"

#include <cstddef>
#include <cstdint>

namespace cf {

class HashTable {
public:
    enum class Entries { Keys = 1, KeysAndValues = 2 };
    using Position = std::size_t;
    static constexpr Position kNowhere = static_cast<Position>(-1);

    // The allocator is lent: the object that holds the table keeps it.
    HashTable(CFAllocatorRef allocator, Entries entries,
              const CFDictionaryKeyCallBacks* keyCallBacks,
              const CFDictionaryValueCallBacks* valueCallBacks);
    ~HashTable() { removeAll(); }
    HashTable(const HashTable&) = delete;
    HashTable& operator=(const HashTable&) = delete;

    CFIndex count() const { return static_cast<CFIndex>(count_); }
    const CFDictionaryKeyCallBacks& keyCallBacks() const { return keyCallBacks_; }
    const CFDictionaryValueCallBacks& valueCallBacks() const { return valueCallBacks_; }

    Position find(const void* key) const {
        return count_ == 0 ? kNowhere : find(tagOf(hashOf(key)), key);
    }
    const void* keyAt(Position position) const { return slots_[position * stride_]; }
    const void* valueAt(Position position) const { return slots_[position * stride_ + 1]; }
    // The first entry at `position` or behind it. A walk that begins at 0 and goes on behind the
    // entry that it was given stays safe when the table changes meanwhile.
    Position firstFrom(Position position) const;

    // Each answers false, and changes nothing, when memory runs out.
    bool reserve(CFIndex count);
    bool add(const void* key, const void* value);
    bool set(const void* key, const void* value);
    bool addAll(const HashTable& other);

    bool replaceValueAt(Position position, const void* value);
    bool replaceKeyAt(Position position, const void* key);
    void remove(const void* key);
    void removeAll();

    // Whether both have the same rules, and equal entries by them.
    bool equals(const HashTable& other) const;

private:
    static uint32_t tagOf(CFHashCode hash) {
        // 2^64 divided by the golden ratio: it sends neighbouring hashes far apart.
        return static_cast<uint32_t>((hash * UINT64_C(0x9E3779B97F4A7C15)) >> 32) | 1;
    }
    CFHashCode hashOf(const void* key) const {
        return keyCallBacks_.hash ? keyCallBacks_.hash(key) : reinterpret_cast<CFHashCode>(key);
    }
    bool keysAreEqual(const void* a, const void* b) const {
        return a == b || (keyCallBacks_.equal && keyCallBacks_.equal(a, b));
    }

    Position homeOf(uint32_t tag) const { return tag >> shift_; }
    Position after(Position position) const { return (position + 1) & (capacity_ - 1); }
    Position find(uint32_t tag, const void* key) const;
    void place(uint32_t tag, const void* key, const void* value);
    void closeGap(Position gap);
    bool insert(uint32_t tag, const void* key, const void* value);
    bool setCapacity(std::size_t capacity);
    bool retainKey(const void*& key) const;
    bool retainValue(const void*& value) const;
    void releaseEntry(const void* key, const void* value) const;

    CFAllocatorRef allocator_;
    const void** slots_ = nullptr;
    uint32_t* tags_ = nullptr;
    std::size_t capacity_ = 0; // A power of two, of which a quarter stays free; or 0.
    std::size_t count_ = 0;
    uint32_t shift_ = 0; // From a tag to the place it names: 32 less the capacity's bits.
    const uint32_t stride_;
    const CFDictionaryKeyCallBacks keyCallBacks_;
    const CFDictionaryValueCallBacks valueCallBacks_;
};

inline HashTable::Position HashTable::find(uint32_t tag, const void* key) const {
    if (count_ == 0)
        return kNowhere;
    for (Position at = homeOf(tag); tags_[at] != 0; at = after(at)) {
        if (tags_[at] == tag && keysAreEqual(keyAt(at), key))
            return at;
    }
    return kNowhere;
}

} // namespace cf
