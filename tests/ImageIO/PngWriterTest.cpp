// PngWriterTest.cpp: written PNG files, as libpng itself reads them.

#include "Images.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

using namespace test;

namespace {

// What a file says, its samples as they stand.
struct PngContents {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    int bits = 0;
    int colorType = -1;
    std::vector<unsigned> samples;

    explicit PngContents(const Bytes& file) : rest_(file.data()), end_(rest_ + file.size()) {
        png_set_read_fn(png, this, [](png_structp reader, png_bytep to, std::size_t count) {
            auto& self = *static_cast<PngContents*>(png_get_io_ptr(reader));
            if (count > static_cast<std::size_t>(self.end_ - self.rest_))
                png_error(reader, "ended too soon");
            std::memcpy(to, std::exchange(self.rest_, self.rest_ + count), count);
        });
        if (setjmp(png_jmpbuf(png)))
            return;
        png_read_png(png, info, PNG_TRANSFORM_PACKING, nullptr);
        bits = png_get_bit_depth(png, info);
        colorType = png_get_color_type(png, info);
        readSamples();
    }
    ~PngContents() { png_destroy_read_struct(&png, &info, nullptr); }
    PngContents(const PngContents&) = delete;

private:
    void readSamples() {
        const png_bytepp rows = png_get_rows(png, info);
        for (png_uint_32 y = 0; y < png_get_image_height(png, info); ++y)
            for (std::size_t i = 0; i < png_get_rowbytes(png, info); i += bits == 16 ? 2 : 1)
                samples.push_back(bits == 16 ? unsigned(rows[y][i]) << 8 | rows[y][i + 1]
                                             : unsigned(rows[y][i]));
    }

