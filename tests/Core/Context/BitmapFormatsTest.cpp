// BitmapFormatsTest.cpp: every bitmap format beside the 32-bit one that the rasteriser draws into.

#include "XGBitmapContext.h"
#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using test::Context;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kSide = 24;
constexpr std::size_t kPadding = 3; // Rows begin anywhere.

// ---- Formats, and a slow reading of their pixels

// `bits` names the components from the pixel's most significant bit on: "x1r5g5b5". Gray is 'y'.
// The bytes of each `unit` stand in reverse.
struct Format {
    const char* what;
    const char* bits;
    std::size_t unit, bitsPerComponent;
    CGBitmapInfo info;

    bool isGray() const { return std::strchr(bits, 'y'); }
    bool hasAlpha() const { return std::strchr(bits, 'a'); }
    // Where components have 16 bits the native bitmap rounds twice: what it begins with, and what
    // it blends.
    double tolerance() const { return bitsPerComponent == 16 ? 2 : 1.001; }
};

constexpr CGBitmapInfo kFirst = kCGImageAlphaPremultipliedFirst;
constexpr CGBitmapInfo kLast = kCGImageAlphaPremultipliedLast;
constexpr CGBitmapInfo kSkipFirst = kCGImageAlphaNoneSkipFirst;
constexpr CGBitmapInfo kSkipLast = kCGImageAlphaNoneSkipLast;
constexpr CGBitmapInfo kLittle16 = kCGBitmapByteOrder16Little;
constexpr CGBitmapInfo kLittle32 = kCGBitmapByteOrder32Little;
constexpr CGBitmapInfo kBig16 = kCGBitmapByteOrder16Big;
constexpr CGBitmapInfo k565 = kCGImagePixelFormatRGB565;

const Format kFormats[] = {
    {"BGRA across words", "a8r8g8b8", 4, 8, kFirst | kLittle32},
    {"ABGR", "r8g8b8a8", 4, 8, kLast | kLittle32},
    {"XBGR", "r8g8b8x8", 4, 8, kSkipLast | kLittle32},
    {"ARGB", "a8r8g8b8", 1, 8, kFirst},
    {"XRGB", "x8r8g8b8", 1, 8, kSkipFirst | kCGBitmapByteOrder32Big},
    {"ARGB in pairs", "a8r8g8b8", 2, 8, kFirst | kLittle16},
    {"RGB", "r8g8b8", 1, 8, 0},
    {"RGB in 6 bits with alpha", "r6g6b6a6", 1, 6, kLast},
    {"RGB in 4 bits with alpha", "r4g4b4a4", 2, 4, kLast | kLittle16},
    {"1-5-5-5 skipped, big", "x1r5g5b5", 1, 5, kSkipFirst | kBig16},
    {"1-5-5-5 skipped, little", "x1r5g5b5", 2, 5, kSkipFirst | kLittle16},
    {"5-5-5 alone", "r5g5b5x1", 2, 5, kCGImageAlphaNone | kLittle16},
    {"1-5-5-5 with alpha", "a1r5g5b5", 2, 5, kFirst | kLittle16},
    {"5-6-5 in host order", "r5g6b5", 2, 5, k565 | kLittle16},
    {"5-6-5 in the other", "r5g6b5", 1, 5, k565 | kBig16},
    {"RGBA of 16 bits in host order", "r16g16b16a16", 2, 16, kLast | kLittle16},
    {"RGBA of 16 bits in the other", "r16g16b16a16", 1, 16, kLast | kBig16},
    {"ARGB of 16 bits", "a16r16g16b16", 2, 16, kFirst | kLittle16},
    {"RGBX of 16 bits in pairs", "r16g16b16x16", 4, 16, kSkipLast | kLittle32},
    {"gray and alpha", "y8a8", 1, 8, kLast},
    {"alpha and gray, little", "a8y8", 2, 8, kFirst | kLittle16},
    {"gray and alpha of 16 bits", "y16a16", 1, 16, kLast},
    {"gray, skipped", "x8y8", 1, 8, kSkipFirst},
};

struct Field {
    char name;
    unsigned bits;
    unsigned long most() const { return (1ul << bits) - 1; }
};

std::vector<Field> fieldsOf(const Format& format) {
    std::vector<Field> fields;
    for (const char* at = format.bits; *at;) {
        char* end = nullptr;
        const char name = *at;
        fields.push_back({name, static_cast<unsigned>(std::strtoul(at + 1, &end, 10))});
        at = end;
    }
    return fields;
}

std::size_t bytesPerPixel(const Format& format) {
    unsigned bits = 0;
    for (const Field& field : fieldsOf(format))
        bits += field.bits;
    return bits / 8;
}

// The pixel's bits as a number, most significant first.
std::uint64_t numberOf(const Format& format, const std::uint8_t* pixel) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytesPerPixel(format); ++i)
        number = number << 8 |
                 pixel[i / format.unit * format.unit + (format.unit - 1) - i % format.unit];
    return number;
}

