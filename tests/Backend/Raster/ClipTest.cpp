// ClipTest.cpp: clips of all kinds under transforms, against pictures drawn by hand.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Picture.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using test::makeContext;
using test::Picture;
using Draw = std::function<void(CGContextRef)>;

// Four by three units: all but the upper right corner, as a path.
void addBoot(CGContextRef c) {
    const CGPoint corners[] = {{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 3}, {0, 3}};
    CGContextAddLines(c, corners, 6);
    CGContextClosePath(c);
}

void clipToRect(CGContextRef c) {
    CGContextClipToRect(c, CGRectMake(0, 0, 4, 1));
}
void clipToPath(CGContextRef c) {
    addBoot(c);
    CGContextClip(c);
}
void clipToFrame(CGContextRef c) {
    CGContextAddRect(c, CGRectMake(0, 0, 4, 3));
    CGContextAddRect(c, CGRectMake(1, 1, 2, 1));
    CGContextEOClip(c);
}
void clipToRects(CGContextRef c) {
    const CGRect rects[] = {{{0, 0}, {4, 1}}, {{0, 0}, {1, 3}}};
    CGContextClipToRects(c, rects, 2);
}
// The boot as a mask of four by three pixels.
void clipToMask(CGContextRef c) {
    static const std::uint8_t rows[] = {0, 255, 255, 255, 0, 255, 255, 255, 0, 0, 0, 0};
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, rows, sizeof rows, nullptr));
    const auto mask = cf::adopt(CGImageMaskCreate(4, 3, 8, 8, 4, provider.get(), nullptr, false));
    CGContextSetInterpolationQuality(c, kCGInterpolationNone);
    CGContextClipToMask(c, CGRectMake(0, 0, 4, 3), mask.get());
}

Draw both(const Draw& first, const Draw& second) {
    return [=](CGContextRef c) {
        first(c);
        second(c);
    };
}

TEST(Clip, FollowsTheTransformOfItsTime) {
    constexpr CGAffineTransform kAsItIs = {1, 0, 0, 1, 1, 0}, kTwice = {2, 0, 0, 1, 0, 1},
                                kOver = {1, 0, 0, -1, 0, 4}, kTurn = {0, 1, -1, 0, 4, 0};
    const Picture bootAsItIs = {"........", ".#......", ".#......", ".####..."},
                  bootTwice = {"##......", "##......", "########", "........"},
                  bootOver = {"####....", "#.......", "#.......", "........"},
                  bootTurn = {"...#....", "...#....", "...#....", ".###...."},
                  rectAsItIs = {"........", "........", "........", ".####..."},
                  frameTwice = {"########", "##....##", "########", "........"},
                  frameTurn = {".###....", ".#.#....", ".#.#....", ".###...."};
    const struct {
        const char* what;
        Draw clip;
        CGAffineTransform ctm;
        const Picture& picture;
    } cases[] = {
        {"a rectangle", clipToRect, kAsItIs, rectAsItIs},
        {"a path", clipToPath, kAsItIs, bootAsItIs},
        {"a path, scaled", clipToPath, kTwice, bootTwice},
        {"a path, turned over", clipToPath, kOver, bootOver},
        {"a path, turned", clipToPath, kTurn, bootTurn},
        {"rectangles", clipToRects, kAsItIs, bootAsItIs},
        {"rectangles, scaled", clipToRects, kTwice, bootTwice},
        {"rectangles, turned", clipToRects, kTurn, bootTurn},
        {"even-odd, scaled", clipToFrame, kTwice, frameTwice},
        {"even-odd, turned", clipToFrame, kTurn, frameTurn},
        {"a mask", clipToMask, kAsItIs, bootAsItIs},
        {"a mask, scaled", clipToMask, kTwice, bootTwice},
        {"a mask, turned over", clipToMask, kOver, bootOver},
        {"a mask, turned", clipToMask, kTurn, bootTurn},
        {"a mask and a path", both(clipToMask, clipToFrame), kTurn, bootTurn},
        {"a path and a mask", both(clipToFrame, clipToMask), kTwice, bootTwice},
        {"a mask twice", both(clipToMask, clipToMask), kAsItIs, bootAsItIs},
        {"a mask and a rectangle", both(clipToMask, clipToRect), kAsItIs, rectAsItIs},
    };
    for (const auto& [what, clip, ctm, picture] : cases) {
        for (const bool isGroup : {false, true}) {
            const test::Context context = makeContext(8, 4);
            CGContextSaveGState(context.get());
            CGContextConcatCTM(context.get(), ctm);
            clip(context.get());
            CGContextSetCTM(context.get(), CGAffineTransformIdentity);
            if (isGroup)
                CGContextBeginTransparencyLayer(context.get(), nullptr);
            CGContextFillRect(context.get(), CGRectMake(0, 0, 8, 4));
            if (isGroup)
                CGContextEndTransparencyLayer(context.get());
            EXPECT_EQ(Picture(context.get()), picture) << what << (isGroup ? ", a group" : "");
            CGContextRestoreGState(context.get());
            CGContextFillRect(context.get(), CGRectMake(0, 0, 8, 4));
            EXPECT_EQ(Picture(context.get()),
                      (Picture{"########", "########", "########", "########"}))
                << what << ", restored";
        }
    }
}

} // namespace
