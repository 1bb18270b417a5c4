// CharacterCoverage.cpp: which fonts map which code points, as pages of bits.

#include "Fallback/CharacterCoverage.h"

#include <algorithm>
#include <string_view>

namespace fm {
namespace {

constexpr std::uint32_t kCodePoints = 0x110000;
constexpr std::uint32_t kPageSize = 256;

constexpr std::uint64_t bitOf(std::uint32_t codePoint) {
    return std::uint64_t{1} << (codePoint % 64);
}

constexpr std::size_t wordOf(std::uint32_t codePoint) {
    return codePoint % kPageSize / 64;
}

template <typename T>
void sortAndUnite(std::vector<T>& values) {
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

} // namespace

std::size_t CharacterCoverage::BitsHash::operator()(const Bits& bits) const {
    const auto* const bytes = reinterpret_cast<const char*>(bits.data());
    return std::hash<std::string_view>{}({bytes, sizeof bits});
}

void CharacterCoverage::add(FMFontId font, std::span<const std::uint32_t> codePoints) {
    if (pages_.empty())
        pages_.resize(kCodePoints / kPageSize);
    fonts_.push_back(font);

    std::uint32_t page = 0;
    Bits bits{};
    const auto endPage = [&] {
        if (bits != Bits{})
            pages_[page].push_back({font, &*distinct_.insert(bits).first});
        bits = {};
    };
    for (const std::uint32_t codePoint : codePoints) {
        if (codePoint >= kCodePoints)
            continue;
        if (codePoint / kPageSize != page)
            endPage();
        page = codePoint / kPageSize;
        bits[wordOf(codePoint)] |= bitOf(codePoint);
    }
    endPage();
}

std::vector<FMFontId> CharacterCoverage::fontsCovering(std::uint32_t codePoint) const {
    std::vector<FMFontId> covering;
    if (codePoint >= kCodePoints || pages_.empty())
        return covering;
    for (const Entry& entry : pages_[codePoint / kPageSize])
        if ((*entry.bits)[wordOf(codePoint)] & bitOf(codePoint))
            covering.push_back(entry.font);
    sortAndUnite(covering);
    return covering;
}

std::vector<FMFontId> CharacterCoverage::fonts() const {
    std::vector<FMFontId> fonts = fonts_;
    sortAndUnite(fonts);
    return fonts;
}

std::vector<std::uint32_t> CharacterCoverage::codePointsOf(FMFontId font) const {
    std::vector<std::uint32_t> codePoints;
    std::uint32_t start = 0;
    for (const auto& page : pages_) {
        for (const Entry& entry : page)
            for (std::uint32_t offset = 0; entry.font == font && offset < kPageSize; ++offset)
                if ((*entry.bits)[wordOf(offset)] & bitOf(offset))
                    codePoints.push_back(start + offset);
        start += kPageSize;
    }
    sortAndUnite(codePoints);
    return codePoints;
}

} // namespace fm
