// PixelDecode.h: what an image's samples mean as components.
#pragma once

#include <CoreGraphics/CGImage.h>

#include "PixelArithmetic.h"
#include "PixelLayout.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace cg {

// The values that a colour's smallest and largest samples stand for, and the limits between which
// such components are encoded: full range of an integer component is from lowest to highest.
struct DecodeRange {
    double minimum = 0;
    double maximum = 1;
    double lowest = 0;
    double highest = 1;

    bool isPlain() const { return minimum == lowest && maximum == highest; }
};

// What samples of a space's component cover when there is no decode array: 0…1, the ranges of a Lab
// space, or the indices of a table up to `largest`.
DecodeRange defaultDecodeRange(CGColorSpaceRef space, std::size_t component, double largest);

// A value in a range's own units as a component. NaN counts as the lowest.
template <typename Component>
Component encodedComponent(const DecodeRange& range, double value) {
    // Not std::clamp, through which NaN passes.
    const double limited = value > range.lowest ? std::min(value, range.highest) : range.lowest;
    if constexpr (std::is_floating_point_v<Component>)
        return static_cast<Component>(limited);
    else
        return static_cast<Component>(
            (limited - range.lowest) / (range.highest - range.lowest) * kOne<Component> + 0.5);
}

// Of one image's pixels.
class SampleDecoder {
public:
    SampleDecoder(CGImageRef image, const PixelLayout& layout);

    // Whether samples as wide as a component are the components.
    bool isPlain() const { return isPlain_; }

    // The sample as a number.
    double raw(std::uint32_t sample) const {
        return layout_.isFloat() ? static_cast<double>(std::bit_cast<float>(sample))
                                 : static_cast<double>(sample);
    }

    // The decoded value in the range's own units: lightness of 0…100, an index. Any sample, NaN and
    // infinities included.
    double value(std::size_t field, std::uint32_t sample) const {
        const double fraction = layout_.isFloat()
                                    ? static_cast<double>(std::bit_cast<float>(sample))
                                    : static_cast<double>(sample) / largest_[field];
        const DecodeRange& range = ranges_[field];
        return range.minimum + fraction * (range.maximum - range.minimum);
    }

    template <typename Component>
    Component component(std::size_t field, std::uint32_t sample) const {
        const DecodeRange& range = ranges_[field];
        const bool isFraction = range.lowest == 0 && range.highest == 1;
        if (!layout_.isFloat() && range.isPlain() &&
            (isFraction || !std::is_floating_point_v<Component>))
            return scaledSample<Component>(sample, largest_[field]);
        return encodedComponent<Component>(range, value(field, sample));
    }

private:
    PixelLayout layout_;
    std::array<DecodeRange, PixelLayout::kMostFields> ranges_;
    std::array<std::uint32_t, PixelLayout::kMostFields> largest_ = {};
    bool isPlain_ = false;
};

} // namespace cg
