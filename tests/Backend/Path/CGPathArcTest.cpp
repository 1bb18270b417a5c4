// CGPathArcTest.cpp: arcs by angles and by tangents, against the circle itself.

#include "Paths.h"
#include "Support/CollectedLog.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

using namespace test;

constexpr float kPi = std::numbers::pi_v<float>;
constexpr float kTurn = 2 * kPi;

struct Cubic {
    CGPoint p[4];

    CGPoint at(double t) const {
        const double s = 1 - t;
        const double w[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
        CGPoint sum = {0, 0};
        for (int i = 0; i < 4; ++i) {
            sum.x += static_cast<float>(w[i] * double{p[i].x});
            sum.y += static_cast<float>(w[i] * double{p[i].y});
        }
        return sum;
    }
};

std::vector<Cubic> cubicsOf(CGPathRef path) {
    std::vector<Cubic> cubics;
    CGPathApply(path, &cubics, [](void* info, const CGPathElement* element) {
        if (element->type != kCGPathElementAddCurveToPoint)
            return;
        uint32_t count = 0;
        const CGPoint* const p = _CGPathElementGetAllPoints(element, &count);
        static_cast<std::vector<Cubic>*>(info)->push_back({{p[0], p[1], p[2], p[3]}});
    });
    return cubics;
}

MutablePath arc(CGPoint centre, float radius, float start, float end, bool clockwise,
                const CGAffineTransform* m = nullptr) {
    MutablePath path = makePath();
    CGPathAddArc(path.get(), m, centre.x, centre.y, radius, start, end, clockwise);
    return path;
}

// The angle swept by the pieces, positive with growing angles, measured around the centre.
double sweptAngle(const std::vector<Cubic>& cubics, CGPoint c) {
    double sum = 0;
    for (const Cubic& cubic : cubics)
        for (int i = 0; i < 4; ++i) {
            const CGPoint a = cubic.at(i / 4.0);
            const CGPoint b = cubic.at((i + 1) / 4.0);
            const double ax = double{a.x - c.x}, ay = double{a.y - c.y};
            const double bx = double{b.x - c.x}, by = double{b.y - c.y};
            sum += std::atan2(ax * by - ay * bx, ax * bx + ay * by);
        }
    return sum;
}

TEST(CGPathArc, StaysOnTheCircleBetweenItsAngles) {
    const struct {
        const char* what;
        float start, end;
        bool clockwise;
        std::size_t pieces;
        double sweep;
    } cases[] = {
        {"quarter", 0, kPi / 2, false, 1, kPi / 2},
        {"full circle", 0, kTurn, false, 4, kTurn},
        {"full circle clockwise", 0, -kTurn, true, 4, -kTurn},
        {"clockwise up to a turn", 0, kTurn, true, 4, -kTurn},
        {"the long way", 0, 0.5f, true, 4, 0.5 - kTurn},
        {"start lowered by a turn", 1, 0, false, 4, kTurn - 1},
        {"several turns", 0, 3 * kTurn, false, 12, 3 * kTurn},
        {"a small arc", 1, 1.25f, false, 1, 0.25},
        {"negative angles", -2, -1, false, 1, 1},
    };
    constexpr CGPoint centre = {3, -4};
    for (const auto& [what, start, end, clockwise, pieces, sweep] : cases) {
        const MutablePath path = arc(centre, 10, start, end, clockwise);
        const auto cubics = cubicsOf(path.get());
        EXPECT_EQ(pathKinds(path.get()), "M" + std::string(pieces, 'C')) << what;
        EXPECT_NEAR(sweptAngle(cubics, centre), sweep, 1e-3) << what;
        for (const Cubic& cubic : cubics)
            for (int i = 0; i <= 8; ++i) {
                const CGPoint p = cubic.at(i / 8.0);
                EXPECT_NEAR(std::hypot(p.x - centre.x, p.y - centre.y), 10, 0.003) << what;
            }
        ASSERT_FALSE(cubics.empty()) << what;
        EXPECT_NEAR(cubics.front().p[0].x, centre.x + 10 * std::cos(start), 1e-4) << what;
        EXPECT_NEAR(cubics.front().p[0].y, centre.y + 10 * std::sin(start), 1e-4) << what;
        EXPECT_NEAR(cubics.back().p[3].x, centre.x + 10 * std::cos(end), 1e-4) << what;
        EXPECT_NEAR(cubics.back().p[3].y, centre.y + 10 * std::sin(end), 1e-4) << what;
    }
}

TEST(CGPathArc, PassesThroughTheCircleAtTheMiddleOfAPiece) {
    const MutablePath path = arc({0, 0}, 1, 0, kPi / 2, false);
    const CGPoint middle = cubicsOf(path.get()).at(0).at(0.5);
    EXPECT_NEAR(middle.x, std::sqrt(0.5), 1e-7);
    EXPECT_NEAR(middle.y, std::sqrt(0.5), 1e-7);
}

TEST(CGPathArc, JoinsThePathWithALineWhereItMust) {
    const struct {
        const char* what;
        CGPoint current;
        const char* kinds;
    } cases[] = {
        {"far off", {0, 0}, "MLC"},
        {"at the start", {1, 0}, "MC"},
        {"almost at the start", {1.0009f, 0}, "MC"},
        {"just off the start", {1.0012f, 0}, "MLC"},
    };
    for (const auto& [what, current, kinds] : cases) {
        const MutablePath path = makeLines({current});
        CGPathAddArc(path.get(), nullptr, 0, 0, 1, 0, 1, false);
        EXPECT_EQ(pathKinds(path.get()), kinds) << what;
    }
    // After a close the path goes on from the contour's start, wherever its last point is.
    const MutablePath closed = makeLines({{5, 5}, {1, 0}});
    CGPathCloseSubpath(closed.get());
    CGPathAddArc(closed.get(), nullptr, 0, 0, 1, 0, 1, false);
    EXPECT_EQ(pathKinds(closed.get()), "MLZMLC");
}

TEST(CGPathArc, WithoutASweepAddsOnlyItsStart) {
    const float nearlyOne = std::nextafter(1.f, 2.f);
    for (const bool clockwise : {false, true})
        for (const float end : {1.f, nearlyOne}) {
            const MutablePath path = arc({0, 0}, 1, 1, end, clockwise);
            EXPECT_EQ(pathKinds(path.get()), "M") << clockwise << end;
            CGPathAddArc(path.get(), nullptr, 5, 5, 1, 1, end, clockwise);
            EXPECT_EQ(pathKinds(path.get()), "ML") << clockwise << end;
        }
}

TEST(CGPathArc, OfATinyCircleIsALine) {
    EXPECT_EQ(pathKinds(arc({0, 0}, 0.0005f, 0, kPi / 2, false).get()), "ML");
    EXPECT_EQ(pathKinds(arc({0, 0}, 0, 0, kTurn, false).get()), "MLLLL");
}

TEST(CGPathArc, IsMappedPointByPoint) {
    const CGAffineTransform m = {2, 1, -3, 2, 7, 9};
    const MutablePath plain = arc({1, 2}, 5, 0.3f, 4, false);
    const MutablePath mapped = arc({1, 2}, 5, 0.3f, 4, false, &m);
    const Path expected = cf::adopt(CGPathCreateCopyByTransformingPath(plain.get(), &m));
    EXPECT_EQ(text(mapped), text(expected));
    // A second arc that starts where the first one ended needs no line, also when mapped.
    CGPathAddArc(mapped.get(), &m, 1, 2, 5, 4, 5, false);
    EXPECT_EQ(pathKinds(mapped.get()), "MCCCC");
}

TEST(CGPathArc, RelativeArcTurnsAsItsSignSays) {
    for (const float delta : {1.f, -1.f, kTurn, -kTurn, 5.f, -5.f}) {
        const MutablePath relative = makePath();
        CGPathAddRelativeArc(relative.get(), nullptr, 1, 2, 3, 0.5f, delta);
        EXPECT_NEAR(sweptAngle(cubicsOf(relative.get()), {1, 2}), double{delta}, 1e-3) << delta;
    }
}

TEST(CGPathArc, IgnoresAnglesThatAreNotFinite) {
    const CollectedLog log;
    for (const float angle : {kInfinity, -kInfinity, kNaN})
        for (const bool clockwise : {false, true}) {
            EXPECT_TRUE(CGPathIsEmpty(arc({0, 0}, 1, angle, 1, clockwise).get())) << angle;
            EXPECT_TRUE(CGPathIsEmpty(arc({0, 0}, 1, 1, angle, clockwise).get())) << angle;
        }
    EXPECT_EQ(log.lines().size(), 12u);
}

TEST(CGPathArc, KeepsTheSpotsButNotTheTurnsOfHugeAngles) {
    for (const float end : {1e6f, -1e6f, 1e9f, 3e38f, -3e38f})
        for (const bool clockwise : {false, true}) {
            const MutablePath path = arc({0, 0}, 1, 0.25f, end, clockwise);
            const auto cubics = cubicsOf(path.get());
            ASSERT_FALSE(cubics.empty()) << end;
            EXPECT_LE(cubics.size(), 5u) << end;
            EXPECT_NEAR(cubics.back().p[3].x, std::cos(double{end}), 1e-4) << end;
            EXPECT_NEAR(cubics.back().p[3].y, std::sin(double{end}), 1e-4) << end;
            EXPECT_EQ(sweptAngle(cubics, {0, 0}) < 0, clockwise) << end;
        }
    // What was more than a turn and comes out as none stays one.
    const float manyTurns = static_cast<float>(1 << 20);
    EXPECT_EQ(pathKinds(arc({0, 0}, 1, manyTurns, manyTurns, false).get()), "M");
}

TEST(CGPathArc, SurvivesAnyRadiusAndCentre) {
    for (const float value : {kNaN, kInfinity, -kInfinity, 3e38f, -1.f}) {
        EXPECT_FALSE(CGPathIsEmpty(arc({value, 0}, 1, 0, 1, false).get())) << value;
        EXPECT_FALSE(CGPathIsEmpty(arc({0, 0}, value, 0, kTurn, true).get())) << value;
    }
}

// ---- Arcs between tangents

TEST(CGPathArcToPoint, IsSkiasTangentArc) {
    const MutablePath path = makeLines({{0, 0}});
    CGPathAddArcToPoint(path.get(), nullptr, 10, 0, 10, 10, 4);
    SkPath bare;
    bare.moveTo(0, 0).arcTo(10, 0, 10, 10, 4);
    EXPECT_EQ(native(path.get()), bare);
    // From tangent point to tangent point around (6, 4).
    EXPECT_EQ(text(path).substr(0, 11), "M 0 0 L 6 0");
    EXPECT_NEAR(CGPathGetCurrentPoint(path.get()).x, 10, 1e-5);
    EXPECT_NEAR(CGPathGetCurrentPoint(path.get()).y, 4, 1e-5);
}

TEST(CGPathArcToPoint, UnderATransformIsMadeInTheCallersSpace) {
    const CGAffineTransform m = {3, 0, 0, 0.5f, 100, 50};
    const MutablePath path = makePath();
    CGPathMoveToPoint(path.get(), &m, 0, 0);
    CGPathAddArcToPoint(path.get(), &m, 10, 0, 10, 10, 4);

    const MutablePath plain = makeLines({{0, 0}});
    CGPathAddArcToPoint(plain.get(), nullptr, 10, 0, 10, 10, 4);
    const Path expected = cf::adopt(CGPathCreateCopyByTransformingPath(plain.get(), &m));
    EXPECT_EQ(native(path.get()).countVerbs(), 3) << "the contour goes on";
    for (int i = 0; i < native(expected.get()).countPoints(); ++i) {
        EXPECT_NEAR(native(path.get()).getPoint(i).fX, native(expected.get()).getPoint(i).fX, 1e-4);
        EXPECT_NEAR(native(path.get()).getPoint(i).fY, native(expected.get()).getPoint(i).fY, 1e-4);
    }
}

TEST(CGPathArcToPoint, StartsAfterACloseAtTheContoursStart) {
    const CGAffineTransform identity = CGAffineTransformIdentity;
    for (const CGAffineTransform* const m :
         {static_cast<const CGAffineTransform*>(nullptr), &identity}) {
        const MutablePath path = makeLines({{0, 0}, {0, 9}, {-9, 9}});
        CGPathCloseSubpath(path.get());
        CGPathAddArcToPoint(path.get(), m, 10, 0, 10, 10, 4);
        EXPECT_EQ(text(path).substr(0, 40), "M 0 0 L 0 9 L -9 9 Z M 0 0 L 6 0 Q 7.656");
    }
}

TEST(CGPathArcToPoint, IsALineWhereThereIsNoArc) {
    const CGAffineTransform singular = {1, 1, 1, 1, 0, 0};
    const struct {
        const char* what;
        CGPoint corner, far;
        float radius;
        const CGAffineTransform* m;
    } cases[] = {
        {"no radius", {10, 0}, {10, 10}, 0, nullptr},
        {"straight on", {10, 0}, {20, 0}, 4, nullptr},
        {"no first line", {1, 1}, {20, 0}, 4, nullptr},
        {"no second line", {10, 0}, {10, 0}, 4, nullptr},
        {"no radius, singular", {10, 0}, {10, 10}, 0, &singular},
    };
    for (const auto& [what, corner, far, radius, m] : cases) {
        const MutablePath path = makeLines({{1, 1}});
        if (corner.y == 0)
            CGPathMoveToPoint(path.get(), nullptr, 1, 0);
        CGPathAddArcToPoint(path.get(), m, corner.x, corner.y, far.x, far.y, radius);
        EXPECT_EQ(pathKinds(path.get()), "ML") << what;
    }
}

TEST(CGPathArcToPoint, OfHugeRadiusStaysFinite) {
    const MutablePath path = makeLines({{0, 0}});
    for (const float radius : {3e38f, kInfinity, -kInfinity})
        CGPathAddArcToPoint(path.get(), nullptr, 3e38f, 1, -3e38f, 2, radius);
    EXPECT_TRUE(native(path.get()).isFinite());
    CGPathAddArcToPoint(path.get(), nullptr, 10, 0, 10, 10, kNaN);
    EXPECT_EQ(CGPathContainsPoint(path.get(), nullptr, {1, 1}, false), false);
}

} // namespace
