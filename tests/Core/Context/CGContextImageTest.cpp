// CGContextImageTest.cpp: what destinations are asked to draw for images, and images of bitmaps.

#include "XGContext.h"
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/FailingAllocator.h"
#include "Support/Picture.h"
#include "Support/RecordingBackend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using test::Context;
using test::makeContext;
using test::Picture;
using test::RecordingBackend;
using testing::ElementsAre;

namespace {

using Image = cf::Ref<CGImageRef>;

Image snapshot(CGContextRef context) {
    return cf::adopt(CGBitmapContextCreateImage(context));
}

Picture pictureOf(const Image& image) {
    const Context context =
        makeContext(CGImageGetWidth(image.get()), CGImageGetHeight(image.get()));
    CGContextDrawImage(context.get(),
                       CGRectMake(0, 0, static_cast<CGFloat>(CGImageGetWidth(image.get())),
                                  static_cast<CGFloat>(CGImageGetHeight(image.get()))),
                       image.get());
    return Picture(context.get());
}

Image makeImage() {
    return snapshot(makeContext(2, 1).get());
}

} // namespace

TEST(ContextImage, IsAskedForAfterPreparingAndShadowFirst) {
    RecordingBackend backend;
    const CGContextRef context = backend.context();
    const Image image = makeImage();
    const CGRect rect = CGRectMake(1, 2, 3, 4);

    CGContextDrawImage(context, rect, image.get());
    EXPECT_THAT(backend.takeCalls(), ElementsAre("prepare", "image 2 x 1 at 1 2 3 4"));
    CGContextDrawTiledImage(context, rect, image.get());
    EXPECT_THAT(backend.takeCalls(), ElementsAre("prepare", "tiled image 2 x 1 at 1 2 3 4"));
    XGContextDrawShadowImage(context, rect, image.get());
    EXPECT_THAT(backend.takeCalls(), ElementsAre("prepare"));

    CGContextSetShadow(context, CGSizeMake(1, 1), 2);
    CGContextDrawImage(context, rect, image.get());
    EXPECT_THAT(backend.takeCalls(),
                ElementsAre("prepare", "shadow image 2 x 1 at 1 2 3 4", "image 2 x 1 at 1 2 3 4"));
    XGContextDrawShadowImage(context, rect, image.get());
    EXPECT_THAT(backend.takeCalls(), ElementsAre("prepare", "shadow image 2 x 1 at 1 2 3 4"));
    CGContextDrawImage(context, rect, nullptr);
    EXPECT_THAT(backend.takeCalls(), ElementsAre());
}

// ---- Images of bitmap contexts

TEST(BitmapContextImage, HasTheContextsLayout) {
    const Context context = makeContext(3, 2, test::kRGBA);
    const Image image = snapshot(context.get());
    EXPECT_EQ(CGImageGetWidth(image.get()), 3u);
    EXPECT_EQ(CGImageGetHeight(image.get()), 2u);
    EXPECT_EQ(CGImageGetBytesPerRow(image.get()), 12u);
    EXPECT_EQ(CGImageGetBitsPerPixel(image.get()), 32u);
    EXPECT_EQ(CGImageGetBitmapInfo(image.get()), test::kRGBA);
    EXPECT_EQ(CGImageGetColorSpace(image.get()), CGBitmapContextGetColorSpace(context.get()));
    EXPECT_EQ(CGBitmapContextCreateImage(RecordingBackend().context()), nullptr);
}

TEST(BitmapContextImage, KeepsWhatWasDrawnWhenTheContextGoesOn) {
    std::vector<std::uint32_t> memory(4);
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const struct {
        const char* what;
        Context context;
        bool asksForData;
    } cases[] = {
        {"memory of its own", makeContext(2, 2), false},
        {"memory of its own that the caller knows", makeContext(2, 2), true},
        {"the caller's memory",
         cf::adopt(CGBitmapContextCreate(memory.data(), 2, 2, 8, 8, space.get(), test::kBGRA)),
         false},
    };
    for (const auto& [what, context, asksForData] : cases) {
        if (asksForData)
            CGBitmapContextGetData(context.get());
        CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
        const Image first = snapshot(context.get());
        CGContextFillRect(context.get(), CGRectMake(1, 1, 1, 1));
        const Image second = snapshot(context.get());
        CGContextClearRect(context.get(), CGRectMake(0, 0, 2, 2));
        EXPECT_EQ(pictureOf(first), Picture({"..", "#."})) << what;
        EXPECT_EQ(pictureOf(second), Picture({".#", "#."})) << what;
        EXPECT_EQ(Picture(context.get()), Picture({"..", ".."})) << what;
    }
}

TEST(BitmapContextImage, StaysWhenTheCallerThenWritesThePixels) {
    const Context context = makeContext(1, 1);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    const Image image = snapshot(context.get());
    *static_cast<std::uint32_t*>(CGBitmapContextGetData(context.get())) = 0;
    EXPECT_EQ(pictureOf(image), Picture({"#"}));
}

TEST(BitmapContextImage, OutlivesItsContextAndCanBeDrawnIntoIt) {
    Context context = makeContext(2, 1);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    const Image image = snapshot(context.get());
    CGContextDrawImage(context.get(), CGRectMake(1, 0, 2, 1), image.get());
    EXPECT_EQ(Picture(context.get()), Picture({"##"}));
    context = nullptr;
    EXPECT_EQ(pictureOf(image), Picture({"#."}));
}
