// PixelLayoutTest.cpp: every layout that creation accepts, beside a reader that goes bit by bit.

#include "XGColorSpace.h"

#include "Core/Image/DrawablePixels.h"
#include "PixelImages.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

namespace {

using test::Bytes;

// ---- The reference: slow, and plain to see through

struct Layout {
    std::size_t colors, bits, bitsPerPixel;
    CGImageAlphaInfo alpha;
    CGBitmapInfo order;
    bool isFloat;
};

// The bytes of a row in the order in which they stand for bits.
Bytes inOrder(const Layout& layout, Bytes row) {
    std::size_t unit = layout.order == kCGBitmapByteOrder16Little   ? 2
                       : layout.order == kCGBitmapByteOrder32Little ? 4
                                                                    : 1;
    while (unit > 1 && layout.bitsPerPixel % (8 * unit) != 0)
        unit /= 2;
    if (unit > 1)
        for (std::size_t i = 0; i + unit <= row.size(); i += unit)
            std::reverse(row.begin() + std::ptrdiff_t(i), row.begin() + std::ptrdiff_t(i + unit));
    return row;
}

std::uint32_t bitsAt(const Bytes& row, std::size_t offset, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t bit = offset; bit < offset + count; ++bit)
        value = value * 2 + (row[bit / 8] >> (7 - bit % 8) & 1u);
    return value;
}

struct Pixel {
    std::vector<double> colors; // 0…1, as they stand.
    double alpha = 1;
};

double number(const Layout& layout, std::uint32_t sample) {
    if (layout.isFloat)
        return double{std::bit_cast<float>(sample)};
    return sample / (std::exp2(double(layout.bits)) - 1);
}

Pixel pixelAt(const Layout& layout, const Bytes& row, std::size_t x) {
    Pixel pixel;
    std::size_t bit = x * layout.bitsPerPixel;
    const auto next = [&] {
        bit += layout.bits;
        return number(layout, bitsAt(row, bit - layout.bits, layout.bits));
    };
    const bool first =
        layout.alpha == kCGImageAlphaFirst || layout.alpha == kCGImageAlphaPremultipliedFirst;
    const bool last =
        layout.alpha == kCGImageAlphaLast || layout.alpha == kCGImageAlphaPremultipliedLast;
    if (layout.alpha == kCGImageAlphaOnly)
        return {{0}, next()};
    if (first)
        pixel.alpha = next();
    if (layout.alpha == kCGImageAlphaNoneSkipFirst)
        bit += layout.bitsPerPixel - layout.colors * layout.bits;
    for (std::size_t i = 0; i < layout.colors; ++i)
        pixel.colors.push_back(next());
    if (last)
        pixel.alpha = next();
    return pixel;
}

// ---- Comparison

enum class Want { Colors, Straight, Premultiplied };

std::vector<double> wanted(const Layout& layout, const Pixel& pixel, Want want) {
    std::vector<double> values;
    const bool isPremultiplied = layout.alpha == kCGImageAlphaPremultipliedFirst ||
                                 layout.alpha == kCGImageAlphaPremultipliedLast;
    if (layout.alpha == kCGImageAlphaOnly && want == Want::Colors)
        return {pixel.alpha};
    for (double color : pixel.colors) {
        if (isPremultiplied && want != Want::Premultiplied)
            color = pixel.alpha > 0 ? std::min(1., color / pixel.alpha) : 0;
        if (!isPremultiplied && want == Want::Premultiplied)
            color *= pixel.alpha;
        values.push_back(color);
    }
    if (want != Want::Colors)
        values.push_back(pixel.alpha);
    return values;
}

constexpr std::size_t kWidth = 300; // More than one span of the reader.
constexpr std::size_t kHeight = 2;

template <typename Component>
void expectPixels(CGImageRef image, const Layout& layout, const Bytes& bytes, Want want) {
    const auto row = CGImageGetBytesPerRow(image);
    std::size_t components = std::max<std::size_t>(layout.colors, 1);
    components += want != Want::Colors;
    const auto pixels = test::readPixels<Component>(image, components, want != Want::Colors,
                                                    want == Want::Premultiplied);
    ASSERT_TRUE(pixels);
    const double one =
        std::is_same_v<Component, float> ? 1. : std::exp2(8. * sizeof(Component)) - 1;
    // Half a step is rounding; a step more is for products and quotients of rounded numbers.
    const double tolerance = std::is_same_v<Component, float> ? 1e-5 : 1.501;
    std::size_t next = 0;
    for (std::size_t y = 0; y < kHeight; ++y) {
        const auto start = bytes.begin() + std::ptrdiff_t(y * row);
        const Bytes ordered = inOrder(layout, Bytes(start, start + std::ptrdiff_t(row)));
        for (std::size_t x = 0; x < kWidth; ++x)
            for (const double value : wanted(layout, pixelAt(layout, ordered, x), want)) {
                const double ours = double((*pixels)[next++]);
                ASSERT_NEAR(ours, value * one, tolerance) << "x " << x << " y " << y;
                if (want == Want::Straight && layout.alpha != kCGImageAlphaPremultipliedFirst &&
                    layout.alpha != kCGImageAlphaPremultipliedLast &&
                    !std::is_same_v<Component, float> && layout.bits <= 8 * sizeof(Component)) {
                    ASSERT_EQ(ours, std::floor(value * one + 0.5)) << "x " << x << " y " << y;
                }
            }
    }
}

