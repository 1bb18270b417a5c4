// CGGeometryTest.cpp: rectangles by their edges: standard form, membership, cutting and joining.

#include "XGGeometry.h"
#include <CoreGraphics/CGGeometry.h>

#include "GeometryValues.h"

namespace {

constexpr CGRect kUnit = {{0, 0}, {1, 1}};
constexpr CGRect kTen = {{0, 0}, {10, 10}};
// The same area as (2, 3, 4, 5), from its opposite corner.
constexpr CGRect kReversed = {{6, 8}, {-4, -5}};
// A step of the float format at 10, which a tolerant comparison lets pass, and two dozen.
constexpr CGFloat kStep = 0x1p-20f;

TEST(CGGeometry, ConstantsHaveTheirBits) {
    using Words = std::array<std::uint32_t, 4>;
    EXPECT_EQ(bitsOf(CGRectNull), (Words{0x7F800000, 0x7F800000, 0, 0}));
    EXPECT_EQ(bitsOf(CGRectInfinite), (Words{0xFEFFFFFF, 0xFEFFFFFF, 0x7F7FFFFF, 0x7F7FFFFF}));
    EXPECT_EQ(bitsOf(CGRectZero), (Words{}));
    EXPECT_SAME_BITS(CGPointZero, (CGPoint{0, 0}));
    EXPECT_SAME_BITS(CGSizeZero, (CGSize{0, 0}));
    EXPECT_SAME_BITS(XGPointNull, (CGPoint{kInf, kInf}));
    EXPECT_SAME_BITS(XGSizeNull, (CGSize{kInf, kInf}));
}

TEST(CGGeometry, NegativeSizesStandForTheSameArea) {
    const CGRect r = kReversed;
    const CGFloat edges[] = {CGRectGetMinX(r),  CGRectGetMidX(r),  CGRectGetMaxX(r),
                             CGRectGetWidth(r), CGRectGetMinY(r),  CGRectGetMidY(r),
                             CGRectGetMaxY(r),  CGRectGetHeight(r)};
    const CGFloat expected[] = {2, 4, 6, 4, 3, 5.5f, 8, 5};
    EXPECT_TRUE(std::equal(std::begin(edges), std::end(edges), std::begin(expected)));
    EXPECT_SAME_BITS(CGRectStandardize(r), (CGRect{{2, 3}, {4, 5}}));
    EXPECT_TRUE(CGRectEqualToRect(r, {{2, 3}, {4, 5}}));
}

TEST(CGGeometry, TellsNullEmptyAndInfiniteApart) {
    const struct {
        const char* what;
        CGRect rect;
        bool null, empty, infinite;
    } cases[] = {
        {"ordinary", kUnit, false, false, false},
        {"reversed", kReversed, false, false, false},
        {"zero", CGRectZero, false, true, false},
        {"flat", {{1, 1}, {5, 0}}, false, true, false},
        {"null", CGRectNull, true, true, false},
        {"NaN on y", {{0, kNaN}, {1, 1}}, true, true, false},
        {"infinite on x, with a size", {{-kInf, 0}, {1, 1}}, true, true, false},
        {"NaN size", {{0, 0}, {kNaN, 1}}, false, false, false},
        {"infinite", CGRectInfinite, false, false, true},
        {"infinite from the other corner",
         {{CGFLOAT_MAX / 2, CGFLOAT_MAX / 2}, {-CGFLOAT_MAX, -CGFLOAT_MAX}},
         false,
         false,
         true},
    };
    for (const auto& [what, rect, null, empty, infinite] : cases) {
        EXPECT_EQ(CGRectIsNull(rect), null) << what;
        EXPECT_EQ(CGRectIsEmpty(rect), empty) << what;
        EXPECT_EQ(CGRectIsInfinite(rect), infinite) << what;
    }
}

TEST(CGGeometry, ComparesComponentsExactly) {
    EXPECT_TRUE(CGPointEqualToPoint({0, 1}, {-0.0f, 1}));
    EXPECT_FALSE(CGPointEqualToPoint({0, 1}, {0, std::nextafter(1.0f, 2.0f)}));
    EXPECT_FALSE(CGPointEqualToPoint({kNaN, 1}, {kNaN, 1}));
    EXPECT_TRUE(CGSizeEqualToSize({2, 3}, {2, 3}));
    EXPECT_FALSE(CGSizeEqualToSize({2, 3}, {3, 2}));
    EXPECT_FALSE(CGRectEqualToRect(kUnit, kTen));
}

TEST(CGGeometry, ContainsPointsUpToItsMaximumEdges) {
    const struct {
        CGRect rect;
        CGPoint point;
        bool inside;
    } cases[] = {
        {kTen, {0, 5}, true},       {kTen, {10, 5}, false},      {kTen, {5, 0}, true},
        {kTen, {5, 10}, false},     {kTen, {kNaN, 5}, false},    {kReversed, {2, 3}, true},
        {kReversed, {6, 8}, false}, {CGRectZero, {0, 0}, false}, {CGRectInfinite, {9, -9}, true},
    };
    for (const auto& [rect, point, inside] : cases)
        EXPECT_EQ(CGRectContainsPoint(rect, point), inside) << point.x << ", " << point.y;
}

TEST(CGGeometry, ContainsRectanglesWithinARoundingError) {
    const struct {
        const char* what;
        CGRect outer, inner;
        bool contains;
    } cases[] = {
        {"itself", kTen, kTen, true},
        {"part", kTen, kReversed, true},
        {"one step too far right", kTen, {{0, 0}, {10 + kStep, 10}}, true},
        {"two steps too far right", kTen, {{0, 0}, {10 + 2 * kStep, 10}}, false},
        {"a step below 0", kTen, {{0, -0x1p-23f}, {1, 1}}, true},
        {"two steps below 0", kTen, {{0, -0x1p-22f}, {1, 1}}, false},
        {"null outer", CGRectNull, kUnit, false},
        {"null inner", kTen, CGRectNull, true},
        {"both null", CGRectNull, CGRectNull, false},
    };
    for (const auto& [what, outer, inner, contains] : cases)
        EXPECT_EQ(CGRectContainsRect(outer, inner), contains) << what;
}

TEST(CGGeometry, IntersectionsOfPairs) {
    const struct {
        const char* what;
        CGRect a, b;
        bool intersects, fast;
        CGRect common;
    } cases[] = {
        {"overlap", kTen, {{5, 6}, {10, 10}}, true, true, {{5, 6}, {5, 4}}},
        {"inside, reversed", kTen, kReversed, true, true, {{2, 3}, {4, 5}}},
        {"touching", kUnit, {{1, 0}, {1, 1}}, false, false, {{1, 0}, {0, 1}}},
        {"apart", kUnit, {{2, 0}, {1, 1}}, false, false, CGRectNull},
        {"no width at the same minimum", kTen, {{0, 0}, {0, 5}}, true, true, {{0, 0}, {0, 5}}},
        {"no width inside", kTen, {{5, 0}, {0, 5}}, true, true, {{5, 0}, {0, 5}}},
        {"no width, twice", {{0, 0}, {0, 1}}, {{0, 0}, {0, 1}}, false, true, {{0, 0}, {0, 1}}},
        {"infinite", CGRectInfinite, kReversed, true, true, {{2, 3}, {4, 5}}},
    };
    for (const auto& [what, a, b, intersects, fast, common] : cases) {
        EXPECT_EQ(CGRectIntersectsRect(a, b), intersects) << what;
        EXPECT_EQ(CGRectIntersectsRect(b, a), intersects) << what;
        EXPECT_SAME_BITS(CGRectIntersection(a, b), common) << what;
        EXPECT_SAME_BITS(CGRectIntersection(b, a), common) << what;
        CGRect fastCommon = kTen;
        EXPECT_EQ(_CGRectFastIntersection(&a, &b, &fastCommon), fast) << what;
        EXPECT_SAME_BITS(fastCommon, (fast ? common : kTen)) << what;
        EXPECT_EQ(_CGRectFastIntersection(&b, &a, nullptr), fast) << what;
    }
}

TEST(CGGeometry, NullRectanglesHaveNoIntersection) {
    EXPECT_SAME_BITS(CGRectIntersection(CGRectNull, kTen), CGRectNull);
    EXPECT_SAME_BITS(CGRectIntersection(kTen, {{0, kNaN}, {1, 1}}), CGRectNull);
    CGRect common = kUnit;
    EXPECT_FALSE(_CGRectFastIntersection(nullptr, &kTen, &common));
    EXPECT_FALSE(_CGRectFastIntersection(&kTen, nullptr, &common));
    const CGRect broken = {{kNaN, 0}, {1, 1}};
    EXPECT_FALSE(_CGRectFastIntersection(&broken, &broken, &common));
    EXPECT_SAME_BITS(common, kUnit);
}

TEST(CGGeometry, UnionsReachAroundBoth) {
    EXPECT_SAME_BITS(CGRectUnion(kUnit, kReversed), (CGRect{{0, 0}, {6, 8}}));
    // With a null partner the other comes back as it was given.
    EXPECT_SAME_BITS(CGRectUnion(CGRectNull, {{5, 5}, {-2, -2}}), (CGRect{{5, 5}, {-2, -2}}));
    EXPECT_SAME_BITS(CGRectUnion({{5, 5}, {-2, -2}}, CGRectNull), (CGRect{{5, 5}, {-2, -2}}));
}

TEST(CGGeometry, MovesAndInsets) {
    const struct {
        const char* what;
        CGRect actual, expected;
    } cases[] = {
        {"offset", CGRectOffset(kReversed, 1, -1), {{3, 2}, {4, 5}}},
        {"offset of null", CGRectOffset({{kInf, 3}, {-1, 2}}, 1, 1), {{kInf, 3}, {-1, 2}}},
        {"inset", CGRectInset(kReversed, 1, 2), {{3, 5}, {2, 1}}},
        {"outset", CGRectInset(kUnit, -1, -2), {{-1, -2}, {3, 5}}},
        {"inset to a point", CGRectInset(kTen, 5, 5), {{5, 5}, {0, 0}}},
        {"inset inside out", CGRectInset(kTen, 6, 0), CGRectNull},
        {"inset inside out by a hair", CGRectInset(kTen, 0, 5.0000005f), CGRectNull},
        {"twice the inset is beyond a float", CGRectInset({{0, 0}, {CGFLOAT_MAX, 1}}, 3e38f, 0),
         CGRectNull},
    };
    for (const auto& [what, actual, expected] : cases)
        EXPECT_SAME_BITS(actual, expected) << what;
}

TEST(CGGeometry, IntegralSnapsRoundingErrorsAndReachesAroundTheRest) {
    const struct {
        const char* what;
        CGRect rect, expected;
    } cases[] = {
        {"whole", {{1, 2}, {3, 4}}, {{1, 2}, {3, 4}}},
        {"outwards", {{0.5f, -0.5f}, {1, 1}}, {{0, -1}, {2, 2}}},
        {"reversed", {{1.5f, 0.5f}, {-1, -1}}, {{0, -1}, {2, 2}}},
        {"a step short of 1", {{0.2f, 0.9999999f}, {1.5f, 1}}, {{0, 1}, {2, 1}}},
        {"a step beyond 10", {{0, 0}, {10 + kStep, 10 + 2 * kStep}}, {{0, 0}, {10, 11}}},
        {"null", CGRectNull, {{kInf, kInf}, {kNaN, kNaN}}},
    };
    for (const auto& [what, rect, expected] : cases)
        EXPECT_SAME_BITS(CGRectIntegral(rect), expected) << what;
}

TEST(CGGeometry, DividesAtEachEdge) {
    const CGRect untouched = {{-1, -1}, {-1, -1}};
    const struct {
        const char* what;
        CGRect rect;
        CGFloat amount;
        unsigned edge;
        CGRect slice, remainder;
    } cases[] = {
        {"left", kReversed, 1, CGRectMinXEdge, {{2, 3}, {1, 5}}, {{3, 3}, {3, 5}}},
        {"bottom", kReversed, 1, CGRectMinYEdge, {{2, 3}, {4, 1}}, {{2, 4}, {4, 4}}},
        {"right", kReversed, 1, CGRectMaxXEdge, {{5, 3}, {1, 5}}, {{2, 3}, {3, 5}}},
        {"top", kReversed, 1, CGRectMaxYEdge, {{2, 7}, {4, 1}}, {{2, 3}, {4, 4}}},
        {"less than nothing", kReversed, -3, CGRectMinXEdge, {{2, 3}, {0, 5}}, {{2, 3}, {4, 5}}},
        {"more than all", kReversed, 99, CGRectMaxYEdge, {{2, 3}, {4, 5}}, {{2, 3}, {4, 0}}},
        {"null", {{kInf, 2}, {3, 4}}, 1, CGRectMinXEdge, CGRectNull, CGRectNull},
        {"null at no edge", CGRectNull, 1, 7, CGRectNull, CGRectNull},
        {"no edge", kReversed, 1, 7, untouched, untouched},
    };
    for (const auto& [what, rect, amount, edge, slice, remainder] : cases) {
        CGRect cut = untouched;
        CGRect rest = untouched;
        CGRectDivide(rect, &cut, &rest, amount, static_cast<CGRectEdge>(edge));
        EXPECT_SAME_BITS(cut, slice) << what;
        EXPECT_SAME_BITS(rest, remainder) << what;
        CGRectDivide(rect, nullptr, nullptr, amount, static_cast<CGRectEdge>(edge));
    }
}

TEST(CGGeometry, SurvivesEveryAwkwardNumber) {
    for (const CGFloat a : awkwardNumbers())
        for (const CGFloat b : awkwardNumbers()) {
            const CGRect r = {{a, b}, {b, a}};
            const CGRect s = {{b, b}, {a, a}};
            const CGRect common = CGRectIntersection(r, s);
            EXPECT_FALSE(common.size.width < 0);
            EXPECT_FALSE(common.size.height < 0);
            EXPECT_TRUE(CGRectIsNull(r) || CGRectIsNull(s) || CGRectContainsRect(r, r) ||
                        std::isnan(CGRectGetMaxX(r)) || std::isnan(CGRectGetMaxY(r)) ||
                        std::isinf(CGRectGetMaxX(r)) || std::isinf(CGRectGetMinX(r)) ||
                        std::isinf(CGRectGetMaxY(r)) || std::isinf(CGRectGetMinY(r)));
            (void)CGRectUnion(r, s);
            (void)CGRectIntegral(CGRectInset(r, a, b));
            (void)XGRectBoundsOfRectMinusRect(r, s);
            CGRect slice;
            CGRect rest;
            CGRectDivide(r, &slice, &rest, b, CGRectMaxXEdge);
        }
}

} // namespace
