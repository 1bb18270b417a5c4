// ImageTest.cpp: images in bitmap contexts, beside bare Skia and worked out by hand.

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/Picture.h"
#include "Support/SkiaPeer.h"
#include "include/core/SkImage.h"
#include "include/core/SkPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

using test::Context;
using test::makeContext;
using test::Picture;
using test::samePixels;
using test::SkiaPeer;

namespace {

using Image = cf::Ref<CGImageRef>;
using Bytes = std::vector<std::uint8_t>;

constexpr int kSize = 96;

cf::Ref<CGDataProviderRef> providerOf(const Bytes& bytes) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGDataProviderCreateWithCFData(data.get()));
}

Image makeMask(std::size_t width, std::size_t height, const Bytes& samples,
               const CGFloat* decode = nullptr, bool interpolates = true) {
    return cf::adopt(CGImageMaskCreate(width, height, 8, 8, width, providerOf(samples).get(),
                                       decode, interpolates));
}

// How an image's pixels are given to us and to Skia.
struct Layout {
    const char* what;
    CGBitmapInfo info;
    std::size_t bytesPerPixel;
    SkColorType color;
    SkAlphaType opacity;
};

constexpr CGBitmapInfo kLittle = kCGBitmapByteOrder32Little;
const Layout kLayouts[] = {
    {"BGRA", test::kBGRA, 4, kBGRA_8888_SkColorType, kPremul_SkAlphaType},
    {"BGRX", kCGImageAlphaNoneSkipFirst | kLittle, 4, kBGRA_8888_SkColorType, kOpaque_SkAlphaType},
    {"RGBA", test::kRGBA, 4, kRGBA_8888_SkColorType, kPremul_SkAlphaType},
    {"RGBX", kCGImageAlphaNoneSkipLast, 4, kRGBA_8888_SkColorType, kOpaque_SkAlphaType},
    {"gray", kCGImageAlphaNone, 1, kGray_8_SkColorType, kOpaque_SkAlphaType},
};

// Random pixels that are valid in every layout: no colour above its alpha.
Bytes randomPixels(const Layout& layout, int width, int height) {
    std::mt19937 random(7);
    Bytes bytes(static_cast<std::size_t>(width * height) * layout.bytesPerPixel);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const bool isFourth = at % 4 == 3 && layout.bytesPerPixel == 4;
        bytes[at] = static_cast<std::uint8_t>(random() % 128);
        if (isFourth)
            bytes[at] = static_cast<std::uint8_t>(127 + random() % 129);
    }
    return bytes;
}

Image makeImage(const Layout& layout, int width, int height, const Bytes& bytes,
                bool interpolates = true) {
    const auto space = cf::adopt(layout.bytesPerPixel == 1 ? CGColorSpaceCreateDeviceGray()
                                                           : CGColorSpaceCreateDeviceRGB());
    const auto rowBytes = static_cast<std::size_t>(width) * layout.bytesPerPixel;
    return cf::adopt(CGImageCreate(static_cast<std::size_t>(width),
                                   static_cast<std::size_t>(height), 8, 8 * layout.bytesPerPixel,
                                   rowBytes, space.get(), layout.info, providerOf(bytes).get(),
                                   nullptr, interpolates, kCGRenderingIntentDefault));
}

sk_sp<SkImage> bareImage(const Layout& layout, int width, int height, Bytes bytes) {
    if (layout.bytesPerPixel == 4 && layout.opacity == kOpaque_SkAlphaType) {
        for (std::size_t at = 3; at < bytes.size(); at += 4)
            bytes[at] = 255; // Skia trusts it; ours must not.
    }
    const SkImageInfo info = SkImageInfo::Make(width, height, layout.color, layout.opacity);
    return SkImages::RasterFromPixmapCopy(SkPixmap(info, bytes.data(), info.minRowBytes()));
}

struct Placement {
    const char* what;
    CGAffineTransform ctm;
    CGRect rect;
    bool reduces;
};

