// CGPathQueryTest.cpp: bounds and containment.

#include "Paths.h"

#include <cmath>

namespace {

using namespace test;

TEST(CGPathQuery, AnswersNeutrallyWithoutElements) {
    const MutablePath empty = makePath();
    for (const CGPathRef path : {CGPathRef(nullptr), CGPathRef(empty.get())}) {
        EXPECT_TRUE(CGPathIsEmpty(path));
        EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path), CGPointZero));
        EXPECT_TRUE(CGRectIsNull(CGPathGetBoundingBox(path)));
        EXPECT_TRUE(CGRectIsNull(CGPathGetPathBoundingBox(path)));
        EXPECT_FALSE(CGPathContainsPoint(path, nullptr, {0, 0}, false));
        EXPECT_FALSE(CGPathIsRect(path, nullptr));
        EXPECT_FALSE(_CGPathIsClosed(path));
    }
    EXPECT_FALSE(_CGPathIsRectilinear(nullptr));
    EXPECT_TRUE(_CGPathIsRectilinear(empty.get()));
}

TEST(CGPathQuery, BoundsHoldControlPointsAndTightBoundsTheCurve) {
    const MutablePath cubic = makeLines({{0, 0}});
    CGPathAddCurveToPoint(cubic.get(), nullptr, 0, 8, 8, 8, 8, 0);
    // The curve's highest point is at t = 1/2: 3/4 of the controls' height.
    expectRect(CGPathGetBoundingBox(cubic.get()), {{0, 0}, {8, 8}}, 0, "cubic");
    expectRect(CGPathGetPathBoundingBox(cubic.get()), {{0, 0}, {8, 6}}, 1e-6f, "cubic, tight");

    const MutablePath quad = makeLines({{0, 0}});
    CGPathAddQuadCurveToPoint(quad.get(), nullptr, 4, 8, 8, 0);
    expectRect(CGPathGetBoundingBox(quad.get()), {{0, 0}, {8, 8}}, 0, "quad");
    expectRect(CGPathGetPathBoundingBox(quad.get()), {{0, 0}, {8, 4}}, 1e-6f, "quad, tight");

    const MutablePath point = makeLines({{3, 4}});
    expectRect(CGPathGetBoundingBox(point.get()), {{3, 4}, {0, 0}}, 0, "one point");
    expectRect(CGPathGetPathBoundingBox(point.get()), {{3, 4}, {0, 0}}, 0, "one point, tight");
}

TEST(CGPathQuery, BoundsSurvivePointsThatAreNotFinite) {
    const MutablePath path = makeLines({{1, 2}, {kNaN, 3}, {4, 5}});
    expectRect(CGPathGetBoundingBox(path.get()), CGRectZero, 0, "NaN");
    EXPECT_TRUE(CGRectIsNull(CGPathGetPathBoundingBox(path.get())));
    EXPECT_FALSE(CGPathContainsPoint(path.get(), nullptr, {0, 0}, false));
    EXPECT_FALSE(CGPathIsRect(path.get(), nullptr));
    EXPECT_EQ(pathKinds(path.get()), "MLL");
}

TEST(CGPathQuery, ContainsByTheRuleAskedFor) {
    const MutablePath ring = makeRect({{0, 0}, {6, 6}});
    CGPathAddRect(ring.get(), nullptr, {{2, 2}, {2, 2}});
    const CGAffineTransform moved = CGAffineTransformMakeTranslation(10, 0);
    const struct {
        const char* what;
        CGPoint point;
        const CGAffineTransform* m;
        bool evenOdd;
        bool contained;
    } cases[] = {
        {"in the ring, winding", {1, 1}, nullptr, false, true},
        {"in the ring, even-odd", {1, 1}, nullptr, true, true},
        {"in the hole, winding", {3, 3}, nullptr, false, true},
        {"in the hole, even-odd", {3, 3}, nullptr, true, false},
        {"outside", {7, 3}, nullptr, false, false},
        {"moved out", {1, 1}, &moved, false, false},
        {"moved in", {-9, 1}, &moved, false, true},
        {"NaN", {kNaN, 1}, nullptr, false, false},
    };
    for (const int ownRule : {0, 1}) {
        _CGPathSetEvenOddFill(ring.get(), static_cast<uint8_t>(ownRule));
        for (const auto& [what, point, m, evenOdd, contained] : cases)
            EXPECT_EQ(CGPathContainsPoint(ring.get(), m, point, evenOdd), contained)
                << what << ", own rule " << ownRule;
    }
    const MutablePath open = makeLines({{0, 0}, {4, 0}, {0, 4}});
    EXPECT_TRUE(CGPathContainsPoint(open.get(), nullptr, {1, 1}, false));
    EXPECT_FALSE(CGPathContainsPoint(open.get(), nullptr, {3, 3}, false));
}

TEST(CGPathQueryDeathTest, RectilinearAbortsOnAConic) {
    const MutablePath path = makeLines({{0, 0}});
    CGPathAddArcToPoint(path.get(), nullptr, 10, 0, 10, 10, 4);
    EXPECT_DEATH(_CGPathIsRectilinear(path.get()), "verb 3 not recognized\\.");
}

} // namespace
