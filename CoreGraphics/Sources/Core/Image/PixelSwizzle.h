// PixelSwizzle.h: the shortest way from common 8-bit pixels to those that are drawn.
#pragma once

#include "PixelLayout.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace cg {

// Rows of gray or RGB of 8 or 16 bits, whose samples are what they mean, into BGRX of 8 bits: a
// function for each kind of pixel, which goes through whole rows at once. Results equal those of
// the stages that any pixel can go through.
class PixelSwizzle {
public:
    enum class Opacity : std::uint8_t { Full, Kept, Multiplied };

    // Nothing for pixels that have no such function.
    static std::optional<PixelSwizzle> of(const PixelLayout& layout, bool wantsPremultiplied);

    // The other way: BGRX into bytes of red, green and blue, the fourth into what is left of a
    // pixel. Nothing for pixels of other components or widths.
    static std::optional<PixelSwizzle> ofDrawn(const PixelLayout& layout);

    void apply(const std::byte* pixels, std::size_t count, std::byte* out) const {
        function_(*this, pixels, count, out);
    }

    // Where a pixel's bytes lie; of deep pixels, how far the word is turned right to begin with
    // red.
    struct Places {
        unsigned red = 0, green = 0, blue = 0, alpha = 0;
        unsigned turnedBy = 0;
    };
    const Places& places() const { return places_; }

private:
    using Function = void (*)(const PixelSwizzle&, const std::byte*, std::size_t, std::byte*);
    PixelSwizzle(const Places& places, Function function) : places_(places), function_(function) {}
    static std::optional<PixelSwizzle> ofDeepPixels(const PixelLayout& layout,
                                                    bool wantsPremultiplied);

    Places places_;
    Function function_;
};

} // namespace cg
