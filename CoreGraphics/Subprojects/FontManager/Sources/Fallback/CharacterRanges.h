// CharacterRanges.h: the ranges of code points that have been asked for, and their sets of fonts.
#pragma once

#include <FontManager/FMFallback.h>

#include <cstdint>
#include <map>

namespace fm {

// Ranges never overlap. One that grows keeps its address; of two that join, one does.
class CharacterRanges {
public:
    // The range that holds `codePoint`, else NULL.
    const FMFallbackRange* find(std::uint32_t codePoint) const;

    // Adds a code point that no range holds yet, and joins it to its neighbours of the same set.
    const FMFallbackRange* insert(std::uint32_t codePoint, std::uint32_t set);

    const std::map<std::uint32_t, FMFallbackRange>& byEnd() const { return byEnd_; }

private:
    std::map<std::uint32_t, FMFallbackRange> byEnd_;
};

} // namespace fm
