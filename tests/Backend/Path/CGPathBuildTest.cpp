// CGPathBuildTest.cpp: what each building function adds.

#include "Paths.h"
#include "Support/CollectedLog.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace {

using namespace test;

TEST(CGPathBuild, AddsTheElementsNamed) {
    const CGAffineTransform m = {1, 2, 3, 4, 5, 6};
    const struct {
        const char* what;
        void (*build)(CGMutablePathRef path, const CGAffineTransform* m);
        const char* plain;
        const char* mapped;
    } cases[] = {
        {"line",
         [](CGMutablePathRef p, const CGAffineTransform* t) { CGPathAddLineToPoint(p, t, 1, 2); },
         "M 1 1 L 1 2", "M 1 1 L 12 16"},
        {"quad",
         [](CGMutablePathRef p, const CGAffineTransform* t) {
             CGPathAddQuadCurveToPoint(p, t, 1, 0, 0, 1);
         },
         "M 1 1 Q 1 0 0 1", "M 1 1 Q 6 8 8 10"},
        {"cubic",
         [](CGMutablePathRef p, const CGAffineTransform* t) {
             CGPathAddCurveToPoint(p, t, 1, 0, 0, 1, 1, 1);
         },
         "M 1 1 C 1 0 0 1 1 1", "M 1 1 C 6 8 8 10 9 12"},
        {"move in place of a move",
         [](CGMutablePathRef p, const CGAffineTransform* t) { CGPathMoveToPoint(p, t, 1, 0); },
         "M 1 0", "M 6 8"},
        {"rect in place of a move",
         [](CGMutablePathRef p, const CGAffineTransform* t) {
             CGPathAddRect(p, t, {{0, 0}, {1, 2}});
         },
         "M 0 0 L 1 0 L 1 2 L 0 2 Z", "M 5 6 L 6 8 L 12 16 L 11 14 Z"},
        {"rect of negative size",
         [](CGMutablePathRef p, const CGAffineTransform* t) {
             CGPathAddRect(p, t, {{1, 2}, {-1, -2}});
         },
         "M 0 0 L 1 0 L 1 2 L 0 2 Z", "M 5 6 L 6 8 L 12 16 L 11 14 Z"},
    };
    for (const auto& [what, build, plain, mapped] : cases) {
        const MutablePath path = makeLines({{1, 1}});
        build(path.get(), nullptr);
        EXPECT_EQ(text(path), plain) << what;
        const MutablePath other = makeLines({{1, 1}});
        build(other.get(), &m);
        EXPECT_EQ(text(other), mapped) << what;
    }
}

TEST(CGPathBuild, AddsRectsAsContoursOfTheirOwn) {
    const CGRect rects[] = {{{0, 0}, {1, 1}}, {{5, 5}, {2, 1}}};
    const MutablePath path = makeLines({{9, 9}, {8, 8}});
    CGPathAddRects(path.get(), nullptr, rects, 2);
    EXPECT_EQ(text(path), "M 9 9 L 8 8 M 0 0 L 1 0 L 1 1 L 0 1 Z M 5 5 L 7 5 L 7 6 L 5 6 Z");
}

TEST(CGPathBuild, AddsLinesInAnyNumber) {
    const MutablePath path = makeLines({{1, 1}, {2, 2}});
    const CGPoint more[] = {{3, 3}, {4, 4}, {5, 5}};
    const CGAffineTransform doubled = {2, 0, 0, 2, 0, 0};
    CGPathAddLines(path.get(), nullptr, more, 0);
    CGPathAddLines(path.get(), nullptr, nullptr, 3);
    CGPathAddRects(path.get(), nullptr, nullptr, 3);
    EXPECT_EQ(text(path), "M 1 1 L 2 2");
    CGPathAddLines(path.get(), nullptr, more, 1);
    CGPathAddLines(path.get(), &doubled, more, 3);
    EXPECT_EQ(text(path), "M 1 1 L 2 2 M 6 6 L 8 8 L 10 10");
}

TEST(CGPathBuild, RefusesMoreThanAPathCanCount) {
    const CollectedLog log;
    const MutablePath path = makePath();
    CGPathAddLines(path.get(), nullptr, &CGPointZero, SIZE_MAX);
    CGPathAddRects(path.get(), nullptr, &CGRectZero, SIZE_MAX);
    EXPECT_TRUE(CGPathIsEmpty(path.get()));
    EXPECT_EQ(log.lines().size(), 2u);
}

