// NativeTableTest.cpp: every operation in every blend mode on bitmaps that Skia draws into as they
// stand: byte for byte what bare Skia draws.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/DrawingOperations.h"
#include "include/core/SkBitmap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Format {
    const char* what;
    CGBitmapInfo info;
    SkColorType color;
    SkAlphaType opacity;
    std::size_t bitsPerComponent = 8;

    std::size_t rowBytes() const {
        return test::kTableWidth * static_cast<std::size_t>(SkColorTypeBytesPerPixel(color));
    }
};

constexpr CGBitmapInfo kLittle = kCGBitmapByteOrder32Little;
const Format kFormats[] = {
    {"BGRA", test::kBGRA, kBGRA_8888_SkColorType, kPremul_SkAlphaType},
    {"BGRX", kCGImageAlphaNoneSkipFirst | kLittle, kBGRA_8888_SkColorType, kOpaque_SkAlphaType},
    {"RGBA", test::kRGBA, kRGBA_8888_SkColorType, kPremul_SkAlphaType},
    {"RGBX", kCGImageAlphaNoneSkipLast, kRGBA_8888_SkColorType, kOpaque_SkAlphaType},
    {"5-6-5", CGBitmapInfo{kCGImagePixelFormatRGB565} | CGBitmapInfo{kCGBitmapByteOrder16Little},
     kRGB_565_SkColorType, kOpaque_SkAlphaType, 5},
    {"RGBA of 16 bits",
     CGBitmapInfo{kCGImageAlphaPremultipliedLast} | CGBitmapInfo{kCGBitmapByteOrder16Little},
     kR16G16B16A16_unorm_SkColorType, kPremul_SkAlphaType, 16},
    {"gray", kCGImageAlphaNone, kGray_8_SkColorType, kOpaque_SkAlphaType},
    {"alpha", kCGImageAlphaOnly, kAlpha_8_SkColorType, kPremul_SkAlphaType},
};

// Random pixels that are valid: no colour above its alpha, and opaque where there is none.
Bytes backdrop(const Format& format) {
    std::mt19937 random(7);
    Bytes bytes(format.rowBytes() * test::kTableHeight);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    if (SkColorTypeBytesPerPixel(format.color) == 4)
        for (std::size_t at = 0; at < bytes.size(); at += 4) {
            if (format.opacity == kOpaque_SkAlphaType)
                bytes[at + 3] = 255;
            for (std::size_t i = 0; i < 3; ++i)
                bytes[at + i] = std::min(bytes[at + i], bytes[at + 3]);
        }
    // In 16 bits each the high bytes come second.
    for (std::size_t at = 0; format.bitsPerComponent == 16 && at < bytes.size(); at += 8)
        for (std::size_t i = 1; i < 7; i += 2)
            bytes[at + i] = std::min<std::uint8_t>(bytes[at + i], bytes[at + 7] / 2);
    return bytes;
}

test::Context contextOver(const Format& format, Bytes& bytes) {
    const bool hasColor = SkColorTypeBytesPerPixel(format.color) > 1;
    const auto space =
        cf::adopt(hasColor ? CGColorSpaceCreateDeviceRGB() : CGColorSpaceCreateDeviceGray());
    return cf::adopt(CGBitmapContextCreate(bytes.data(), test::kTableWidth, test::kTableHeight,
                                           format.bitsPerComponent, format.rowBytes(), space.get(),
                                           format.info));
}

SkBitmap bitmapOver(const Format& format, Bytes& bytes) {
    SkBitmap bitmap;
    bitmap.installPixels(
        SkImageInfo::Make(test::kTableWidth, test::kTableHeight, format.color, format.opacity),
        bytes.data(), format.rowBytes());
    return bitmap;
}

TEST(NativeTable, IsWhatBareSkiaDraws) {
    for (const Format& format : kFormats) {
        const Bytes before = backdrop(format);
        for (const test::DrawingOperation& operation : test::drawingOperations()) {
            std::size_t modesThatDraw = 0;
            for (std::size_t mode = 0; mode < test::tableBlendModes().size(); ++mode) {
                Bytes ours = before, bare = before;
                const test::Context context = contextOver(format, ours);
                ASSERT_TRUE(context) << format.what;
                test::drawOurs(operation, context.get(), mode);
                test::drawBare(operation, bitmapOver(format, bare), mode,
                               format.color == kGray_8_SkColorType);
                const auto [mine, its] = std::ranges::mismatch(ours, bare);
                EXPECT_TRUE(mine == ours.end())
                    << format.what << ", " << operation.what << ", mode " << mode << ": byte "
                    << mine - ours.begin() << " is " << int{*mine} << ", bare Skia's " << int{*its};
                modesThatDraw += ours != before;
            }
            EXPECT_GE(modesThatDraw, 10u) << format.what << ", " << operation.what;
        }
    }
}

} // namespace
