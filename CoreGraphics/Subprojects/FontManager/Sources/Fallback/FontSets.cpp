// FontSets.cpp: numbers the distinct sets of fonts.

#include "Fallback/FontSets.h"

#include <string_view>

namespace fm {
namespace {

std::size_t hashOf(const std::vector<FMFontId>& fonts) {
    const auto* const bytes = reinterpret_cast<const char*>(fonts.data());
    return std::hash<std::string_view>{}({bytes, fonts.size() * sizeof(FMFontId)});
}

} // namespace

std::uint32_t FontSets::numberOf(const std::vector<FMFontId>& fonts) {
    const std::size_t hash = hashOf(fonts);
    const auto [first, last] = numbersByHash_.equal_range(hash);
    for (auto candidate = first; candidate != last; ++candidate)
        if (sets_[candidate->second] == fonts)
            return candidate->second;
    const auto number = static_cast<std::uint32_t>(sets_.size());
    sets_.push_back(fonts);
    numbersByHash_.emplace(hash, number);
    return number;
}

} // namespace fm