const Placement kPlacements[] = {
    {"own size", {1, 0, 0, 1, 0, 0}, {{11, 17}, {40, 30}}, false},
    {"between pixels", {1, 0, 0, 1, 0.25f, 0.5f}, {{11, 17}, {40, 30}}, false},
    {"over the edge", {1, 0, 0, 1, 0, 0}, {{-9, 80}, {40, 30}}, false},
    {"enlarged", {1, 0, 0, 1, 0, 0}, {{3, 5}, {80, 75}}, false},
    {"a third", {1, 0, 0, 1, 0, 0}, {{20, 30}, {13, 10}}, true},
    {"turned around", {1, 0, 0, -1, 0, kSize}, {{11, 17}, {40, 30}}, false},
    {"a quarter turn", {0, 1, -1, 0, kSize, 0}, {{11, 17}, {40, 30}}, false},
    {"rotated", {1.2f, 0.9f, -0.9f, 1.2f, 30, 5}, {{8, 4}, {40, 30}}, false},
    {"skewed, small", {0.4f, 0, 0.2f, 0.4f, 10, 10}, {{20, 20}, {40, 30}}, true},
};

struct Quality {
    const char* what;
    CGInterpolationQuality quality;
    SkSamplingOptions enlarged;
    SkSamplingOptions reduced;
};

const Quality kQualities[] = {
    {"none", kCGInterpolationNone, {}, {}},
    {"low", kCGInterpolationLow, SkSamplingOptions(SkFilterMode::kLinear),
     SkSamplingOptions(SkFilterMode::kLinear)},
    {"default",
     kCGInterpolationDefault,
     SkSamplingOptions(SkFilterMode::kLinear),
     {SkFilterMode::kLinear, SkMipmapMode::kNearest}},
    {"high",
     kCGInterpolationHigh,
     SkSamplingOptions(SkCubicResampler::CatmullRom()),
     {SkFilterMode::kLinear, SkMipmapMode::kLinear}},
};

SkMatrix toSkia(const CGAffineTransform& t) {
    return SkMatrix::MakeAll(t.a, t.c, t.tx, t.b, t.d, t.ty, 0, 0, 1);
}

void drawBare(SkCanvas& canvas, const SkImage* image, const Placement& place,
              const SkSamplingOptions& sampling, const SkPaint& paint) {
    const SkRect rect = SkRect::MakeXYWH(place.rect.origin.x, place.rect.origin.y,
                                         place.rect.size.width, place.rect.size.height);
    canvas.concat(toSkia(place.ctm));
    canvas.translate(0, rect.top() + rect.bottom());
    canvas.scale(1, -1);
    canvas.drawImageRect(image, rect, sampling, &paint);
}

void fillGray(CGContextRef context, SkCanvas& canvas) {
    CGContextSetRGBFillColor(context, 0.4f, 0.4f, 0.4f, 1);
    CGContextFillRect(context, CGRectMake(0, 0, 50, kSize));
    SkPaint gray;
    gray.setColor(SkColorSetRGB(102, 102, 102));
    canvas.drawRect(SkRect::MakeWH(50, kSize), gray);
}

} // namespace

TEST(DrawImage, PutsBareSkiasPixelsDown) {
    for (const Layout& layout : kLayouts) {
        const Bytes bytes = randomPixels(layout, 40, 30);
        const Image image = makeImage(layout, 40, 30, bytes);
        const auto bare = bareImage(layout, 40, 30, bytes);
        for (const Placement& place : kPlacements) {
            for (const Quality& quality : kQualities) {
                const Context context = makeContext(kSize, kSize);
                SkiaPeer peer(kSize, kSize);
                fillGray(context.get(), peer.canvas());

                CGContextSetAlpha(context.get(), 0.75f);
                CGContextSetInterpolationQuality(context.get(), quality.quality);
                CGContextConcatCTM(context.get(), place.ctm);
                CGContextDrawImage(context.get(), place.rect, image.get());
                SkPaint paint;
                paint.setAntiAlias(true);
                paint.setAlpha(191);
                drawBare(peer.canvas(), bare.get(), place,
                         place.reduces ? quality.reduced : quality.enlarged, paint);
                EXPECT_TRUE(samePixels(context.get(), peer))
                    << layout.what << ", " << place.what << ", " << quality.what;
            }
        }
    }
}