    const std::uint8_t* rest_;
    const std::uint8_t* end_;
};

using Samples = std::vector<unsigned>;
using Pixel = const std::uint8_t*;

unsigned straight(unsigned component, unsigned alpha, unsigned full) {
    return alpha == 0 ? 0 : unsigned((std::uint64_t{component} * full * 2 + alpha) / (2 * alpha));
}
unsigned big16(Pixel at) {
    return unsigned(at[0]) << 8 | at[1];
}

// Opacity at `alpha` of every `step` bytes, and no component above it.
void limitToAlpha(Bytes& bytes, std::size_t alpha, std::size_t step) {
    for (std::size_t pixel = 0; pixel + step <= bytes.size(); pixel += step)
        for (std::size_t i = 0; i < step; ++i)
            bytes[pixel + i] = std::min(bytes[pixel + i], bytes[pixel + alpha]);
}

const Space kGray = cf::adopt(CGColorSpaceCreateDeviceGray());
const Space kRGB = cf::adopt(CGColorSpaceCreateDeviceRGB());

Samples premultipliedBGRA(Pixel p) {
    return {straight(p[2], p[3], 255), straight(p[1], p[3], 255), straight(p[0], p[3], 255), p[3]};
}

TEST(PngWriter, KeepsThePixelsOfEveryLayout) {
    const CGBitmapInfo little = kCGBitmapByteOrder32Little;
    const struct {
        const char* what;
        Layout layout;
        CGColorSpaceRef space;
        int alphaAt; // Where the opacity stands of what is premultiplied, else -1.
        int bits;
        int colorType;
        std::function<Samples(Pixel)> expected;
    } cases[] = {
        {"gray",
         {8, 8},
         kGray.get(),
         -1,
         8,
         PNG_COLOR_TYPE_GRAY,
         [](Pixel p) { return Samples{p[0]}; }},
        {"RGB",
         {8, 24},
         kRGB.get(),
         -1,
         8,
         PNG_COLOR_TYPE_RGB,
         [](Pixel p) {
             return Samples{p[0], p[1], p[2]};
         }},
        {"RGBX",
         {8, 32, kCGImageAlphaNoneSkipLast},
         kRGB.get(),
         -1,
         8,
         PNG_COLOR_TYPE_RGB,
         [](Pixel p) {
             return Samples{p[0], p[1], p[2]};
         }},
        {"BGRX",
         {8, 32, kCGImageAlphaNoneSkipFirst | little},
         kRGB.get(),
         -1,
         8,
         PNG_COLOR_TYPE_RGB,
         [](Pixel p) {
             return Samples{p[2], p[1], p[0]};
         }},
        {"gray and alpha",
         {8, 16, kCGImageAlphaLast},
         kGray.get(),
         -1,
         8,
         PNG_COLOR_TYPE_GRAY_ALPHA,
         [](Pixel p) {
             return Samples{p[0], p[1]};
         }},
        {"RGBA",
         {8, 32, kCGImageAlphaLast},
         kRGB.get(),
         -1,
         8,
         PNG_COLOR_TYPE_RGB_ALPHA,
         [](Pixel p) {
             return Samples{p[0], p[1], p[2], p[3]};
         }},
        {"premultiplied BGRA",
         {8, 32, kCGImageAlphaPremultipliedFirst | little},
         kRGB.get(),
         3,
         8,
         PNG_COLOR_TYPE_RGB_ALPHA,
         premultipliedBGRA},
        {"16-bit gray",
         {16, 16, kCGBitmapByteOrder16Big},
         kGray.get(),
         -1,
         16,
         PNG_COLOR_TYPE_GRAY,
         [](Pixel p) { return Samples{big16(p)}; }},
        {"16-bit RGBA",
         {16, 64, kCGImageAlphaLast | kCGBitmapByteOrder16Big},
         kRGB.get(),
         -1,
         16,
         PNG_COLOR_TYPE_RGB_ALPHA,
         [](Pixel p) {
             return Samples{big16(p), big16(p + 2), big16(p + 4), big16(p + 6)};
         }},
        {"opacity alone",
         {8, 8, kCGImageAlphaOnly},
         nullptr,
         -1,
         8,
         PNG_COLOR_TYPE_GRAY,
         [](Pixel p) { return Samples{p[0]}; }},
    };
    for (const auto& [what, layout, space, alphaAt, bits, colorType, expected] : cases) {
        SCOPED_TRACE(what);
        Bytes bytes = randomBytes(rowBytes(layout) * kHeight);
        if (alphaAt >= 0)
            limitToAlpha(bytes, std::size_t(alphaAt), layout.bitsPerPixel / 8);
        const PngContents file(written(makeImage(layout, bytes, space).get(), kUTTypePNG));
        EXPECT_EQ(file.bits, bits);
        EXPECT_EQ(file.colorType, colorType);
        Samples samples;
        for (std::size_t pixel = 0; pixel < kWidth * kHeight; ++pixel)
            for (const unsigned sample : expected(&bytes[pixel * layout.bitsPerPixel / 8]))
                samples.push_back(sample);
        EXPECT_EQ(file.samples, samples);
    }
}

TEST(PngWriter, KeepsTheTableOfIndexedImages) {
    const Bytes table = {255, 0, 0, 0, 255, 0, 1, 2, 3};
    const Space indexed = cf::adopt(CGColorSpaceCreateIndexed(kRGB.get(), 2, table.data()));
    for (const std::size_t bits : {2u, 8u}) {
        SCOPED_TRACE(bits);
        const Layout layout = {bits, bits};
        Bytes bytes = randomBytes(rowBytes(layout) * kHeight);
        const PngContents file(written(makeImage(layout, bytes, indexed.get()).get(), kUTTypePNG));
        ASSERT_EQ(file.colorType, PNG_COLOR_TYPE_PALETTE);
        png_colorp colors = nullptr;
        int count = 0;
        png_get_PLTE(file.png, file.info, &colors, &count);
        for (std::size_t pixel = 0; pixel < file.samples.size(); ++pixel) {
            const std::size_t x = pixel % kWidth * bits;
            const unsigned byte = bytes[pixel / kWidth * rowBytes(layout) + x / 8];
            const unsigned index = byte >> (8 - bits - x % 8) & ((1u << bits) - 1);
            ASSERT_EQ(file.samples[pixel], index);
            ASSERT_LT(int(index), count);
            // An index past the table means its last colour.
            ASSERT_EQ(std::memcmp(&colors[index], &table[3 * std::min(index, 2u)], 3), 0) << index;
        }
    }
}

TEST(PngWriter, WritesProfileResolutionAndOrientation) {
    const auto profile = cf::adopt(CFURLCreateWithFileSystemPath(
        nullptr, CFSTR("/usr/share/color/icc/colord/AdobeRGB1998.icc"), kCFURLPOSIXPathStyle,
        false));
    const auto provider = cf::adopt(CGDataProviderCreateWithURL(profile.get()));
    const auto bytes = cf::adopt(CGDataProviderCopyData(provider.get()));
    const Space space = cf::adopt(CGColorSpaceCreateWithICCData(bytes.get()));
    ASSERT_TRUE(space) << "colord-data is not installed";
    const auto told = properties();
    CFDictionarySetValue(told.get(), kCGImagePropertyDPIWidth,
                         number(kCFNumberDoubleType, 300.0).get());
    CFDictionarySetValue(told.get(), kCGImagePropertyDPIHeight,
                         number(kCFNumberIntType, 150).get());
    CFDictionarySetValue(told.get(), kCGImagePropertyOrientation,
                         number(kCFNumberIntType, 6).get());
    const Layout layout = {8, 24};
    const Bytes pixels = randomBytes(rowBytes(layout) * kHeight);
    const PngContents file(
        written(makeImage(layout, pixels, space.get()).get(), kUTTypePNG, told.get()));

    png_charp name = nullptr;
    int method = 0;
    png_bytep found = nullptr;
    png_uint_32 length = 0;
    ASSERT_NE(png_get_iCCP(file.png, file.info, &name, &method, &found, &length), 0u);
    ASSERT_EQ(CFIndex(length), CFDataGetLength(bytes.get()));
    EXPECT_EQ(std::memcmp(found, CFDataGetBytePtr(bytes.get()), length), 0);
    EXPECT_EQ(png_get_x_pixels_per_meter(file.png, file.info), 11811u); // 300 / 0.0254.
    EXPECT_EQ(png_get_y_pixels_per_meter(file.png, file.info), 5906u);
    png_bytep exif = nullptr;
    ASSERT_NE(png_get_eXIf_1(file.png, file.info, &length, &exif), 0u);
    EXPECT_EQ(length, 26u);
    EXPECT_EQ(exif[19], 6);
}

} // namespace
