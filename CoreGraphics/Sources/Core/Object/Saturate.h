// Saturate.h: floating-point numbers as integers, where C++ leaves the result undefined.
#pragma once

#include <concepts>
#include <limits>

namespace cg {

// The number towards zero of `value`; the nearest limit when it is out of range, 0 for NaN.
template <std::integral Integer, std::floating_point Float>
constexpr Integer saturate(Float value) {
    using Limits = std::numeric_limits<Integer>;
    // One beyond the largest Integer, a power of two: the largest itself may round up to it.
    constexpr Float beyond = static_cast<Float>(Limits::max() / 2 + 1) * 2;
    if (value != value)
        return 0;
    if (value >= beyond)
        return Limits::max();
    // Unsigned: fractions above -1 truncate to 0 as well.
    if (value <= static_cast<Float>(Limits::min()))
        return Limits::min();
    return static_cast<Integer>(value);
}

} // namespace cg
