// CGContextStateTest.cpp: contexts as objects, their stack of states and their settings.

#include "XGColorSpace.h"
#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Core/Context/CGContextRecord.h"
#include "Support/CollectedLog.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <limits>

using test::RecordingBackend;
using Calls = std::vector<std::string>;

namespace {

constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();

TEST(Context, IsMadeOverATableOfVersionZero) {
    XGContextCallbacks table = {};
    EXPECT_FALSE(XGContextCreate(7, nullptr, nullptr, 0));
    table.version = 1;
    EXPECT_FALSE(XGContextCreate(7, &table, nullptr, 0));
    table.version = 0;
    const auto context = cf::adopt(XGContextCreate(7, &table, nullptr, 1 << 16));
    ASSERT_TRUE(context);
    EXPECT_EQ(CGContextGetType(context.get()), 7u);
    EXPECT_EQ(CFGetTypeID(context.get()), CGContextGetTypeID());
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(context.get())[(1 << 16) - 1], 0)
        << "the record is as large as its kind asks for";
}

TEST(Context, TellsItsDestinationWhenItEnds) {
    RecordingBackend backend;
    CGContextFlush(backend.context());
    EXPECT_EQ(backend.lastFlags(), 13u) << "font smoothing waits to be asked for";
    CGContextSynchronize(backend.context());
    CGContextSaveGState(backend.context());
    backend.release();
    EXPECT_EQ(backend.takeCalls(), (Calls{"flush", "synchronize", "release"}));
}

TEST(Context, HandsItsAllowancesToTheDestination) {
    const struct {
        void (*allow)(CGContextRef context, bool allows);
        uint32_t bit;
    } cases[] = {
        {CGContextSetAllowsAntialiasing, 1},
        {CGContextSetAllowsFontSmoothing, 2},
        {CGContextSetAllowsFontSubpixelPositioning, 4},
        {CGContextSetAllowsFontSubpixelQuantization, 8},
    };
    RecordingBackend backend;
    for (const auto& [allow, bit] : cases) {
        allow(backend.context(), true);
        CGContextFlush(backend.context());
        EXPECT_TRUE(backend.lastFlags() & bit) << bit;
        allow(backend.context(), false);
        CGContextFlush(backend.context());
        EXPECT_FALSE(backend.lastFlags() & bit) << bit;
    }
}

// ---- The stack

TEST(ContextStack, RestoresWhatWasSavedLast) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSetLineWidth(c, 2);
    CGContextSaveGState(c);
    CGContextSetLineWidth(c, 3);
    CGContextSaveGState(c);
    CGContextSetLineWidth(c, 4);
    CGContextRestoreGState(c);
    EXPECT_EQ(CGContextGetLineWidth(c), 3);
    CGContextRestoreGState(c);
    EXPECT_EQ(CGContextGetLineWidth(c), 2);
    CGContextRestoreGState(c);
    EXPECT_EQ(CGContextGetLineWidth(c), 2);
    CollectedLog log;
    CGContextRestoreGState(c);
    EXPECT_EQ(CGContextGetLineWidth(c), 2) << "nothing saved, nothing restored";
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "3 CGContextRestoreGState: no graphics state was saved");
}

TEST(ContextStack, LeavesPathAndTextMatrixAlone) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSaveGState(c);
    CGContextMoveToPoint(c, 1, 2);
    CGContextSetTextPosition(c, 3, 4);
    CGContextRestoreGState(c);
    EXPECT_FALSE(CGContextIsPathEmpty(c));
    EXPECT_EQ(CGContextGetTextPosition(c).x, 3);
}

TEST(ContextStack, MarksTheClipForRasterisingWhenTheStateThatGoesHadChangedIt) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    for (const bool changes : {false, true}) {
        CGContextSaveGState(c);
        if (changes)
            CGContextClipToRect(c, CGRectMake(0, 0, 1, 1));
        CGContextRestoreGState(c);
        EXPECT_EQ(XGGStateShouldRasterizeClipRegion(backend.state()), changes);
        EXPECT_FALSE(XGGStateGetClipping(backend.state()));
    }
}