void putNumber(const Format& format, std::uint64_t number, std::uint8_t* pixel) {
    for (std::size_t i = bytesPerPixel(format); i-- > 0; number >>= 8)
        pixel[i / format.unit * format.unit + (format.unit - 1) - i % format.unit] =
            static_cast<std::uint8_t>(number);
}

// Blue, green, red, opacity in 0…1 of a pixel.
std::array<double, 4> colorOf(const Format& format, const std::uint8_t* pixel) {
    std::array<double, 4> color = {0, 0, 0, 1};
    std::uint64_t number = numberOf(format, pixel);
    const auto fields = fieldsOf(format);
    for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
        const double value = double(number & field->most()) / double(field->most());
        number >>= field->bits;
        if (field->name == 'y')
            color[0] = color[1] = color[2] = value;
        else if (const char* const place = std::strchr("bgra", field->name))
            color[std::size_t(place - "bgra")] = value;
    }
    return color;
}

// ---- The same drawing twice

Bytes randomPixels(const Format& format, std::size_t bytesPerRow) {
    std::mt19937 random(7);
    Bytes bytes(bytesPerRow * kSide);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    // Colours are within their opacity: it is full, or all is 0.
    for (std::size_t i = 0; format.hasAlpha() && i < kSide * kSide; ++i) {
        auto* const pixel = &bytes[i / kSide * bytesPerRow + i % kSide * bytesPerPixel(format)];
        std::uint64_t number = numberOf(format, pixel), full = 0;
        for (const Field& field : fieldsOf(format))
            full = full << field.bits | (field.name == 'a' ? field.most() : 0);
        putNumber(format, random() % 3 == 0 ? 0 : number | full, pixel);
    }
    return bytes;
}

// The same colours in the native layout.
std::vector<std::uint32_t> nativePixels(const Format& format, const Bytes& bytes,
                                        std::size_t bytesPerRow) {
    std::vector<std::uint32_t> pixels;
    for (std::size_t i = 0; i < kSide * kSide; ++i) {
        const auto color =
            colorOf(format, &bytes[i / kSide * bytesPerRow + i % kSide * bytesPerPixel(format)]);
        std::uint32_t pixel = 0;
        for (std::size_t c = 4; c-- > 0;)
            pixel = pixel << 8 | static_cast<std::uint32_t>(std::lround(color[c] * 255));
        pixels.push_back(pixel);
    }
    return pixels;
}

cf::Ref<CGImageRef> makePicture() {
    const auto context = test::makeContext(5, 5);
    CGContextSetRGBFillColor(context.get(), 0.9f, 0.3f, 0.1f, 0.7f);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 3, 4));
    CGContextSetRGBFillColor(context.get(), 0, 0.4f, 0.8f, 1);
    CGContextFillRect(context.get(), CGRectMake(2, 1, 3, 4));
    return cf::adopt(CGBitmapContextCreateImage(context.get()));
}

struct Mark {
    const char* what;
    void (*draw)(CGContextRef context);
};

const Mark kMarks[] = {
    {"opaque rectangle",
     [](CGContextRef c) {
         CGContextSetRGBFillColor(c, 1, 0.6f, 0.2f, 1);
         CGContextFillRect(c, CGRectMake(3, 2, 9, 13));
     }},
    {"soft ellipse",
     [](CGContextRef c) {
         CGContextSetRGBFillColor(c, 0.1f, 0.7f, 0.4f, 0.6f);
         CGContextFillEllipseInRect(c, CGRectMake(2.3f, 3.6f, 15, 11));
     }},
    {"stroke under a clip",
     [](CGContextRef c) {
         CGContextAddEllipseInRect(c, CGRectMake(1, 1, 18, 20));
         CGContextClip(c);
         CGContextSetLineWidth(c, 3);
         CGContextMoveToPoint(c, 0, 0);
         CGContextAddLineToPoint(c, 24, 17);
         CGContextStrokePath(c);
     }},
    {"image, turned",
     [](CGContextRef c) {
         CGContextRotateCTM(c, 0.3f);
         CGContextDrawImage(c, CGRectMake(4, 1, 14, 12), makePicture().get());
     }},
    {"gradient",
     [](CGContextRef c) {
         const CGFloat colors[] = {1, 0, 0, 1, 0, 0, 1, 0.5f};
         const auto gradient = cf::adopt(
             CGGradientCreateWithColorComponents(XGColorSpaceGetDeviceRGB(), colors, nullptr, 2));
         CGContextClipToRect(c, CGRectMake(2, 5, 15, 10));
         CGContextDrawLinearGradient(c, gradient.get(), {4, 4}, {14, 15}, 0);
     }},
    {"group at half opacity",
     [](CGContextRef c) {
         CGContextSetAlpha(c, 0.5f);
         CGContextBeginTransparencyLayer(c, nullptr);
         CGContextFillRect(c, CGRectMake(2, 2, 10, 10));
         CGContextSetRGBFillColor(c, 1, 1, 0, 1);
         CGContextFillRect(c, CGRectMake(6, 6, 12, 12));
         CGContextEndTransparencyLayer(c);
     }},
    {"shadow",
     [](CGContextRef c) {
         CGContextSetShadow(c, {2, -2}, 3);
         CGContextFillRect(c, CGRectMake(8, 8, 6, 6));
     }},
    {"multiplied",
     [](CGContextRef c) {
         CGContextSetBlendMode(c, kCGBlendModeMultiply);
         CGContextSetRGBFillColor(c, 0.8f, 0.5f, 0.9f, 0.7f);
         CGContextFillRect(c, CGRectMake(1.5f, 2.5f, 16, 17));
     }},
    {"cleared", [](CGContextRef c) { CGContextClearRect(c, CGRectMake(4, 4, 7, 9)); }},
    {"xor",
     [](CGContextRef c) {
         CGContextSetBlendMode(c, kCGBlendModeXOR);
         CGContextSetRGBFillColor(c, 0, 1, 0, 0.5f);
         CGContextFillRect(c, CGRectMake(3, 3, 13, 11));
     }},
};

