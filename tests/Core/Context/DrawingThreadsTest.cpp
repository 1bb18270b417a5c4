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

// Pixels that have to be converted before they are drawn: 16 bits a component, big-endian.
cf::Ref<CGImageRef> makePicture(std::size_t components, CGColorSpaceRef space) {
    static constexpr auto bytes = [] {
        std::array<unsigned char, 8 * 8 * 6> made = {};
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<unsigned char>(i * 89 % 251);
        return made;
    }();
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, bytes.data(), bytes.size(), nullptr));
    return cf::adopt(CGImageCreate(8, 8, 16, 16 * components, 16 * components, space,
                                   kCGImageAlphaNone, provider.get(), nullptr, true,
                                   kCGRenderingIntentDefault));
}

// What all threads draw with: made by one, converted and cached by whichever comes first.
struct Shared {
    cf::Ref<CGColorSpaceRef> rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    cf::Ref<CGColorSpaceRef> gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    cf::Ref<CGPathRef> path =
        cf::adopt(CGPathCreateWithEllipseInRect(CGRectMake(4, 4, 50, 40), nullptr));
    cf::Ref<CGColorRef> color = cf::adopt(CGColorCreateGenericRGB(1, 0.5f, 0, 0.75f));
    cf::Ref<CGImageRef> picture = makePicture(3, rgb.get());
    cf::Ref<CGImageRef> mask = makePicture(1, gray.get());
    cf::Ref<CGImageRef> masked = cf::adopt(CGImageCreateWithMask(picture.get(), mask.get()));
    cf::Ref<CGGradientRef> gradient = makeGradient();
    cf::Ref<CGColorRef> pattern = makePattern();

private:
    cf::Ref<CGGradientRef> makeGradient() const {
        const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 0.5f};
        return cf::adopt(CGGradientCreateWithColorComponents(rgb.get(), components, nullptr, 2));
    }
    static cf::Ref<CGColorRef> makePattern() {
        const CGPatternCallbacks callbacks = {.drawPattern = [](void*, CGContextRef cell) {
            CGContextSetRGBFillColor(cell, 0, 1, 0, 0.5f);
            CGContextFillRect(cell, CGRectMake(0, 0, 2, 3));
        }};
        const auto pattern =
            cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 4, 4), CGAffineTransformIdentity, 5,
                                      5, kCGPatternTilingConstantSpacing, true, &callbacks));
        const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
        const CGFloat alpha = 1;
        return cf::adopt(CGColorCreateWithPattern(space.get(), pattern.get(), &alpha));
    }
};

void drawImages(CGContextRef context, const Shared& shared, int round) {
    CGContextSaveGState(context);
    CGContextSetInterpolationQuality(context, static_cast<CGInterpolationQuality>(round % 4));
    CGContextClipToMask(context, CGRectMake(2, 3, 50, 40), shared.mask.get());
    CGContextDrawImage(context, CGRectMake(3, 5, CGFloat(20 + round % 9), 30),
                       shared.picture.get());
    CGContextDrawImage(context, CGRectMake(30, 20, 5, 30), shared.masked.get());
    CGContextDrawLinearGradient(context, shared.gradient.get(), {10, 10}, {50, 30},
                                CGGradientDrawingOptions{});
    CGContextSetFillColorWithColor(context, shared.pattern.get());
    CGContextFillRect(context, CGRectMake(20, 2, 30, 20));
    CGContextRestoreGState(context);
}

// Everything that a context can do without a font.
void draw(CGContextRef context, const Shared& shared) {
    constexpr CGFloat kLengths[] = {3, 2};
    for (int round = 0; round < 50; ++round) {
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
        drawImages(context, shared, round);
    }
}

} // namespace

TEST(DrawingThreads, DrawTheSamePicture) {
    // The first use of every class and singleton falls among the threads, too.
    std::array<test::Context, 4> contexts;
    const Shared shared;
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
