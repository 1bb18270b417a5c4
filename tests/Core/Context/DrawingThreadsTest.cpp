// DrawingThreadsTest.cpp: contexts that are drawn into at once, for the thread sanitizer.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Picture.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

constexpr std::size_t kSize = 64;

struct Shared {
    cf::Ref<CGPathRef> path;
    cf::Ref<CGColorRef> color;
};

// Everything that a context can do, with a path and a colour that other threads draw with as well.
void draw(CGContextRef context, const Shared& shared) {
    constexpr CGFloat kLengths[] = {3, 2};
    for (int round = 0; round < 100; ++round) {
        CGContextSaveGState(context);
        CGContextSetFillColorWithColor(context, shared.color.get());
        CGContextRotateCTM(context, 0.1f);
        CGContextAddPath(context, shared.path.get());
        CGContextClip(context);
        CGContextSetAlpha(context, 0.5f);
        CGContextBeginTransparencyLayer(context, nullptr);
        CGContextFillRect(context, CGRectMake(0, 0, 60, 60));
        CGContextEndTransparencyLayer(context);
        CGContextRestoreGState(context);
        CGContextSetRGBStrokeColor(context, 0, 0, static_cast<CGFloat>(round % 2), 1);
        CGContextSetLineDash(context, 0, kLengths, 2);
        CGContextStrokeRect(context, CGRectMake(3.5f, 3.5f, 40, 40));
    }
}

} // namespace

TEST(DrawingThreads, DrawTheSamePicture) {
    // The first use of every class and singleton falls among the threads, too.
    std::array<test::Context, 4> contexts;
    Shared shared = {
        cf::adopt(CGPathCreateWithEllipseInRect(CGRectMake(4, 4, 50, 40), nullptr)),
        cf::adopt(CGColorCreateGenericRGB(1, 0.5f, 0, 0.75f)),
    };
    test::onThreads([&](std::size_t thread) {
        contexts[thread] = test::makeContext(kSize, kSize);
        draw(contexts[thread].get(), shared);
    });
    EXPECT_NE(test::Picture(contexts[0].get()),
              test::Picture(test::makeContext(kSize, kSize).get()));
    for (const auto& context : contexts)
        EXPECT_EQ(std::memcmp(CGBitmapContextGetData(context.get()),
                              CGBitmapContextGetData(contexts[0].get()), kSize * kSize * 4),
                  0);
}