// ---- Settings

TEST(ContextSettings, IgnoreOrReplaceWhatMakesNoSense) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSetLineWidth(c, 3);
    CGContextSetFlatness(c, 3);
    for (const CGFloat bad : {-1.f, kNaN, kInfinity}) {
        CGContextSetLineWidth(c, bad);
        CGContextSetFlatness(c, bad);
        CGContextSetFontSize(c, 12);
        CGContextSetFontSize(c, bad);
        EXPECT_EQ(CGContextGetLineWidth(c), 3) << bad;
        EXPECT_EQ(XGGStateGetFlatness(backend.state()), 3) << bad;
        EXPECT_EQ(XGGStateGetFontSize(backend.state()), 0) << bad;
    }
    CGContextSetLineWidth(c, 0);
    EXPECT_EQ(CGContextGetLineWidth(c), 0);
}

TEST(ContextSettings, ReachTheState) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    const XGGStateRef s = backend.state();
    CGContextSetLineCap(c, kCGLineCapSquare);
    CGContextSetLineJoin(c, kCGLineJoinBevel);
    CGContextSetMiterLimit(c, 7);
    const CGFloat lengths[] = {3, 1};
    CGContextSetLineDash(c, 0.5f, lengths, 2);
    CGContextSetAlpha(c, 0.5f);
    CGContextSetBlendMode(c, kCGBlendModeScreen);
    CGContextSetInterpolationQuality(c, kCGInterpolationHigh);
    CGContextSetRenderingIntent(c, kCGRenderingIntentSaturation);
    CGContextSetPatternPhase(c, {1, 2});
    CGContextSetShouldAntialias(c, false);
    CGContextSetShouldSmoothFonts(c, false);
    CGContextSetShouldSubpixelPositionFonts(c, false);
    CGContextSetShouldSubpixelQuantizeFonts(c, false);
    CGContextSetCharacterSpacing(c, 3);
    CGContextSetTextDrawingMode(c, kCGTextClip);
    CGContextSetCompositeOperation(c, 5);
    CGContextSetFontAntialiasingStyle(c, 6);
    CGContextSetFontSmoothingStyle(c, 16);
    CGContextSetFontRenderingMode(c, 2);
    CGContextSetSmoothness(c, 0.25f);
    CGContextSetSmoothness(c, kNaN);
    CGContextSaveGState(c);
    const struct {
        const char* what;
        double value, expected;
    } cases[] = {
        {"cap", double(CGContextGetLineCap(c)), kCGLineCapSquare},
        {"join", double(CGContextGetLineJoin(c)), kCGLineJoinBevel},
        {"miter limit", CGContextGetMiterLimit(c), 7},
        {"dash", double(CGContextGetLineDashCount(c)), 2},
        {"dash phase", XGLineDashGetPhase(XGGStateGetLineDash(s)), 0.5},
        {"alpha", XGGStateGetAlpha(s), 0.5},
        {"blend mode", double(XGGStateGetBlendMode(s)), kCGBlendModeScreen},
        {"interpolation", double(CGContextGetInterpolationQuality(c)), kCGInterpolationHigh},
        {"intent", double(XGGStateGetRenderingIntent(s)), kCGRenderingIntentSaturation},
        {"phase", XGGStateGetPatternPhase(s).height, 2},
        {"antialias", double(CGContextGetShouldAntialias(c)), 0},
        {"smooth fonts", double(CGContextGetShouldSmoothFonts(c)), 0},
        {"position fonts", double(XGGStateShouldSubpixelPositionFonts(s)), 0},
        {"quantize fonts", double(XGGStateShouldSubpixelQuantizeFonts(s)), 0},
        {"spacing", XGGStateGetCharacterSpacing(s), 3},
        {"text mode", double(XGGStateGetTextDrawingMode(s)), kCGTextClip},
        {"operation", double(CGContextGetCompositeOperation(c)), 5},
        {"style", double(CGContextGetFontAntialiasingStyle(c)), 6},
        {"smoothing style", double(CGContextGetFontSmoothingStyle(c)), 16},
        {"rendering mode", double(CGContextGetFontRenderingMode(c)), 2},
        {"smoothness", CGContextGetSmoothness(c), 0.25},
    };
    for (const auto& [what, value, expected] : cases)
        EXPECT_EQ(value, expected) << what;
}

