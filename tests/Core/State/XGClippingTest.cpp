// XGClippingTest.cpp: clip regions of rectangles and paths.

#include "XGClipping.h"

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using Clipping = cf::Ref<XGClippingRef>;

constexpr CGRect kSquare = {{0, 0}, {10, 10}};
constexpr CGRect kCorner = {{8, 8}, {10, 10}};
constexpr CGRect kFar = {{50, 50}, {10, 10}};

Clipping withRect(CGRect rect) {
    return cf::adopt(XGClippingCreateWithRect(rect));
}
cf::Ref<CGPathRef> rectPath(CGRect rect) {
    return cf::adopt(CGPathCreateWithRect(rect, nullptr));
}
Clipping withPath(CGRect rect, bool evenOdd = false) {
    return cf::adopt(XGClippingCreateWithPath(rectPath(rect).get(), evenOdd));
}

bool boundsAre(const Clipping& clipping, CGRect expected) {
    return CGRectEqualToRect(XGClippingGetBoundingBox(clipping.get()), expected);
}

CFIndex pathCount(const Clipping& clipping) {
    const CFArrayRef paths = XGClippingGetPaths(clipping.get());
    return paths ? CFArrayGetCount(paths) : 0;
}

CGPathRef pathAt(const Clipping& clipping, CFIndex index) {
    return static_cast<CGPathRef>(
        CFArrayGetValueAtIndex(XGClippingGetPaths(clipping.get()), index));
}

TEST(Clipping, StartsFromNothingARectangleOrAPath) {
    const Clipping empty = cf::adopt(XGClippingCreateEmpty());
    EXPECT_TRUE(CGRectIsNull(XGClippingGetBoundingBox(empty.get())));
    EXPECT_TRUE(XGClippingIsEmpty(empty.get()));

    EXPECT_TRUE(boundsAre(withRect(kSquare), kSquare));
    EXPECT_EQ(XGClippingGetPaths(withRect(kSquare).get()), nullptr);

    EXPECT_TRUE(boundsAre(withPath(kSquare), kSquare));
    EXPECT_EQ(pathCount(withPath(kSquare)), 1);
    EXPECT_FALSE(XGClippingCreateWithPath(nullptr, false));
}

TEST(Clipping, KeepsNoPathThatHasNoArea) {
    const auto path = cf::adopt(CGPathCreateMutable());
    const Clipping clipping = cf::adopt(XGClippingCreateWithPath(path.get(), false));
    EXPECT_EQ(XGClippingGetPaths(clipping.get()), nullptr);
    EXPECT_TRUE(XGClippingIsEmpty(clipping.get()));
}

TEST(Clipping, GivesEachPathTheRuleOfItsOwn) {
    const auto path = rectPath(kSquare);
    const Clipping clipping = cf::adopt(XGClippingCreateWithPath(path.get(), true));
    XGClippingIntersectWithPath(clipping.get(), path.get(), false);
    ASSERT_EQ(pathCount(clipping), 2);
    EXPECT_TRUE(_CGPathIsEvenOddFill(pathAt(clipping, 0)));
    EXPECT_FALSE(_CGPathIsEvenOddFill(pathAt(clipping, 1)));
    EXPECT_FALSE(_CGPathIsEvenOddFill(path.get())) << "the caller's path";
}

TEST(Clipping, KeepsItsPathWhenTheCallersChanges) {
    const auto path = cf::adopt(CGPathCreateMutable());
    CGPathAddRect(path.get(), nullptr, kSquare);
    const Clipping clipping = cf::adopt(XGClippingCreateWithPath(path.get(), false));
    CGPathAddRect(path.get(), nullptr, kFar);
    EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(pathAt(clipping, 0)), kSquare));
}

