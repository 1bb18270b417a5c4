// HashTable.cpp: changing and comparing hash tables.

#include "HashTable.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace cf {

namespace {

constexpr std::size_t kLeastCapacity = 8;
constexpr std::size_t kMostCapacity = std::size_t{1} << 31;

bool hasRoom(std::size_t capacity, std::size_t count) {
    return count <= capacity / 4 * 3;
}

} // namespace

HashTable::HashTable(CFAllocatorRef allocator, Entries entries,
                     const CFDictionaryKeyCallBacks* keyCallBacks,
                     const CFDictionaryValueCallBacks* valueCallBacks)
    : strideBits_(static_cast<uint8_t>(entries)),
      hasCallBacks_(keyCallBacks && (keyCallBacks->hash || keyCallBacks->equal)),
      allocator_(allocator),
      keyCallBacks_(keyCallBacks ? *keyCallBacks : CFDictionaryKeyCallBacks{}),
      valueCallBacks_(valueCallBacks ? *valueCallBacks : CFDictionaryValueCallBacks{}) {}

HashTable::Position HashTable::firstFrom(Position position) const {
    const std::size_t end = capacity();
    while (position < end && tags_[position] == 0)
        ++position;
    return position < end ? position : kNowhere;
}

bool HashTable::reserve(CFIndex count) {
    const auto needed = static_cast<std::size_t>(count);
    if (hasRoom(capacity(), needed))
        return true;
    if (needed > kMostCapacity / 4 * 3)
        return false;
    const std::size_t capacity = std::max(kLeastCapacity, std::bit_ceil(needed));
    return setCapacity(hasRoom(capacity, needed) ? capacity : capacity * 2);
}

bool HashTable::setCapacity(std::size_t capacity) {
    const std::size_t entrySize = (sizeof(void*) << strideBits_) + sizeof(uint32_t);
    CFIndex size = 0;
    if (capacity > kMostCapacity || __builtin_mul_overflow(capacity, entrySize, &size))
        return false;
    void* const block = CFAllocatorAllocate(allocator_, size, 0);
    if (!block)
        return false;

    const void** const oldSlots = slots_;
    const uint32_t* const oldTags = tags_;
    const std::size_t oldCapacity = this->capacity();
    std::memset(block, 0, static_cast<std::size_t>(size));
    slots_ = static_cast<const void**>(block);
    tags_ = reinterpret_cast<uint32_t*>(slots_ + (capacity << strideBits_));
    places_ = capacity;
    for (std::size_t i = 0; i < oldCapacity; ++i) {
        const void** const entry = oldSlots + (i << strideBits_);
        if (oldTags[i] != 0)
            place(oldTags[i], entry[0], entry[strideBits_]);
    }
    if (oldCapacity > 0)
        CFAllocatorDeallocate(allocator_, oldSlots);
    return true;
}

// Puts an entry that is not there into a table that has room. In a table without values the key
// stands for the value too.
void HashTable::place(uint32_t tag, const void* key, const void* value) {
    Position at = homeOf(tag);
    while (tags_[at] != 0)
        at = after(at);
    tags_[at] = tag;
    const void** const entry = slots_ + (at << strideBits_);
    entry[strideBits_] = value;
    entry[0] = key;
}

// Moves back the entries behind a gap that would no longer be found across it.
void HashTable::closeGap(Position gap) {
    const std::size_t mask = places_ - 1;
    for (Position at = after(gap); tags_[at] != 0; at = after(at)) {
        const bool reachable = ((at - homeOf(tags_[at])) & mask) < ((at - gap) & mask);
        if (reachable)
            continue;
        tags_[gap] = tags_[at];
        slots_[(gap << strideBits_) + strideBits_] = lastAt(at);
        slots_[gap << strideBits_] = keyAt(at);
        gap = at;
    }
    tags_[gap] = 0;
    slots_[gap << strideBits_] = nullptr;
}

HashTable::Position HashTable::find(uint32_t tag, const void* key) const {
    for (Position at = homeOf(tag); tags_[at] != 0; at = after(at)) {
        if (tags_[at] == tag && keysAreEqual(keyAt(at), key))
            return at;
    }
    return kNowhere;
}

const void* HashTable::valueByTag(const void* key) const {
    const Position at = find(key);
    return at == kNowhere ? nullptr : valueAt(at);
}

