// GlyphCache.cpp: finding, keeping and dropping glyph records.

#include "Glyph/GlyphCache.h"

#include "Core/Object/RuntimeOptions.h"

#include <algorithm>
#include <mutex>
#include <new>

namespace fm {

namespace {

// What a record's count is higher by while it is in the table.
constexpr std::int32_t kCached = 1 << 24;

// A place's word, from the top: pins, tag, address.
constexpr int kTagShift = 48;
constexpr int kPinShift = 56;
constexpr std::uint64_t kPin = std::uint64_t{1} << kPinShift;
constexpr std::uint64_t kAddressMask = (std::uint64_t{1} << kTagShift) - 1;
// From here on pins become counted references, long before there is no room for more: that many
// threads would have to pin a record between two instructions of another.
constexpr std::uint64_t kManyPins = 64;

GlyphRecord* recordIn(std::uint64_t word) {
    return reinterpret_cast<GlyphRecord*>(static_cast<std::uintptr_t>(word & kAddressMask));
}
std::uint64_t pinsIn(std::uint64_t word) {
    return word >> kPinShift;
}
std::uint8_t tagIn(std::uint64_t word) {
    return static_cast<std::uint8_t>(word >> kTagShift);
}
// Bits that do not choose the bucket.
std::uint8_t tagOf(std::uint64_t hash) {
    return static_cast<std::uint8_t>(hash >> kPinShift);
}

// Hosts may have addresses that a word has no room for; such records are not kept.
bool fitsPlace(const GlyphRecord& record) {
    return (std::uint64_t{reinterpret_cast<std::uintptr_t>(&record)} & ~kAddressMask) == 0;
}

// Takes `count` pins out of the place's word; false when the record is there no more or another
// thread took them first: then they are counted already.
bool takePins(std::atomic<std::uint64_t>& place, const GlyphRecord* record, std::uint64_t count) {
    std::uint64_t word = place.load(std::memory_order_relaxed);
    while (recordIn(word) == record && pinsIn(word) >= count)
        if (place.compare_exchange_weak(word, word - count * kPin, std::memory_order_release,
                                        std::memory_order_relaxed))
            return true;
    return false;
}

void unpin(std::atomic<std::uint64_t>& place, GlyphRecord* record) {
    if (!takePins(place, record, 1))
        FMGlyphRelease(record);
}

// Counted first and taken off afterwards: too high for a moment, never too low.
void countPins(std::atomic<std::uint64_t>& place, GlyphRecord* record, std::uint64_t pins) {
    const auto count = static_cast<std::int32_t>(pins);
    record->users().fetch_add(count, std::memory_order_relaxed);
    if (!takePins(place, record, pins))
        record->users().fetch_sub(count, std::memory_order_relaxed);
}

constexpr std::int32_t kDefaultLimit = 8 << 20;

const std::int32_t& sharedLimit() {
    static std::int32_t limit = kDefaultLimit;
    static const bool isRegistered = cg::registerOption(
        {.name = "NIMBRA_FM_GLYPH_CACHE_SIZE",
         .title = "Bytes of glyphs to keep",
         .category = "Fonts",
         .description = "How many bytes of rendered glyphs are kept for the next time."},
        limit);
    static_cast<void>(isRegistered);
    return limit;
}

} // namespace

GlyphCache::Removed::~Removed() {
    while (first) {
        GlyphRecord* const record = first;
        first = record->next;
        FMGlyphFree(record);
    }
}

GlyphCache& GlyphCache::shared() {
    static auto& cache = *new GlyphCache(sharedLimit());
    return cache;
}

GlyphCache::GlyphCache(const std::int32_t& limit)
    : limit_(limit), buckets_(new (std::nothrow) Bucket[kBuckets]{}),
      owners_(new (std::nothrow) Owners[kBuckets]{}) {
    if (!owners_)
        buckets_.reset();
}

GlyphCache::~GlyphCache() {
    clear();
}

GlyphPointer GlyphCache::find(const GlyphKey& key) {
    if (!buckets_)
        return nullptr;
    const std::uint64_t hash = key.hash();
    for (Place& place : buckets_[hash % kBuckets].places) {
        std::uint64_t word = place.load(std::memory_order_relaxed);
        while (recordIn(word) && tagIn(word) == tagOf(hash)) {
            if (!place.compare_exchange_weak(word, word + kPin, std::memory_order_acquire,
                                             std::memory_order_relaxed))
                continue;
            GlyphRecord* const record = recordIn(word);
            if (record->key != key) {
                unpin(place, record);
                break;
            }
            if (!record->isUsed.load(std::memory_order_relaxed))
                record->isUsed.store(true, std::memory_order_relaxed);
            if (pinsIn(word) >= kManyPins)
                countPins(place, record, kManyPins);
            return GlyphPointer(record);
        }
    }
    return nullptr;
}

std::size_t GlyphCache::limit() const {
    const std::int32_t limit = __atomic_load_n(&limit_, __ATOMIC_RELAXED);
    return static_cast<std::size_t>(std::max(limit, 0));
}

void GlyphCache::add(GlyphRecord& record) {
    const std::size_t limit = this->limit();
    if (!buckets_ || record.bytes > limit / 16 || !fitsPlace(record))
        return;
    Removed removed;
    const std::lock_guard hold(mutex_);
    const Slot slot = slotFor(record, removed);
    if (!slot.place)
        return;
    shrink(limit - record.bytes, removed);
    record.users().fetch_add(kCached, std::memory_order_relaxed);
    bytes_.fetch_add(record.bytes, std::memory_order_relaxed);
    const std::uint64_t tag = tagOf(record.key.hash());
    *slot.owner = &record;
    slot.place->store(reinterpret_cast<std::uintptr_t>(&record) | tag << kTagShift,
                      std::memory_order_release);
}

void GlyphCache::clear() {
    Removed removed;
    const std::lock_guard hold(mutex_);
    for (std::size_t bucket = 0; buckets_ && bucket < kBuckets; ++bucket)
        for (std::size_t index = 0; index < kPlaces; ++index)
            takeOut(slot(bucket, index), removed);
}

// ---- Taking out

// Pins that the word still had are references, from now on counted like all others.
void GlyphCache::takeOut(Slot slot, Removed& removed) {
    GlyphRecord* const record = *slot.owner;
    if (!record)
        return;
    const std::uint64_t word = slot.place->exchange(0, std::memory_order_acq_rel);
    *slot.owner = nullptr;
    bytes_.fetch_sub(record->bytes, std::memory_order_relaxed);
    const std::int32_t change = static_cast<std::int32_t>(pinsIn(word)) - kCached;
    if (record->users().fetch_add(change, std::memory_order_acq_rel) + change == 0) {
        record->next = removed.first;
        removed.first = record;
    }
}

bool GlyphCache::takeOutUnused(Slot slot, Removed& removed) {
    GlyphRecord* const record = *slot.owner;
    if (!record || record->isUsed.exchange(false, std::memory_order_relaxed))
        return false;
    takeOut(slot, removed);
    return true;
}

// A free slot, or one that is made free. None when the key's record is there already.
GlyphCache::Slot GlyphCache::slotFor(const GlyphRecord& record, Removed& removed) {
    const std::uint64_t hash = record.key.hash();
    const std::size_t bucket = hash % kBuckets;
    Slot free;
    for (std::size_t index = 0; index < kPlaces; ++index) {
        const Slot each = slot(bucket, index);
        if (!*each.owner)
            free = each;
        else if (tagIn(each.place->load(std::memory_order_relaxed)) == tagOf(hash) &&
                 (*each.owner)->key == record.key)
            return {};
    }
    if (free.place)
        return free;
    // The first round may find all in use; then the second finds none.
    for (std::size_t round = 0; round < 2 * kPlaces; ++round)
        if (takeOutUnused(slot(bucket, round % kPlaces), removed))
            return slot(bucket, round % kPlaces);
    // All were used once more meanwhile.
    takeOut(slot(bucket, 0), removed);
    return slot(bucket, 0);
}

void GlyphCache::shrink(std::size_t limit, Removed& removed) {
    while (bytes() > limit) {
        for (std::size_t index = 0; index < kPlaces && bytes() > limit; ++index)
            takeOutUnused(slot(hand_, index), removed);
        hand_ = (hand_ + 1) % kBuckets;
    }
}

} // namespace fm
