// RecordingContextTest.cpp: what contexts without pixels record, and what ends it.

#include "XGBitmapContext.h"
#include "XGCommandQueue.h"
#include "XGContext.h"
#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"
#include "Support/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using test::Context;
using test::makeRecording;
using test::Picture;
using Image = cf::Ref<CGImageRef>;
using Kinds = std::vector<XGCommandKind>;

constexpr CGBitmapInfo kRecords = 0x40000000;

// Looks at the queue through an image, which closes it.
Kinds kindsIn(CGContextRef context) {
    const Image image = cf::adopt(CGBitmapContextCreateImage(context));
    const auto queue = static_cast<XGCommandQueueRef>(XGImageGetCommandQueue(image.get()));
    Kinds kinds;
    for (CFIndex i = 0; i < XGCommandQueueGetCommandCount(queue); ++i)
        kinds.push_back(XGCommandQueueGetCommandAtIndex(queue, i)->kind);
    return kinds;
}

void addTriangle(CGContextRef c) {
    CGContextMoveToPoint(c, 2, 2);
    CGContextAddLineToPoint(c, 20, 4);
    CGContextAddLineToPoint(c, 9, 17);
}

Image makeImage(CGDataProviderReleaseDataCallback release, std::uint32_t* pixels) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto provider = cf::adopt(CGDataProviderCreateWithData(nullptr, pixels, 16, release));
    return cf::adopt(CGImageCreate(2, 2, 8, 32, 8, space.get(), test::kBGRA, provider.get(),
                                   nullptr, false, kCGRenderingIntentDefault));
}

std::uint32_t pixelMemory[4] = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF};

Image keptImage() {
    return makeImage([](void*, const void*, size_t) {}, pixelMemory);
}

// ---- What is recorded

TEST(RecordingContext, RecordsWhatCommandsCanSay) {
    const struct {
        const char* what;
        void (*draw)(CGContextRef c);
        Kinds kinds;
    } cases[] = {
        {"a rectangle",
         [](CGContextRef c) {
             CGContextFillRect(c, {{1.5f, 2}, {7.25f, 8}});
         },
         {kXGCommandFillRects}},
        {"a cleared one",
         [](CGContextRef c) {
             CGContextClearRect(c, {{1, 2}, {7, 8}});
         },
         {kXGCommandFillRects}},
        {"whole pixels as a path",
         [](CGContextRef c) {
             CGContextAddRect(c, {{1, 2}, {7, 8}});
             CGContextFillPath(c);
         },
         {kXGCommandFillRects}},
        {"parts of pixels as a path",
         [](CGContextRef c) {
             CGContextAddRect(c, {{1.5f, 2}, {7, 8}});
             CGContextFillPath(c);
         },
         {kXGCommandFillPath}},
        {"a frame",
         [](CGContextRef c) {
             CGContextStrokeRect(c, {{1.5f, 2.5f}, {7, 8}});
         },
         {kXGCommandFillRects}},
        {"a dashed line along an axis",
         [](CGContextRef c) {
             const CGFloat lengths[] = {4, 2};
             const CGPoint ends[] = {{2, 5.5f}, {20, 5.5f}};
             CGContextSetLineDash(c, 0, lengths, 2);
             CGContextStrokeLineSegments(c, ends, 2);
         },
         {kXGCommandFillRects}},
        {"a round line",
         [](CGContextRef c) {
             const CGPoint ends[] = {{2, 5.5f}, {20, 5.5f}};
             CGContextSetLineCap(c, kCGLineCapRound);
             CGContextStrokeLineSegments(c, ends, 2);
         },
         {kXGCommandStrokePath}},
        {"a circle",
         [](CGContextRef c) {
             CGContextFillEllipseInRect(c, {{3, 4}, {9, 9}});
         },
         {kXGCommandFillCircle}},
        {"an ellipse",
         [](CGContextRef c) {
             CGContextFillEllipseInRect(c, {{3, 4}, {9, 5}});
         },
         {kXGCommandFillPath}},
        {"a fill and its outline",
         [](CGContextRef c) {
             addTriangle(c);
             CGContextDrawPath(c, kCGPathFillStroke);
         },
         {kXGCommandFillPath, kXGCommandStrokePath}},
        {"a skewed pen",
         [](CGContextRef c) {
             CGContextConcatCTM(c, {1, 0.25f, 0, 1, 0, 0});
             addTriangle(c);
             CGContextStrokePath(c);
         },
         {kXGCommandFillPath}},
        {"an arc's conic",
         [](CGContextRef c) {
             CGContextMoveToPoint(c, 2, 2);
             CGContextAddArcToPoint(c, 20, 2, 20, 20, 8);
             CGContextStrokePath(c);
         },
         {kXGCommandStrokePath}},
        {"an image",
         [](CGContextRef c) {
             CGContextDrawImage(c, {{3, 4}, {2, 2}}, keptImage().get());
         },
         {kXGCommandDrawImage}},
        {"outside of the clip",
         [](CGContextRef c) {
             CGContextClipToRect(c, {{0, 0}, {2, 2}});
             CGContextFillRect(c, {{4, 4}, {9, 9}});
             CGContextFillEllipseInRect(c, {{4, 4}, {9, 9}});
         },
         {}},
        {"a full canvas over others",
         [](CGContextRef c) {
             CGContextFillRect(c, {{4, 4}, {9, 9}});
             CGContextSetRGBFillColor(c, 1, 0, 0, 1);
             CGContextFillRect(c, {{-1, -1}, {100, 100}});
             CGContextFillRect(c, {{4, 4}, {9, 9}});
         },
         {kXGCommandFillRects, kXGCommandFillRects}},
    };
    for (const auto& [what, draw, kinds] : cases) {
        const Context context = makeRecording(24, 24);
        draw(context.get());
        EXPECT_TRUE(CGBitmapContextHasCommandQueue(context.get())) << what;
        EXPECT_TRUE(CGBitmapContextGetBitmapInfo(context.get()) & kRecords) << what;
        EXPECT_EQ(kindsIn(context.get()), kinds) << what;
    }
}

