// PixelStages.h: what happens to spans of components on their way out of an image.
#pragma once

#include "Core/Color/RowTransform.h"
#include "PixelArithmetic.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace cg {

// A span's pixels have `colors` components of colour and, where these functions ask for it, one of
// opacity behind them.

template <typename Component>
void multiplyByAlpha(Component* pixels, std::size_t count, std::size_t colors) {
    for (std::size_t x = 0; x < count; ++x, pixels += colors + 1)
        for (std::size_t i = 0; i < colors; ++i)
            pixels[i] = multiplied(pixels[i], pixels[colors]);
}

template <typename Component>
void divideByAlpha(Component* pixels, std::size_t count, std::size_t colors) {
    for (std::size_t x = 0; x < count; ++x, pixels += colors + 1)
        for (std::size_t i = 0; i < colors; ++i)
            pixels[i] = divided(pixels[i], pixels[colors]);
}

// Weakens each pixel by its part of a mask, colours as well where they hold their opacity.
template <typename Component>
void applyCoverage(Component* pixels, std::size_t count, std::size_t colors, bool isPremultiplied,
                   const Component* coverage) {
    for (std::size_t x = 0; x < count; ++x, pixels += colors + 1) {
        for (std::size_t i = 0; isPremultiplied && i < colors; ++i)
            pixels[i] = multiplied(pixels[i], coverage[x]);
        pixels[colors] = multiplied(pixels[colors], coverage[x]);
    }
}

// Colours of inks take long to convert: one that is repeated is converted once. Up to `kMost`
// pixels of `from` components, which are moved, become pixels of `to` components.
template <std::size_t kMost, typename Component>
void convertRuns(const RowTransform& transform, Component* in, std::size_t from, Component* out,
                 std::size_t to, std::size_t count) {
    std::array<std::uint16_t, kMost> runs;
    std::size_t last = 0;
    for (std::size_t x = 0; x < count; ++x) {
        if (!std::equal(in + x * from, in + (x + 1) * from, in + last * from))
            std::copy_n(in + x * from, from, in + ++last * from);
        runs[x] = static_cast<std::uint16_t>(last);
    }
    transform.apply(in, out, count > 0 ? last + 1 : 0);
    // From the last on: a run's colour lies no further than its pixels.
    for (std::size_t x = count; x-- > 0;)
        if (runs[x] != x)
            std::copy_n(out + runs[x] * to, to, out + x * to);
}

// How pixels are taken over into their last form.
struct PixelStore {
    std::size_t colors = 0;
    bool hasAlpha = false;   // Of what is stored.
    bool keepsAlpha = false; // Otherwise it is left out, or full.
    bool isSpread = false;   // Into four components, a gray three times.
    bool startsWithBlue = false;
};

template <typename Wanted, typename Component>
void storeInOrder(const Component* pixels, std::size_t count, const PixelStore& store,
                  bool writesAlpha, Wanted* out) {
    for (std::size_t x = 0; x < count; ++x) {
        for (std::size_t i = 0; i < store.colors; ++i)
            *out++ = widthChanged<Wanted>(pixels[i]);
        if (writesAlpha)
            *out++ = store.hasAlpha ? widthChanged<Wanted>(pixels[store.colors]) : kOne<Wanted>;
        pixels += store.colors + (store.hasAlpha ? 1 : 0);
    }
}

template <typename Wanted, typename Component>
void storeSpread(const Component* pixels, std::size_t count, const PixelStore& store, Wanted* out) {
    const bool isGray = store.colors == 1;
    const std::size_t first = isGray || !store.startsWithBlue ? 0 : 2;
    const std::size_t second = isGray ? 0 : 1;
    const std::size_t third = isGray ? 0 : 2 - first;
    const bool takesAlpha = store.hasAlpha && store.keepsAlpha;
    for (std::size_t x = 0; x < count; ++x, out += 4) {
        out[0] = widthChanged<Wanted>(pixels[first]);
        out[1] = widthChanged<Wanted>(pixels[second]);
        out[2] = widthChanged<Wanted>(pixels[third]);
        out[3] = takesAlpha ? widthChanged<Wanted>(pixels[store.colors]) : kOne<Wanted>;
        pixels += store.colors + (store.hasAlpha ? 1 : 0);
    }
}

template <typename Wanted, typename Component>
void storePixels(const Component* pixels, std::size_t count, const PixelStore& store, Wanted* out) {
    if (store.isSpread)
        storeSpread(pixels, count, store, out);
    else
        storeInOrder(pixels, count, store, store.keepsAlpha, out);
}

} // namespace cg