// A retain callback that makes copies has nothing to give when memory runs out.
bool HashTable::retainKey(const void*& key) const {
    const void* const given = key;
    if (keyCallBacks_.retain)
        key = keyCallBacks_.retain(allocator_, given);
    return key || !given;
}

bool HashTable::retainValue(const void*& value) const {
    const void* const given = value;
    if (valueCallBacks_.retain)
        value = valueCallBacks_.retain(allocator_, given);
    return value || !given;
}

void HashTable::releaseEntry(const void* key, const void* value) const {
    if (hasValues() && valueCallBacks_.release)
        valueCallBacks_.release(allocator_, value);
    if (keyCallBacks_.release)
        keyCallBacks_.release(allocator_, key);
}

bool HashTable::insert(uint32_t tag, const void* key, const void* value) {
    if (!hasRoom(capacity(), count_ + 1) && !reserve(count() + 1))
        return false;
    if (!retainKey(key))
        return false;
    if (!hasValues()) {
        value = key;
    } else if (!retainValue(value)) {
        if (keyCallBacks_.release)
            keyCallBacks_.release(allocator_, key);
        return false;
    }
    place(tag, key, value);
    ++count_;
    return true;
}

bool HashTable::add(const void* key, const void* value) {
    const uint32_t tag = tagOf(hashOf(key));
    return find(tag, key) != kNowhere || insert(tag, key, value);
}

bool HashTable::set(const void* key, const void* value) {
    const uint32_t tag = tagOf(hashOf(key));
    const Position at = find(tag, key);
    if (at == kNowhere)
        return insert(tag, key, value);
    return hasValues() ? replaceValueAt(at, value) : replaceKeyAt(at, key);
}

bool HashTable::addAll(const HashTable& other) {
    if (!reserve(other.count()))
        return false;
    for (Position at = other.firstFrom(0); at != kNowhere; at = other.firstFrom(at + 1)) {
        if (!insert(other.tags_[at], other.keyAt(at), other.lastAt(at)))
            return false;
    }
    return true;
}

bool HashTable::replaceValueAt(Position position, const void* value) {
    const void* const old = valueAt(position);
    if (!retainValue(value))
        return false;
    slots_[position * 2 + 1] = value;
    if (valueCallBacks_.release)
        valueCallBacks_.release(allocator_, old);
    return true;
}

bool HashTable::replaceKeyAt(Position position, const void* key) {
    const void* const old = keyAt(position);
    if (!retainKey(key))
        return false;
    slots_[position << strideBits_] = key;
    if (keyCallBacks_.release)
        keyCallBacks_.release(allocator_, old);
    return true;
}

void HashTable::remove(const void* key) {
    const Position at = find(key);
    if (at == kNowhere)
        return;
    const void* const oldKey = keyAt(at);
    const void* const oldValue = lastAt(at);
    --count_;
    closeGap(at);
    releaseEntry(oldKey, oldValue);
}

// A table with no entries and no memory, as at first.
void HashTable::forgetMemory() {
    slots_ = const_cast<const void**>(kNoSlots);
    tags_ = const_cast<uint32_t*>(kNoTags);
    places_ = 2;
    count_ = 0;
}

void HashTable::removeAll() {
    const void** const slots = slots_;
    const uint32_t* const tags = tags_;
    const std::size_t end = capacity();
    if (end == 0)
        return;
    forgetMemory();
    for (std::size_t i = 0; i < end; ++i) {
        const void** const entry = slots + (i << strideBits_);
        if (tags[i] != 0)
            releaseEntry(entry[0], entry[strideBits_]);
    }
    CFAllocatorDeallocate(allocator_, slots);
}

bool HashTable::equals(const HashTable& other) const {
    if (count_ != other.count_ || keyCallBacks_.equal != other.keyCallBacks_.equal ||
        keyCallBacks_.hash != other.keyCallBacks_.hash ||
        valueCallBacks_.equal != other.valueCallBacks_.equal)
        return false;
    for (Position at = firstFrom(0); at != kNowhere; at = firstFrom(at + 1)) {
        const Position there = other.find(keyAt(at));
        if (there == kNowhere)
            return false;
        if (!hasValues())
            continue;
        const void* const a = valueAt(at);
        const void* const b = other.valueAt(there);
        if (a != b && !(valueCallBacks_.equal && valueCallBacks_.equal(a, b)))
            return false;
    }
    return true;
}

} // namespace cf
