// CGPatternTest.cpp: patterns, and the colours that paint with them.

#include "XGColor.h"
#include "XGColorSpace.h"
#include "XGContext.h"
#include "XGPattern.h"
#include <CoreFoundation/CFRef.h>

#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

namespace {

using Pattern = cf::Ref<CGPatternRef>;

struct Description {
    void* info = nullptr;
    CGRect bounds = {{0, 0}, {4, 4}};
    CGFloat xStep = 8;
    int isColored = 1;
};

Pattern make(const Description& of = {}) {
    const CGPatternCallbacks callbacks = {};
    return cf::adopt(CGPatternCreate(of.info, of.bounds, CGAffineTransformMakeScale(2, 2), of.xStep,
                                     8, kCGPatternTilingConstantSpacing, of.isColored, &callbacks));
}

TEST(Pattern, IsColoredByOneAloneAndOpaqueWhenTold) {
    EXPECT_TRUE(XGPatternIsColored(make().get()));
    EXPECT_FALSE(XGPatternIsColored(make({.isColored = 2}).get()));
    EXPECT_FALSE(XGPatternIsOpaque(make().get()));
    EXPECT_EQ(XGPatternGetScale(make().get()), 1);
}

TEST(Pattern, EqualsOneOfTheSameParts) {
    int info = 0;
    const Pattern pattern = make();
    const Pattern rescaled = make();
    XGPatternSetScale(rescaled.get(), 1.0000001f);
    const Pattern opaque = make();
    XGPatternSetIsOpaque(opaque.get(), true);
    const struct {
        const char* what;
        Pattern other;
        bool equal;
    } cases[] = {
        {"the same parts", make(), true},
        {"nearly the same scale", rescaled, true},
        {"a step one bit off", make({.xStep = 8.000001f}), false},
        {"other info", make({.info = &info}), false},
        {"other bounds", make({.bounds = {{0, 0}, {4, 5}}}), false},
        {"uncoloured", make({.isColored = 0}), false},
        {"opaque", opaque, false},
        {"no pattern", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases)
        EXPECT_EQ(XGPatternEqualToPattern(pattern.get(), other.get()), equal) << what;
}

TEST(Pattern, DrawsThroughItsCallbacksAndReleasesItsInfoOnce) {
    struct Calls {
        CGContextRef drawnInto = nullptr;
        int releases = 0;
    } calls;
    const CGPatternCallbacks callbacks = {
        .drawPattern = [](void* info,
                          CGContextRef context) { static_cast<Calls*>(info)->drawnInto = context; },
        .releaseInfo = [](void* info) { ++static_cast<Calls*>(info)->releases; }};
    Pattern pattern = cf::adopt(CGPatternCreate(&calls, CGRectZero, CGAffineTransformIdentity, 1, 1,
                                                kCGPatternTilingNoDistortion, 1, &callbacks));
    const test::RecordingBackend destination;
    XGPatternDraw(pattern.get(), destination.context());
    EXPECT_EQ(calls.drawnInto, destination.context());
    pattern = nullptr;
    EXPECT_EQ(calls.releases, 1);
}

TEST(PatternColor, LiesInAPatternSpaceThatFits) {
    const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto overRGB = cf::adopt(CGColorSpaceCreatePattern(rgb.get()));
    const auto bare = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    const Pattern colored = make();
    const Pattern stencil = make({.isColored = 0});
    const CGFloat components[] = {0.25f, 0.5f, 0.75f, 1};
    const struct {
        const char* what;
        CGColorSpaceRef space;
        CGPatternRef pattern;
        CGColorSpaceRef base;
        size_t count;
    } cases[] = {
        {"coloured, bare", bare.get(), colored.get(), nullptr, 1},
        {"coloured, over RGB", overRGB.get(), colored.get(), nullptr, 1},
        {"uncoloured, over RGB", overRGB.get(), stencil.get(), rgb.get(), 4},
        {"uncoloured, bare", bare.get(), stencil.get(), XGColorSpaceGetDeviceGray(), 2},
    };
    for (const auto& [what, space, pattern, base, count] : cases) {
        const auto color = cf::adopt(CGColorCreateWithPattern(space, pattern, components));
        const CGColorSpaceRef own = CGColorGetColorSpace(color.get());
        EXPECT_EQ(CGColorSpaceGetModel(own), kCGColorSpaceModelPattern) << what;
        EXPECT_EQ(CGColorSpaceGetBaseColorSpace(own), base) << what;
        EXPECT_EQ(CGColorGetNumberOfComponents(color.get()), count) << what;
        EXPECT_EQ(CGColorGetPattern(color.get()), pattern) << what;
    }
}

TEST(PatternColor, IsComparedAndOpaqueByItsPattern) {
    const auto bare = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    const CGFloat alpha = 1;
    const auto colorOf = [&](const Pattern& pattern) {
        return cf::adopt(CGColorCreateWithPattern(bare.get(), pattern.get(), &alpha));
    };
    const Pattern pattern = make();
    const auto color = colorOf(pattern);
    EXPECT_TRUE(CGColorEqualToColor(color.get(), colorOf(make()).get()));
    EXPECT_FALSE(CGColorEqualToColor(color.get(), colorOf(make({.xStep = 9})).get()));
    EXPECT_TRUE(XGColorEqualToColorComponents(color.get(), bare.get(), &alpha, make().get()));
    EXPECT_FALSE(_CGColorIsOpaque(color.get()));
    XGPatternSetIsOpaque(pattern.get(), true);
    EXPECT_TRUE(_CGColorIsOpaque(color.get()));
}

} // namespace
