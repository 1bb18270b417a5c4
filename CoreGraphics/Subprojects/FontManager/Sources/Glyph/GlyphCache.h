// GlyphCache.h: the rendered glyphs that are kept.
#pragma once

#include "Font/Locks.h"
#include "Glyph/GlyphRecord.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace fm {

// A table of buckets with a few places each. A record lies in one of its bucket's places, so that a
// look-up reads one line of memory and nothing is ever moved.
//
// Look-ups take no lock. A place is a word of address, tag and pins: a look-up pins the record, by
// an exchange of the word, before it touches it. The pin of a record that is the wanted one stays,
// as a reference that its count does not know of yet; pins are moved there once there are many, and
// when the record is taken out. While a record is in the table its count is higher by kCached, so
// that it cannot come to 0; no record is put in twice, so that a word with the same address is
// the same word.
//
// Whoever puts in or takes out holds `mutex_`, the last of all locks but those of the allocator.
// What is taken out goes round the table: a record that was used since the last round stays.
class GlyphCache {
public:
    // Of the process; it lives until its end.
    static GlyphCache& shared();

    // At most that many bytes in records; below 0, none.
    explicit GlyphCache(const std::int32_t& limit);
    ~GlyphCache();
    GlyphCache(const GlyphCache&) = delete;
    GlyphCache& operator=(const GlyphCache&) = delete;

    // The record of a key, or an empty pointer.
    GlyphPointer find(const GlyphKey& key);
    // Keeps a record, unless its key has one or it is larger than a sixteenth of the cache.
    void add(GlyphRecord& record);

    std::size_t bytes() const { return bytes_.load(std::memory_order_relaxed); }
    void clear();

private:
    static constexpr std::size_t kBuckets = 4096;
    static constexpr std::size_t kPlaces = 8;
    using Place = std::atomic<std::uint64_t>;
    struct alignas(64) Bucket {
        std::array<Place, kPlaces> places;
    };
    // The same records for whoever holds `mutex_`, and for tools that look for addresses.
    using Owners = std::array<GlyphRecord*, kPlaces>;
    struct Slot {
        Place* place = nullptr;
        GlyphRecord** owner = nullptr;
    };

    // Records without a user left, freed after the lock is: the atlas hears of it.
    struct Removed {
        GlyphRecord* first = nullptr;
        ~Removed();
    };

    Slot slot(std::size_t bucket, std::size_t index) {
        return {&buckets_[bucket].places[index], &owners_[bucket][index]};
    }
    std::size_t limit() const;
    // These with `mutex_` held.
    void takeOut(Slot slot, Removed& removed);
    bool takeOutUnused(Slot slot, Removed& removed);
    Slot slotFor(const GlyphRecord& record, Removed& removed);
    void shrink(std::size_t limit, Removed& removed);

    const std::int32_t& limit_;
    std::unique_ptr<Bucket[]> buckets_;
    std::unique_ptr<Owners[]> owners_;
    RecursiveMutex mutex_;
    std::atomic<std::size_t> bytes_{0};
    std::size_t hand_ = 0; // Where the next round goes on.
};

} // namespace fm
