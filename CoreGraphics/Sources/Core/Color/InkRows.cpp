// InkRows.cpp: rows of four inks for profiles that know three.

#include "Core/Color/InkRows.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace cg {

namespace {

template <typename T>
T sum(T ink, T black) {
    if constexpr (std::is_floating_point_v<T>)
        return std::min(ink + black, T(1));
    else
        return static_cast<T>(
            std::min(unsigned{ink} + black, unsigned{std::numeric_limits<T>::max()}));
}

template <typename T>
void foldBlackOf(const T* in, T* out, bool hasAlpha, std::size_t pixelCount) {
    for (; pixelCount > 0; --pixelCount) {
        for (std::size_t ink = 0; ink < 3; ++ink)
            *out++ = sum(in[ink], in[3]);
        if (hasAlpha)
            *out++ = in[4];
        in += hasAlpha ? 5 : 4;
    }
}

template <typename T>
void addNoBlackTo(const T* in, T* out, bool hasAlpha, std::size_t pixelCount) {
    for (; pixelCount > 0; --pixelCount) {
        for (std::size_t ink = 0; ink < 3; ++ink)
            *out++ = *in++;
        *out++ = 0;
        if (hasAlpha)
            *out++ = *in++;
    }
}

// Calls `function` with the row as what its components are.
template <typename Function>
void withComponents(ComponentType type, const void* in, void* out, Function&& function) {
    switch (type) {
    case ComponentType::Unsigned8:
        return function(static_cast<const std::uint8_t*>(in), static_cast<std::uint8_t*>(out));
    case ComponentType::Unsigned16:
        return function(static_cast<const std::uint16_t*>(in), static_cast<std::uint16_t*>(out));
    case ComponentType::Float:
        return function(static_cast<const float*>(in), static_cast<float*>(out));
    }
}

} // namespace

void foldBlack(RowFormat format, const void* in, void* out, std::size_t pixelCount) {
    withComponents(format.type, in, out, [&](const auto* from, auto* to) {
        foldBlackOf(from, to, format.hasAlpha, pixelCount);
    });
}

void addNoBlack(RowFormat format, const void* in, void* out, std::size_t pixelCount) {
    withComponents(format.type, in, out, [&](const auto* from, auto* to) {
        addNoBlackTo(from, to, format.hasAlpha, pixelCount);
    });
}

} // namespace cg