TEST(ContextSettings, TextMatrixHoldsThePosition) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetTextMatrix(c)));
    CGContextSetTextMatrix(c, {2, 0, 0, 2, 5, 6});
    EXPECT_EQ(CGContextGetTextPosition(c).y, 6);
    CGContextSetTextPosition(c, 7, 8);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetTextMatrix(c), {2, 0, 0, 2, 7, 8}));
}

TEST(ContextSettings, KeepSizesInPointsUnlooked) {
    RecordingBackend backend;
    XGContextSetSizeInPoints(backend.context(), -1, 2, 3);
    CGFloat width = 0, third = 0;
    XGContextGetSizeInPoints(backend.context(), &width, nullptr, &third);
    EXPECT_EQ(width, -1);
    EXPECT_EQ(third, 3);
}

// ---- Colours

TEST(ContextColor, MakesNoNewObjectOfAnEqualColor) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSetRGBFillColor(c, 0.1f, 0.2f, 0.3f, 0.4f);
    const CGColorRef first = XGGStateGetFillColor(backend.state());
    CGContextSetRGBFillColor(c, 0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(XGGStateGetFillColor(backend.state()), first);
    CGContextSetRGBFillColor(c, 0.1f, 0.2f, 0.3f, 0.5f);
    EXPECT_NE(XGGStateGetFillColor(backend.state()), first);
    EXPECT_EQ(XGGStateGetStrokeColor(backend.state()), nullptr);
}

TEST(ContextColor, SetsEachOfBothInEachDeviceSpace) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    const auto fillModel = [&] {
        return CGColorSpaceGetModel(CGColorGetColorSpace(XGGStateGetFillColor(backend.state())));
    };
    const auto strokeModel = [&] {
        return CGColorSpaceGetModel(CGColorGetColorSpace(XGGStateGetStrokeColor(backend.state())));
    };
    CGContextSetGrayFillColor(c, 0.5f, 1);
    CGContextSetCMYKStrokeColor(c, 0, 0, 0, 1, 1);
    EXPECT_EQ(fillModel(), kCGColorSpaceModelMonochrome);
    EXPECT_EQ(strokeModel(), kCGColorSpaceModelCMYK);
    CGContextSetCMYKFillColor(c, 0, 0, 0, 1, 1);
    CGContextSetGrayStrokeColor(c, 0.5f, 1);
    EXPECT_EQ(fillModel(), kCGColorSpaceModelCMYK);
    EXPECT_EQ(strokeModel(), kCGColorSpaceModelMonochrome);
    CGContextSetRGBStrokeColor(c, 0, 0, 0, 1);
    EXPECT_EQ(strokeModel(), kCGColorSpaceModelRGB);
}

TEST(ContextColor, ANewSpaceStartsFromItsDefaultAndAnEqualOneChangesNothing) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextSetRGBFillColor(c, 1, 0, 0, 1);
    const CGColorRef red = XGGStateGetFillColor(backend.state());
    CGContextSetFillColorSpace(c, XGColorSpaceGetDeviceRGB());
    EXPECT_EQ(XGGStateGetFillColor(backend.state()), red);
    CGContextSetFillColorSpace(c, XGColorSpaceGetDeviceGray());
    EXPECT_EQ(CGColorGetComponents(XGGStateGetFillColor(backend.state()))[0], 0);

    const CGFloat components[] = {0.25f, 0.5f};
    CGContextSetFillColor(c, components);
    EXPECT_EQ(CGColorGetAlpha(XGGStateGetFillColor(backend.state())), 0.5f);
    CGContextSetFillColor(c, nullptr);
    CGContextSetFillColorSpace(c, nullptr);
    EXPECT_EQ(CGColorGetAlpha(XGGStateGetFillColor(backend.state())), 0.5f);
    CGContextSetStrokeColor(c, components);
    EXPECT_EQ(CGColorGetColorSpace(XGGStateGetStrokeColor(backend.state())),
              XGColorSpaceGetDeviceGray())
        << "gray before any colour is set";
}

