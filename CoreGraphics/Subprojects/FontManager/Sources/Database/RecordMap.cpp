// RecordMap.cpp: the hash table of records.

#include "RecordMap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

namespace fm {

namespace {

std::size_t hashOf(Bytes key) {
    return std::hash<std::string_view>{}({reinterpret_cast<const char*>(key.data()), key.size()});
}

} // namespace

RecordMap::~RecordMap() {
    while (Record* const record = first_) {
        first_ = record->later;
        std::free(record);
    }
    std::free(chains_);
}

bool RecordMap::set(Bytes key, Bytes value) {
    if (size_ == chainCount_ && !grow())
        return false;
    const std::size_t hash = hashOf(key);
    Record* const record = make(hash, key, value);
    if (!record)
        return false;
    Record** const link = linkTo(hash, key);
    if (Record* const old = std::exchange(*link, record))
        replace(old, record);
    else
        append(record);
    return true;
}

std::optional<Bytes> RecordMap::find(Bytes key) const {
    if (chainCount_ == 0)
        return std::nullopt;
    const Record* const record = *linkTo(hashOf(key), key);
    return record ? std::optional(record->value()) : std::nullopt;
}

// What points to the record of the key, or would: the end of its chain. There are chains.
RecordMap::Record** RecordMap::linkTo(std::size_t hash, Bytes key) const {
    Record** link = &chains_[hash & (chainCount_ - 1)];
    while (*link && ((*link)->hash != hash || !std::ranges::equal((*link)->key(), key)))
        link = &(*link)->next;
    return link;
}

RecordMap::Record* RecordMap::make(std::size_t hash, Bytes key, Bytes value) {
    std::size_t size = 0;
    if (__builtin_add_overflow(key.size(), value.size(), &size) ||
        __builtin_add_overflow(size, sizeof(Record), &size))
        return nullptr;
    void* const memory = std::malloc(size);
    if (!memory)
        return nullptr;
    auto* const record = ::new (memory) Record{.next = nullptr,
                                               .later = nullptr,
                                               .earlier = nullptr,
                                               .hash = hash,
                                               .keySize = key.size(),
                                               .valueSize = value.size()};
    auto* const bytes = reinterpret_cast<std::byte*>(record + 1);
    std::ranges::copy(value, std::ranges::copy(key, bytes).out);
    return record;
}

void RecordMap::append(Record* record) {
    record->earlier = last_;
    (last_ ? last_->later : first_) = record;
    last_ = record;
    ++size_;
}

// In the chain and in the order.
void RecordMap::replace(Record* old, Record* record) {
    record->next = old->next;
    record->later = old->later;
    record->earlier = old->earlier;
    (old->later ? old->later->earlier : last_) = record;
    (old->earlier ? old->earlier->later : first_) = record;
    std::free(old);
}

bool RecordMap::grow() {
    const std::size_t count = chainCount_ > 0 ? chainCount_ * 2 : 64;
    auto** const chains = static_cast<Record**>(std::calloc(count, sizeof(Record*)));
    if (!chains)
        return false;
    for (std::size_t chain = 0; chain < chainCount_; ++chain)
        while (Record* const record = chains_[chain]) {
            chains_[chain] = record->next;
            record->next = std::exchange(chains[record->hash & (count - 1)], record);
        }
    std::free(chains_);
    chains_ = chains;
    chainCount_ = count;
    return true;
}

} // namespace fm
