// CGGradientTest.cpp: what lies between the stops of a gradient.

#include "XGFunction.h"
#include "XGGradient.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGColor.h>

#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace {

using Gradient = cf::Ref<CGGradientRef>;

// Gray levels, opaque, at places.
Gradient makeGray(std::vector<CGFloat> levels, const CGFloat* locations) {
    std::vector<CGFloat> components;
    for (const CGFloat level : levels)
        components.insert(components.end(), {level, 1});
    const auto space = cf::adopt(CGColorSpaceCreateDeviceGray());
    return cf::adopt(CGGradientCreateWithColorComponents(space.get(), components.data(), locations,
                                                         levels.size()));
}

CGFloat grayAt(const Gradient& gradient, CGFloat location) {
    std::array<CGFloat, 2> out = {9, 9};
    XGFunctionEvaluate(XGGradientGetFunction(gradient.get()), &location, out.data());
    return out[0];
}

TEST(Gradient, GoesLinearlyFromStopToStop) {
    const CGFloat inner[] = {0.25f, 0.75f};
    const CGFloat unordered[] = {1, 0, 0.5f};
    const CGFloat edge[] = {0, 0.5f, 0.5f, 1};
    const struct {
        const char* what;
        Gradient gradient;
        CGFloat location, gray;
    } cases[] = {
        {"before the first stop", makeGray({0.2f, 0.6f}, inner), 0.1f, 0.2f},
        {"halfway", makeGray({0.2f, 0.6f}, inner), 0.5f, 0.4f},
        {"after the last stop", makeGray({0.2f, 0.6f}, inner), 0.9f, 0.6f},
        {"evenly spread: a stop", makeGray({0, 1, 0.5f}, nullptr), 0.5f, 1},
        {"evenly spread: between", makeGray({0, 1, 0.5f}, nullptr), 0.75f, 0.75f},
        {"sorted", makeGray({1, 0, 0.5f}, unordered), 0.25f, 0.25f},
        {"before an edge", makeGray({0, 0.25f, 0.75f, 1}, edge), 0.4999999f, 0.25f},
        {"after an edge", makeGray({0, 0.25f, 0.75f, 1}, edge), 0.5000001f, 0.75f},
        {"beyond the end", makeGray({0, 1}, nullptr), 7, 1},
    };
    for (const auto& [what, gradient, location, gray] : cases)
        EXPECT_NEAR(grayAt(gradient, location), gray, 1e-6) << what;
}

// Places in order, backwards and beyond the ends, and locations of every kind.
TEST(Gradient, AnswersSpansAsItAnswersPlaces) {
    const CGFloat nan = std::numeric_limits<CGFloat>::quiet_NaN();
    const CGFloat infinity = std::numeric_limits<CGFloat>::infinity();
    const std::vector<CGFloat> places = {0,    0.1f, 0.25f,     0.3f, 0.5f, 0.75f,   0.9f,
                                         1,    0.6f, 0.2f,      0,    -1,   2,       nan,
                                         0.5f, 0.5f, -infinity, 1,    0.1f, infinity};
    const CGFloat locations[][4] = {
        {0, 0.25f, 0.75f, 1}, {0, 0, 0.5f, 0.5f}, {-1, 0.2f, 0.3f, 3}, {nan, 0.2f, 0.3f, 1}};
    for (const auto& kind : locations) {
        const Gradient gradient = makeGray({0.1f, 0.9f, 0.4f, 1.5f}, kind);
        const CGFunctionRef function = XGGradientGetFunction(gradient.get());
        std::vector<CGFloat> span(2 * places.size());
        XGFunctionEvaluateSpan(function, places.data(), places.size(), span.data());
        for (std::size_t index = 0; index < places.size(); ++index)
            EXPECT_EQ(span[2 * index], grayAt(gradient, places[index]))
                << kind[0] << " at " << places[index];
    }
}