// ---- What ends it

TEST(RecordingContext, HasPixelsOnceTheyAreNeeded) {
    const struct {
        const char* what;
        void (*act)(CGContextRef c);
    } cases[] = {
        {"asking for them", [](CGContextRef c) { CGBitmapContextGetData(c); }},
        {"no acceleration", [](CGContextRef c) { CGContextSetAllowsAcceleration(c, false); }},
        {"a clone", [](CGContextRef c) { CGContextRelease(XGBitmapContextCreateClone(c)); }},
        {"an image of a part",
         [](CGContextRef c) { CGImageRelease(XGBitmapContextCreateImageWithSize(c, 5, 5)); }},
        {"a transparency layer",
         [](CGContextRef c) { CGContextBeginTransparencyLayer(c, nullptr); }},
        {"a shadow",
         [](CGContextRef c) {
             CGContextSetShadow(c, {1, 1}, 2);
             CGContextFillRect(c, {{1, 1}, {4, 4}});
         }},
        {"a blend that is no operator",
         [](CGContextRef c) {
             CGContextSetBlendMode(c, kCGBlendModeMultiply);
             CGContextFillRect(c, {{1, 1}, {4, 4}});
         }},
        {"a turned rectangle",
         [](CGContextRef c) {
             CGContextRotateCTM(c, 0.5f);
             CGContextFillRect(c, {{9, 1}, {4, 4}});
         }},
        {"a clip through a mark's middle",
         [](CGContextRef c) {
             CGContextClipToRect(c, {{0, 0}, {10, 10}});
             CGContextFillEllipseInRect(c, {{4, 4}, {9, 9}});
         }},
        {"a rugged edge",
         [](CGContextRef c) {
             CGContextSetShouldAntialias(c, false);
             CGContextFillRect(c, {{1.5f, 1}, {4, 4}});
         }},
        {"an image whose memory may go",
         [](CGContextRef c) {
             CGContextDrawImage(c, {{3, 4}, {2, 2}}, makeImage(nullptr, pixelMemory).get());
         }},
    };
    for (const auto& [what, act] : cases) {
        const Context context = makeRecording(24, 24);
        CGContextFillRect(context.get(), {{20, 0}, {4, 1}});
        act(context.get());
        EXPECT_FALSE(CGBitmapContextHasCommandQueue(context.get())) << what;
        EXPECT_FALSE(CGBitmapContextGetBitmapInfo(context.get()) & kRecords) << what;
        const auto* const pixels =
            static_cast<const std::uint32_t*>(CGBitmapContextGetData(context.get()));
        EXPECT_EQ(pixels[23 * 24 + 21], 0xFF000000) << what << ": what was recorded";
    }
}

