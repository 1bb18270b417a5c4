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

#include <bit>
#include <cstddef>
#include <cstdint>

namespace cf {

class HashTable {
public:
    enum class Entries : uint8_t { Keys, KeysAndValues };
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

    Position find(const void* key) const { return find(tagOf(hashOf(key)), key); }
    const void* keyAt(Position position) const { return slots_[position << strideBits_]; }
    // Only of a table that has values.
    const void* valueAt(Position position) const { return slots_[position * 2 + 1]; }
    // The value of `key` in a table that has values, or nullptr. Looking pointers up is what is
    // done most: a hit reads the entry alone, and what calls back is kept apart from it.
    const void* valueOf(const void* key) const {
        if (hasCallBacks_ || !key) [[unlikely]]
            return valueByTag(key);
        for (Position at = homeOf(tagOf(reinterpret_cast<CFHashCode>(key)));; at = after(at)) {
            const void* const* const entry = slots_ + at * 2;
            if (entry[0] == key) [[likely]]
                return entry[1];
            if (!entry[0] && tags_[at] == 0)
                return nullptr;
        }
    }
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
    // The upper half of a product that differs there for neighbouring hashes: 2^64 divided by the
    // golden ratio spaces the multiples of small numbers most evenly. Hashes are addresses more
    // often than not, in steps of 16: such steps are taken for steps of 1.
    static uint32_t tagOf(CFHashCode hash) {
        const uint64_t product = std::rotr(uint64_t{hash}, 4) * UINT64_C(0x9E3779B97F4A7C15);
        return static_cast<uint32_t>(product >> 32) | 1;
    }
    CFHashCode hashOf(const void* key) const {
        return keyCallBacks_.hash ? keyCallBacks_.hash(key) : reinterpret_cast<CFHashCode>(key);
    }
    bool keysAreEqual(const void* a, const void* b) const {
        return a == b || (keyCallBacks_.equal && keyCallBacks_.equal(a, b));
    }

    // The tag's top bits, as many as places have. A multiplication by the power of two, since a
    // shift by a variable makes each look-up wait for the one before it: it is compiled to read one
    // byte of a register that the previous call's last load has written.
    Position homeOf(uint32_t tag) const {
        return static_cast<Position>((uint64_t{tag} * places_) >> 32);
    }
    Position after(Position position) const { return (position + 1) & (places_ - 1); }
    std::size_t capacity() const { return slots_ == kNoSlots ? 0 : places_; }
    bool hasValues() const { return strideBits_ == 1; }
    // The value of an entry; the key in a table without values.
    const void* lastAt(Position position) const {
        return slots_[(position << strideBits_) + strideBits_];
    }
    Position find(uint32_t tag, const void* key) const;
    const void* valueByTag(const void* key) const;
    void forgetMemory();
    void place(uint32_t tag, const void* key, const void* value);
    void closeGap(Position gap);
    bool insert(uint32_t tag, const void* key, const void* value);
    bool setCapacity(std::size_t capacity);
    bool retainKey(const void*& key) const;
    bool retainValue(const void*& value) const;
    void releaseEntry(const void* key, const void* value) const;

    // The places of a table without memory: free, and never filled.
    static constexpr const void* kNoSlots[4] = {};
    static constexpr uint32_t kNoTags[2] = {};

    // What a look-up reads comes first, to lie together.
    const void** slots_ = const_cast<const void**>(kNoSlots);
    uint32_t* tags_ = const_cast<uint32_t*>(kNoTags);
    std::size_t places_ = 2;   // A power of two; a quarter of the places stays free.
    const uint8_t strideBits_; // 1 when a value follows each key, else 0.
    const bool hasCallBacks_;  // Whether keys are hashed or compared by callbacks.
    std::size_t count_ = 0;
    CFAllocatorRef allocator_;
    const CFDictionaryKeyCallBacks keyCallBacks_;
    const CFDictionaryValueCallBacks valueCallBacks_;
};

} // namespace cf
