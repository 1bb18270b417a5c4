// XGGeometryTest.cpp: fitting and cutting rectangles, points on lines, vectors, the tolerance.

#include "XGGeometry.h"

#include "XGVector.h"

#include "Core/Geometry/NearlyEqual.h"
#include "GeometryValues.h"

#include <numbers>

namespace {

constexpr CGFloat kPi = std::numbers::pi_v<CGFloat>;

TEST(NearlyEqual, AllowsAStepAtOneOrRelativeToTheLarger) {
    const CGFloat epsilon = 0x1p-23f;
    const struct {
        CGFloat u, v;
        bool equal;
    } cases[] = {
        {0, epsilon, true},           {0, 1.5f * epsilon, false},
        {0, -epsilon, true},          {-epsilon, epsilon, false},
        {1, 1 + epsilon, true},       {1, 1 + 2 * epsilon, false},
        {1e6f, 1e6f + 0.0625f, true}, {1e6f, 1e6f + 0.1875f, false},
        {1e6f, -1e6f, false},         {kInf, 1, true},
        {kInf, kInf, false},          {kNaN, kNaN, false},
    };
    for (const auto& [u, v, equal] : cases) {
        EXPECT_EQ(cg::nearlyEqual(u, v), equal) << u << " and " << v;
        EXPECT_EQ(cg::nearlyEqual(v, u), equal) << v << " and " << u;
    }
}

TEST(XGGeometry, NullValuesAreNotFinite) {
    EXPECT_TRUE(XGPointIsNull(XGPointNull));
    EXPECT_TRUE(XGPointIsNull({0, kNaN}));
    EXPECT_FALSE(XGPointIsNull({CGFLOAT_MAX, 0}));
    EXPECT_TRUE(XGSizeIsNull(XGSizeNull));
    EXPECT_TRUE(XGSizeIsNull({-kInf, 0}));
    EXPECT_FALSE(XGSizeIsNull({-1, 0}));
}

TEST(XGGeometry, FitsProportionsInsideAndOutside) {
    const CGRect bounds = {{10, 20}, {100, 50}};
    const struct {
        const char* what;
        CGSize aspect;
        CGRect inside, outside;
    } cases[] = {
        {"same", {2, 1}, bounds, bounds},
        {"square", {3, 3}, {{35, 20}, {50, 50}}, {{10, -5}, {100, 100}}},
        {"wide", {4, 1}, {{10, 32.5f}, {100, 25}}, {{-40, 20}, {200, 50}}},
    };
    for (const auto& [what, aspect, inside, outside] : cases) {
        EXPECT_SAME_BITS(XGRectMakeWithAspectRatioInsideRect(aspect, bounds), inside) << what;
        EXPECT_SAME_BITS(XGRectMakeWithAspectRatioOutsideRect(aspect, bounds), outside) << what;
    }
    EXPECT_TRUE(std::isnan(XGRectMakeWithAspectRatioInsideRect({0, 0}, bounds).size.height));
    EXPECT_SAME_BITS(XGRectScale({{1, 2}, {-3, 4}}, 2, -1), (CGRect{{2, -2}, {-6, -4}}));
}

TEST(XGGeometry, BoundsOfWhatACutLeaves) {
    const CGRect whole = {{0, 0}, {10, 20}};
    const struct {
        const char* what;
        CGRect minus, expected;
    } cases[] = {
        {"all", {{-1, -1}, {20, 30}}, CGRectNull},
        {"elsewhere", {{50, 50}, {1, 1}}, whole},
        {"touching only", {{10, 0}, {5, 20}}, whole},
        {"the lower part", {{-1, -1}, {20, 6}}, {{0, 5}, {10, 15}}},
        {"the upper part", {{0, 15}, {10, 99}}, {{0, 0}, {10, 15}}},
        {"a band across", {{0, 5}, {10, 5}}, whole},
        {"the left part", {{-5, -5}, {9, 99}}, {{4, 0}, {6, 20}}},
        {"the right part, reversed", {{99, 99}, {-92, -99}}, {{0, 0}, {7, 20}}},
        {"a corner", {{0, 0}, {5, 5}}, whole},
        {"nothing, since null", CGRectNull, whole},
    };
    for (const auto& [what, minus, expected] : cases)
        EXPECT_SAME_BITS(XGRectBoundsOfRectMinusRect(whole, minus), expected) << what;
    EXPECT_SAME_BITS(XGRectBoundsOfRectMinusRect({{10, 20}, {-10, -20}}, {{0, 0}, {5, 5}}), whole);
}

TEST(XGGeometry, DistanceIsThatOfPythagoras) {
    EXPECT_EQ(XGPointDistance({1, 2}, {4, 6}), 5);
    EXPECT_EQ(XGPointDistance({-1, 0}, {1, 0}), 2);
    EXPECT_EQ(XGPointDistance({1e30f, 0}, {0, 0}), kInf); // The squares are single precision.
}

TEST(XGGeometry, PointsOnSegments) {
    const CGPoint a = {0, 0};
    const CGPoint b = {4, 2};
    const struct {
        const char* what;
        CGPoint point, a, b;
        bool on;
    } cases[] = {
        {"middle", {2, 1}, a, b, true},
        {"end", b, a, b, true},
        {"beside", {2, 1.5f}, a, b, false},
        {"before the start", {-2, -1}, a, b, false},
        {"beyond the end", {6, 3}, a, b, false},
        {"beyond the end, backwards", {6, 3}, b, a, false},
        {"a rounding error beyond", {-0x1p-24f, 0}, a, {4, 0}, true},
        {"above a vertical segment, in its line", {1, 9}, {1, 0}, {1, 2}, true},
        {"NaN", {kNaN, 0}, a, b, false},
    };
    for (const auto& [what, point, from, to, on] : cases)
        EXPECT_EQ(XGPointIsOnLine(point, from, to), on) << what;
}

TEST(XGVector, IsZeroOnlyExactly) {
    EXPECT_TRUE(XGVectorIsZero({-0.0f, 0}));
    EXPECT_FALSE(XGVectorIsZero({0, 1e-45f}));
    EXPECT_EQ(XGVectorDotProduct(XGVectorAdd({1, 2}, {1, 1}), XGVectorScalarMultiply({5, 7}, 2)),
              62);
}

TEST(XGVector, PolarFormKeepsTheAngleWithinAQuarterTurn) {
    const struct {
        const char* what;
        XGVector vector;
        CGFloat length, angle;
    } cases[] = {
        {"right", {2, 0}, 2, 0},
        {"left", {-1, 0}, -1, -0.0f},
        {"up", {0, 3}, 3, kPi / 2},
        {"down", {0, -3}, 3, -kPi / 2},
        {"up left", {-3, 3}, -std::sqrt(18.0f), -kPi / 4},
        {"nothing", {0, 0}, 0, kNaN},
    };
    for (const auto& [what, vector, length, angle] : cases) {
        CGFloat foundLength = -1;
        CGFloat foundAngle = -1;
        XGVectorGetPolar(vector, &foundLength, nullptr);
        XGVectorGetPolar(vector, nullptr, &foundAngle);
        EXPECT_SAME_BITS(foundLength, length) << what;
        EXPECT_SAME_BITS(foundAngle, angle) << what;
        if (std::isnan(angle))
            continue;
        const XGVector again = XGVectorMakePolar(foundLength, foundAngle);
        EXPECT_NEAR(again.x, vector.x, 1e-6f) << what;
        EXPECT_NEAR(again.y, vector.y, 1e-6f) << what;
    }
}

} // namespace