// A program may ask at any time: what it is in the middle of goes on.
TEST(RecordingContext, KeepsItsStateAndPathAsItGetsPixels) {
    const Context context = makeRecording(8, 4);
    const CGContextRef c = context.get();
    CGContextFillRect(c, {{0, 0}, {8, 1}});
    CGContextSaveGState(c);
    CGContextClipToRect(c, {{1, 1}, {5, 2}});
    CGContextTranslateCTM(c, 1, 0);
    CGContextAddRect(c, {{1, 0}, {9, 9}});
    EXPECT_EQ(Picture(c), (Picture{"........", "........", "........", "########"}));
    CGContextFillPath(c);
    EXPECT_EQ(Picture(c), (Picture{"........", "..####..", "..####..", "########"}));
    CGContextRestoreGState(c);
    CGContextFillRect(c, {{7, 0}, {1, 9}});
    EXPECT_EQ(Picture(c), (Picture{".......#", "..####.#", "..####.#", "########"}));
}

TEST(RecordingContext, HasNoLayersAndStaysAsItIs) {
    const Context context = makeRecording(8, 4);
    EXPECT_FALSE(cf::adopt(CGLayerCreateWithContext(context.get(), {4, 4}, nullptr)));
    EXPECT_TRUE(CGBitmapContextHasCommandQueue(context.get()));
    CGBitmapContextGetData(context.get());
    EXPECT_TRUE(cf::adopt(CGLayerCreateWithContext(context.get(), {4, 4}, nullptr)));
}

TEST(RecordingContext, DrawsOnWhereTheQueueIsFull) {
    const Context context = makeRecording(200, 60);
    for (int i = 0; i < 10001; ++i) {
        EXPECT_EQ(CGBitmapContextHasCommandQueue(context.get()), true) << i;
        CGContextFillRect(context.get(),
                          {{static_cast<CGFloat>(i % 200), static_cast<CGFloat>(i / 200)}, {1, 1}});
    }
    EXPECT_FALSE(CGBitmapContextHasCommandQueue(context.get()));
    const auto* const pixels =
        static_cast<const std::uint32_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_EQ(std::count(pixels, pixels + 200 * 60, 0xFF000000), 10001);
}

TEST(RecordingContext, DropsMarksWhileThereIsNoMemoryForPixels) {
    if (!test::allAllocationsCanFail())
        GTEST_SKIP() << "malloc is the sanitizer's: it cannot fail here";
    const Context context = makeRecording(8, 4);
    const CGContextRef c = context.get();
    CGContextFillRect(c, {{0, 0}, {8, 1}});
    addTriangle(c);
    {
        // The pixels come after a state and its clip.
        const CollectedLog log;
        for (std::size_t number = 1; number < 6; ++number) {
            const test::AllocationFailure failure(number);
            CGContextBeginTransparencyLayer(c, nullptr);
            CGContextEndTransparencyLayer(c);
            if (!CGBitmapContextHasCommandQueue(c))
                break;
        }
        ASSERT_FALSE(log.lines().empty());
        EXPECT_THAT(log.lines()[0], testing::HasSubstr("Failed to allocate pixels (8X4+32-bit)."));
    }
    EXPECT_EQ(Picture(c), (Picture{"........", "........", "........", "########"}));
}

TEST(RecordingContext, ACommandCostsItsRecord) {
    constexpr int kCommands = 4000;
    const auto draw = [](CGContextRef c) {
        for (int i = 0; i < kCommands; ++i)
            CGContextFillRect(c, {{static_cast<CGFloat>(i % 20), 1}, {2, 2}});
    };
    draw(makeRecording(24, 24).get()); // Makes what is made only once.
    const Context context = makeRecording(24, 24);
    const test::AllocationMeter meter;
    draw(context.get());
    const auto bytes = static_cast<double>(meter.liveBytes()) / kCommands;
    // With the list's pointer and the room that list and blocks grow by.
    EXPECT_LE(bytes, 1.25 * (sizeof(XGCommand) + sizeof(CGRect) + sizeof(void*)));
    // A fill that hides all of them leaves nothing of them.
    CGContextSetRGBFillColor(context.get(), 1, 0, 0, 1);
    CGContextFillRect(context.get(), {{0, 0}, {24, 24}});
    EXPECT_LE(meter.liveBytes(), static_cast<std::ptrdiff_t>(sizeof(void*)) * 2 * kCommands + 1024);
}

} // namespace
