// TransformCache.cpp: transforms that were made lately.

#include "Core/Color/TransformCache.h"

#include <Host/Host.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace cg {

namespace {

struct Entry {
    TransformKey key;
    RowTransformRef transform;
    std::uint64_t lastUse = 0;
};

template <std::size_t capacity>
class RecentTransforms {
public:
    const RowTransformRef* find(const TransformKey& key) {
        for (Entry& entry : entries_) {
            if (entry.key == key && entry.transform) {
                entry.lastUse = ++clock_;
                return &entry.transform;
            }
        }
        return nullptr;
    }

    // What had to go for it comes back.
    RowTransformRef insert(const TransformKey& key, RowTransformRef transform) {
        Entry& oldest = *std::ranges::min_element(entries_, {}, &Entry::lastUse);
        oldest.key = key;
        oldest.lastUse = ++clock_;
        return std::exchange(oldest.transform, std::move(transform));
    }

private:
    std::array<Entry, capacity> entries_;
    std::uint64_t clock_ = 0;
};

// An image has one pair of spaces, a colour another: four hold what a thread does at a time.
constexpr std::size_t kOfThread = 4;
// A transform may take a few hundred kilobytes (tables for inks), so that this bounds megabytes.
constexpr std::size_t kOfProcess = 64;

RecentTransforms<kOfThread>& threadTransforms() {
    static thread_local RecentTransforms<kOfThread> transforms;
    return transforms;
}

// Never destroyed: threads may still convert while the process ends.
RecentTransforms<kOfProcess>& processTransforms() {
    using Transforms = RecentTransforms<kOfProcess>;
    alignas(Transforms) static std::byte memory[sizeof(Transforms)];
    static Transforms* const transforms = ::new (static_cast<void*>(memory)) Transforms;
    return *transforms;
}

// Guards processTransforms().
class Lock {
public:
    Lock() { HostMutexLock(&mutex); }
    ~Lock() { HostMutexUnlock(&mutex); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    static inline HostMutex mutex = PTHREAD_MUTEX_INITIALIZER;
};

} // namespace

RowTransformRef findTransform(const TransformKey& key) {
    auto& own = threadTransforms();
    if (const auto* const found = own.find(key))
        return *found;
    RowTransformRef shared;
    {
        const Lock lock;
        if (const auto* const found = processTransforms().find(key))
            shared = *found;
    }
    if (shared)
        own.insert(key, shared);
    return shared;
}

RowTransformRef rememberTransform(const TransformKey& key, RowTransformRef transform) {
    RowTransformRef evicted; // Outlives the lock: freeing a transform takes a while.
    {
        const Lock lock;
        if (const auto* const faster = processTransforms().find(key))
            transform = *faster;
        else
            evicted = processTransforms().insert(key, transform);
    }
    threadTransforms().insert(key, transform);
    return transform;
}

} // namespace cg
