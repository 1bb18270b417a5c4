// TextThreadsTest.cpp: one font drawn with on many threads, for the thread sanitizer.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Fonts.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

TEST(TextThreads, DrawTheSameWithOneFont) {
    constexpr std::size_t kSize = 96;
    std::array<test::Context, test::kThreads> contexts;
    for (auto& context : contexts)
        context = test::makeContext(kSize, kSize);
    for (const char* path : {test::kTrueTypeFont, test::kCFFFont, test::kColorFont}) {
        const test::Font font = test::makeFont(path); // Nobody has drawn with it.
        test::onThreads([&](std::size_t number) {
            const CGContextRef context = contexts[number].get();
            CGContextSetFont(context, font.get());
            for (const CGFloat size : {11.f, 30.f, 300.f}) {
                CGContextSetFontSize(context, size);
                for (CGGlyph glyph = 30; glyph < 60; ++glyph)
                    CGContextShowGlyphsAtPoint(context, CGFloat(glyph), 20, &glyph, 1);
                const auto copy = cf::adopt(CGFontCopyVariations(font.get()));
                CGContextSetTextDrawingMode(context, kCGTextStroke);
                CGContextShowTextAtPoint(context, 5, 50, "Nimbra", 6);
                CGContextSetTextDrawingMode(context, kCGTextFill);
            }
        });
        for (const auto& context : contexts)
            EXPECT_EQ(std::memcmp(CGBitmapContextGetData(context.get()),
                                  CGBitmapContextGetData(contexts[0].get()), kSize * kSize * 4),
                      0);
    }
}
