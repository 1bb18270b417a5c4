// CGColorSpaceTest.cpp: which spaces can be made, and what they answer.

#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <limits>
#include <vector>

namespace {

using Space = cf::Ref<CGColorSpaceRef>;

constexpr CGFloat kWhite[] = {0.95f, 1, 1.09f};
constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
constexpr unsigned char kTable[256 * 4] = {1, 2, 3, 4, 5, 6};

Space gray() {
    return cf::adopt(CGColorSpaceCreateDeviceGray());
}
Space rgb() {
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}
Space cmyk() {
    return cf::adopt(CGColorSpaceCreateDeviceCMYK());
}
Space lab() {
    return cf::adopt(CGColorSpaceCreateLab(kWhite, nullptr, nullptr));
}
Space indexed(const Space& base, size_t last = 1) {
    return cf::adopt(CGColorSpaceCreateIndexed(base.get(), last, kTable));
}
Space pattern(const Space& base) {
    return cf::adopt(CGColorSpaceCreatePattern(base.get()));
}
Space calibratedRGB() {
    return cf::adopt(CGColorSpaceCreateCalibratedRGB(kWhite, nullptr, nullptr, nullptr));
}

TEST(ColorSpace, TellsItsModelAndComponents) {
    const struct {
        const char* what;
        Space space;
        CGColorSpaceModel model;
        size_t components;
    } cases[] = {
        {"gray", gray(), kCGColorSpaceModelMonochrome, 1},
        {"RGB", rgb(), kCGColorSpaceModelRGB, 3},
        {"CMYK", cmyk(), kCGColorSpaceModelCMYK, 4},
        {"calibrated gray", cf::adopt(CGColorSpaceCreateCalibratedGray(kWhite, nullptr, 2.2f)),
         kCGColorSpaceModelMonochrome, 1},
        {"calibrated RGB", calibratedRGB(), kCGColorSpaceModelRGB, 3},
        {"Lab", lab(), kCGColorSpaceModelLab, 3},
        {"indexed", indexed(rgb()), kCGColorSpaceModelIndexed, 1},
        {"pattern", pattern(nullptr), kCGColorSpaceModelPattern, 0},
        {"pattern over CMYK", pattern(cmyk()), kCGColorSpaceModelPattern, 4},
        {"none", nullptr, kCGColorSpaceModelUnknown, 0},
    };
    for (const auto& [what, space, model, components] : cases) {
        EXPECT_EQ(CGColorSpaceGetModel(space.get()), model) << what;
        EXPECT_EQ(CGColorSpaceGetNumberOfComponents(space.get()), components) << what;
        EXPECT_FALSE(CGColorSpaceIsWideGamutRGB(space.get())) << what;
        EXPECT_TRUE(CGColorSpaceSupportsOutput(space.get())) << what;
    }
}

TEST(ColorSpace, RefusesWhatMakesNoSpace) {
    const struct {
        const char* what;
        CGColorSpaceRef made;
    } cases[] = {
        {"gray without a white point", CGColorSpaceCreateCalibratedGray(nullptr, kWhite, 1)},
        {"gray of negative gamma", CGColorSpaceCreateCalibratedGray(kWhite, nullptr, -1)},
        {"RGB without a white point",
         CGColorSpaceCreateCalibratedRGB(nullptr, kWhite, kWhite, nullptr)},
        {"Lab without a white point", CGColorSpaceCreateLab(nullptr, nullptr, nullptr)},
        {"a palette of one", indexed(rgb(), 0).release()},
        {"a palette of 257", indexed(rgb(), 256).release()},
        {"a palette without a base", indexed(nullptr).release()},
        {"a palette without colours", CGColorSpaceCreateIndexed(rgb().get(), 1, nullptr)},
        {"a palette of palettes", indexed(indexed(rgb())).release()},
        {"a palette of patterns", indexed(pattern(rgb())).release()},
        {"a pattern of patterns", pattern(pattern(rgb())).release()},
    };
    for (const auto& [what, made] : cases)
        EXPECT_EQ(made, nullptr) << what;
    EXPECT_TRUE(cf::adopt(CGColorSpaceCreateCalibratedGray(kWhite, nullptr, kNaN)))
        << "a NaN gamma is not negative";
}

TEST(ColorSpace, DeviceSpacesAreTheSameForAllAndOutliveReleases) {
    for (int times = 0; times < 3; ++times) {
        CGColorSpaceRelease(CGColorSpaceCreateDeviceGray());
        CGColorSpaceRelease(XGColorSpaceGetDeviceRGB());
        CGColorSpaceRelease(XGColorSpaceGetDeviceCMYK());
    }
    EXPECT_EQ(gray().get(), XGColorSpaceGetDeviceGray());
    EXPECT_EQ(rgb().get(), XGColorSpaceGetDeviceRGB());
    EXPECT_EQ(cmyk().get(), cf::adopt(XGColorSpaceGetDeviceCMYK()).get());
    EXPECT_EQ(CGColorSpaceGetModel(rgb().get()), kCGColorSpaceModelRGB);
}

TEST(ColorSpace, GivesItsTableBack) {
    const Space space = indexed(rgb(), 255);
    ASSERT_EQ(CGColorSpaceGetColorTableCount(space.get()), 256u);
    std::vector<uint8_t> table(256 * 3);
    CGColorSpaceGetColorTable(space.get(), table.data());
    EXPECT_TRUE(std::equal(table.begin(), table.end(), kTable));
    EXPECT_EQ(CGColorSpaceGetBaseColorSpace(space.get()), rgb().get());

    uint8_t untouched = 7;
    CGColorSpaceGetColorTable(rgb().get(), &untouched);
    EXPECT_EQ(untouched, 7);
    EXPECT_EQ(CGColorSpaceGetColorTableCount(rgb().get()), 0u);
}

TEST(ColorSpace, AnswersToGenericNames) {
    const struct {
        CFStringRef name;
        CGColorSpaceRef device;
    } cases[] = {
        {kCGColorSpaceGenericGray, gray().get()},
        {kCGColorSpaceGenericRGB, rgb().get()},
        {kCGColorSpaceGenericCMYK, cmyk().get()},
        {CFSTR("kCGColorSpaceGenericRGB"), rgb().get()},
    };
    for (const auto& [name, device] : cases) {
        const Space space = cf::adopt(CGColorSpaceCreateWithName(name));
        EXPECT_EQ(space.get(), device);
        const auto kept = cf::adopt(CGColorSpaceCopyName(device));
        EXPECT_TRUE(kept && CFEqual(kept.get(), name)) << "known by that name from then on";
    }
    EXPECT_FALSE(CGColorSpaceCreateWithName(nullptr));
    EXPECT_FALSE(CGColorSpaceCreateWithName(kCGColorSpaceDisplayP3));
    EXPECT_FALSE(CGColorSpaceCreateWithName(kCGColorSpaceGenericGrayGamma2_2));
    EXPECT_FALSE(CGColorSpaceCreateWithName(CFSTR("another")));
    EXPECT_FALSE(XGColorSpaceIsSRGB(rgb().get()));
    EXPECT_FALSE(CGColorSpaceCopyName(lab().get()));
}

// Deliberate: the comparison is coarse, so that colours pass between RGB spaces untouched.
TEST(ColorSpace, EqualsByModelComponentsAndBaseAlone) {
    const struct {
        const char* what;
        Space a, b;
        bool equal;
    } cases[] = {
        {"calibrated and device RGB", calibratedRGB(), rgb(), true},
        {"RGB and gray", rgb(), gray(), false},
        {"RGB and Lab, three components each", rgb(), lab(), false},
        {"palettes of two sizes over RGB", indexed(rgb(), 1), indexed(calibratedRGB(), 200), true},
        {"palettes over RGB and gray", indexed(rgb()), indexed(gray()), false},
        {"patterns with a base and without", pattern(rgb()), pattern(nullptr), false},
        {"patterns without a base", pattern(nullptr), pattern(nullptr), true},
        {"with none", rgb(), nullptr, false},
    };
    for (const auto& [what, a, b, equal] : cases) {
        EXPECT_EQ(XGColorSpaceEqualToColorSpace(a.get(), b.get()), equal) << what;
        EXPECT_EQ(XGColorSpaceEqualToColorSpace(b.get(), a.get()), equal) << what;
    }
    EXPECT_FALSE(XGColorSpaceEqualToColorSpace(nullptr, nullptr));
    EXPECT_TRUE(CFEqual(calibratedRGB().get(), rgb().get()));
}

// Deliberate: opacity is clamped in gray alone, and lightness at 1.
TEST(ColorSpace, ClampsComponentsByItsModel) {
    constexpr CGFloat kUntouched = 77;
    using Values = std::array<CGFloat, 5>;
    const struct {
        const char* what;
        Space space;
        Values in, out;
    } cases[] = {
        {"gray and its opacity", gray(), {2, -1, 9}, {1, 0, kUntouched, kUntouched, kUntouched}},
        {"RGB", rgb(), {2, -1, kNaN, 0.5f}, {1, 0, 0, kUntouched, kUntouched}},
        {"RGB, infinite",
         rgb(),
         {kInfinity, -kInfinity, 0.5f, 3},
         {0, 0, 0.5f, kUntouched, kUntouched}},
        {"CMYK", cmyk(), {2, -1, 0.25f, kNaN, 3}, {1, 0, 0.25f, 0, kUntouched}},
        {"Lab", lab(), {50, 200, -200}, {1, 100, -100, kUntouched, kUntouched}},
        {"Lab, not finite",
         lab(),
         {kNaN, kNaN, kInfinity},
         {0, -100, -100, kUntouched, kUntouched}},
        {"pattern", pattern(rgb()), {2, 2, 2}, {1, kUntouched, kUntouched, kUntouched, kUntouched}},
        {"indexed",
         indexed(rgb()),
         {2},
         {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched}},
        {"none", nullptr, {2}, {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched}},
    };
    for (const auto& [what, space, in, expected] : cases) {
        Values out;
        out.fill(kUntouched);
        XGColorSpaceClampComponents(space.get(), in.data(), out.data());
        EXPECT_EQ(out, expected) << what;
    }
}

TEST(ColorSpace, StartsDrawingsInOpaqueBlack) {
    const struct {
        const char* what;
        Space space;
        std::vector<CGFloat> expected;
    } cases[] = {
        {"gray", gray(), {0, 1}},
        {"indexed", indexed(rgb()), {0, 1}},
        {"RGB", rgb(), {0, 0, 0, 1}},
        {"CMYK", cmyk(), {0, 0, 0, 1, 1}},
        {"pattern over RGB", pattern(rgb()), {0, 0, 0, 1}},
        {"pattern alone", pattern(nullptr), {1}},
    };
    for (const auto& [what, space, expected] : cases) {
        const auto color = cf::adopt(XGColorSpaceCopyDefaultColor(space.get()));
        ASSERT_TRUE(color) << what;
        const CGFloat* const components = CGColorGetComponents(color.get());
        const size_t count = CGColorGetNumberOfComponents(color.get());
        EXPECT_EQ(std::vector<CGFloat>(components, components + count), expected) << what;
        EXPECT_EQ(CGColorGetColorSpace(color.get()), space.get()) << what;
    }
    EXPECT_FALSE(XGColorSpaceCopyDefaultColor(lab().get()));
    EXPECT_FALSE(XGColorSpaceCopyDefaultColor(pattern(lab()).get()));
    EXPECT_FALSE(XGColorSpaceCopyDefaultColor(nullptr));
}

TEST(ColorSpace, DescribesItself) {
    const Space space = lab();
    const auto text = cf::adopt(CFCopyDescription(space.get()));
    char expected[128];
    std::snprintf(expected, sizeof expected,
                  "<CGColorSpace %p { name=(null), model=3, components=3 }>",
                  static_cast<void*>(space.get()));
    char actual[128] = "";
    CFStringGetCString(text.get(), actual, sizeof actual, kCFStringEncodingUTF8);
    EXPECT_STREQ(actual, expected);
}

} // namespace
