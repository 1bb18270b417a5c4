// GeometryValues.h: comparing geometry to the bit.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

constexpr CGFloat kInf = std::numeric_limits<CGFloat>::infinity();
constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();

// A value's floats as bit patterns, which tell -0 from 0; every NaN is the same.
template <typename Value>
auto bitsOf(const Value& value) {
    auto words = std::bit_cast<std::array<std::uint32_t, sizeof(Value) / sizeof(CGFloat)>>(value);
    for (auto& word : words)
        if (std::isnan(std::bit_cast<CGFloat>(word)))
            word = std::bit_cast<std::uint32_t>(kNaN);
    return words;
}

#define EXPECT_SAME_BITS(actual, expected) EXPECT_EQ(bitsOf(actual), bitsOf(expected))

// Numbers that break careless arithmetic.
inline const std::vector<CGFloat>& awkwardNumbers() {
    static const std::vector<CGFloat> numbers = {
        0, -0.0f, 1, -1, 0.5f, 1e-40f, 1e30f, CGFLOAT_MAX, -CGFLOAT_MAX, kInf, -kInf, kNaN};
    return numbers;
}
