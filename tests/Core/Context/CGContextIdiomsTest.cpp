// CGContextIdiomsTest.cpp: how drawings are written, seen in pixels.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Picture.h"

#include <gtest/gtest.h>

using test::Picture;

namespace {

const CGRect kEverything = {{-100, -100}, {200, 200}};

TEST(ContextIdioms, ShowWhatTheySay) {
    const struct {
        const char* what;
        void (*draw)(CGContextRef context);
        Picture expected;
    } cases[] = {
        {"a stroke as a clip",
         [](CGContextRef c) {
             CGContextSetLineWidth(c, 2);
             CGContextMoveToPoint(c, 1, 3);
             CGContextAddLineToPoint(c, 7, 3);
             CGContextSaveGState(c);
             CGContextReplacePathWithStrokedPath(c);
             CGContextClip(c);
             CGContextFillRect(c, kEverything);
             CGContextRestoreGState(c);
             CGContextFillRect(c, CGRectMake(0, 0, 1, 1));
         },
         {"........", "........", ".######.", ".######.", "........", "#......."}},
        {"a clip that ends with two states at once",
         [](CGContextRef c) {
             CGContextFillRect(c, CGRectMake(0, 0, 1, 1));
             CGContextSaveGState(c);
             CGContextSaveGState(c);
             CGContextClipToRect(c, CGRectMake(2, 2, 2, 2));
             CGContextFillRect(c, kEverything);
             CGContextRestoreGState(c);
             CGContextRestoreGState(c);
             CGContextFillRect(c, CGRectMake(7, 5, 1, 1));
         },
         {".......#", "........", "..##....", "..##....", "........", "#......."}},
        {"a stretched pen with stretched dashes",
         [](CGContextRef c) {
             const CGFloat lengths[] = {2, 1};
             CGContextSetLineDash(c, 0, lengths, 2);
             CGContextScaleCTM(c, 1, 2);
             CGContextMoveToPoint(c, 1, 1.5f);
             CGContextAddLineToPoint(c, 7, 1.5f);
             CGContextStrokePath(c);
         },
         {"........", "........", ".##.##..", ".##.##..", "........", "........"}},
        {"a pen turned by a quarter",
         [](CGContextRef c) {
             CGContextRotateCTM(c, 1.5707964f);
             CGContextSetLineWidth(c, 2);
             CGContextMoveToPoint(c, 1, -4);
             CGContextAddLineToPoint(c, 5, -4);
             CGContextStrokePath(c);
         },
         {"........", "...##...", "...##...", "...##...", "...##...", "........"}},
        {"a union of rectangles as a clip",
         [](CGContextRef c) {
             const CGRect rects[] = {{{1, 1}, {3, 3}}, {{3, 3}, {3, 2}}, {{7, 0}, {0, 6}}};
             CGContextClipToRects(c, rects, 3);
             CGContextFillRect(c, kEverything);
         },
         {"........", "...###..", ".#####..", ".###....", ".###....", "........"}},
        {"an empty rectangle as a clip",
         [](CGContextRef c) {
             CGContextClipToRect(c, CGRectMake(3, 3, 0, 0));
             CGContextFillRect(c, kEverything);
         },
         {"........", "........", "........", "........", "........", "........"}},
        {"a clip that is restored away",
         [](CGContextRef c) {
             CGContextSaveGState(c);
             CGContextClipToRect(c, CGRectMake(1, 1, 2, 2));
             CGContextSaveGState(c);
             CGContextClipToRect(c, CGRectMake(1, 1, 1, 1));
             CGContextFillRect(c, kEverything);
             CGContextRestoreGState(c);
             CGContextRestoreGState(c);
             CGContextFillRect(c, CGRectMake(4, 1, 2, 2));
         },
         {"........", "........", "........", "....##..", ".#..##..", "........"}},
        {"a clip taken back",
         [](CGContextRef c) {
             CGContextClipToRect(c, CGRectMake(1, 1, 1, 1));
             CGContextResetClip(c);
             CGContextFillRect(c, CGRectMake(4, 1, 2, 2));
         },
         {"........", "........", "........", "....##..", "....##..", "........"}},
        {"a hole",
         [](CGContextRef c) {
             CGContextFillRect(c, CGRectMake(0, 0, 8, 6));
             CGContextSetAlpha(c, 0.5f);
             CGContextClearRect(c, CGRectMake(2, 2, 4, 2));
         },
         {"########", "########", "##....##", "##....##", "########", "########"}},
        {"a frame by the even-odd rule",
         [](CGContextRef c) {
             CGContextAddRect(c, CGRectMake(1, 1, 6, 4));
             CGContextAddRect(c, CGRectMake(3, 2, 2, 2));
             CGContextEOFillPath(c);
         },
         {"........", ".######.", ".##..##.", ".##..##.", ".######.", "........"}},
    };
    for (const auto& [what, draw, expected] : cases) {
        const auto context = test::makeContext(8, 6);
        draw(context.get());
        EXPECT_EQ(Picture(context.get()), expected) << what;
    }
}

unsigned alphaAt(const test::Context& context, std::size_t x, std::size_t y) {
    const auto* const pixels =
        static_cast<const unsigned char*>(CGBitmapContextGetData(context.get()));
    return pixels[y * CGBitmapContextGetBytesPerRow(context.get()) + 4 * x + 3];
}

TEST(ContextIdioms, ATurnedRectangleClipsToItself) {
    const auto context = test::makeContext(32, 32);
    const CGContextRef c = context.get();
    CGContextTranslateCTM(c, 16, 16);
    CGContextRotateCTM(c, 0.78539816f);
    CGContextClipToRect(c, CGRectMake(-8, -8, 16, 16));
    CGContextFillRect(c, kEverything);
    EXPECT_EQ(alphaAt(context, 16, 16), 255u);
    EXPECT_EQ(alphaAt(context, 16, 6), 255u) << "near a corner, which points up";
    EXPECT_EQ(alphaAt(context, 7, 7), 0u) << "in the corner of the bounds";
}

} // namespace
