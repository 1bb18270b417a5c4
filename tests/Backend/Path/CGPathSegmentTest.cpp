// CGPathSegmentTest.cpp: points along a segment.

#include "Paths.h"

#include <array>

namespace {

using namespace test;

TEST(CGPathSegment, IsSampledEvenlyWithoutItsEnd) {
    // By the closed forms at t = 0, 1/4, 1/2 and 3/4.
    const struct {
        const char* what;
        CGPathElementType type;
        CGPoint given[4];
        CGPoint expected[4];
    } cases[] = {
        {"line", kCGPathElementAddLineToPoint, {{0, 0}, {8, 4}}, {{0, 0}, {2, 1}, {4, 2}, {6, 3}}},
        {"quadratic",
         kCGPathElementAddQuadCurveToPoint,
         {{0, 0}, {8, 16}, {16, 0}},
         {{0, 0}, {4, 6}, {8, 8}, {12, 6}}},
        {"cubic",
         kCGPathElementAddCurveToPoint,
         {{0, 0}, {0, 64}, {64, 64}, {64, 0}},
         {{0, 0}, {10, 36}, {32, 48}, {54, 36}}},
    };
    for (const auto& [what, type, given, expected] : cases) {
        std::array<CGPoint, 4> all;
        std::copy_n(given, 4, all.begin());
        const CGPathElement element = {type, &all[1]};
        std::array<CGPoint, 5> points = {{{9, 9}, {9, 9}, {9, 9}, {9, 9}, {9, 9}}};
        EXPECT_EQ(_CGPathSegmentEvaluate(&element, points.data(), 4), &points[4]) << what;
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(points[i].x, expected[i].x, 1e-5) << what << i;
            EXPECT_NEAR(points[i].y, expected[i].y, 1e-5) << what << i;
        }
        EXPECT_EQ(points[4].x, 9) << what;
        EXPECT_EQ(_CGPathSegmentEvaluate(&element, points.data(), 0), points.data()) << what;
    }
}

TEST(CGPathSegment, IsNoMoveAndNoClose) {
    CGPoint points[2] = {{1, 1}, {2, 2}};
    for (const CGPathElementType type : {kCGPathElementMoveToPoint, kCGPathElementCloseSubpath}) {
        const CGPathElement element = {type, &points[1]};
        EXPECT_FALSE(_CGPathSegmentEvaluate(&element, points, 1));
    }
    const CGPathElement line = {kCGPathElementAddLineToPoint, &points[1]};
    EXPECT_FALSE(_CGPathSegmentEvaluate(&line, nullptr, 1));
    EXPECT_FALSE(_CGPathSegmentEvaluate(nullptr, points, 1));
}

} // namespace
