// DrawablePixelsTest.cpp: pixels drawn where they lie, and conversions that happen once.

#include "Core/Image/DrawablePixels.h"

#include "XGColorSpace.h"
#include "XGImage.h"

#include "PixelImages.h"
#include "Support/FailingAllocator.h"
#include "Support/Threads.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>

namespace {

using cg::DrawableFormat;
using cg::DrawablePixels;
using test::Bytes;

const CGColorSpaceRef kGray = XGColorSpaceGetDeviceGray();
const CGColorSpaceRef kRGB = XGColorSpaceGetDeviceRGB();

TEST(DrawablePixels, AreTheProvidersOwnWhereTheLayoutIsDrawable) {
    constexpr std::size_t kSide = 256;
    const Bytes bytes(kSide * kSide * 4 + 4, 1);
    const CGBitmapInfo little = kCGBitmapByteOrder32Little;
    const CGFloat inverted[] = {1, 0};
    const struct {
        const char* what;
        std::size_t bitsPerPixel;
        CGColorSpaceRef space;
        CGBitmapInfo info;
        const CGFloat* decode;
        DrawableFormat format;
        bool isInPlace;
    } cases[] = {
        {"BGRA", 32, kRGB, kCGImageAlphaPremultipliedFirst | little, nullptr,
         DrawableFormat::BGRA8Premultiplied, true},
        {"BGRX", 32, kRGB, kCGImageAlphaNoneSkipFirst | little, nullptr, DrawableFormat::BGRX8,
         true},
        {"RGBA", 32, kRGB, kCGImageAlphaPremultipliedLast, nullptr,
         DrawableFormat::RGBA8Premultiplied, true},
        {"RGBX", 32, kRGB, kCGImageAlphaNoneSkipLast, nullptr, DrawableFormat::RGBX8, true},
        {"gray", 8, kGray, kCGImageAlphaNone, nullptr, DrawableFormat::Gray8, true},
        {"opacity alone", 8, nullptr, kCGImageAlphaOnly, nullptr, DrawableFormat::Alpha8, true},
        {"straight", 32, kRGB, kCGImageAlphaLast, nullptr, DrawableFormat::BGRA8Premultiplied,
         false},
        {"packed", 24, kRGB, kCGImageAlphaNone, nullptr, DrawableFormat::BGRX8, false},
        {"decoded gray", 8, kGray, kCGImageAlphaNone, inverted, DrawableFormat::Gray8, false},
    };
    for (const auto& row : cases) {
        const auto image = test::makeImage({.width = kSide,
                                            .height = kSide,
                                            .bitsPerPixel = row.bitsPerPixel,
                                            .space = row.space,
                                            .info = row.info,
                                            .decode = row.decode},
                                           bytes);
        const test::AllocationMeter meter;
        const auto first = DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault);
        ASSERT_TRUE(first) << row.what;
        EXPECT_EQ(first->format(), row.format) << row.what;
        EXPECT_EQ(first->pixels() == bytes.data(), row.isInPlace) << row.what;
        EXPECT_EQ(meter.liveBytes() < 4096, row.isInPlace) << row.what;
        // What was converted is kept.
        const auto second = DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault);
        ASSERT_TRUE(second) << row.what;
        EXPECT_EQ(second->pixels(), first->pixels()) << row.what;
    }
}

TEST(DrawablePixels, GiveImageMasksAsCoverage) {
    const Bytes bits = {0b01000000}, grays = {255, 51};
    const CGFloat inverted[] = {1, 0};
    const struct {
        const char* what;
        test::Image mask;
        std::array<int, 2> coverage;
    } cases[] = {
        {"one bit", test::makeMask(2, 1, 1, bits), {255, 0}},
        {"one bit, decoded the other way", test::makeMask(2, 1, 1, bits, inverted), {0, 255}},
        {"eight bits", test::makeMask(2, 1, 8, grays), {0, 204}},
        {"eight bits, decoded the other way", test::makeMask(2, 1, 8, grays, inverted), {255, 51}},
    };
    for (const auto& [what, mask, coverage] : cases) {
        const auto drawable = DrawablePixels::of(mask.get(), kRGB, kCGRenderingIntentDefault);
        ASSERT_TRUE(drawable) << what;
        EXPECT_EQ(drawable->format(), DrawableFormat::Alpha8) << what;
        const auto* const pixels = static_cast<const std::uint8_t*>(drawable->pixels());
        EXPECT_EQ(pixels[0], coverage[0]) << what;
        EXPECT_EQ(pixels[1], coverage[1]) << what;
    }
}