TEST(Clipping, IntersectsItsBounds) {
    const Clipping clipping = withRect(kSquare);
    XGClippingIntersectWithRect(clipping.get(), kCorner);
    EXPECT_TRUE(boundsAre(clipping, CGRectMake(8, 8, 2, 2)));
    XGClippingIntersectWithPath(clipping.get(), rectPath(CGRectMake(9, 0, 5, 20)).get(), false);
    EXPECT_TRUE(boundsAre(clipping, CGRectMake(9, 8, 1, 2)));
    EXPECT_EQ(pathCount(clipping), 1);
}

TEST(Clipping, IsEmptiedByWhatItDoesNotMeet) {
    const auto nan = std::numeric_limits<CGFloat>::quiet_NaN();
    const struct {
        const char* what;
        CGRect rect;
    } cases[] = {
        {"disjoint", kFar},
        {"no width", CGRectMake(2, 2, 0, 5)},
        {"null", CGRectNull},
        {"not a number", CGRectMake(nan, 0, 5, 5)},
    };
    for (const auto& [what, rect] : cases) {
        const Clipping clipping = withPath(kSquare);
        XGClippingIntersectWithRect(clipping.get(), rect);
        EXPECT_TRUE(boundsAre(clipping, CGRectZero)) << what;
        EXPECT_EQ(XGClippingGetPaths(clipping.get()), nullptr) << what;
        EXPECT_TRUE(XGClippingIsEmpty(clipping.get())) << what;
    }
    const Clipping clipping = withPath(kSquare);
    XGClippingIntersectWithPath(clipping.get(), rectPath(kFar).get(), false);
    EXPECT_TRUE(XGClippingIsEmpty(clipping.get()));
    XGClippingIntersectWithRect(clipping.get(), kSquare);
    EXPECT_TRUE(XGClippingIsEmpty(clipping.get())) << "for good";
}

TEST(Clipping, IsSimpleOnlyWithoutPaths) {
    EXPECT_TRUE(CGRectEqualToRect(XGClippingGetSimpleRect(withRect(kSquare).get()), kSquare));
    EXPECT_TRUE(CGRectIsNull(XGClippingGetSimpleRect(withPath(kSquare).get())))
        << "even when the path is a rectangle";
    EXPECT_TRUE(CGRectIsNull(XGClippingGetSimpleRect(nullptr)));
}

TEST(Clipping, CopiesChangeApart) {
    const Clipping clipping = withPath(kSquare);
    const Clipping copy = cf::adopt(XGClippingCreateCopy(clipping.get()));
    EXPECT_TRUE(CFEqual(clipping.get(), copy.get()));
    EXPECT_EQ(pathAt(clipping, 0), pathAt(copy, 0));

    XGClippingIntersectWithPath(copy.get(), rectPath(kCorner).get(), false);
    EXPECT_EQ(pathCount(clipping), 1);
    EXPECT_EQ(pathCount(copy), 2);
    XGClippingIntersectWithPath(clipping.get(), rectPath(kSquare).get(), false);
    XGClippingIntersectWithRect(clipping.get(), kFar);
    EXPECT_EQ(pathCount(copy), 2);
    EXPECT_FALSE(XGClippingCreateCopy(nullptr));
}

TEST(Clipping, EqualsByBoundsAndPaths) {
    const Clipping clipping = withPath(kSquare);
    const struct {
        const char* what;
        Clipping other;
        bool equal;
    } cases[] = {
        {"itself", clipping, true},
        {"an equal path", withPath(kSquare), true},
        {"another rule", withPath(kSquare, true), false},
        {"the rectangle alone", withRect(kSquare), false},
        {"another path", withPath(kCorner), false},
        {"none", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases) {
        EXPECT_EQ(XGClippingEqualToClipping(clipping.get(), other.get()), equal) << what;
        EXPECT_EQ(XGClippingEqualToClipping(other.get(), clipping.get()), equal) << what;
    }
    EXPECT_TRUE(XGClippingEqualToClipping(nullptr, nullptr));
}

} // namespace