TEST(ContextColor, ShadowsAreAThirdBlackUnlessAColorIsGiven) {
    RecordingBackend backend;
    CGContextSetShadow(backend.context(), {3, 4}, 5);
    const CGColorRef color = XGGStateGetShadowColor(backend.state());
    EXPECT_EQ(CGColorGetComponents(color)[0], 0);
    EXPECT_FLOAT_EQ(CGColorGetAlpha(color), 1 / 3.f);
    EXPECT_EQ(XGGStateGetShadowOffset(backend.state()).width, 3);
    EXPECT_EQ(XGGStateGetShadowBlur(backend.state()), 5);
    CGContextSetShadow(backend.context(), {0, 0}, 0);
    EXPECT_EQ(XGGStateGetShadowColor(backend.state()), color) << "made once";
    CGContextSetShadowWithColor(backend.context(), {0, 0}, 0, nullptr);
    EXPECT_FALSE(XGGStateHasShadow(backend.state()));
}

TEST(ContextColorDeathTest, FillColorAsColorAborts) {
    RecordingBackend backend;
    EXPECT_DEATH(CGContextGetFillColorAsColor(backend.context()), "NOT YET IMPLEMENTED");
}

// ---- Transforms

TEST(ContextTransform, NewOnesComeBeforeTheCurrent) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextTranslateCTM(c, 10, 20);
    CGContextScaleCTM(c, 2, 3);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetCTM(c), {2, 0, 0, 3, 10, 20}));
    CGContextRotateCTM(c, 1.5707963f);
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetCTM(c), {0, 3, -2, 0, 10, 20}));
    CGContextSetCTM(c, CGAffineTransformMakeScale(4, 4));
    CGContextConcatCTM(c, CGAffineTransformMakeTranslation(1, 1));
    EXPECT_TRUE(CGAffineTransformEqualToTransform(CGContextGetCTM(c), {4, 0, 0, 4, 4, 4}));
    EXPECT_TRUE(CGAffineTransformIsIdentity(CGContextGetBaseCTM(c)));
}

TEST(ContextTransform, ConvertsThereAndBack) {
    RecordingBackend backend;
    const CGContextRef c = backend.context();
    CGContextConcatCTM(c, {0, 2, -4, 0, 8, 16});
    const CGPoint point = CGContextConvertPointToDeviceSpace(c, {1, 2});
    EXPECT_TRUE(CGPointEqualToPoint(point, {0, 18}));
    EXPECT_TRUE(CGPointEqualToPoint(CGContextConvertPointToUserSpace(c, point), {1, 2}));
    const CGSize size = CGContextConvertSizeToDeviceSpace(c, {1, 2});
    EXPECT_TRUE(CGSizeEqualToSize(size, {-8, 2}));
    EXPECT_TRUE(CGSizeEqualToSize(CGContextConvertSizeToUserSpace(c, size), {1, 2}));
    const CGRect rect = CGContextConvertRectToDeviceSpace(c, CGRectMake(0, 0, 1, 2));
    EXPECT_TRUE(CGRectEqualToRect(rect, CGRectMake(0, 16, 8, 2)));
    EXPECT_TRUE(
        CGRectEqualToRect(CGContextConvertRectToUserSpace(c, rect), CGRectMake(0, 0, 1, 2)));
}

TEST(ContextTransform, DeviceSpaceOfABitmapCountsFromItsTop) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto bitmap = cf::adopt(
        CGBitmapContextCreate(nullptr, 4, 10, 8, 0, space.get(), kCGImageAlphaPremultipliedLast));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(
        CGPointEqualToPoint(CGContextConvertPointToDeviceSpace(bitmap.get(), {1, 2}), {1, 8}));
}

} // namespace
