// FontSets.h: the distinct sets of fonts that code points have turned out to have.
#pragma once

#include <FontManager/FMBase.h>

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace fm {

// Sets are numbered in the order of their discovery.
class FontSets {
public:
    // The number of the set of these fonts, whose ids ascend; a new one when they are new.
    std::uint32_t numberOf(const std::vector<FMFontId>& fonts);

    std::size_t count() const { return sets_.size(); }
    std::span<const FMFontId> operator[](std::size_t number) const { return sets_[number]; }

private:
    std::vector<std::vector<FMFontId>> sets_;
    std::unordered_multimap<std::size_t, std::uint32_t> numbersByHash_;
};

} // namespace fm