TEST(DrawImage, BringsImagesOfUnusedBytesInOpaque) {
    const Bytes bytes = {1, 2, 3, 0, 4, 5, 6, 77};
    const Context context = makeContext(2, 1);
    CGContextDrawImage(context.get(), CGRectMake(0, 0, 2, 1),
                       makeImage(kLayouts[1], 2, 1, bytes).get());
    const auto* const out = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_THAT(Bytes(out, out + 8), testing::ElementsAre(1, 2, 3, 255, 4, 5, 6, 255));
}

// ---- By hand

namespace {

// An L of opaque pixels.
Image makeL(bool interpolates = true) {
    return makeMask(2, 3, {0, 255, 0, 255, 0, 0}, nullptr, interpolates);
}

Picture drawL(const CGAffineTransform& ctm, CGRect rect, std::size_t width, std::size_t height) {
    const Context context = makeContext(width, height);
    CGContextConcatCTM(context.get(), ctm);
    CGContextDrawImage(context.get(), rect, makeL(false).get());
    return Picture(context.get());
}

} // namespace

TEST(DrawImage, PutsTheFirstRowAtTheTopAndTurnsWithUserSpace) {
    const CGRect rect = CGRectMake(0, 0, 2, 3);
    EXPECT_EQ(drawL({1, 0, 0, 1, 0, 0}, rect, 2, 3), Picture({"#.", "#.", "##"}));
    EXPECT_EQ(drawL({1, 0, 0, -1, 0, 3}, rect, 2, 3), Picture({"##", "#.", "#."}));
    EXPECT_EQ(drawL({-1, 0, 0, 1, 2, 0}, rect, 2, 3), Picture({".#", ".#", "##"}));
    EXPECT_EQ(drawL({0, 1, -1, 0, 3, 0}, rect, 3, 2), Picture({"..#", "###"}));
}

TEST(DrawImage, TakesTheNearestPixelOfAnImageThatShouldNotInterpolate) {
    EXPECT_EQ(drawL({1, 0, 0, 1, 0, 0}, CGRectMake(1, 0, 4, 6), 6, 7),
              Picture({"......", ".##...", ".##...", ".##...", ".##...", ".####.", ".####."}));
}

TEST(DrawImage, TilesFromTheRectanglesOrigin) {
    const Context context = makeContext(7, 5);
    CGContextDrawTiledImage(context.get(), CGRectMake(3, 1, 2, 3), makeL().get());
    EXPECT_EQ(Picture(context.get()),
              Picture({"#######", ".#.#.#.", ".#.#.#.", "#######", ".#.#.#."}));
}

TEST(DrawImage, PaintsTheFillColourThroughAMask) {
    const CGFloat inverted[] = {1, 0};
    const struct {
        const char* what;
        const CGFloat* decode;
        std::uint8_t first;
        std::uint8_t second;
    } cases[] = {{"as is", nullptr, 255, 0}, {"inverted", inverted, 0, 255}};
    for (const auto& [what, decode, first, second] : cases) {
        const Context context = makeContext(2, 1);
        CGContextSetRGBFillColor(context.get(), 1, 0, 0, 1);
        CGContextDrawImage(context.get(), CGRectMake(0, 0, 2, 1),
                           makeMask(2, 1, {0, 255}, decode).get());
        const auto* const out = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
        EXPECT_THAT(Bytes(out, out + 8),
                    testing::ElementsAre(0, 0, first, first, 0, 0, second, second))
            << what;
    }
}

TEST(DrawImage, ThrowsTheShadowOfItsShape) {
    const Context context = makeContext(7, 6);
    const auto color = cf::adopt(CGColorCreateGenericRGB(0, 0, 0, 1));
    CGContextSetShadowWithColor(context.get(), CGSizeMake(3, 2), 0, color.get());
    CGContextDrawImage(context.get(), CGRectMake(1, 0, 2, 3), makeL().get());
    EXPECT_EQ(Picture(context.get()),
              Picture({".......", "....#..", "....#..", ".#..##.", ".#.....", ".##...."}));
}

