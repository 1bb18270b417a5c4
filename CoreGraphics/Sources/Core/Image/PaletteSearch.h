// PaletteSearch.h: the entry of a colour table that comes nearest to a colour.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace cg {

class PaletteSearch {
public:
    // Over the table of an indexed space, in the device's RGB. Nothing when its base has no way
    // there.
    static std::optional<PaletteSearch> of(CGColorSpaceRef indexed);

    // By the sum of squared differences; the first of several that are as near.
    std::uint8_t nearest(std::uint8_t red, std::uint8_t green, std::uint8_t blue);

private:
    static constexpr std::size_t kMostEntries = 256;
    static constexpr std::uint32_t kNone = 0xFF000000; // No colour of three bytes.

    struct Found {
        std::uint32_t color = kNone;
        std::uint8_t index = 0;
    };

    std::array<std::uint8_t, 3 * kMostEntries> table_ = {};
    std::size_t count_ = 0;
    std::array<Found, 256> found_; // What was looked for last, by a hash of the colour.
};

} // namespace cg
