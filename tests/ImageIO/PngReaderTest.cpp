// PngReaderTest.cpp: PNG pixels, held against libpng's own reading.

#include "Sources.h"
#include "Support/BareCodecs.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace test;

// ---- What libpng makes of a file: whole bytes, no palette, opacity where anything is transparent.

struct Expanded {
    Bytes samples;
    std::size_t channels = 0, bytesPerSample = 1;
};

Expanded expandedByLibpng(const Bytes& file) {
    PngInput input(file);
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    input.attachTo(png);
    png_read_png(png, info, PNG_TRANSFORM_EXPAND, nullptr);
    Expanded result;
    result.channels = png_get_channels(png, info);
    result.bytesPerSample = png_get_bit_depth(png, info) / 8u;
    for (std::size_t y = 0; y < png_get_image_height(png, info); ++y) {
        const png_bytep row = png_get_rows(png, info)[y];
        result.samples.insert(result.samples.end(), row, row + png_get_rowbytes(png, info));
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return result;
}

// ---- The same of an image of ours, worked out from its description.

std::uint32_t sampleAt(const Bytes& pixels, std::size_t rowBytes, std::size_t bits, std::size_t x,
                       std::size_t y) {
    const std::size_t bit = x * bits;
    return pixels[y * rowBytes + bit / 8] >> (8 - bits - bit % 8) & ((1u << bits) - 1);
}

Expanded expandedSmallSamples(CGImageRef image, const Bytes& pixels) {
    const CGColorSpaceRef space = CGImageGetColorSpace(image);
    const bool isIndexed = CGColorSpaceGetModel(space) == kCGColorSpaceModelIndexed;
    Bytes table(3 * 256);
    if (isIndexed)
        CGColorSpaceGetColorTable(space, table.data());
    const std::size_t bits = CGImageGetBitsPerPixel(image);
    Expanded result{.channels = isIndexed ? 3u : 1u};
    for (std::size_t y = 0; y < CGImageGetHeight(image); ++y) {
        for (std::size_t x = 0; x < CGImageGetWidth(image); ++x) {
            const auto sample = sampleAt(pixels, CGImageGetBytesPerRow(image), bits, x, y);
            for (std::size_t c = 0; c < result.channels; ++c)
                result.samples.push_back(isIndexed
                                             ? table[sample * 3 + c]
                                             : std::uint8_t(sample * 255 / ((1u << bits) - 1)));
        }
    }
    return result;
}

Expanded expanded(CGImageRef image) {
    const Bytes pixels = pixelsOf(image);
    if (CGImageGetBitsPerPixel(image) <= 8)
        return expandedSmallSamples(image, pixels);
    Expanded result{.bytesPerSample = CGImageGetBitsPerComponent(image) / 8};
    const bool skips = CGImageGetAlphaInfo(image) == kCGImageAlphaNoneSkipLast;
    const std::size_t stored = CGImageGetBitsPerPixel(image) / CGImageGetBitsPerComponent(image);
    result.channels = skips ? stored - 1 : stored;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        if (i / result.bytesPerSample % stored < result.channels)
            result.samples.push_back(pixels[i]);
    return result;
}

TEST(PngReader, KeepsThePixelsOfEveryColourTypeAndDepth) {
    const struct {
        const char* what;
        int colorType;
        std::vector<int> depths;
        bool mayBeTransparent;
    } kinds[] = {
        {"gray", PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}, true},
        {"RGB", PNG_COLOR_TYPE_RGB, {8, 16}, true},
        {"palette", PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}, true},
        {"gray and alpha", PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}, false},
        {"RGBA", PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}, false},
    };
    for (const auto& [what, colorType, depths, mayBeTransparent] : kinds) {
        for (const int depth : depths) {
            for (const int variant : {0, 1, 2, 3}) {
                const bool isTransparent = (variant & 1) != 0, isInterlaced = (variant & 2) != 0;
                if (isTransparent && !mayBeTransparent)
                    continue;
                const Bytes file = makePng({.depth = depth,
                                            .colorType = colorType,
                                            .isInterlaced = isInterlaced,
                                            .hasTransparentColor = isTransparent});
                const Image image = imageOf(file);
                ASSERT_TRUE(image) << what << depth << variant;
                const Expanded expected = expandedByLibpng(file), ours = expanded(image.get());
                EXPECT_EQ(ours.channels, expected.channels) << what << depth << variant;
                EXPECT_EQ(ours.bytesPerSample, expected.bytesPerSample) << what << depth;
                EXPECT_EQ(ours.samples, expected.samples) << what << depth << variant;
            }
        }
    }
}

