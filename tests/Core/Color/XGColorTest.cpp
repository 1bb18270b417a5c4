// XGColorTest.cpp: colours in other spaces, and mixed.

#include "XGColor.h"

#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

namespace {

using Color = cf::Ref<CGColorRef>;
using Space = cf::Ref<CGColorSpaceRef>;

Color gray(CGFloat value, CGFloat alpha = 1) {
    return cf::adopt(CGColorCreateGenericGray(value, alpha));
}
Color rgb(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha = 1) {
    return cf::adopt(CGColorCreateGenericRGB(red, green, blue, alpha));
}
Space deviceGray() {
    return cf::adopt(CGColorSpaceCreateDeviceGray());
}
Space deviceRGB() {
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}

Color converted(const Space& space, const Color& color) {
    return cf::adopt(XGColorCreateWithColor(space.get(), color.get(), kCGRenderingIntentDefault));
}

Color inSpace(const Space& space, std::vector<CGFloat> components) {
    return cf::adopt(CGColorCreate(space.get(), components.data()));
}

std::vector<CGFloat> componentsOf(const Color& color) {
    const CGFloat* const components = CGColorGetComponents(color.get());
    return {components, components + CGColorGetNumberOfComponents(color.get())};
}

std::array<CGFloat, 4> rgbaOf(const Color& color) {
    std::array<CGFloat, 4> rgba = {};
    _CGColorGetRGBA(color.get(), &rgba[0], &rgba[1], &rgba[2], &rgba[3]);
    return rgba;
}

TEST(ColorConversion, EqualSpacesKeepTheObject) {
    const Color color = rgb(0.1f, 0.2f, 0.3f);
    EXPECT_EQ(converted(deviceRGB(), color).get(), color.get());
    EXPECT_FALSE(converted(nullptr, color));
    EXPECT_FALSE(converted(deviceRGB(), nullptr));
}

TEST(ColorConversion, GrayIsReplicatedAndRGBGivesItsLuma) {
    EXPECT_EQ(componentsOf(converted(deviceRGB(), gray(0.5f, 0.25f))),
              (std::vector<CGFloat>{0.5f, 0.5f, 0.5f, 0.25f}));
    const Color white = converted(deviceGray(), rgb(1, 1, 1, 0.25f));
    EXPECT_NEAR(CGColorGetComponents(white.get())[0], 1, 1e-6);
    EXPECT_EQ(CGColorGetAlpha(white.get()), 0.25f);
    EXPECT_NEAR(CGColorGetComponents(converted(deviceGray(), rgb(0, 1, 0)).get())[0], 0.7152, 1e-6);
}

TEST(ColorConversion, GoesThroughTablesAndBases) {
    const unsigned char table[] = {0, 0, 0, 255, 51, 0};
    const Space indexed = cf::adopt(CGColorSpaceCreateIndexed(deviceRGB().get(), 1, table));
    const auto nan = std::numeric_limits<CGFloat>::quiet_NaN();
    const struct {
        const char* what;
        CGFloat index;
        std::vector<CGFloat> expected;
    } cases[] = {
        {"the first", 0, {0, 0, 0, 0.5f}},
        {"the last", 1, {1, 0.2f, 0, 0.5f}},
        {"beyond the last", 900, {1, 0.2f, 0, 0.5f}},
        {"below the first", -3, {0, 0, 0, 0.5f}},
        {"not a number", nan, {0, 0, 0, 0.5f}},
    };
    for (const auto& [what, index, expected] : cases)
        EXPECT_EQ(componentsOf(converted(deviceRGB(), inSpace(indexed, {index, 0.5f}))), expected)
            << what;

    const Space pattern = cf::adopt(CGColorSpaceCreatePattern(deviceRGB().get()));
    EXPECT_EQ(componentsOf(converted(deviceRGB(), inSpace(pattern, {0.1f, 0.2f, 0.3f, 1}))),
              (std::vector<CGFloat>{0.1f, 0.2f, 0.3f, 1}));
    const Space alone = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    EXPECT_FALSE(converted(deviceRGB(), inSpace(alone, {1})));
}

TEST(ColorReadOut, GivesRedGreenBlueAndOpacity) {
    EXPECT_EQ(rgbaOf(gray(0.5f, 0.25f)), (std::array<CGFloat, 4>{0.5f, 0.5f, 0.5f, 0.25f}));
    EXPECT_EQ(rgbaOf(rgb(0.1f, 0.2f, 0.3f, 0.4f)),
              (std::array<CGFloat, 4>{0.1f, 0.2f, 0.3f, 0.4f}));
    const Space overRGB = cf::adopt(CGColorSpaceCreatePattern(deviceRGB().get()));
    EXPECT_EQ(rgbaOf(inSpace(overRGB, {0.1f, 0.2f, 0.3f, 0.4f})),
              (std::array<CGFloat, 4>{0.1f, 0.2f, 0.3f, 0.4f}));
    _CGColorGetRGBA(gray(1).get(), nullptr, nullptr, nullptr, nullptr);
}

TEST(ColorReadOut, SaysWhyAPatternHasNoColor) {
    CollectedLog log;
    const Space alone = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    EXPECT_EQ(rgbaOf(inSpace(alone, {1})), (std::array<CGFloat, 4>{0, 0, 0, 0}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "4 _CGColorGetRGBA: Attempting to get RGBA color from a CGColorRef "
                              "with a pattern.");
}

// ---- Mixing

Color mixed(const Color& a, const Color& b, CGFloat weightA, CGFloat weightB) {
    return cf::adopt(XGColorCreateBlendedColor(a.get(), b.get(), weightA, weightB));
}

TEST(ColorMixing, WeighsEachComponent) {
    EXPECT_EQ(componentsOf(mixed(rgb(1, 0, 0, 1), rgb(0, 1, 0, 0.5f), 0.5f, 0.25f)),
              (std::vector<CGFloat>{0.5f, 0.25f, 0, 0.625f}));
    EXPECT_EQ(componentsOf(mixed(gray(1), rgb(0, 0, 1), 0.5f, 0.5f)),
              (std::vector<CGFloat>{0.5f, 0.5f, 1, 1}))
        << "unlike spaces meet in RGB";
}

TEST(ColorMixing, LeavesOutWhatCannotBeSeen) {
    const Color faint = rgb(1, 0, 0, 0.005f);
    const Color blue = rgb(0, 0, 1, 0.5f);
    EXPECT_EQ(componentsOf(mixed(faint, blue, 0.3f, 0.5f)), (std::vector<CGFloat>{0, 0, 1, 0.25f}));
    EXPECT_EQ(componentsOf(mixed(blue, faint, 0.5f, 0.3f)), (std::vector<CGFloat>{0, 0, 1, 0.25f}));
    EXPECT_EQ(componentsOf(mixed(blue, nullptr, 0.5f, 1)), (std::vector<CGFloat>{0, 0, 1, 0.25f}));
    EXPECT_EQ(componentsOf(mixed(nullptr, blue, 1, 0.5f)), (std::vector<CGFloat>{0, 0, 1, 0.25f}));
    EXPECT_FALSE(mixed(nullptr, nullptr, 1, 1));
    EXPECT_FALSE(mixed(faint, nullptr, 1, 1));
}

TEST(ColorMixing, WholeWeightsKeepTheObject) {
    const Color red = rgb(1, 0, 0);
    const Color blue = rgb(0, 0, 1);
    EXPECT_EQ(mixed(red, blue, 1, 0).get(), red.get());
    EXPECT_EQ(mixed(red, blue, 0, 1).get(), blue.get());
}

} // namespace
