// AllocationTest.cpp: what drawing allocates, and what becomes of it when there is no memory.

#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

namespace {

using Context = cf::Ref<CGContextRef>;

// A destination that takes everything and keeps nothing.
Context makeContext() {
    XGContextCallbacks table = {};
    table.drawPath = [](XGGStateRef, uint32_t, CGPathRef, CGPathRef, bool, void*) {};
    table.fillRects = [](XGGStateRef, uint32_t, const CGRect*, size_t, void*) {};
    return cf::adopt(XGContextCreate(100, &table, nullptr, 0));
}

void fillPolygon(CGContextRef context) {
    CGContextMoveToPoint(context, 0, 0);
    for (int corner = 1; corner < 20; ++corner)
        CGContextAddLineToPoint(context, CGFloat(corner), CGFloat(corner % 2));
    CGContextFillPath(context);
}

// A call of every kind of setting, with values that differ from one round to the next.
void setEverything(CGContextRef c) {
    static int round = 0;
    const auto value = static_cast<CGFloat>(++round % 100) / 100;
    const CGFloat lengths[] = {value, 1};
    CGContextSetLineWidth(c, value);
    CGContextSetLineCap(c, kCGLineCapRound);
    CGContextSetLineJoin(c, kCGLineJoinBevel);
    CGContextSetMiterLimit(c, value);
    CGContextSetLineDash(c, value, lengths, 2);
    CGContextSetFlatness(c, value);
    CGContextSetAlpha(c, value);
    CGContextSetBlendMode(c, kCGBlendModeMultiply);
    CGContextSetInterpolationQuality(c, kCGInterpolationHigh);
    CGContextSetRenderingIntent(c, kCGRenderingIntentSaturation);
    CGContextSetPatternPhase(c, {value, 1});
    CGContextSetShouldAntialias(c, round % 2);
    CGContextSetRGBFillColor(c, value, 0, 0, 1);
    CGContextSetGrayStrokeColor(c, value, 1);
    CGContextSetCMYKFillColor(c, value, 0, 0, 1, 1);
    CGContextSetShadow(c, {value, 1}, 3);
    CGContextTranslateCTM(c, value, 1);
    CGContextScaleCTM(c, 1, -1);
    CGContextRotateCTM(c, value);
    CGContextSetTextMatrix(c, {value, 0, 0, 1, 0, 0});
    CGContextSetFontSize(c, value);
}

TEST(Allocation, IsSparedWhereDrawingRepeats) {
    const struct {
        const char* what;
        void (*draw)(CGContextRef context);
        std::size_t allocations;
    } cases[] = {
        {"rectangle", [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 4, 4)); }, 0},
        {"polygon", fillPolygon, 0},
        {"line",
         [](CGContextRef c) {
             const CGPoint points[] = {{0, 0}, {4, 4}};
             CGContextStrokeLineSegments(c, points, 2);
         },
         0},
        {"transform", [](CGContextRef c) { CGContextRotateCTM(c, 1); }, 0},
        {"equal colour", [](CGContextRef c) { CGContextSetRGBFillColor(c, 1, 0, 0, 1); }, 0},
        {"save and restore",
         [](CGContextRef c) {
             CGContextSaveGState(c);
             CGContextSaveGState(c);
             CGContextRestoreGState(c);
             CGContextRestoreGState(c);
         },
         0},
        {"save, set everything, restore",
         [](CGContextRef c) {
             CGContextSaveGState(c);
             setEverything(c);
             CGContextRestoreGState(c);
         },
         0},
        {"settings", setEverything, 0},
    };
    for (const auto& [what, draw, allocations] : cases) {
        const Context context = makeContext();
        for (int round = 0; round < 5; ++round)
            draw(context.get());
        const test::AllocationMeter meter;
        draw(context.get());
        EXPECT_LE(meter.allocations(), allocations) << what;
    }
}

TEST(Allocation, CopiesOfAClippedStateShareItsPaths) {
    const Context context = makeContext();
    CGContextAddEllipseInRect(context.get(), CGRectMake(0, 0, 9, 9));
    CGContextClip(context.get());
    CGContextSaveGState(context.get()); // Makes the stack.
    const test::AllocationMeter meter;
    CGContextSaveGState(context.get());
    EXPECT_LE(meter.allocations(), 2u) << "the state and its clipping";
    CGContextRestoreGState(context.get());
    CGContextSaveGState(context.get());
    EXPECT_LE(meter.allocations(), 2u) << "what was restored away is used again";
}

TEST(Allocation, FailsToNothingAndLeaksNothing) {
    const struct {
        const char* what;
        void (*operation)();
    } cases[] = {
        {"context", [] { makeContext(); }},
        {"colours",
         [] {
             const auto color = cf::adopt(CGColorCreateGenericRGB(1, 0, 0, 1));
             const auto half = cf::adopt(CGColorCreateCopyWithAlpha(color.get(), 0.5f));
         }},
        {"spaces",
         [] {
             const unsigned char table[6] = {};
             const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
             const auto indexed = cf::adopt(CGColorSpaceCreateIndexed(rgb.get(), 1, table));
             const auto pattern = cf::adopt(CGColorSpaceCreatePattern(rgb.get()));
         }},
        {"settings",
         [] {
             const Context context = makeContext();
             const CGFloat lengths[] = {3, 1};
             CGContextSetLineDash(context.get(), 0, lengths, 2);
             CGContextSetRGBFillColor(context.get(), 1, 0, 0, 1);
             CGContextSetShadow(context.get(), {1, 1}, 1);
             CGContextClipToRect(context.get(), CGRectMake(0, 0, 5, 5));
             CGContextSaveGState(context.get());
             CGContextBeginTransparencyLayer(context.get(), nullptr);
             CGContextFillRect(context.get(), CGRectMake(0, 0, 4, 4));
             CGContextEndTransparencyLayer(context.get());
             CGContextRestoreGState(context.get());
         }},
    };
    for (const auto& [what, operation] : cases) {
        const test::FailureSweep sweep = test::failEachAllocation(operation);
        EXPECT_GT(sweep.failures, 0u) << what;
        EXPECT_EQ(sweep.leakedBytes, 0) << what;
    }
}

TEST(Allocation, RefusesRecordsThatNoMemoryHolds) {
    const XGContextCallbacks table = {};
    EXPECT_FALSE(XGContextCreate(100, &table, nullptr, SIZE_MAX));
}

} // namespace
