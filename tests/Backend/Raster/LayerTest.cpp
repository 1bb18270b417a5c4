// LayerTest.cpp: layers drawn into bitmaps.

#include "XGBitmapContext.h"
#include <CoreGraphics/CGLayer.h>

#include "Support/Bitmaps.h"
#include "Support/Picture.h"
#include "Support/SkiaPeer.h"
#include "include/core/SkImage.h"

#include <gtest/gtest.h>

namespace {

using test::makeContext;
using test::Picture;
using Layer = cf::Ref<CGLayerRef>;

Layer makeLayer(CGContextRef context, CGFloat width, CGFloat height) {
    return cf::adopt(CGLayerCreateWithContext(context, CGSizeMake(width, height), nullptr));
}

// Four by three pixels, with a foot at the lower right.
Layer makeBoot(CGContextRef like) {
    Layer layer = makeLayer(like, 4, 3);
    const CGContextRef context = CGLayerGetContext(layer.get());
    CGContextClearRect(context, CGRectMake(0, 0, 4, 3));
    CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.6f, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 2, 3));
    CGContextFillRect(context, CGRectMake(0, 0, 4, 1));
    return layer;
}

TEST(LayerDrawing, PutsTheFirstRowAtTheTop) {
    const struct {
        const char* what;
        CGAffineTransform ctm;
        CGRect rect;
        Picture picture;
    } cases[] = {
        {"as it is",
         {1, 0, 0, 1, 0, 0},
         {{1, 0}, {4, 3}},
         {"........", ".##.....", ".##.....", ".####..."}},
        {"scaled",
         {1, 0, 0, 1, 0, 0},
         {{0, 1}, {8, 3}},
         {"####....", "####....", "########", "........"}},
        {"turned over with user space",
         {1, 0, 0, -1, 0, 4},
         {{0, 0}, {4, 3}},
         {"####....", "##......", "##......", "........"}},
        {"a quarter turn",
         {0, 1, -1, 0, 3, 0},
         {{0, 0}, {4, 3}},
         {"..#.....", "..#.....", "###.....", "###....."}},
    };
    for (const auto& [what, ctm, rect, picture] : cases) {
        const test::Context context = makeContext(8, 4);
        CGContextSetInterpolationQuality(context.get(), kCGInterpolationNone);
        CGContextConcatCTM(context.get(), ctm);
        CGContextDrawLayerInRect(context.get(), rect, makeBoot(context.get()).get());
        EXPECT_EQ(Picture(context.get()), picture) << what;
    }
}

TEST(LayerDrawing, IsBareSkiasImage) {
    const test::Context context = makeContext(40, 40);
    test::SkiaPeer peer(40, 40);
    const Layer layer = makeBoot(context.get());
    CGContextRotateCTM(context.get(), 0.3f);
    CGContextSetAlpha(context.get(), 0.5f);
    CGContextSetBlendMode(context.get(), kCGBlendModeMultiply);
    CGContextDrawLayerInRect(context.get(), CGRectMake(15, 5, 20, 15), layer.get());

    const auto* const pixels = CGBitmapContextGetData(CGLayerGetContext(layer.get()));
    const auto image =
        SkImages::RasterFromPixmapCopy({SkImageInfo::MakeN32Premul(4, 3), pixels, 16});
    SkPaint paint;
    paint.setAlpha(128);
    paint.setAntiAlias(true);
    paint.setBlendMode(SkBlendMode::kMultiply);
    peer.canvas().concat(SkMatrix::RotateRad(0.3f));
    peer.canvas().concat(SkMatrix::MakeAll(1, 0, 0, 0, -1, 25, 0, 0, 1));
    peer.canvas().drawImageRect(image, SkRect::MakeXYWH(15, 5, 20, 15),
                                SkSamplingOptions(SkFilterMode::kLinear), &paint);
    EXPECT_TRUE(samePixels(context.get(), peer));
}

TEST(LayerDrawing, ReachesBitmapsOfOtherLayouts) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const test::Context rgba = makeContext(8, 4, test::kRGBA);
    const test::Context opaque =
        makeContext(8, 4, CGBitmapInfo{kCGImageAlphaNoneSkipFirst} | kCGBitmapByteOrder32Little);
    const auto grays = cf::adopt(
        CGBitmapContextCreate(nullptr, 8, 4, 8, 0, gray.get(), CGBitmapInfo{kCGImageAlphaNone}));
    const auto coverage = cf::adopt(
        CGBitmapContextCreate(nullptr, 8, 4, 8, 0, nullptr, CGBitmapInfo{kCGImageAlphaOnly}));
    CGContextSetAllowsAcceleration(grays.get(), false);
    const Picture boot = {"........", ".##.....", ".##.....", ".####..."};
    const struct {
        const char* what;
        CGContextRef like;
        Picture picture;
    } cases[] = {
        {"RGBA", rgba.get(), boot},
        {"without alpha", opaque.get(), {"........", ".####...", ".####...", ".####..."}},
        {"gray", grays.get(), {"........", ".####...", ".####...", ".####..."}},
        {"coverage, in the fill colour", coverage.get(), boot},
    };
    for (const auto& [what, like, picture] : cases) {
        const test::Context context = makeContext(8, 4);
        CGContextDrawLayerAtPoint(context.get(), {1, 0}, makeBoot(like).get());
        EXPECT_EQ(Picture(context.get()), picture) << what;
    }
}

TEST(LayerDrawing, DrawsALayerIntoItselfAsItWas) {
    const test::Context context = makeContext(6, 4);
    const Layer layer = makeLayer(context.get(), 6, 4);
    const CGContextRef own = CGLayerGetContext(layer.get());
    CGContextFillRect(own, CGRectMake(0, 0, 2, 2));
    CGContextDrawLayerAtPoint(own, {1, 1}, layer.get());
    EXPECT_EQ(Picture(own), (Picture{"......", ".##...", "###...", "##...."}));
    CGContextBeginTransparencyLayer(own, nullptr);
    CGContextDrawLayerAtPoint(own, {3, 0}, layer.get());
    CGContextEndTransparencyLayer(own);
    EXPECT_EQ(Picture(own), (Picture{"......", ".##.##", "######", "##.##."}));
}

// The pixels may lie elsewhere once an image has taken them.
TEST(LayerDrawing, FollowsPixelsThatAnImageHasTaken) {
    const test::Context context = makeContext(4, 2);
    const Layer layer = makeLayer(context.get(), 4, 2);
    const CGContextRef own = CGLayerGetContext(layer.get());
    CGContextFillRect(own, CGRectMake(0, 0, 1, 2));
    const auto image = cf::adopt(CGBitmapContextCreateImage(own));
    CGContextDrawLayerAtPoint(own, {2, 0}, layer.get());
    CGContextDrawLayerAtPoint(context.get(), {0, 0}, layer.get());
    EXPECT_EQ(Picture(context.get()), (Picture{"#.#.", "#.#."}));
    const test::Context before = makeContext(4, 2);
    CGContextDrawImage(before.get(), CGRectMake(0, 0, 4, 2), image.get());
    EXPECT_EQ(Picture(before.get()), (Picture{"#...", "#..."}));
}

TEST(LayerDrawing, ThrowsTheShadowOfWhatItShows) {
    const test::Context context = makeContext(8, 4);
    const Layer layer = makeBoot(context.get());
    CGContextSetShadow(context.get(), {3, 1}, 0);
    CGContextDrawLayerAtPoint(context.get(), {0, 0}, layer.get());
    EXPECT_EQ(Picture(context.get()), (Picture{"...++...", "##.++...", "##.++++.", "####...."}));
}

} // namespace
