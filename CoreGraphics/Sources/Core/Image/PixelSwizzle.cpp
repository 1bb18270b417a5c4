// PixelSwizzle.cpp: whole pixels at a time, as words that compilers make vectors of.

#include "PixelSwizzle.h"

#include "WideInstructions.h"

#include <array>
#include <bit>
#include <cstring>

namespace cg {

namespace {

using Opacity = PixelSwizzle::Opacity;
using Places = PixelSwizzle::Places;

constexpr std::uint32_t kEvenBytes = 0x00FF00FF;

// Both bytes of a word's halves times `alpha` over 255, rounded to the nearest: as multiplied(),
// two at once.
constexpr std::uint32_t multipliedPair(std::uint32_t pair, std::uint32_t alpha) {
    const std::uint32_t product = pair * alpha + 0x00800080;
    return (product + (product >> 8 & kEvenBytes)) >> 8 & kEvenBytes;
}

template <Opacity opacity>
constexpr std::uint32_t composed(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                                 std::uint32_t alpha) {
    if constexpr (opacity == Opacity::Full)
        return 0xFF000000 | red << 16 | green << 8 | blue;
    else if constexpr (opacity == Opacity::Kept)
        return alpha << 24 | red << 16 | green << 8 | blue;
    else
        return multipliedPair(0x00FF0000 | green, alpha) << 8 |
               multipliedPair(red << 16 | blue, alpha);
}

std::uint32_t loaded(const std::byte* from) {
    std::uint32_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

void stored(std::uint32_t bgra, std::byte* to) {
    std::memcpy(to, &bgra, sizeof bgra);
}

// A pixel is a little-endian word; `word >> shift` brings a component down.
template <Opacity opacity>
[[gnu::always_inline]] inline void swizzleWords(const Places& places, const std::byte* pixels,
                                                std::size_t count, std::byte* out) {
    const unsigned red = places.red * 8, green = places.green * 8;
    const unsigned blue = places.blue * 8, alpha = places.alpha * 8;
    for (std::size_t x = 0; x < count; ++x) {
        const auto word = loaded(pixels + 4 * x);
        const auto byteAt = [word](unsigned shift) { return word >> shift & 0xFF; };
        stored(composed<opacity>(byteAt(red), byteAt(green), byteAt(blue), byteAt(alpha)),
               out + 4 * x);
    }
}

[[gnu::always_inline]] inline void spreadGray(const std::byte* pixels, std::size_t count,
                                              std::byte* out) {
    for (std::size_t x = 0; x < count; ++x)
        stored(0xFF000000 | std::to_integer<std::uint32_t>(pixels[x]) * 0x010101, out + 4 * x);
}

[[gnu::always_inline]] inline void swizzlePacked(const Places& places, const std::byte* pixels,
                                                 std::size_t count, std::byte* out) {
    for (std::size_t x = 0; x < count; ++x, pixels += 3)
        stored(0xFF000000 | std::to_integer<std::uint32_t>(pixels[places.red]) << 16 |
                   std::to_integer<std::uint32_t>(pixels[places.green]) << 8 |
                   std::to_integer<std::uint32_t>(pixels[places.blue]),
               out + 4 * x);
}

template <Opacity opacity>
CG_WIDE void wideWords(const Places& places, const std::byte* pixels, std::size_t count,
                       std::byte* out) {
    swizzleWords<opacity>(places, pixels, count, out);
}
template <Opacity opacity>
void plainWords(const Places& places, const std::byte* pixels, std::size_t count, std::byte* out) {
    swizzleWords<opacity>(places, pixels, count, out);
}
CG_WIDE void wideGray(const std::byte* pixels, std::size_t count, std::byte* out) {
    spreadGray(pixels, count, out);
}

template <Opacity opacity>
void fourBytes(const PixelSwizzle& swizzle, const std::byte* pixels, std::size_t count,
               std::byte* out) {
    (hasWideInstructions() ? wideWords<opacity> : plainWords<opacity>)(swizzle.places(), pixels,
                                                                       count, out);
}

void threeBytes(const PixelSwizzle& swizzle, const std::byte* pixels, std::size_t count,
                std::byte* out) {
    swizzlePacked(swizzle.places(), pixels, count, out);
}

void threeDrawnBytes(const PixelSwizzle& swizzle, const std::byte* pixels, std::size_t count,
                     std::byte* out) {
    const Places& places = swizzle.places();
    for (std::size_t x = 0; x < count; ++x, pixels += 4, out += 3) {
        out[0] = pixels[places.blue];
        out[1] = pixels[places.green];
        out[2] = pixels[places.red];
    }
}

void oneByte(const PixelSwizzle&, const std::byte* pixels, std::size_t count, std::byte* out) {
    if (hasWideInstructions())
        wideGray(pixels, count, out);
    else
        spreadGray(pixels, count, out);
}

} // namespace

std::optional<PixelSwizzle> PixelSwizzle::of(const PixelLayout& layout, bool wantsPremultiplied) {
    if (std::endian::native != std::endian::little)
        return std::nullopt;
    if (layout.isMadeOfWhole(16))
        return ofDeepPixels(layout, wantsPremultiplied);
    if (!layout.isMadeOfWhole(8))
        return std::nullopt;
    const auto place = [&](std::size_t field) {
        return static_cast<unsigned>(layout.bytePlace(layout.field(field).offset / 8));
    };
    if (layout.bitsPerPixel() == 8 && layout.colorCount() == 1)
        return PixelSwizzle({}, oneByte);
    if (layout.colorCount() != 3)
        return std::nullopt;
    Places places = {place(0), place(1), place(2), 0};
    if (layout.bitsPerPixel() == 24)
        return PixelSwizzle(places, threeBytes);
    if (layout.bitsPerPixel() != 32)
        return std::nullopt;
    if (!layout.hasAlpha() || !wantsPremultiplied)
        return layout.hasAlpha() && layout.isPremultiplied()
                   ? std::nullopt // Colours are to be divided.
                   : std::optional(PixelSwizzle(places, fourBytes<Opacity::Full>));
    places.alpha = place(3);
    return PixelSwizzle(places, layout.isPremultiplied() ? fourBytes<Opacity::Kept>
                                                         : fourBytes<Opacity::Multiplied>);
}

std::optional<PixelSwizzle> PixelSwizzle::ofDrawn(const PixelLayout& layout) {
    const std::size_t bytes = layout.bitsPerPixel() / 8;
    if (std::endian::native != std::endian::little || !layout.isMadeOfWhole(8) ||
        layout.colorCount() != 3 || (bytes != 3 && bytes != 4))
        return std::nullopt;
    // By the byte of a pixel, which byte of the drawn one comes there.
    constexpr unsigned kDrawnAlpha = 3;
    std::array<unsigned, 4> from = {kDrawnAlpha, kDrawnAlpha, kDrawnAlpha, kDrawnAlpha};
    for (std::size_t color = 0; color < 3; ++color)
        from[layout.bytePlace(layout.field(color).offset / 8)] = 2 - static_cast<unsigned>(color);
    return PixelSwizzle({.red = from[2], .green = from[1], .blue = from[0], .alpha = from[3]},
                        bytes == 3 ? threeDrawnBytes : fourBytes<Opacity::Kept>);
}

} // namespace cg
