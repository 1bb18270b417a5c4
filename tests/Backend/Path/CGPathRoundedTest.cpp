// CGPathRoundedTest.cpp: ellipses and rounded rectangles.

#include "Paths.h"

#include <src/core/SkPathPriv.h>

#include <bit>
#include <cmath>
#include <span>
#include <vector>

namespace {

using namespace test;

TEST(CGPathEllipse, HasItsControlPointsToTheBit) {
    const Path path = cf::adopt(CGPathCreateWithEllipseInRect({{0, 0}, {2, 2}}, nullptr));
    EXPECT_EQ(text(path), "M 2 1 C 2 1.55192 1.55192 2 1 2 C 0.448085 2 0 1.55192 0 1 "
                          "C 0 0.448085 0.448085 0 1 0 C 1.55192 0 2 0.448085 2 1 Z");
    const SkPath& points = native(path.get());
    EXPECT_EQ(points.getPoint(1).fY, 1.5519150f);
    EXPECT_EQ(points.getPoint(2).fX, 1.5519150f);
    EXPECT_EQ(std::bit_cast<uint32_t>(points.getPoint(4).fX), 0x3EE56B64u);
}

TEST(CGPathEllipse, IsTheSameForEitherSignOfItsSize) {
    const CGAffineTransform m = {1, 2, 3, 4, 5, 6};
    const Path path = cf::adopt(CGPathCreateWithEllipseInRect({{1, 2}, {6, 4}}, &m));
    const Path same = cf::adopt(CGPathCreateWithEllipseInRect({{7, 6}, {-6, -4}}, &m));
    EXPECT_EQ(text(path), text(same));
}

TEST(CGPathRoundedRect, JoinsItsCornersByLines) {
    const Path path = cf::adopt(CGPathCreateWithRoundedRect({{0, 0}, {10, 8}}, 2, 1, nullptr));
    EXPECT_EQ(text(path), "M 10 4 L 10 7 C 10 7.55192 9.10383 8 8 8 L 2 8 "
                          "C 0.89617 8 0 7.55192 0 7 L 0 1 C 0 0.448085 0.89617 0 2 0 L 8 0 "
                          "C 9.10383 0 10 0.448085 10 1 Z");
}

TEST(CGPathRoundedRect, LimitsItsCorners) {
    const CGRect rect = {{0, 0}, {10, 8}};
    const char* const sharp = "M 10 4 L 10 8 L 0 8 L 0 0 L 10 0 Z";
    const Path largest = cf::adopt(CGPathCreateWithRoundedRect(rect, 5, 4, nullptr));
    const Path oneSide = cf::adopt(CGPathCreateWithRoundedRect(rect, 1, 4, nullptr));
    const struct {
        const char* what;
        CGFloat width, height;
        std::string expected;
    } cases[] = {
        {"both too large", 50, 40, text(largest)},
        {"one too large", 1, 40, text(oneSide)},
        {"infinite", kInfinity, kInfinity, text(largest)},
        {"no width", 0, 3, sharp},
        {"no height", 3, 0, sharp},
        {"negative", -1, 3, sharp},
        {"NaN", kNaN, 3, sharp},
    };
    for (const auto& [what, width, height, expected] : cases) {
        const Path path = cf::adopt(CGPathCreateWithRoundedRect(rect, width, height, nullptr));
        EXPECT_EQ(text(path), expected) << what;
    }
}

TEST(CGPathRoundedRect, SurvivesAnyRect) {
    for (const float value : {kNaN, kInfinity, -kInfinity, 3e38f}) {
        const MutablePath path = makePath();
        CGPathAddEllipseInRect(path.get(), nullptr, {{value, 0}, {1, 1}});
        CGPathAddRoundedRect(path.get(), nullptr, {{0, 0}, {value, value}}, 1, 1);
        CGPathAddRoundedRect(path.get(), nullptr, CGRectNull, value, value);
        EXPECT_EQ(pathKinds(path.get()).substr(0, 6), "MCCCCZ") << value;
        const Path corners =
            cf::adopt(CGPathCreateWithRoundedRect({{0, 0}, {value, 8}}, kInfinity, 1, nullptr));
        for (const SkPoint& point :
             std::span(SkPathPriv::PointData(native(corners.get())),
                       static_cast<std::size_t>(native(corners.get()).countPoints())))
            EXPECT_FALSE(std::isinf(point.fX) || std::isinf(point.fY)) << value;
    }
}

} // namespace
