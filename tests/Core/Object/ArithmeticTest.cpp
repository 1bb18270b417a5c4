// ArithmeticTest.cpp: numbers from outside, made to fit.

#include "Core/Object/CheckedSize.h"
#include "Core/Object/Saturate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();

template <typename Integer>
void expectSaturation() {
    using Limits = std::numeric_limits<Integer>;
    EXPECT_EQ(cg::saturate<Integer>(kInf), Limits::max());
    EXPECT_EQ(cg::saturate<Integer>(-kInf), Limits::min());
    EXPECT_EQ(cg::saturate<Integer>(1e30f), Limits::max());
    EXPECT_EQ(cg::saturate<Integer>(-1e30), Limits::min());
    EXPECT_EQ(cg::saturate<Integer>(std::nanf("")), 0);
    EXPECT_EQ(cg::saturate<Integer>(-0.99f), 0);
    EXPECT_EQ(cg::saturate<Integer>(100.99f), 100);
    // The powers of two at the limit, exact in a double: the largest is one below.
    const double beyond = std::ldexp(1.0, Limits::digits);
    EXPECT_EQ(cg::saturate<Integer>(beyond), Limits::max());
    if (Limits::digits < 53)
        EXPECT_EQ(cg::saturate<Integer>(beyond - 1), Limits::max());
    EXPECT_EQ(cg::saturate<Integer>(beyond / 2), Limits::max() / 2 + 1);
}

TEST(Saturate, KeepsEveryIntegerTypeInRange) {
    expectSaturation<std::int8_t>();
    expectSaturation<std::uint8_t>();
    expectSaturation<std::int32_t>();
    expectSaturation<std::uint32_t>();
    expectSaturation<std::int64_t>();
    expectSaturation<std::uint64_t>();
    EXPECT_EQ(cg::saturate<std::int32_t>(-2147483648.0f), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(cg::saturate<int>(-7.9f), -7);
    EXPECT_EQ(cg::saturate<unsigned>(-7.9f), 0u);
}

TEST(CheckedSize, AnswersOnlyWhatFits) {
    using cg::CheckedSize;
    constexpr std::size_t root = std::size_t{1} << (std::numeric_limits<std::size_t>::digits / 2);
    const struct {
        const char* what;
        CheckedSize size;
        std::optional<std::size_t> expected;
    } cases[] = {
        {"rows of pixels", CheckedSize(480u) * 640 * 4u + 16, 480 * 640 * 4 + 16},
        {"nothing times much", CheckedSize(0) * kMost, 0},
        {"much times nothing", CheckedSize(kMost) * 0, 0},
        {"the most", CheckedSize(kMost) * 1 + 0, kMost},
        {"the most and one", CheckedSize(kMost) + 1, std::nullopt},
        {"a product one too large", CheckedSize(root) * root, std::nullopt},
        {"a product that just fits", CheckedSize(root - 1) * (root + 1), kMost},
        {"too large for good", CheckedSize(kMost) * 2 * 0, std::nullopt},
        {"negative", CheckedSize(-1), std::nullopt},
        {"a negative operand", CheckedSize(8) + -4, std::nullopt},
    };
    for (const auto& [what, size, expected] : cases)
        EXPECT_EQ(size.value(), expected) << what;
}

} // namespace