TEST(Gradient, AnswersSpansOfEveryNumberOfComponents) {
    const cf::Ref<CGColorSpaceRef> spaces[] = {
        cf::adopt(CGColorSpaceCreatePattern(nullptr)), cf::adopt(CGColorSpaceCreateDeviceGray()),
        cf::adopt(CGColorSpaceCreateDeviceRGB()), cf::adopt(CGColorSpaceCreateDeviceCMYK())};
    for (const auto& space : spaces) {
        const std::size_t count = CGColorSpaceGetNumberOfComponents(space.get()) + 1;
        std::vector<CGFloat> stops(2 * count, 0);
        std::fill(stops.begin() + static_cast<std::ptrdiff_t>(count), stops.end(), 1.0f);
        const Gradient gradient =
            cf::adopt(CGGradientCreateWithColorComponents(space.get(), stops.data(), nullptr, 2));
        const CGFloat places[] = {0.25f, 0.5f};
        std::vector<CGFloat> span(2 * count);
        XGFunctionEvaluateSpan(XGGradientGetFunction(gradient.get()), places, 2, span.data());
        for (std::size_t index = 0; index < span.size(); ++index)
            EXPECT_EQ(span[index], places[index / count]) << count;
    }
}

// More stops than are sorted one by one, given backwards.
TEST(Gradient, SortsManyStopsInNoTime) {
    constexpr int kStops = 200'000;
    std::vector<CGFloat> levels, locations;
    for (int index = kStops; index >= 0; --index) {
        locations.push_back(static_cast<CGFloat>(index) / kStops);
        levels.push_back(locations.back());
    }
    const Gradient gradient = makeGray(levels, locations.data());
    EXPECT_NEAR(grayAt(gradient, 0.125f), 0.125f, 1e-4);
}

TEST(Gradient, KeepsTheOrderOfManyStopsInOnePlace) {
    std::vector<CGFloat> levels, locations;
    for (int index = 0; index < 40; ++index) {
        levels.push_back(static_cast<CGFloat>(index) / 40);
        locations.push_back(0.5f);
    }
    const Gradient gradient = makeGray(levels, locations.data());
    EXPECT_EQ(grayAt(gradient, 0.25f), 0);
    EXPECT_EQ(grayAt(gradient, 0.75f), levels.back());
}

TEST(Gradient, ConvertsItsColors) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const auto red = cf::adopt(CGColorCreateGenericRGB(1, 0, 0, 0.5f));
    const auto white = cf::adopt(CGColorCreateGenericGray(1, 1));
    const void* const colors[] = {red.get(), white.get()};
    const void* const mixed[] = {red.get(), CFSTR("not a colour")};
    const auto array = cf::adopt(
        CFArrayCreate(nullptr, const_cast<const void**>(colors), 2, &kCFTypeArrayCallBacks));
    const auto unusable = cf::adopt(
        CFArrayCreate(nullptr, const_cast<const void**>(mixed), 2, &kCFTypeArrayCallBacks));
    const Gradient gradient =
        cf::adopt(CGGradientCreateWithColors(gray.get(), array.get(), nullptr));
    EXPECT_GT(grayAt(gradient, 0), 0);
    EXPECT_LT(grayAt(gradient, 0), 0.6f);
    EXPECT_EQ(grayAt(gradient, 1), 1);
    EXPECT_FALSE(CGGradientCreateWithColors(gray.get(), unusable.get(), nullptr));
}

TEST(Gradient, IsNotMadeOfUnusableArguments) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const CGFloat components[] = {0, 1, 1, 1};
    EXPECT_FALSE(CGGradientCreateWithColorComponents(nullptr, components, nullptr, 2));
    EXPECT_FALSE(CGGradientCreateWithColorComponents(gray.get(), nullptr, nullptr, 2));
    EXPECT_FALSE(CGGradientCreateWithColorComponents(gray.get(), components, nullptr, 1));
    EXPECT_FALSE(CGGradientCreateWithColorComponents(gray.get(), components, nullptr, SIZE_MAX));
}

TEST(Gradient, EqualsItselfAlone) {
    const Gradient gradient = makeGray({0, 1}, nullptr);
    const Gradient other = makeGray({0, 1}, nullptr);
    EXPECT_TRUE(XGGradientEqualToGradient(gradient.get(), gradient.get()));
    EXPECT_FALSE(XGGradientEqualToGradient(gradient.get(), other.get()));
    XGGradientGetFunction(gradient.get());
    XGGradientGetFunction(other.get());
    EXPECT_FALSE(XGGradientEqualToGradient(gradient.get(), other.get()));
}

TEST(Gradient, HasOneFunctionWhicheverThreadAsksFirst) {
    const Gradient gradient = makeGray({0, 1}, nullptr);
    std::array<CGFunctionRef, 4> functions = {};
    test::onThreads(
        [&](std::size_t thread) { functions[thread] = XGGradientGetFunction(gradient.get()); });
    for (const CGFunctionRef function : functions)
        EXPECT_EQ(function, functions[0]);
}

} // namespace