TEST(DrawImage, DrawsNothingForWhatIsNothing) {
    const Context context = makeContext(4, 4);
    const CGFloat nan = std::numeric_limits<CGFloat>::quiet_NaN();
    const CGFloat huge = std::numeric_limits<CGFloat>::max();
    for (const CGRect& rect : {CGRectMake(0, 0, 0, 4), CGRectNull, CGRectMake(nan, 0, 4, 4),
                               CGRectMake(0, 0, nan, 4), CGRectMake(huge, huge, huge, huge)}) {
        CGContextDrawImage(context.get(), rect, makeL().get());
        CGContextDrawTiledImage(context.get(), rect, makeL().get());
    }
    CGContextDrawImage(context.get(), CGRectMake(0, 0, 4, 4), nullptr);
    EXPECT_EQ(Picture(context.get()), Picture({"....", "....", "....", "...."}));
}

TEST(DrawImage, SaysSoAndDrawsAnEmptyImageWhenBytesAreMissing) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Image image =
        cf::adopt(CGImageCreate(2, 2, 8, 32, 8, space.get(), test::kBGRA, providerOf({1, 2}).get(),
                                nullptr, true, kCGRenderingIntentDefault));
    const Context context = makeContext(2, 2);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 2));
    const CollectedLog log;
    CGContextDrawImage(context.get(), CGRectMake(0, 0, 2, 2), image.get());
    EXPECT_EQ(Picture(context.get()), Picture({"##", "##"}));
    EXPECT_THAT(log.lines(),
                testing::Contains("3 SkiaContextDrawImage: Reading of bitmap failed, drawing "
                                  "empty image instead"));
    CGContextSetBlendMode(context.get(), kCGBlendModeCopy);
    CGContextDrawImage(context.get(), CGRectMake(0, 0, 2, 1), image.get());
    EXPECT_EQ(Picture(context.get()), Picture({"##", ".."}));
}

// ---- Clips

namespace {

Image makeGray(std::size_t width, std::size_t height, const Bytes& bytes) {
    return makeImage(kLayouts[4], static_cast<int>(width), static_cast<int>(height), bytes);
}

void fillAll(const Context& context) {
    CGContextFillRect(context.get(), CGRectMake(-10, -10, 100, 100));
}

} // namespace

TEST(ClipToMask, LetsPaintThroughByTheKindOfMask) {
    const CGFloat inverted[] = {1, 0};
    const Bytes samples = {0, 255, 128, 255, 0, 0};
    const struct {
        const char* what;
        Image mask;
        Picture expected;
    } cases[] = {
        {"image mask", makeMask(2, 3, samples), {"....", ".#..", ".+..", ".##."}},
        {"inverted image mask",
         makeMask(2, 3, samples, inverted),
         {"....", "..#.", ".+#.", "...."}},
        {"gray image", makeGray(2, 3, samples), {"....", "..#.", ".+#.", "...."}},
        {"picture with opacity",
         makeImage(kLayouts[0], 1, 3, {0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 255}),
         {"....", ".##.", "....", ".##."}},
    };
    for (const auto& [what, mask, expected] : cases) {
        const Context context = makeContext(4, 4);
        CGContextSetInterpolationQuality(context.get(), kCGInterpolationNone);
        CGContextClipToMask(context.get(), CGRectMake(1, 0, 2, 3), mask.get());
        fillAll(context);
        EXPECT_EQ(Picture(context.get()), expected) << what;
    }
}

