// CGAffineTransformTest.cpp: transforms to the bit, and what they map.

#include "XGGeometry.h"
#include <CoreGraphics/CGAffineTransform.h>

#include "GeometryValues.h"

#include <numbers>

namespace {

constexpr CGFloat kPi = std::numbers::pi_v<CGFloat>;

TEST(CGAffineTransform, RotationsByMultiplesOfThirtyDegreesHitHalves) {
    const CGFloat root = std::sqrt(3.0f) / 2;
    const struct {
        const char* what;
        CGFloat angle, cosine, sine;
    } cases[] = {
        {"none", 0, 1, 0},
        {"quarter turn", kPi / 2, 0, 1},
        {"half turn", kPi, -1, 0},
        {"three quarter turn", 3 * kPi / 2, 0, -1},
        {"quarter turn back", -kPi / 2, 0, -1},
        {"a sixth", kPi / 3, 0.5f, root},
        {"a twelfth", kPi / 6, root, 0.5f},
    };
    for (const auto& [what, angle, cosine, sine] : cases) {
        const CGAffineTransform t = CGAffineTransformMakeRotation(angle);
        // The root is no half: there the library's own sine stands, at most one step away.
        EXPECT_FLOAT_EQ(t.a, cosine) << what;
        EXPECT_FLOAT_EQ(t.b, sine) << what;
        EXPECT_TRUE(t.a == cosine || cosine == root) << what;
        EXPECT_TRUE(t.b == sine || sine == root) << what;
        EXPECT_SAME_BITS(t, (CGAffineTransform{t.a, t.b, -t.b, t.a, 0, 0})) << what;
    }
}

TEST(CGAffineTransform, HalfTurnHasOneNegativeZero) {
    EXPECT_SAME_BITS(CGAffineTransformMakeRotation(kPi),
                     (CGAffineTransform{-1, 0.0f, -0.0f, -1, 0, 0}));
    EXPECT_SAME_BITS(CGAffineTransformMakeRotation(-0.0f),
                     (CGAffineTransform{1, 0.0f, -0.0f, 1, 0, 0}));
}

TEST(CGAffineTransform, SmallAnglesAreNotSnapped) {
    // Snapping takes 1.19e-07 for 0; the next size of angle is kept.
    EXPECT_EQ(CGAffineTransformMakeRotation(1e-7f).b, 0);
    EXPECT_EQ(CGAffineTransformMakeRotation(1e-6f).b, 1e-6f);
    // The float nearest to a full turn is off by 1.75e-07, so its sine is too.
    EXPECT_EQ(CGAffineTransformMakeRotation(2 * kPi).a, 1);
    EXPECT_NEAR(CGAffineTransformMakeRotation(2 * kPi).b, 1.7484555e-07f, 1e-13f);
}

TEST(CGAffineTransform, CombinesInTheOrderOfTheArguments) {
    const CGAffineTransform t = {2, 3, 5, 7, 11, 13};
    const CGAffineTransform u = {17, 19, 23, 29, 31, 37};
    const struct {
        const char* what;
        CGAffineTransform actual, expected;
    } cases[] = {
        // 2·17 + 3·23, 2·19 + 3·29, 5·17 + 7·23, 5·19 + 7·29, 11·17 + 13·23 + 31, …
        {"concat", CGAffineTransformConcat(t, u), {103, 125, 246, 298, 517, 623}},
        {"translate first", CGAffineTransformTranslate(t, 1, 2), {2, 3, 5, 7, 23, 30}},
        {"scale first", CGAffineTransformScale(t, 10, 100), {20, 30, 500, 700, 11, 13}},
        {"rotate first", CGAffineTransformRotate(t, kPi / 2), {5, 7, -2, -3, 11, 13}},
        {"make", CGAffineTransformMake(2, 3, 5, 7, 11, 13), t},
        {"make translation", CGAffineTransformMakeTranslation(2, 3), {1, 0, 0, 1, 2, 3}},
        {"make scale", CGAffineTransformMakeScale(2, 3), {2, 0, 0, 3, 0, 0}},
    };
    for (const auto& [what, actual, expected] : cases)
        EXPECT_SAME_BITS(actual, expected) << what;
}

TEST(CGAffineTransform, KeepsUntouchedFieldsWhateverTheyHold) {
    const CGAffineTransform odd = {kInf, -0.0f, kNaN, 1, 2, kInf};
    const CGAffineTransform moved = CGAffineTransformTranslate(odd, 0, 0);
    EXPECT_SAME_BITS((CGSize{moved.a, moved.b}), (CGSize{odd.a, odd.b}));
    EXPECT_SAME_BITS((CGSize{moved.c, moved.d}), (CGSize{odd.c, odd.d}));
    const CGAffineTransform scaled = CGAffineTransformScale(odd, 2, 2);
    EXPECT_SAME_BITS((CGSize{scaled.tx, scaled.ty}), (CGSize{odd.tx, odd.ty}));
}

TEST(CGAffineTransform, InverseUndoes) {
    const CGAffineTransform transforms[] = {
        CGAffineTransformIdentity, {2, 0, 0, 4, 8, 16},         {0, 1, -1, 0, 3, 5},
        {1, 2, 3, 4, 5, 6},        {0.5f, 0.25f, -2, 8, -1, 1},
    };
    for (const CGAffineTransform& t : transforms) {
        const CGAffineTransform there = CGAffineTransformConcat(t, CGAffineTransformInvert(t));
        const CGPoint p = {3, -7};
        const CGPoint mapped = CGPointApplyAffineTransform(p, t);
        const CGPoint back = XGPointApplyInverseAffineTransform(mapped, t);
        EXPECT_NEAR(there.a, 1, 1e-5f);
        EXPECT_NEAR(there.b, 0, 1e-5f);
        EXPECT_NEAR(there.tx, 0, 1e-4f);
        EXPECT_NEAR(back.x, p.x, 1e-4f);
        EXPECT_NEAR(back.y, p.y, 1e-4f);
        const CGSize size =
            XGSizeApplyInverseAffineTransform(CGSizeApplyAffineTransform({4, 9}, t), t);
        EXPECT_NEAR(size.width, 4, 1e-4f);
        EXPECT_NEAR(size.height, 9, 1e-4f);
    }
    EXPECT_SAME_BITS(CGAffineTransformInvert({2, 0, 0, 4, 8, 16}),
                     (CGAffineTransform{0.5f, -0.0f, -0.0f, 0.25f, -4, -4}));
}

TEST(CGAffineTransform, SingularTransformsGiveNoFiniteInverseButLeavePointsAlone) {
    const CGAffineTransform singular = {1, 2, 2, 4, 0, 0};
    const CGAffineTransform inverse = CGAffineTransformInvert(singular);
    EXPECT_EQ(inverse.a, kInf);
    EXPECT_EQ(inverse.b, -kInf);
    EXPECT_TRUE(std::isnan(inverse.tx));
    EXPECT_SAME_BITS(XGPointApplyInverseAffineTransform({3, 4}, singular), (CGPoint{3, 4}));
    EXPECT_SAME_BITS(XGSizeApplyInverseAffineTransform({3, 4}, singular), (CGSize{3, 4}));
}

TEST(CGAffineTransform, ComparesExactly) {
    CGAffineTransform t = CGAffineTransformIdentity;
    EXPECT_TRUE(CGAffineTransformIsIdentity({1, -0.0f, -0.0f, 1, -0.0f, 0}));
    t.d = std::nextafter(1.0f, 2.0f);
    EXPECT_FALSE(CGAffineTransformIsIdentity(t));
    EXPECT_TRUE(CGAffineTransformEqualToTransform(t, t));
    t.tx = kNaN;
    EXPECT_FALSE(CGAffineTransformEqualToTransform(t, t));
}

// The scale pairs a with c and b with d: {3, 0, 4, 5} is 5 by 5, by its axes it were 3 by 6.4.
TEST(CGAffineTransform, ScaleIsTakenAcrossTheMatrix) {
    EXPECT_SAME_BITS(_CGAffineTransfromExtractScale({3, 0, 4, 5, 6, 7}),
                     (CGAffineTransform{5, 0, 0, 5, 0, 0}));
    EXPECT_SAME_BITS(_CGAffineTransfromExtractScale({1, -0.0f, 0, 1, 0, 0}),
                     (CGAffineTransform{1, -0.0f, 0, 1, 0, 0}));
}

TEST(CGAffineTransform, MapsPointsSizesAndRectangles) {
    const CGAffineTransform t = {2, 3, 5, 7, 11, 13};
    EXPECT_SAME_BITS(CGPointApplyAffineTransform({1, 10}, t), (CGPoint{63, 86}));
    EXPECT_SAME_BITS(CGSizeApplyAffineTransform({1, -10}, t), (CGSize{-48, -67}));
    const struct {
        const char* what;
        CGRect rect;
        CGAffineTransform transform;
        CGRect expected;
    } cases[] = {
        {"scale", {{1, 2}, {3, 4}}, {2, 0, 0, 3, 10, 20}, {{12, 26}, {6, 12}}},
        {"mirror", {{1, 2}, {3, 4}}, {-1, 0, 0, 1, 0, 0}, {{-4, 2}, {3, 4}}},
        {"negative size", {{4, 2}, {-3, 4}}, {2, 0, 0, 1, 0, 0}, {{2, 2}, {6, 4}}},
        {"quarter turn", {{1, 2}, {3, 4}}, {0, 1, -1, 0, 0, 0}, {{-6, 1}, {4, 3}}},
        {"skew", {{0, 0}, {2, 2}}, {1, 0, 1, 1, 0, 0}, {{0, 0}, {4, 2}}},
        {"null through a scale: 0 · inf is NaN",
         CGRectNull,
         {2, 0, 0, 2, 0, 0},
         {{kNaN, kNaN}, {0, 0}}},
    };
    for (const auto& [what, rect, transform, expected] : cases)
        EXPECT_SAME_BITS(CGRectApplyAffineTransform(rect, transform), expected) << what;
    EXPECT_SAME_BITS(XGRectApplyInverseAffineTransform({{12, 26}, {6, 12}}, {2, 0, 0, 4, 10, 20}),
                     (CGRect{{1, 1.5f}, {3, 3}}));
}

TEST(CGAffineTransform, SurvivesEveryAwkwardNumber) {
    for (const CGFloat a : awkwardNumbers())
        for (const CGFloat b : awkwardNumbers())
            for (const CGFloat c : awkwardNumbers()) {
                const CGAffineTransform t = {a, b, c, a, b, c};
                const CGAffineTransform u = CGAffineTransformConcat(CGAffineTransformRotate(t, b),
                                                                    CGAffineTransformInvert(t));
                const CGRect mapped = CGRectApplyAffineTransform({{a, b}, {c, a}}, u);
                EXPECT_FALSE(mapped.size.width < 0);
                EXPECT_FALSE(mapped.size.height < 0);
                (void)XGPointApplyInverseAffineTransform({a, b}, t);
                (void)_CGAffineTransfromExtractScale(t);
            }
}

} // namespace