// As gray by luma; the difference of the format's own components from those of a native pixel, in
// the largest step of the two.
double stepsApart(const Format& format, const std::uint8_t* pixel, std::uint32_t native) {
    std::array<double, 4> expected;
    for (std::size_t c = 0; c < 4; ++c)
        expected[c] = (native >> 8 * c & 0xFF) / 255.0;
    if (!format.hasAlpha())
        expected[3] = 1;
    if (format.isGray())
        expected[0] = expected[1] = expected[2] =
            0.0722 * expected[0] + 0.7152 * expected[1] + 0.2126 * expected[2];
    const auto color = colorOf(format, pixel);
    double steps = 0;
    for (const Field& field : fieldsOf(format)) {
        const char* const place = std::strchr("bgra", field.name == 'y' ? 'g' : field.name);
        if (!place)
            continue;
        const auto c = std::size_t(place - "bgra");
        const double step = 1.0 / double(std::min(field.most(), 255ul));
        steps = std::max(steps, std::abs(color[c] - expected[c]) / step);
    }
    return steps;
}

class BitmapFormats : public testing::TestWithParam<Format> {};

} // namespace

TEST_P(BitmapFormats, ShowWhatTheNativeFormatShows) {
    const Format& format = GetParam();
    const auto space = format.isGray() ? XGColorSpaceGetDeviceGray() : XGColorSpaceGetDeviceRGB();
    const std::size_t row = kSide * bytesPerPixel(format) + kPadding;
    const Bytes start = randomPixels(format, row);
    const auto nativeStart = nativePixels(format, start, row);
    for (const auto& [what, draw] : kMarks) {
        SCOPED_TRACE(what);
        Bytes bytes = start;
        const auto context = cf::adopt(CGBitmapContextCreate(
            bytes.data(), kSide, kSide, format.bitsPerComponent, row, space, format.info));
        ASSERT_TRUE(context);
        EXPECT_EQ(CGBitmapContextGetBitsPerPixel(context.get()), 8 * bytesPerPixel(format));
        auto native = nativeStart;
        const auto nativeInfo = (format.hasAlpha() ? kFirst : kSkipFirst) | kLittle32;
        const auto nativeContext = cf::adopt(CGBitmapContextCreate(
            native.data(), kSide, kSide, 8, 0, XGColorSpaceGetDeviceRGB(), nativeInfo));
        draw(context.get());
        draw(nativeContext.get());

        std::size_t changed = 0;
        for (std::size_t i = 0; i < kSide * kSide; ++i) {
            const std::size_t at = i / kSide * row + i % kSide * bytesPerPixel(format);
            // Less than a native step may have changed a deeper pixel.
            if (native[i] == nativeStart[i] && format.bitsPerComponent < 16)
                ASSERT_EQ(std::memcmp(&bytes[at], &start[at], bytesPerPixel(format)), 0)
                    << "untouched pixel " << i;
            else
                ASSERT_LE(stepsApart(format, &bytes[at], native[i]), format.tolerance())
                    << "pixel " << i << " is " << std::hex << native[i] << " natively";
            changed += native[i] != nativeStart[i];
        }
        EXPECT_GT(changed, 20u);
        for (std::size_t y = 0; y < kSide; ++y)
            ASSERT_EQ(std::memcmp(&bytes[(y + 1) * row - kPadding],
                                  &start[(y + 1) * row - kPadding], kPadding),
                      0)
                << "behind row " << y;
    }
}

INSTANTIATE_TEST_SUITE_P(All, BitmapFormats, testing::ValuesIn(kFormats), [](const auto& info) {
    std::string name = info.param.what;
    std::erase_if(name,
                  [](char letter) { return !std::isalnum(static_cast<unsigned char>(letter)); });
    return name;
});