TEST(ClipToMask, HoldsForEveryKindOfMarkUntilItIsRestored) {
    const struct {
        const char* what;
        void (*draw)(CGContextRef);
    } cases[] = {
        {"path",
         [](CGContextRef c) {
             CGContextMoveToPoint(c, -9, -9);
             CGContextAddLineToPoint(c, 30, -9);
             CGContextAddLineToPoint(c, -9, 30);
             CGContextFillPath(c);
         }},
        {"image",
         [](CGContextRef c) {
             CGContextDrawImage(c, CGRectMake(0, 0, 4, 4), makeMask(1, 1, {0}).get());
         }},
        {"layer",
         [](CGContextRef c) {
             CGContextBeginTransparencyLayer(c, nullptr);
             CGContextFillRect(c, CGRectMake(0, 0, 4, 4));
             CGContextEndTransparencyLayer(c);
         }},
    };
    for (const auto& [what, draw] : cases) {
        const Context context = makeContext(4, 3);
        CGContextSaveGState(context.get());
        CGContextClipToMask(context.get(), CGRectMake(1, 0, 2, 3), makeL().get());
        draw(context.get());
        EXPECT_EQ(Picture(context.get()), Picture({".#..", ".#..", ".##."})) << what;
        CGContextRestoreGState(context.get());
        fillAll(context);
        EXPECT_EQ(Picture(context.get()), Picture({"####", "####", "####"})) << what;
    }
}

TEST(ClipToMask, MeetsRectanglesPathsAndOtherMasks) {
    const Context context = makeContext(4, 3);
    CGContextClipToRect(context.get(), CGRectMake(0, 0, 4, 2));
    CGContextClipToMask(context.get(), CGRectMake(1, 0, 2, 3), makeL().get());
    CGContextClipToMask(context.get(), CGRectMake(0, 0, 4, 1),
                        makeGray(4, 1, {0, 0, 255, 0}).get());
    fillAll(context);
    EXPECT_EQ(Picture(context.get()), Picture({"....", "....", "..#."}));
}

TEST(ClipToMask, MultipliesTheCoverageOfOneAndTakesTheLesserOfTwo) {
    const struct {
        const char* what;
        std::uint8_t second;
        int alpha;
    } cases[] = {{"white", 255, 100}, {"darker", 60, 60}, {"the same", 100, 100}};
    for (const auto& [what, second, alpha] : cases) {
        const Context context = makeContext(1, 1);
        CGContextClipToMask(context.get(), CGRectMake(0, 0, 1, 1), makeGray(1, 1, {100}).get());
        CGContextClipToMask(context.get(), CGRectMake(0, 0, 1, 1), makeGray(1, 1, {second}).get());
        fillAll(context);
        EXPECT_EQ(static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()))[3], alpha)
            << what;
    }
}

// Skia's scan converter ends at 8191 pixels.
TEST(DrawImage, BeyondTheScanConvertersReachComesAsItIs) {
    constexpr int kLong = 9000;
    const Layout& layout = kLayouts[1]; // Opaque.
    for (const bool isUpright : {false, true}) {
        const int width = isUpright ? 2 : kLong, height = isUpright ? kLong : 2;
        const Bytes bytes = randomPixels(layout, width, height);
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const auto image = cf::adopt(CGImageCreate(
            std::size_t(width), std::size_t(height), 8, 32, std::size_t(width) * 4, space.get(),
            layout.info, providerOf(bytes).get(), nullptr, true, kCGRenderingIntentDefault));
        for (const CGBitmapInfo info : {test::kBGRA, CGBitmapInfo{kCGImageAlphaNone}}) {
            const auto context = cf::adopt(CGBitmapContextCreate(
                nullptr, std::size_t(width), std::size_t(height), 8, 0, space.get(), info));
            CGContextDrawImage(context.get(), CGRectMake(0, 0, CGFloat(width), CGFloat(height)),
                               image.get());
            const auto* const pixels =
                static_cast<const std::uint8_t*>(CGBitmapContextGetData(context.get()));
            const bool isNative = info == test::kBGRA;
            for (std::size_t i = 0; i < 2 * kLong; ++i)
                for (std::size_t c = 0; c < 3; ++c)
                    ASSERT_EQ(pixels[isNative ? 4 * i + c : 3 * i + 2 - c], bytes[4 * i + c])
                        << "pixel " << i << " of " << width << " by " << height;
        }
    }
}
