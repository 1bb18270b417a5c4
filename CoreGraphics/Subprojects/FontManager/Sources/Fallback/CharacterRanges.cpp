// CharacterRanges.cpp: the ranges of code points that have been asked for.

#include "Fallback/CharacterRanges.h"

#include <algorithm>
#include <utility>

namespace fm {
namespace {

// Deliberate: from here on a code point does not join the range above it, though Unicode goes on to
// 0x10FFFF. The range above still takes it in when that is asked for last.
constexpr std::uint32_t kJoiningAboveLimit = 0x10FFF;

} // namespace

const FMFallbackRange* CharacterRanges::find(std::uint32_t codePoint) const {
    const auto next = byEnd_.upper_bound(codePoint);
    return next != byEnd_.end() && next->second.start <= codePoint ? &next->second : nullptr;
}

const FMFallbackRange* CharacterRanges::insert(std::uint32_t codePoint, std::uint32_t set) {
    FMFallbackRange range{codePoint, codePoint + 1, set};
    decltype(byEnd_)::node_type kept;
    const auto join = [&](std::uint32_t neighbour) {
        const FMFallbackRange* const found = find(neighbour);
        if (!found || found->set != set)
            return;
        range.start = std::min(range.start, found->start);
        range.end = std::max(range.end, found->end);
        kept = byEnd_.extract(found->end);
    };
    if (codePoint > 0)
        join(codePoint - 1);
    if (codePoint < kJoiningAboveLimit)
        join(codePoint + 1);
    if (kept.empty())
        return &byEnd_.emplace(range.end, range).first->second;
    kept.key() = range.end;
    kept.mapped() = range;
    return &byEnd_.insert(std::move(kept)).position->second;
}

} // namespace fm
