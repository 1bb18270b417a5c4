// PathDataTest.cpp: path data becomes the path that the SVG grammar means, up to its first mistake.

#include "PathData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Element {
    char verb;
    std::vector<CGPoint> points;
};

void collect(void* info, const CGPathElement* element) {
    constexpr char verbs[] = {'M', 'L', 'Q', 'C', 'Z'};
    constexpr std::size_t counts[] = {1, 1, 2, 3, 0};
    const auto type = std::size_t(element->type);
    static_cast<std::vector<Element>*>(info)->push_back(
        {verbs[type], {element->points, element->points + counts[type]}});
}

std::vector<Element> elementsOf(const char* data) {
    std::vector<Element> elements;
    CGPathApply(svg::parsePathData(data).get(), &elements, collect);
    return elements;
}

std::string textOf(const char* data) {
    std::string text;
    for (const auto& [verb, points] : elementsOf(data)) {
        text += text.empty() ? "" : " ";
        text += verb;
        for (const CGPoint& point : points) {
            char buffer[64];
            std::snprintf(buffer, sizeof buffer, " %g %g", double(point.x), double(point.y));
            text += buffer;
        }
    }
    return text;
}

TEST(PathData, ReadsEveryCommand) {
    const struct {
        const char* what;
        const char* data;
        const char* path;
    } cases[] = {
        {"lines", "M1 2L3 4", "M 1 2 L 3 4"},
        {"relative lines", "m1 2l3 4", "M 1 2 L 4 6"},
        {"points after a move are lines", "M1 2 3 4 5 6", "M 1 2 L 3 4 L 5 6"},
        {"and relative ones after a relative move", "m1 2 3 4 5 6", "M 1 2 L 4 6 L 9 12"},
        {"horizontal and vertical", "M1 2H5V6h-1v-2", "M 1 2 L 5 2 L 5 6 L 4 6 L 4 4"},
        {"cubic", "M0 0C1 2 3 4 5 6c1 1 2 2 3 3", "M 0 0 C 1 2 3 4 5 6 C 6 7 7 8 8 9"},
        {"smooth cubic mirrors the control point", "M0 0C1 2 3 4 5 6S8 8 9 9",
         "M 0 0 C 1 2 3 4 5 6 C 7 8 8 8 9 9"},
        {"smooth cubic after a line starts at the point", "M5 6S8 8 9 9", "M 5 6 C 5 6 8 8 9 9"},
        {"quadratic", "M0 0Q1 2 3 4q1 1 2 0", "M 0 0 Q 1 2 3 4 Q 4 5 5 4"},
        {"smooth quadratics mirror in turn", "M0 0Q1 2 2 0T4 0t2 0",
         "M 0 0 Q 1 2 2 0 Q 3 -2 4 0 Q 5 2 6 0"},
        {"smooth quadratic after a cubic", "M0 0C1 2 3 4 5 6T7 8", "M 0 0 C 1 2 3 4 5 6 Q 5 6 7 8"},
        {"close, then another subpath", "M1 1h2v2zM5 5h1", "M 1 1 L 3 1 L 3 3 Z M 5 5 L 6 5"},
        {"close, then on from its start", "M1 1h2v2zl4 4", "M 1 1 L 3 1 L 3 3 Z M 1 1 L 5 5"},
        {"numbers run together", "M.5.5-1-1+2e1-3E0", "M 0.5 0.5 L -1 -1 L 20 -3"},
        {"commas and lines", " M 1,2\n\tL3 , 4 ", "M 1 2 L 3 4"},
        {"an arc of no radius is a line", "M0 0A0 5 0 0 1 4 4", "M 0 0 L 4 4"},
        {"an arc to where it starts is nothing", "M1 1A5 5 0 0 1 1 1L2 2", "M 1 1 L 2 2"},
    };
    for (const auto& [what, data, path] : cases)
        EXPECT_EQ(textOf(data), path) << what;
}

TEST(PathData, EndsAtTheFirstMistake) {
    const struct {
        const char* what;
        const char* data;
        const char* path;
    } cases[] = {
        {"nothing", "", ""},
        {"does not start with a move", "L1 1 2 2", ""},
        {"half a point", "M1 1L2 2 3", "M 1 1 L 2 2"},
        {"an unknown command", "M1 1L2 2X3 3L4 4", "M 1 1 L 2 2"},
        {"a bad flag", "M1 1L2 2A1 1 0 2 0 5 5L6 6", "M 1 1 L 2 2"},
        {"a word", "M1 1L nan 2", "M 1 1"},
        {"a number beyond all range", "M1 1L1e999 2L3 3", "M 1 1"},
        {"numbers after a close", "M1 1h1z5 5L6 6", "M 1 1 L 2 1 Z"},
        {"a percentage", "M1 1L50% 2", "M 1 1"},
    };
    for (const auto& [what, data, path] : cases)
        EXPECT_EQ(textOf(data), path) << what;
}

// Every point of an arc lies on the ellipse; which of the four arcs it is shows at its middle.
TEST(PathData, DrawsTheArcThatTheFlagsChoose) {
    const struct {
        const char* what;
        const char* data;
        CGPoint centre;
        double sweepInDegrees; // Positive from the x axis to the y axis.
    } cases[] = {
        {"small, against the sweep", "M0 0A10 10 0 0 0 10 10", {10, 0}, -90},
        {"small, with the sweep", "M0 0A10 10 0 0 1 10 10", {0, 10}, 90},
        {"large, against the sweep", "M0 0A10 10 0 1 0 10 10", {0, 10}, -270},
        {"large, with the sweep", "M0 0A10 10 0 1 1 10 10", {10, 0}, 270},
        {"flags without spaces", "M0 0A10 10 0 1110 10", {10, 0}, 270},
        {"relative", "m0 0a10 10 0 0110 10", {0, 10}, 90},
        {"negative radii count as positive", "M0 0A-10 -10 0 0 1 10 10", {0, 10}, 90},
        {"radii too small grow to half the chord", "M0 0A1 1 0 0 1 20 0", {10, 0}, 180},
        {"the turn of a circle does not matter", "M0 0A10 10 77 0 1 10 10", {0, 10}, 90},
    };
    for (const auto& [what, data, centre, sweep] : cases) {
        const auto elements = elementsOf(data);
        ASSERT_GE(elements.size(), 2u) << what;
        CGPoint at = elements[0].points[0];
        const double radius = std::hypot(at.x - centre.x, at.y - centre.y);
        double turned = 0;
        for (std::size_t i = 1; i < elements.size(); ++i) {
            ASSERT_EQ(elements[i].verb, 'C') << what;
            const CGPoint end = elements[i].points[2];
            EXPECT_NEAR(std::hypot(end.x - centre.x, end.y - centre.y), radius, 1e-4) << what;
            const double step = std::atan2(end.y - centre.y, end.x - centre.x) -
                                std::atan2(at.y - centre.y, at.x - centre.x);
            turned += std::remainder(step, 2 * M_PI);
            at = end;
        }
        EXPECT_NEAR(turned * 180 / M_PI, sweep, 1e-3) << what;
    }
}

TEST(PathData, SurvivesCoordinatesOfAnySize) {
    for (const char* data :
         {"M1e308 1e308l1e308 1e308-1e308 0z", "M0 0A1e308 1e-300 45 1 1 1e308 5",
          "M-1e300 0A1 1 0 0 1 1e300 1e300", "M0 0A1e-320 1e-320 0 0 0 1 1"})
        EXPECT_TRUE(svg::parsePathData(data)) << data;
}

} // namespace
