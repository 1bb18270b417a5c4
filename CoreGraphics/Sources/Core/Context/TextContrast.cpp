// TextContrast.cpp: tables of coverage in linear light.

#include "Core/Context/TextContrast.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

constexpr float kContrast = 0.5f;
constexpr int kLevels = 8;

// The transfer curve of sRGB (IEC 61966-2-1) and its inverse.
float toLinear(float value) {
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}
float fromLinear(float value) {
    return value <= 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f;
}

// Of components as they are, not of light: the weights are those of ITU-R BT.709, in 1/256.
int luminance(CGColorRef color) {
    const size_t count = CGColorGetNumberOfComponents(color);
    const CGFloat* const components = CGColorGetComponents(color);
    if (!components || count < 2)
        return 0;
    const auto whole = [&](size_t index) {
        const CGFloat component = components[count == 4 ? index : 0];
        return static_cast<int>(std::clamp(component, CGFloat{0}, CGFloat{1}) * 255 + 0.5f);
    };
    return (whole(0) * 54 + whole(1) * 183 + whole(2) * 19) >> 8;
}

} // namespace

TextContrast::TextContrast(CGColorRef color) {
    const int level = luminance(color) * kLevels / 256;
    const float text = static_cast<float>(level) / (kLevels - 1), background = 1 - text;
    const float contrast = kContrast * toLinear(background);
    for (int i = 0; i < 256; ++i) {
        const float raw = static_cast<float>(i) / 255;
        const float coverage = raw + (1 - raw) * contrast * raw;
        const float mixed = toLinear(text) * coverage + toLinear(background) * (1 - coverage);
        // No level is its own background, so that they differ.
        const float shown = (fromLinear(mixed) - background) / (text - background);
        shown_[static_cast<size_t>(i)] =
            static_cast<std::uint8_t>(std::clamp(shown, 0.f, 1.f) * 255 + 0.5f);
    }
}

} // namespace cg