TEST(CGPathBuild, InventsNoCurrentPoint) {
    const CollectedLog log;
    const MutablePath path = makePath();
    CGPathAddLineToPoint(path.get(), nullptr, 1, 1);
    CGPathAddQuadCurveToPoint(path.get(), nullptr, 1, 1, 2, 2);
    CGPathAddCurveToPoint(path.get(), nullptr, 1, 1, 2, 2, 3, 3);
    CGPathAddArcToPoint(path.get(), nullptr, 1, 1, 2, 0, 1);
    CGPathCloseSubpath(path.get());
    EXPECT_TRUE(CGPathIsEmpty(path.get()));
    ASSERT_EQ(log.lines().size(), 4u);
    EXPECT_EQ(log.lines()[0], "4 CGPathAddLineToPoint: no current point to go on from");
}

TEST(CGPathBuild, GoesOnAfterACloseWhereTheContourBegan) {
    const MutablePath path = makeLines({{1, 2}, {3, 4}, {5, 0}});
    CGPathCloseSubpath(path.get());
    CGPathCloseSubpath(path.get());
    CGPathAddLineToPoint(path.get(), nullptr, 7, 7);
    EXPECT_EQ(text(path), "M 1 2 L 3 4 L 5 0 Z M 1 2 L 7 7");
}

TEST(CGPathBuild, PinsCoordinatesOneByOneButNotNaN) {
    constexpr float most = 536869920;
    const CGAffineTransform huge = {1e30f, 0, 0, 1e30f, 0, 0};
    const struct {
        const char* what;
        CGPoint given;
        const CGAffineTransform* m;
        CGPoint expected;
    } cases[] = {
        {"at the bound", {most, -most}, nullptr, {most, -most}},
        {"just beyond", {std::nextafter(most, 1e9f), 1}, nullptr, {most, 1}},
        {"infinite", {kInfinity, -kInfinity}, nullptr, {most, -most}},
        {"mapped beyond", {-1, 1}, &huge, {-most, most}},
        {"mapped to infinity", {1e20f, -1e20f}, &huge, {most, -most}},
    };
    for (const auto& [what, given, m, expected] : cases) {
        const MutablePath path = makePath();
        CGPathMoveToPoint(path.get(), m, given.x, given.y);
        EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path.get()), expected)) << what;
        CGPathAddLineToPoint(path.get(), nullptr, 0, 0);
        CGPathAddLines(path.get(), m, &given, 1);
        EXPECT_TRUE(CGPointEqualToPoint(CGPathGetCurrentPoint(path.get()), expected)) << what;
    }
    const MutablePath path = makeLines({{1, 2}, {kNaN, 3}});
    EXPECT_TRUE(std::isnan(CGPathGetCurrentPoint(path.get()).x));
    EXPECT_EQ(CGPathGetCurrentPoint(path.get()).y, 3);
}

TEST(CGPathBuild, AppendsAnotherPathButNeverItself) {
    const MutablePath other = makeLines({{0, 0}, {1, 1}});
    _CGPathSetEvenOddFill(other.get(), 1);
    const MutablePath path = makePath();
    CGPathAddPath(path.get(), nullptr, other.get());
    EXPECT_EQ(text(path), "M 0 0 L 1 1");
    EXPECT_FALSE(_CGPathIsEvenOddFill(path.get())) << "the rule stays";

    const CGAffineTransform doubled = {2, 0, 0, 2, 1, 0};
    CGPathAddPath(path.get(), &doubled, other.get());
    CGPathAddPath(path.get(), nullptr, path.get());
    CGPathAddPath(path.get(), nullptr, nullptr);
    CGPathAddPath(nullptr, nullptr, path.get());
    EXPECT_EQ(text(path), "M 0 0 L 1 1 M 1 0 L 3 2");
    CGPathAddLineToPoint(path.get(), nullptr, 9, 9);
    EXPECT_EQ(text(path), "M 0 0 L 1 1 M 1 0 L 3 2 L 9 9");
    EXPECT_EQ(text(other), "M 0 0 L 1 1");
}

TEST(CGPathBuild, MapsInPlace) {
    const MutablePath path = makeLines({{1, 0}, {0, 1}});
    _CGPathConcatCTM(path.get(), 1, 2, 3, 4, 5, 6);
    EXPECT_EQ(text(path), "M 6 8 L 8 10");
}