TEST(PngReader, StoresPixelsAsTheyCanBeDrawn) {
    const struct {
        const char* what;
        PngFile file;
        std::size_t bitsPerPixel;
        CGBitmapInfo info;
    } cases[] = {
        {"gray of 2 bits", {.depth = 2, .colorType = 0}, 2, kCGImageAlphaNone},
        {"palette", {.depth = 4, .colorType = 3}, 4, kCGImageAlphaNone},
        {"opaque RGB is padded", {.colorType = 2}, 32, kCGImageAlphaNoneSkipLast},
        {"RGBA", {.colorType = 6}, 32, kCGImageAlphaLast},
        {"transparent palette",
         {.depth = 2, .colorType = 3, .hasTransparentColor = true},
         32,
         kCGImageAlphaLast},
        {"16 bits stay big-endian",
         {.depth = 16, .colorType = 2},
         48,
         kCGImageAlphaNone | kCGBitmapByteOrder16Big},
    };
    for (const auto& [what, file, bitsPerPixel, info] : cases) {
        const Image image = imageOf(makePng(file));
        EXPECT_EQ(CGImageGetBitsPerPixel(image.get()), bitsPerPixel) << what;
        EXPECT_EQ(CGImageGetBitmapInfo(image.get()), info) << what;
        EXPECT_TRUE(CGImageGetShouldInterpolate(image.get())) << what;
    }
}

Bytes fileAt(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes readBySimplifiedAPI(const char* path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path))
        return {};
    if (image.format & PNG_FORMAT_FLAG_LINEAR) { // It would convert 16 bits.
        png_image_free(&image);
        return expandedByLibpng(fileAt(path)).samples;
    }
    const bool hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
    const bool hasColor = (image.format & PNG_FORMAT_FLAG_COLOR) != 0;
    image.format = hasColor   ? hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB
                   : hasAlpha ? PNG_FORMAT_GA
                              : PNG_FORMAT_GRAY;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
    png_image_free(&image);
    return pixels;
}

TEST(PngReader, ReadsTheInstalledIconsAsLibpngDoes) {
    std::size_t count = 0, different = 0;
    for (const char* theme : {"/usr/share/icons/Adwaita", "/usr/share/icons/Tango"}) {
        if (!std::filesystem::exists(theme))
            continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(theme)) {
            if (entry.path().extension() != ".png" || entry.is_symlink())
                continue;
            const Bytes expected = readBySimplifiedAPI(entry.path().c_str());
            const auto provider = cf::adopt(CGDataProviderCreateWithFilename(entry.path().c_str()));
            const Source source =
                cf::adopt(CGImageSourceCreateWithDataProvider(provider.get(), nullptr));
            const Image image =
                cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
            ++count;
            if (!image || expanded(image.get()).samples != expected) {
                ++different;
                ADD_FAILURE() << entry.path();
            }
        }
    }
    if (count == 0)
        GTEST_SKIP() << "no icon theme is installed";
    std::printf("%zu icons, %zu different\n", count, different);
}

TEST(PngReader, TakesColoursFromProfileStandardAndGamma) {
    const auto space = [](auto addChunks) {
        const Image image = imageOf(makePng({.addChunks = addChunks}));
        return cf::retain(CGImageGetColorSpace(image.get()));
    };
    const auto standard = space([](void* png, void* info) {
        png_set_sRGB(static_cast<png_structp>(png), static_cast<png_infop>(info), 0);
    });
    const auto isStandard = [](const auto& each) {
        const auto name = cf::adopt(CGColorSpaceCopyName(each.get()));
        return name && CFEqual(name.get(), kCGColorSpaceSRGB);
    };
    EXPECT_TRUE(isStandard(standard));

    const auto usual = space([](void* png, void* info) {
        png_set_gAMA(static_cast<png_structp>(png), static_cast<png_infop>(info), 0.45455);
    });
    EXPECT_TRUE(isStandard(usual));

    const auto linear = space([](void* png, void* info) {
        png_set_gAMA(static_cast<png_structp>(png), static_cast<png_infop>(info), 1);
    });
    EXPECT_FALSE(isStandard(linear));
    EXPECT_EQ(CGColorSpaceGetModel(linear.get()), kCGColorSpaceModelRGB);

    const auto none = space(nullptr), device = cf::adopt(CGColorSpaceCreateDeviceRGB());
    EXPECT_TRUE(CFEqual(none.get(), device.get()));
}

} // namespace
