// PixelArithmetic.h: components of 8 bits, of 16 bits and in floats, rounded to the nearest value.
#pragma once

#include "Core/Object/Saturate.h"

#include <cstdint>
#include <limits>
#include <type_traits>

namespace cg {

// Full intensity of a component.
template <typename Component>
constexpr Component kOne = std::numeric_limits<Component>::max();
template <>
inline constexpr float kOne<float> = 1;

// round(a · b / one), exactly for integers: x + x / 2^bits over 2^bits is x over 2^bits - 1.
constexpr std::uint8_t multiplied(std::uint8_t a, std::uint8_t b) {
    const unsigned product = unsigned{a} * b + 128;
    return static_cast<std::uint8_t>((product + (product >> 8)) >> 8);
}
constexpr std::uint16_t multiplied(std::uint16_t a, std::uint16_t b) {
    const std::uint32_t product = std::uint32_t{a} * b + 32768;
    return static_cast<std::uint16_t>((product + (product >> 16)) >> 16);
}
constexpr float multiplied(float a, float b) {
    return a * b;
}

// The colour before it was multiplied by `alpha`: round(c · one / alpha), at most full intensity,
// and 0 where nothing shows.
template <typename Component>
constexpr Component divided(Component color, Component alpha) {
    if (alpha == 0)
        return 0;
    if (color >= alpha)
        return kOne<Component>;
    if constexpr (std::is_floating_point_v<Component>)
        return color / alpha;
    else
        return static_cast<Component>((std::uint32_t{color} * kOne<Component> + alpha / 2u) /
                                      alpha);
}

// A component of another width.
template <typename To, typename From>
constexpr To widthChanged(From value) {
    if constexpr (std::is_same_v<To, From>)
        return value;
    else if constexpr (std::is_floating_point_v<To>)
        return static_cast<float>(value) / static_cast<float>(kOne<From>);
    else if constexpr (std::is_floating_point_v<From>)
        return saturate<To>(value * static_cast<float>(kOne<To>) + 0.5f);
    else if constexpr (sizeof(To) > sizeof(From))
        return static_cast<To>(value * 257u);
    else
        return static_cast<To>((value * 255u + 32767u) / 65535u);
}

// A sample of 1 to 32 bits as a component: round(sample · one / largest sample).
template <typename Component>
constexpr Component scaledSample(std::uint32_t sample, std::uint32_t largest) {
    if constexpr (std::is_floating_point_v<Component>)
        return static_cast<float>(static_cast<double>(sample) / static_cast<double>(largest));
    else
        return static_cast<Component>((std::uint64_t{sample} * kOne<Component> + largest / 2) /
                                      largest);
}

} // namespace cg