// Twice the area inside a path of lines, by the trapezoid formula.
double doubledArea(CGPathRef path) {
    struct Sum {
        CGPoint start, last;
        double area = 0;
        void to(CGPoint p) {
            area += double{last.x} * double{p.y} - double{p.x} * double{last.y};
            last = p;
        }
    } sum = {};
    CGPathApply(path, &sum, [](void* info, const CGPathElement* element) {
        Sum& s = *static_cast<Sum*>(info);
        if (element->type == kCGPathElementMoveToPoint)
            s.start = s.last = element->points[0];
        else
            s.to(element->type == kCGPathElementCloseSubpath ? s.start : element->points[0]);
    });
    return std::abs(sum.area);
}

TEST(CGPathIntersect, LeavesTheAreaInTheRect) {
    const struct {
        const char* what;
        MutablePath path;
        CGRect rect;
        double area;
    } cases[] = {
        {"two rects", makeRect({{0, 0}, {4, 4}}), {{2, 1}, {8, 8}}, 2 * 3},
        {"a rect of negative size", makeRect({{0, 0}, {4, 4}}), {{4, 4}, {-2, -3}}, 2 * 3},
        {"a corner of a triangle", makeLines({{0, 0}, {4, 0}, {0, 4}}), {{2, 0}, {8, 8}}, 2},
        {"apart", makeRect({{0, 0}, {4, 4}}), {{9, 9}, {1, 1}}, 0},
        {"everything", makeRect({{0, 0}, {4, 4}}), {{-1, -1}, {9, 9}}, 16},
        {"the null rect", makeRect({{0, 0}, {4, 4}}), CGRectNull, 0},
        {"an empty path", makePath(), {{0, 0}, {4, 4}}, 0},
    };
    for (const auto& [what, path, rect, area] : cases) {
        EXPECT_TRUE(CGPathIntersectWithRect(path.get(), rect)) << what;
        EXPECT_NEAR(doubledArea(path.get()), 2 * area, 1e-5) << what;
    }
}

TEST(CGPathIntersect, CarriesTheRuleThatKeepsItsHoles) {
    const MutablePath ring = makeRect({{0, 0}, {6, 6}});
    CGPathAddRect(ring.get(), nullptr, {{2, 2}, {2, 2}});
    _CGPathSetEvenOddFill(ring.get(), 1);
    ASSERT_TRUE(CGPathIntersectWithRect(ring.get(), {{-1, -1}, {6, 9}}));
    const bool evenOdd = _CGPathIsEvenOddFill(ring.get());
    EXPECT_TRUE(CGPathContainsPoint(ring.get(), nullptr, {1, 3}, evenOdd));
    EXPECT_FALSE(CGPathContainsPoint(ring.get(), nullptr, {3, 3}, evenOdd));
    EXPECT_FALSE(CGPathContainsPoint(ring.get(), nullptr, {5.5f, 3}, evenOdd));
}

TEST(CGPathIntersect, AlsoChangesImmutablePathsButNotTheirCopies) {
    const MutablePath source = makeRect({{0, 0}, {4, 4}});
    const Path fixed = cf::adopt(CGPathCreateCopy(source.get()));
    EXPECT_TRUE(
        CGPathIntersectWithRect(const_cast<CGMutablePathRef>(fixed.get()), {{0, 0}, {1, 1}}));
    EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(fixed.get()), {{0, 0}, {1, 1}}));
    EXPECT_TRUE(CGRectEqualToRect(CGPathGetBoundingBox(source.get()), {{0, 0}, {4, 4}}));
}

TEST(CGPathIntersect, FailsOnPointsThatAreNotFinite) {
    const MutablePath path = makeLines({{0, 0}, {kNaN, 4}, {4, 4}});
    EXPECT_FALSE(CGPathIntersectWithRect(path.get(), {{0, 0}, {1, 1}}));
    EXPECT_EQ(pathKinds(path.get()), "MLL");
    const MutablePath square = makeRect({{0, 0}, {4, 4}});
    EXPECT_FALSE(CGPathIntersectWithRect(square.get(), {{kNaN, 0}, {1, 1}}));
    EXPECT_EQ(pathKinds(square.get()), "MLLLZ");
}

} // namespace