TEST(DrawablePixels, PremultiplyExactly) {
    Bytes bytes;
    for (unsigned color = 0; color < 256; ++color)
        for (unsigned alpha = 0; alpha < 256; ++alpha)
            for (const unsigned value : {color, 255 - color, color / 2, alpha})
                bytes.push_back(static_cast<std::uint8_t>(value));
    const auto image = test::makeImage(
        {.width = 256, .height = 256, .bitsPerPixel = 32, .space = kRGB, .info = kCGImageAlphaLast},
        bytes);
    const auto drawable = DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault);
    ASSERT_TRUE(drawable);
    const auto* pixel = static_cast<const std::uint8_t*>(drawable->pixels());
    for (std::size_t i = 0; i < bytes.size(); i += 4, pixel += 4) {
        const int alpha = bytes[i + 3];
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_EQ(pixel[2 - c], (bytes[i + c] * alpha * 2 + 255) / 510) << i;
        ASSERT_EQ(pixel[3], alpha);
    }
}

TEST(DrawablePixels, NarrowToTheNearestByte) {
    Bytes bytes;
    for (unsigned value = 0; value < 65536; ++value)
        for (const unsigned word : {value, 65535 - value, value ^ 0x5555, 65535u}) {
            bytes.push_back(static_cast<std::uint8_t>(word >> 8));
            bytes.push_back(static_cast<std::uint8_t>(word));
        }
    const auto image = test::makeImage({.width = 256,
                                        .height = 256,
                                        .bits = 16,
                                        .bitsPerPixel = 64,
                                        .space = kRGB,
                                        .info = kCGImageAlphaPremultipliedLast},
                                       bytes);
    const auto drawable = DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault);
    ASSERT_TRUE(drawable);
    const auto* pixel = static_cast<const std::uint8_t*>(drawable->pixels());
    for (std::size_t i = 0; i < bytes.size(); i += 8, pixel += 4)
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_EQ(pixel[2 - c],
                      std::lround((bytes[i + 2 * c] * 256 + bytes[i + 2 * c + 1]) / 257.0));
}

TEST(DrawablePixels, AreForgottenByAnImageThatBecomesUncacheable) {
    constexpr std::size_t kSide = 128;
    const Bytes bytes(kSide * kSide * 3, 5);
    const auto image = test::makeImage(
        {.width = kSide, .height = kSide, .bitsPerPixel = 24, .space = kRGB}, bytes);
    const test::AllocationMeter meter;
    const auto draw = [&] {
        return DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault).has_value();
    };
    constexpr std::ptrdiff_t kPixels = kSide * kSide * 4;
    EXPECT_TRUE(draw());
    EXPECT_GE(meter.liveBytes(), kPixels);
    XGImageSetUncacheable(image.get(), true);
    EXPECT_LT(meter.liveBytes(), kPixels);
    EXPECT_TRUE(draw());
    EXPECT_LT(meter.liveBytes(), kPixels);
}

// ---- Threads

struct CountedSource {
    Bytes bytes = Bytes(64 * 64 * 3, 9);
    std::atomic<int> reads = 0;

    static std::size_t read(void* info, void* buffer, off_t position, std::size_t count) {
        auto* const source = static_cast<CountedSource*>(info);
        ++source->reads;
        std::copy_n(source->bytes.begin() + position, count, static_cast<std::uint8_t*>(buffer));
        return count;
    }
};

TEST(DrawablePixels, AreConvertedOnceForAllThreads) {
    CountedSource source;
    const CGDataProviderDirectCallbacks callbacks = {.getBytesAtPosition = CountedSource::read};
    const auto provider = cf::adopt(
        CGDataProviderCreateDirect(&source, static_cast<off_t>(source.bytes.size()), &callbacks));
    const auto image =
        cf::adopt(CGImageCreate(64, 64, 8, 24, 192, kRGB, kCGImageAlphaNone, provider.get(),
                                nullptr, false, kCGRenderingIntentDefault));
    const CGFloat ranges[] = {0, 8, 0, 8, 0, 8};
    const auto masked = cf::adopt(CGImageCreateWithMaskingColors(image.get(), ranges));
    std::array<const void*, 4> pixels = {};
    std::array<CGImageRef, 4> baked = {};
    std::array<bool, 4> isRead = {};
    test::onThreads([&](std::size_t i) {
        const auto drawable = DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault);
        pixels[i] = drawable ? drawable->pixels() : nullptr;
        baked[i] = _CGImageGetMaskedImage(masked.get());
        isRead[i] = test::readPixels<std::uint16_t>(image.get(), 4, true, true).has_value();
    });
    EXPECT_THAT(pixels, testing::Each(testing::AllOf(pixels[0], testing::NotNull())));
    EXPECT_THAT(baked, testing::Each(testing::AllOf(baked[0], testing::NotNull())));
    EXPECT_THAT(isRead, testing::Each(true));
    const int before = source.reads;
    EXPECT_TRUE(DrawablePixels::of(image.get(), kRGB, kCGRenderingIntentDefault));
    EXPECT_EQ(source.reads, before);
}

} // namespace
