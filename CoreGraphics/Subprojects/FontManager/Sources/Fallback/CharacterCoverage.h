// CharacterCoverage.h: which fonts map which code points.
#pragma once

#include <FontManager/FMBase.h>

#include <array>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace fm {

// Code points are kept as pages of 256 bits. Each page knows the fonts that have something on it,
// so that a code point asks only those; equal pages, of which faces of one family have many, are
// kept once.
class CharacterCoverage {
public:
    // Adds what a font maps. Code points beyond Unicode are left out.
    void add(FMFontId font, std::span<const std::uint32_t> codePoints);

    // The fonts that map the code point, by ascending id.
    std::vector<FMFontId> fontsCovering(std::uint32_t codePoint) const;

    // The fonts that were added, by ascending id, and what one of them maps, ascending.
    std::vector<FMFontId> fonts() const;
    std::vector<std::uint32_t> codePointsOf(FMFontId font) const;

    bool isEmpty() const { return fonts_.empty(); }

private:
    using Bits = std::array<std::uint64_t, 4>;
    struct BitsHash {
        std::size_t operator()(const Bits& bits) const;
    };
    struct Entry {
        FMFontId font;
        const Bits* bits;
    };

    std::vector<FMFontId> fonts_;
    std::vector<std::vector<Entry>> pages_; // None, or all.
    std::unordered_set<Bits, BitsHash> distinct_;
};

} // namespace fm
