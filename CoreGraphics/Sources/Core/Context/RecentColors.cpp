// RecentColors.cpp: finding a colour among those made last, or one that can become it.

#include "Core/Context/RecentColors.h"

#include "Core/Color/CGColorRecord.h"
#include "Core/Color/CGColorSpaceRecord.h"

#include <bit>
#include <span>

namespace cg {

namespace {

std::uint64_t keyOf(CGColorSpaceRef space, std::span<const CGFloat> components) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15; // 2⁶⁴ divided by the golden ratio.
    std::uint64_t key = reinterpret_cast<std::uintptr_t>(space);
    for (const CGFloat component : components)
        key = (key ^ std::bit_cast<std::uint32_t>(component)) * kOdd;
    return key;
}

} // namespace

// One that has no colour or that lends it to nobody, or else the oldest.
RecentColors::Entry& RecentColors::replaceable(std::size_t componentCount) {
    for (std::size_t tries = 0; tries < entries_.size(); ++tries) {
        Entry& entry = entries_[oldest_];
        oldest_ = (oldest_ + 1) % entries_.size();
        if (!entry.color || canRefill(*entry.color.get(), componentCount))
            return entry;
    }
    return entries_[oldest_];
}

CGColorRef RecentColors::get(CGColorSpaceRef space, const CGFloat* components) {
    const std::size_t count = space->componentCount + 1;
    const std::uint64_t key = keyOf(space, {components, count});
    for (const Entry& entry : entries_) {
        if (entry.key == key && entry.color && isColorOf(*entry.color.get(), space, components))
            return entry.color.get();
    }
    Entry& entry = replaceable(count);
    entry.key = key;
    if (entry.color && canRefill(*entry.color.get(), count))
        refill(*entry.color.get(), space, components);
    else
        entry.color = makeColor(space, components);
    return entry.color.get();
}

} // namespace cg
