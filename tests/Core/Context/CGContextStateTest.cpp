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

using test::RecordingBackend;
using Calls = std::vector<std::string>;

namespace {

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
