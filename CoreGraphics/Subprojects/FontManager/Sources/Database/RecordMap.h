// RecordMap.h: the records of a database in the making.
#pragma once

#include "RecordKey.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace fm {

// A chained hash table from bytes to bytes, with at most as many records as chains. A standard
// container would end the process for want of memory; this one says no.
class RecordMap {
public:
    RecordMap() = default;
    ~RecordMap();
    RecordMap(const RecordMap&) = delete;
    RecordMap& operator=(const RecordMap&) = delete;

    // Copies both; an earlier value of the key is replaced. False, and nothing changed, without
    // memory.
    bool set(Bytes key, Bytes value);
    // In place, good until the next set().
    std::optional<Bytes> find(Bytes key) const;
    std::size_t size() const { return size_; }

    // Calls `visit(key, value)` for each record, in the order in which their keys came: what is
    // stored together is then read together, too.
    template <typename Visit>
    void forEach(Visit visit) const {
        for (const Record* record = first_; record; record = record->later)
            visit(record->key(), record->value());
    }

private:
    // The key and the value follow it.
    struct Record {
        Record* next; // In the chain.
        Record* later;
        Record* earlier;
        std::size_t hash;
        std::size_t keySize;
        std::size_t valueSize;

        const std::byte* bytes() const { return reinterpret_cast<const std::byte*>(this + 1); }
        Bytes key() const { return {bytes(), keySize}; }
        Bytes value() const { return {bytes() + keySize, valueSize}; }
    };

    Record** linkTo(std::size_t hash, Bytes key) const;
    static Record* make(std::size_t hash, Bytes key, Bytes value);
    void append(Record* record);
    void replace(Record* old, Record* record);
    bool grow();

    Record** chains_ = nullptr;
    std::size_t chainCount_ = 0; // 0 or a power of two.
    std::size_t size_ = 0;
    Record* first_ = nullptr;
    Record* last_ = nullptr;
};

} // namespace fm
