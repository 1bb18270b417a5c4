// CGPathCircleTest.cpp: what counts as a circle.

#include "Paths.h"

#include <cmath>
#include <numbers>

namespace {

using namespace test;

constexpr float kTurn = 2 * std::numbers::pi_v<float>;

MutablePath arcs(float start, float end, bool clockwise = false) {
    MutablePath path = makePath();
    CGPathAddArc(path.get(), nullptr, 5, 7, 10, start, end, clockwise);
    return path;
}

MutablePath ellipse(CGRect rect) {
    MutablePath path = makePath();
    CGPathAddEllipseInRect(path.get(), nullptr, rect);
    return path;
}

// A circle around (5, 7) of radius 10 in `count` quadratics that touch it at their ends, the first
// control point moved outwards by `bulge` radii.
MutablePath quads(int count, float bulge = 0) {
    MutablePath path = makeLines({{15, 7}});
    const float step = kTurn / static_cast<float>(count);
    for (int i = 0; i < count; ++i) {
        const float middle = (static_cast<float>(i) + 0.5f) * step;
        const float end = static_cast<float>(i + 1) * step;
        const float reach = 10 / std::cos(step / 2) + (i == 0 ? 10 * bulge : 0);
        CGPathAddQuadCurveToPoint(path.get(), nullptr, 5 + reach * std::cos(middle),
                                  7 + reach * std::sin(middle), 5 + 10 * std::cos(end),
                                  7 + 10 * std::sin(end));
    }
    return path;
}

// Four quarters whose first control point is moved by (dx, dy).
MutablePath bentCircle(float dx, float dy) {
    const float h = 5.5228f;
    MutablePath path = makeLines({{15, 7}});
    CGPathAddCurveToPoint(path.get(), nullptr, 15 + dx, 7 + h + dy, 5 + h, 17, 5, 17);
    CGPathAddCurveToPoint(path.get(), nullptr, 5 - h, 17, -5, 7 + h, -5, 7);
    CGPathAddCurveToPoint(path.get(), nullptr, -5, 7 - h, 5 - h, -3, 5, -3);
    CGPathAddCurveToPoint(path.get(), nullptr, 5 + h, -3, 15, 7 - h, 15, 7);
    return path;
}

TEST(CGPathCircle, IsRecognisedWithinOnePercent) {
    MutablePath oval = makePath();
    SkPath* const native = static_cast<SkPath*>(_CGPathGetNativeObject(oval.get()));
    native->addOval(SkRect::MakeLTRB(-5, -3, 15, 17));
    MutablePath closed = arcs(0, kTurn);
    CGPathCloseSubpath(closed.get());
    MutablePath goingOn = arcs(0, kTurn);
    CGPathCloseSubpath(goingOn.get());
    CGPathMoveToPoint(goingOn.get(), nullptr, 1, 1);
    MutablePath withLine = arcs(0, kTurn);
    CGPathAddLineToPoint(withLine.get(), nullptr, 15, 7);
    MutablePath mixed = arcs(0, kTurn * 3 / 4);
    CGPathAddQuadCurveToPoint(mixed.get(), nullptr, 15, -3, 15, 7);

    const struct {
        const char* what;
        MutablePath path;
        bool isCircle;
    } cases[] = {
        {"four quarters", arcs(0, kTurn), true},
        {"closed", closed, true},
        {"clockwise", arcs(0, -kTurn, true), true},
        {"in an ellipse's constants", ellipse({{-5, -3}, {20, 20}}), true},
        {"an oval of Skia's", oval, true},
        {"half a percent off", ellipse({{-5, -3}, {20, 20.1f}}), true},
        {"two percent off", ellipse({{-5, -3}, {20, 20.4f}}), false},
        {"untouched", bentCircle(0, 0), true},
        {"a control point off along its tangent", bentCircle(0, -0.2f), false},
        {"a control point off its tangent", bentCircle(-0.2f, 0), false},
        {"three quarters", arcs(0, kTurn * 3 / 4), false},
        {"five quarters", arcs(0, kTurn * 5 / 4), false},
        {"five unequal pieces", arcs(0, kTurn + 0.1f), false},
        {"with a line", withLine, false},
        {"with another contour", goingOn, false},
        {"of cubics and a quadratic", mixed, false},
        {"eight quadratics", quads(8), true},
        {"eight quadratics, one bulging", quads(8, 0.02f), false},
        {"seven quadratics", quads(7), false},
        {"nine quadratics", quads(9), false},
        {"a square", makeRect({{0, 0}, {4, 4}}), false},
        {"a point", makeLines({{1, 1}}), false},
        {"nothing", makePath(), false},
        {"an ellipse without size", ellipse({{3, 3}, {0, 0}}), false},
        {"NaN", ellipse({{kNaN, 3}, {4, 4}}), false},
    };
    for (const auto& [what, path, isCircle] : cases) {
        CGRect found = CGRectNull;
        EXPECT_EQ(_CGPathICantBelieveItsNotACircle(path.get(), &found), isCircle) << what;
        EXPECT_EQ(_CGPathICantBelieveItsNotACircle(path.get(), nullptr), isCircle) << what;
        if (isCircle)
            expectRect(found, {{-5, -3}, {20, 20}}, 0.1f, what);
        else
            EXPECT_TRUE(CGRectIsNull(found)) << what;
    }
    EXPECT_FALSE(_CGPathICantBelieveItsNotACircle(nullptr, nullptr));
}

} // namespace
