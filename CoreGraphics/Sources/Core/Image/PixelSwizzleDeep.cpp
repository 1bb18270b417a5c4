// PixelSwizzleDeep.cpp: pixels of 16-bit components narrowed to 8 bits, a 64-bit word at a time.

#include "PixelArithmetic.h"
#include "PixelSwizzle.h"
#include "WideInstructions.h"

#include <cstring>

namespace cg {

namespace {

using Opacity = PixelSwizzle::Opacity;

// Two components of 16 bits, each alone in half of the word.
constexpr std::uint64_t kPair = 0x0000FFFF0000FFFF;
constexpr std::uint64_t kEvenBytes = 0x00FF00FF00FF00FF;

// Both of a pair to 8 bits, to the nearest: (255 c + 32895) / 65536, as widthChanged() of any c.
constexpr std::uint64_t narrowedPair(std::uint64_t pair) {
    const std::uint64_t scaled = (pair << 8) - pair + 0x0000807F0000807F;
    return scaled >> 16 & 0x000000FF000000FF;
}

// As multiplied() of 16 bits.
constexpr std::uint64_t multipliedWord(std::uint64_t color, std::uint64_t alpha) {
    const std::uint64_t product = color * alpha + 32768;
    return (product + (product >> 16)) >> 16;
}

template <Opacity opacity>
constexpr std::uint32_t narrowed(std::uint64_t rgba) {
    std::uint64_t redBlue = rgba & kPair;
    std::uint64_t greenAlpha = rgba >> 16 & kPair;
    if constexpr (opacity == Opacity::Multiplied) {
        const std::uint64_t alpha = greenAlpha >> 32;
        redBlue = multipliedWord(redBlue & 0xFFFF, alpha) | multipliedWord(redBlue >> 32, alpha)
                                                                << 32;
        greenAlpha = multipliedWord(greenAlpha & 0xFFFF, alpha) | alpha << 32;
    }
    redBlue = narrowedPair(redBlue);
    greenAlpha = narrowedPair(greenAlpha);
    const std::uint64_t alpha = opacity == Opacity::Full ? 0xFF : greenAlpha >> 32;
    return static_cast<std::uint32_t>(redBlue >> 32 | (greenAlpha & 0xFF) << 8 |
                                      (redBlue & 0xFF) << 16 | alpha << 24);
}

template <typename Word>
Word loaded(const std::byte* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// Whether the bytes of each component are to be swapped is known when compiling, so that the loop
// becomes one of vectors.
template <Opacity opacity, bool isSwapped>
[[gnu::always_inline]] inline void narrowWords(unsigned turnedBy, const std::byte* pixels,
                                               std::size_t count, std::byte* out) {
    for (std::size_t x = 0; x < count; ++x) {
        auto word = loaded<std::uint64_t>(pixels + 8 * x);
        if constexpr (isSwapped)
            word = (word & kEvenBytes) << 8 | (word >> 8 & kEvenBytes);
        const std::uint32_t bgra =
            narrowed<opacity>(word >> turnedBy | word << ((64 - turnedBy) & 63));
        std::memcpy(out + 4 * x, &bgra, sizeof bgra);
    }
}

template <Opacity opacity, bool isSwapped>
CG_WIDE void wideWords(unsigned turnedBy, const std::byte* pixels, std::size_t count,
                       std::byte* out) {
    narrowWords<opacity, isSwapped>(turnedBy, pixels, count, out);
}
template <Opacity opacity, bool isSwapped>
void plainWords(unsigned turnedBy, const std::byte* pixels, std::size_t count, std::byte* out) {
    narrowWords<opacity, isSwapped>(turnedBy, pixels, count, out);
}

template <Opacity opacity, bool isSwapped>
void fourWords(const PixelSwizzle& swizzle, const std::byte* pixels, std::size_t count,
               std::byte* out) {
    (hasWideInstructions()
         ? wideWords<opacity, isSwapped>
         : plainWords<opacity, isSwapped>)(swizzle.places().turnedBy, pixels, count, out);
}

template <bool isSwapped>
std::uint16_t wordAt(const std::byte* pixels) {
    const auto word = loaded<std::uint16_t>(pixels);
    return isSwapped ? static_cast<std::uint16_t>(word << 8 | word >> 8) : word;
}

template <std::size_t words, bool isSwapped>
void opaqueWords(const PixelSwizzle&, const std::byte* pixels, std::size_t count, std::byte* out) {
    constexpr std::size_t kGreen = words == 3 ? 2 : 0;
    for (std::size_t x = 0; x < count; ++x, pixels += 2 * words) {
        const std::uint64_t red = wordAt<isSwapped>(pixels);
        const std::uint64_t green = wordAt<isSwapped>(pixels + kGreen);
        const std::uint64_t blue = wordAt<isSwapped>(pixels + 2 * kGreen);
        const std::uint32_t bgra = narrowed<Opacity::Full>(red | green << 16 | blue << 32);
        std::memcpy(out + 4 * x, &bgra, sizeof bgra);
    }
}

} // namespace

// The byte orders that swap nothing but the bytes of components.
std::optional<PixelSwizzle> PixelSwizzle::ofDeepPixels(const PixelLayout& layout,
                                                       bool wantsPremultiplied) {
    if (layout.unit() > 2)
        return std::nullopt;
    const bool isSwapped = layout.unit() == 1;
    const auto either = [isSwapped](Function swapped, Function plain) {
        return isSwapped ? swapped : plain;
    };
    if (layout.bitsPerPixel() == 16 && layout.colorCount() == 1)
        return PixelSwizzle({}, either(opaqueWords<1, true>, opaqueWords<1, false>));
    if (layout.colorCount() != 3)
        return std::nullopt;
    if (layout.bitsPerPixel() == 48)
        return PixelSwizzle({}, either(opaqueWords<3, true>, opaqueWords<3, false>));
    if (layout.bitsPerPixel() != 64)
        return std::nullopt;
    Places places;
    places.turnedBy = static_cast<unsigned>(layout.field(0).offset);
    if (!layout.hasAlpha() || !wantsPremultiplied)
        return layout.hasAlpha() && layout.isPremultiplied()
                   ? std::nullopt // Colours are to be divided.
                   : std::optional(PixelSwizzle(places, either(fourWords<Opacity::Full, true>,
                                                               fourWords<Opacity::Full, false>)));
    if (layout.isPremultiplied())
        return PixelSwizzle(
            places, either(fourWords<Opacity::Kept, true>, fourWords<Opacity::Kept, false>));
    return PixelSwizzle(places, either(fourWords<Opacity::Multiplied, true>,
                                       fourWords<Opacity::Multiplied, false>));
}

} // namespace cg