// The same pixels as they are drawn into RGB, which has ways of its own for common layouts.
void expectDrawn(CGImageRef image, const Layout& layout, const Bytes& bytes) {
    const auto drawn =
        cg::DrawablePixels::of(image, XGColorSpaceGetDeviceRGB(), kCGRenderingIntentDefault);
    ASSERT_TRUE(drawn);
    using cg::DrawableFormat;
    if (drawn->format() != DrawableFormat::BGRA8Premultiplied &&
        drawn->format() != DrawableFormat::BGRX8)
        return; // Drawn where they lie, or gray, which is read as components are.
    const bool hasAlpha = drawn->format() == DrawableFormat::BGRA8Premultiplied;
    for (std::size_t y = 0; y < kHeight; ++y) {
        const auto row = bytes.begin() + std::ptrdiff_t(y * CGImageGetBytesPerRow(image));
        const Bytes ordered =
            inOrder(layout, Bytes(row, row + std::ptrdiff_t(CGImageGetBytesPerRow(image))));
        const auto* pixel =
            static_cast<const std::uint8_t*>(drawn->pixels()) + y * drawn->bytesPerRow();
        for (std::size_t x = 0; x < kWidth; ++x, pixel += 4) {
            auto values = wanted(layout, pixelAt(layout, ordered, x),
                                 hasAlpha ? Want::Premultiplied : Want::Colors);
            if (layout.colors == 1)
                values.insert(values.begin(), 2, values[0]);
            for (std::size_t c = 0; c < values.size(); ++c)
                ASSERT_NEAR(pixel[c < 3 ? 2 - c : c], values[c] * 255, 1.501)
                    << "x " << x << " y " << y << " component " << c;
        }
    }
}

cf::Ref<CGColorSpaceRef> spaceOf(std::size_t colors) {
    switch (colors) {
    case 1:
        return cf::adopt(CGColorSpaceCreateDeviceGray());
    case 3:
        return cf::adopt(CGColorSpaceCreateDeviceRGB());
    default:
        return cf::retain(XGColorSpaceGetDeviceCMYK());
    }
}

Bytes randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// Every acceptable layout of these sizes once; how many there were.
template <typename Check>
std::size_t forEachLayout(Check check) {
    std::size_t count = 0;
    for (const std::size_t colors : {1u, 3u, 4u})
        for (const std::size_t bits : {1u, 2u, 4u, 5u, 8u, 12u, 16u, 32u})
            for (const std::size_t padding : {0u, 1u, 3u, 8u, 16u, 24u})
                for (std::uint32_t alpha = 0; alpha <= kCGImageAlphaOnly; ++alpha)
                    for (std::uint32_t order = 0; order <= 0x4000; order += 0x1000) {
                        const bool opacity = alpha >= 1 && alpha <= 6;
                        const std::size_t fields =
                            alpha == kCGImageAlphaOnly ? 1 : colors + (opacity ? 1 : 0);
                        const Layout layout = {
                            colors, bits, fields * bits + padding, CGImageAlphaInfo(alpha),
                            order,  false};
                        count += check(layout);
                    }
    return count;
}

TEST(PixelLayout, IsReadAsItsBitsStand) {
    const std::size_t count = forEachLayout([](const Layout& layout) {
        const auto space = spaceOf(layout.colors);
        const std::size_t row = (kWidth * layout.bitsPerPixel + 7) / 8 + 3;
        const Bytes bytes = randomBytes(row * kHeight, unsigned(layout.bitsPerPixel));
        const auto image = test::makeImage({.width = kWidth,
                                            .height = kHeight,
                                            .bits = layout.bits,
                                            .bitsPerPixel = layout.bitsPerPixel,
                                            .bytesPerRow = row,
                                            .space = space.get(),
                                            .info = CGBitmapInfo{layout.alpha} | layout.order},
                                           bytes);
        if (!image)
            return false;
        Layout read = layout;
        if (layout.alpha == kCGImageAlphaOnly)
            read.colors = 1;
        SCOPED_TRACE(testing::Message() << layout.colors << " colours of " << layout.bits
                                        << " bits in " << layout.bitsPerPixel << ", alpha info "
                                        << layout.alpha << ", order " << std::hex << layout.order);
        for (const Want want : {Want::Colors, Want::Straight, Want::Premultiplied}) {
            expectPixels<std::uint8_t>(image.get(), read, bytes, want);
            expectPixels<std::uint16_t>(image.get(), read, bytes, want);
            expectPixels<float>(image.get(), read, bytes, want);
        }
        if (read.colors == 1 || read.colors == 3)
            expectDrawn(image.get(), read, bytes);
        return true;
    });
    EXPECT_GT(count, 1000u);
}

TEST(PixelLayout, TakesFloatsInEitherOrderAndLimitsThem) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const struct {
        float value;
        std::uint8_t expected;
    } cases[] = {{0.f, 0},   {0.5f, 128}, {1.f, 255},      {-3.f, 0},
                 {7.f, 255}, {NAN, 0},    {INFINITY, 255}, {-INFINITY, 0}};
    for (const auto& [value, expected] : cases)
        for (const CGBitmapInfo order : {0x2000u, 0x4000u, 0u}) {
            auto bits = std::bit_cast<std::uint32_t>(value);
            Bytes bytes;
            for (int i = 0; i < 4; ++i)
                bytes.push_back(std::uint8_t(bits >> (order == 0x2000 ? 8 * i : 24 - 8 * i)));
            const auto image = test::makeImage({.bits = 32,
                                                .bitsPerPixel = 32,
                                                .space = gray.get(),
                                                .info = kCGBitmapFloatComponents | order},
                                               bytes);
            const auto pixels = test::readPixels<std::uint8_t>(image.get(), 1, false, false);
            ASSERT_TRUE(pixels);
            EXPECT_EQ(pixels->front(), expected) << value << " order " << order;
        }
}

} // namespace
