// DirectRows.cpp: rows of gray, RGB and inks whose colours stay what they are.

#include "Core/Color/DirectRows.h"

#include "Core/Object/Saturate.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace cg {

namespace {

template <typename T>
constexpr T kFull = std::numeric_limits<T>::max();
template <>
constexpr float kFull<float> = 1;

template <typename Out, typename In>
Out converted(In value) {
    if constexpr (std::is_same_v<In, Out>)
        return value;
    else if constexpr (std::is_same_v<Out, float>)
        return static_cast<float>(value) / kFull<In>;
    else if constexpr (std::is_same_v<In, float>)
        return saturate<Out>(value * kFull<Out> + 0.5f);
    else if constexpr (sizeof(Out) > sizeof(In))
        return static_cast<Out>(value * 257); // 0xAB as 0xABAB.
    else
        return static_cast<Out>((value * 255u + 32895u) >> 16); // To nearest: /257.
}

template <typename T>
T lumaOf(const T* rgb) {
    if constexpr (std::is_same_v<T, float>) {
        return luma(rgb[0], rgb[1], rgb[2]);
    } else {
        // The weights of luma() in 1/65536; they add up to one, so that gray stays as it is.
        constexpr std::uint32_t kRed = 13933, kGreen = 46871, kBlue = 4732;
        static_assert(kRed + kGreen + kBlue == 65536);
        const std::uint64_t sum = std::uint64_t{kRed} * rgb[0] + std::uint64_t{kGreen} * rgb[1] +
                                  std::uint64_t{kBlue} * rgb[2];
        return static_cast<T>((sum + 32768) >> 16);
    }
}

template <typename In, typename Out>
void convertRow(const In* in, const DirectLayout& from, Out* out, const DirectLayout& to,
                std::size_t pixelCount) {
    const std::size_t inStep = from.colorCount + from.format.hasAlpha;
    const std::size_t outStep = to.colorCount + to.format.hasAlpha;
    for (; pixelCount > 0; --pixelCount, in += inStep, out += outStep) {
        if (from.colorCount == to.colorCount) {
            for (std::size_t index = 0; index < to.colorCount; ++index)
                out[index] = converted<Out>(in[index]);
        } else if (from.colorCount == 1) {
            out[0] = out[1] = out[2] = converted<Out>(in[0]);
        } else {
            out[0] = converted<Out>(lumaOf(in));
        }
        if (to.format.hasAlpha)
            out[to.colorCount] =
                from.format.hasAlpha ? converted<Out>(in[from.colorCount]) : kFull<Out>;
    }
}

template <typename In>
void convertRowFrom(const In* in, const DirectLayout& from, void* out, const DirectLayout& to,
                    std::size_t pixelCount) {
    switch (to.format.type) {
    case ComponentType::Unsigned8:
        return convertRow(in, from, static_cast<std::uint8_t*>(out), to, pixelCount);
    case ComponentType::Unsigned16:
        return convertRow(in, from, static_cast<std::uint16_t*>(out), to, pixelCount);
    case ComponentType::Float:
        return convertRow(in, from, static_cast<float*>(out), to, pixelCount);
    }
}

} // namespace

void convertRowDirectly(const void* in, const DirectLayout& from, void* out, const DirectLayout& to,
                        std::size_t pixelCount) {
    switch (from.format.type) {
    case ComponentType::Unsigned8:
        return convertRowFrom(static_cast<const std::uint8_t*>(in), from, out, to, pixelCount);
    case ComponentType::Unsigned16:
        return convertRowFrom(static_cast<const std::uint16_t*>(in), from, out, to, pixelCount);
    case ComponentType::Float:
        return convertRowFrom(static_cast<const float*>(in), from, out, to, pixelCount);
    }
}

} // namespace cg
