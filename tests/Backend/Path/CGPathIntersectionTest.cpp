// CGPathIntersectionTest.cpp: where lines cross paths.

#include "Paths.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace test;

std::vector<XGPathIntersection> crossings(const MutablePath& path, CGPoint p0, CGPoint p1) {
    std::vector<XGPathIntersection> found(64);
    found.resize(_CGPathLineIntersection(path.get(), found.data(), found.size(), p0, p1));
    return found;
}

MutablePath cubic(CGPoint a, CGPoint b, CGPoint c, CGPoint d) {
    MutablePath path = makeLines({a});
    CGPathAddCurveToPoint(path.get(), nullptr, b.x, b.y, c.x, c.y, d.x, d.y);
    return path;
}

MutablePath quad(CGPoint a, CGPoint b, CGPoint c) {
    MutablePath path = makeLines({a});
    CGPathAddQuadCurveToPoint(path.get(), nullptr, b.x, b.y, c.x, c.y);
    return path;
}

MutablePath circle() {
    MutablePath path = makePath();
    CGPathAddEllipseInRect(path.get(), nullptr, {{-10, -10}, {20, 20}});
    return path;
}

// Each expected as x, y, element, parameter, by the closed forms.
TEST(CGPathIntersection, IsFoundOncePerCrossing) {
    struct Case {
        const char* what;
        MutablePath path;
        CGPoint p0, p1;
        std::vector<std::array<float, 4>> expected;
    };
    Case cases[] = {
        {"a line", makeLines({{0, 0}, {8, 8}}), {0, 2}, {1, 2}, {{2, 2, 1, 0.25f}}},
        {"beyond the line's ends", makeLines({{0, 0}, {8, 0}}), {6, 1}, {6, 2}, {{6, 0, 1, 0.75f}}},
        {"a shared corner once",
         makeLines({{0, 0}, {4, 4}, {8, 8}}),
         {4, 0},
         {4, 1},
         {{4, 4, 2, 0}}},
        {"a corner that touches",
         makeLines({{0, 0}, {4, 4}, {8, 0}}),
         {0, 4},
         {1, 4},
         {{4, 4, 2, 0}}},
        {"an open end", makeLines({{0, 0}, {4, 4}}), {0, 4}, {1, 4}, {{4, 4, 1, 1}}},
        {"an open start", makeLines({{0, 0}, {4, 4}}), {0, 0}, {1, 0}, {{0, 0, 1, 0}}},
        {"a rectangle with its closing side",
         makeRect({{0, 0}, {4, 2}}),
         {0, 1},
         {1, 1},
         {{4, 1, 2, 0.5f}, {0, 1, 4, 0.5f}}},
        {"sides that lie in the line",
         makeRect({{0, 0}, {4, 2}}),
         {0, 0},
         {1, 0},
         {{0, 0, 1, 0}, {4, 0, 2, 0}}},
        {"a parabola's two",
         quad({0, 0}, {4, 8}, {8, 0}),
         {0, 3},
         {1, 3},
         {{2, 3, 1, 0.25f}, {6, 3, 1, 0.75f}}},
        {"a parabola's top", quad({0, 0}, {4, 8}, {8, 0}), {0, 4}, {1, 4}, {{4, 4, 1, 0.5f}}},
        {"above a parabola", quad({0, 0}, {4, 8}, {8, 0}), {0, 4.001f}, {1, 4.001f}, {}},
        {"a cubic's three",
         cubic({0, -3}, {1, 11}, {2, -11}, {3, 3}),
         {0, 0},
         {1, 0},
         {{0.2753f, 0, 1, 0.0918f}, {1.5f, 0, 1, 0.5f}, {2.7247f, 0, 1, 0.9082f}}},
        {"a point twice is no line", makeLines({{0, 0}, {4, 4}}), {1, 1}, {1, 1}, {}},
        {"no direction", makeLines({{0, 0}, {4, 4}}), {1, kNaN}, {1, 1}, {}},
    };
    for (const auto& [what, path, p0, p1, expected] : cases) {
        const auto found = crossings(path, p0, p1);
        ASSERT_EQ(found.size(), expected.size()) << what;
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i].point.x, expected[i][0], 1e-3) << what;
            EXPECT_NEAR(found[i].point.y, expected[i][1], 1e-3) << what;
            EXPECT_EQ(found[i].element, static_cast<uint32_t>(expected[i][2])) << what;
            EXPECT_NEAR(found[i].parameter, expected[i][3], 1e-3) << what;
        }
    }
    XGPathIntersection one;
    EXPECT_EQ(_CGPathLineIntersection(circle().get(), &one, 1, {0, 0}, {1, 0}), 1u) << "capacity";
}

// A line through a circle's inside crosses it twice, at the circle's own distance from the centre,
// and the crossings lie on the line.
TEST(CGPathIntersection, OfACircleIsAChord) {
    const MutablePath path = circle();
    std::mt19937 random(7);
    std::uniform_real_distribution<float> angle(0, 2 * std::numbers::pi_v<float>), offset(-9, 9);
    for (int i = 0; i < 2000; ++i) {
        const float a = angle(random), d = offset(random);
        const CGPoint normal = {std::cos(a), std::sin(a)};
        const CGPoint p0 = {normal.x * d, normal.y * d};
        const auto found = crossings(path, p0, {p0.x - normal.y, p0.y + normal.x});
        ASSERT_EQ(found.size(), 2u) << a << " " << d;
        for (const auto& crossing : found) {
            EXPECT_NEAR(std::hypot(crossing.point.x, crossing.point.y), 10, 0.01);
            EXPECT_NEAR(crossing.point.x * normal.x + crossing.point.y * normal.y, d, 1e-4);
        }
    }
}

} // namespace
