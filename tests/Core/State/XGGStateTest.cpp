// XGGStateTest.cpp: what a graphics state holds, copies and compares.

#include "XGGState.h"

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>
#include <Host/Host.h>

#include <gtest/gtest.h>

namespace {

using State = cf::Ref<XGGStateRef>;
using Color = cf::Ref<CGColorRef>;

State makeState() {
    return cf::adopt(XGGStateCreate());
}
Color makeGray(CGFloat gray, CGFloat alpha = 1) {
    return cf::adopt(CGColorCreateGenericGray(gray, alpha));
}
cf::Ref<CGPathRef> makeRectPath(CGRect rect) {
    return cf::adopt(CGPathCreateWithRect(rect, nullptr));
}

TEST(GState, IgnoresNegativeFontSizesAlone) {
    const State state = makeState();
    XGGStateSetFontSize(state.get(), 12);
    XGGStateSetFontSize(state.get(), -1);
    EXPECT_EQ(XGGStateGetFontSize(state.get()), 12);
    XGGStateSetFontSize(state.get(), 0);
    EXPECT_EQ(XGGStateGetFontSize(state.get()), 0);
}

TEST(GState, TellsPorterDuffOperatorsByTheOption) {
    const State state = makeState();
    const auto isPorterDuff = [&](int mode) {
        XGGStateSetBlendMode(state.get(), CGBlendMode(mode));
        return XGGStateBlendModeIsPorterDuff(state.get());
    };
    for (const bool on : {false, true}) {
        ASSERT_TRUE(HostOptionSetBoolean("NIMBRA_GPU_BLEND_MODES", on));
        for (int mode = -1; mode <= 40; ++mode) {
            const bool always = mode == 0 || mode == 17;
            const bool optional = mode == 16 || (mode >= 18 && mode <= 25);
            EXPECT_EQ(isPorterDuff(mode), always || (optional && on)) << mode << " option " << on;
        }
    }
}

TEST(GState, KeepsTheOldObjectOfAnEqualColor) {
    const State state = makeState();
    const Color first = makeGray(0.5f);
    XGGStateSetFillColor(state.get(), first.get());
    XGGStateSetFillColor(state.get(), makeGray(0.5f).get());
    EXPECT_EQ(XGGStateGetFillColor(state.get()), first.get());
    XGGStateSetFillColor(state.get(), nullptr);
    EXPECT_EQ(XGGStateGetFillColor(state.get()), nullptr);
    EXPECT_EQ(CFGetRetainCount(first.get()), 1);
}

// ---- Copies and equality

struct Change {
    const char* what;
    void (*apply)(XGGStateRef state);
};

constexpr Change kChanges[] = {
    {"CTM", [](XGGStateRef s) { XGGStateSetCTM(s, CGAffineTransformMakeScale(2, 2)); }},
    {"scales", [](XGGStateRef s) { XGGStateSetScales(s, 100, 100, false, 2, 2, 1); }},
    {"alpha", [](XGGStateRef s) { XGGStateSetAlpha(s, 0.5f); }},
    {"blend mode", [](XGGStateRef s) { XGGStateSetBlendMode(s, kCGBlendModeMultiply); }},
    {"interpolation",
     [](XGGStateRef s) { XGGStateSetInterpolationQuality(s, kCGInterpolationHigh); }},
    {"intent", [](XGGStateRef s) { XGGStateSetRenderingIntent(s, kCGRenderingIntentSaturation); }},
    {"fill colour", [](XGGStateRef s) { XGGStateSetFillColor(s, makeGray(0.5f).get()); }},
    {"stroke colour", [](XGGStateRef s) { XGGStateSetStrokeColor(s, makeGray(0.5f).get()); }},
    {"shadow colour", [](XGGStateRef s) { XGGStateSetShadow(s, makeGray(0.5f).get(), 0, 0, 0); }},
    {"shadow offset", [](XGGStateRef s) { XGGStateSetShadow(s, nullptr, 1, 0, 0); }},
    {"shadow blur", [](XGGStateRef s) { XGGStateSetShadow(s, nullptr, 0, 0, 1); }},
    {"pattern phase", [](XGGStateRef s) { XGGStateSetPatternPhase(s, CGSizeMake(0, 1)); }},
    {"font size", [](XGGStateRef s) { XGGStateSetFontSize(s, 12); }},
    {"character spacing", [](XGGStateRef s) { XGGStateSetCharacterSpacing(s, 1); }},
    {"text mode", [](XGGStateRef s) { XGGStateSetTextDrawingMode(s, kCGTextClip); }},
    {"flatness", [](XGGStateRef s) { XGGStateSetFlatness(s, 1); }},
    {"miter limit", [](XGGStateRef s) { XGGStateSetMiterLimit(s, 10); }},
    {"line cap", [](XGGStateRef s) { XGGStateSetLineCap(s, kCGLineCapRound); }},
    {"line join", [](XGGStateRef s) { XGGStateSetLineJoin(s, kCGLineJoinBevel); }},
    {"line width", [](XGGStateRef s) { XGGStateSetLineWidth(s, 2); }},
    {"line dash",
     [](XGGStateRef s) {
         const CGFloat lengths[] = {3, 1};
         XGGStateSetLineDash(s, lengths, 2, 0);
     }},
    {"composite operation", [](XGGStateRef s) { XGGStateSetCompositeOperation(s, 3); }},
    {"antialiasing style", [](XGGStateRef s) { XGGStateSetFontAntialiasingStyle(s, 3); }},
    {"antialias", [](XGGStateRef s) { XGGStateSetShouldAntialias(s, false); }},
    {"smooth fonts", [](XGGStateRef s) { XGGStateSetShouldSmoothFonts(s, false); }},
    {"position fonts", [](XGGStateRef s) { XGGStateSetShouldSubpixelPositionFonts(s, false); }},
    {"quantize fonts", [](XGGStateRef s) { XGGStateSetShouldSubpixelQuantizeFonts(s, false); }},
    {"rasterise clip", [](XGGStateRef s) { XGGStateSetShouldRasterizeClipRegion(s, true); }},
};

TEST(GState, EqualsAsLongAsEverySettingDoes) {
    EXPECT_TRUE(CFEqual(makeState().get(), makeState().get()));
    EXPECT_FALSE(XGGStateEqualToGState(nullptr, nullptr));
    for (const auto& [what, apply] : kChanges) {
        const State plain = makeState();
        const State changed = makeState();
        apply(changed.get());
        EXPECT_FALSE(XGGStateEqualToGState(plain.get(), changed.get())) << what;
        apply(plain.get());
        EXPECT_TRUE(XGGStateEqualToGState(plain.get(), changed.get())) << what;
    }
}

TEST(GState, ComparesClippingsByContents) {
    const State a = makeState();
    const State b = makeState();
    XGGStateClipToRect(a.get(), CGRectMake(0, 0, 5, 5));
    XGGStateClipToRect(b.get(), CGRectMake(0, 0, 6, 6));
    EXPECT_FALSE(XGGStateEqualToGState(a.get(), b.get()));
    XGGStateClipToRect(b.get(), CGRectMake(0, 0, 5, 5));
    EXPECT_TRUE(XGGStateEqualToGState(a.get(), b.get()));
}

TEST(GState, CopyHasEverySettingAndSharesItsObjects) {
    const State state = makeState();
    for (const Change& change : kChanges)
        change.apply(state.get());
    const State copy = cf::adopt(XGGStateCreateCopy(state.get()));
    EXPECT_TRUE(CFEqual(state.get(), copy.get()));
    EXPECT_EQ(XGGStateGetStrokeColor(state.get()), XGGStateGetStrokeColor(copy.get()));
    EXPECT_EQ(XGGStateGetLineDash(state.get()), XGGStateGetLineDash(copy.get()));
}

TEST(GState, CopyClipsOnItsOwnAndCountsAsUnmodified) {
    const State state = makeState();
    XGGStateClipToRect(state.get(), CGRectMake(0, 0, 10, 10));
    XGGStateClipToPath(state.get(), makeRectPath(CGRectMake(0, 0, 8, 8)).get(), false);
    const State copy = cf::adopt(XGGStateCreateCopy(state.get()));
    EXPECT_TRUE(XGGStateDidModifyClipRegion(state.get()));
    EXPECT_FALSE(XGGStateDidModifyClipRegion(copy.get()));
    EXPECT_TRUE(XGGStateShouldRasterizeClipRegion(copy.get()));

    XGGStateClipToPath(copy.get(), makeRectPath(CGRectMake(0, 0, 4, 4)).get(), true);
    EXPECT_EQ(CFArrayGetCount(XGClippingGetPaths(XGGStateGetClipping(state.get()))), 1);
    EXPECT_EQ(CFArrayGetCount(XGClippingGetPaths(XGGStateGetClipping(copy.get()))), 2);
    EXPECT_EQ(XGGStateGetClipBoundingBox(state.get()).size.width, 8);
}

// ---- Space

TEST(GState, CombinedTransformAppliesTheScalesAfterTheCTM) {
    const State state = makeState();
    XGGStateSetCTM(state.get(), {1, 0, 0, 1, 3, 4});
    XGGStateSetScales(state.get(), 100, 100, true, 4, 6, 2);
    const CGPoint mapped =
        CGPointApplyAffineTransform({1, 1}, *XGGStateGetCombinedCTM(state.get()));
    EXPECT_EQ(mapped.x, (1 + 3) * 2);
    EXPECT_EQ(mapped.y, (1 + 4) * 3);
}

TEST(GState, MovesTextByLessThanAPixelOnly) {
    const State state = makeState();
    XGGStateSetCTM(state.get(), {1, 0, 0, 1, 3, 4});
    XGGStateSetScales(state.get(), 100, 100, false, 2, 2, 1);
    EXPECT_EQ(XGGStateGetTextCTM(state.get()), XGGStateGetCombinedCTM(state.get()))
        << "50 pixels off";
    XGGStateSetScales(state.get(), 100, 100, false, 2, 2, 1.99f);
    EXPECT_NEAR(XGGStateGetTextCTM(state.get())->ty, 4.5, 1e-4) << "half a pixel off";
    EXPECT_EQ(XGGStateGetTextCTM(state.get())->a, 1);
    XGGStateSetScales(state.get(), 100, 100, false, 2, 2, 1);
    EXPECT_NEAR(XGGStateGetTextCTM(state.get())->ty, 4.5, 1e-4) << "stays once set";
}

TEST(GState, ScalesTheShadowAndDividesItWhenNotFlipped) {
    const State state = makeState();
    XGGStateSetShadow(state.get(), makeGray(0).get(), 3, 4, 5);
    XGGStateSetScales(state.get(), 10, 10, false, 2, 2, 2);
    EXPECT_TRUE(CGSizeEqualToSize(XGGStateGetShadowOffset(state.get()), {3, 4}));
    EXPECT_EQ(XGGStateGetShadowBlur(state.get()), 5);
    // Deliberate: a flipped context's is not divided by the device scale.
    XGGStateSetScales(state.get(), 10, 10, true, 2, 2, 2);
    EXPECT_TRUE(CGSizeEqualToSize(XGGStateGetShadowOffset(state.get()), {6, -8}));
    EXPECT_EQ(XGGStateGetShadowBlur(state.get()), 10);
}

TEST(GState, HasAShadowWhenItsColorCanBeSeen) {
    const State state = makeState();
    const auto hasShadow = [&](const Color& color) {
        XGGStateSetShadow(state.get(), color.get(), 1, 1, 1);
        return XGGStateHasShadow(state.get());
    };
    EXPECT_TRUE(hasShadow(makeGray(0, 0.002f)));
    EXPECT_FALSE(hasShadow(makeGray(0, 0.001f)));
    EXPECT_FALSE(hasShadow(nullptr));
}

TEST(GState, IgnoresClippingToAnEmptyPath) {
    const State state = makeState();
    XGGStateClipToPath(state.get(), nullptr, false);
    XGGStateClipToPath(state.get(), cf::adopt(CGPathCreateMutable()).get(), false);
    EXPECT_FALSE(XGGStateGetClipping(state.get()));
    EXPECT_FALSE(XGGStateDidModifyClipRegion(state.get()));
}

} // namespace
