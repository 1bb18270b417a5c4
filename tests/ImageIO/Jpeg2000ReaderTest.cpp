// Jpeg2000ReaderTest.cpp: JPEG 2000 pixels, held against what was written and against OpenJPEG's
// own reading.

#include "Sources.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <openjpeg.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using namespace test;

std::uint32_t sampleOf(const Bytes& pixels, std::size_t bytesPerSample, std::size_t index) {
    if (bytesPerSample == 1)
        return pixels[index];
    std::uint16_t sample;
    std::memcpy(&sample, &pixels[index * 2], 2);
    return sample;
}

TEST(Jpeg2000Reader, GivesBackWhatWasWritten) {
    const struct {
        const char* what;
        Jpeg2000File file;
        std::size_t bits, slots;
        CGImageAlphaInfo alpha;
    } cases[] = {
        {"gray codestream", {.components = 1, .hasBoxes = false}, 8, 1, kCGImageAlphaNone},
        {"gray", {.components = 1}, 8, 1, kCGImageAlphaNone},
        {"gray of 16 bits", {.components = 1, .depth = 16}, 16, 1, kCGImageAlphaNone},
        {"gray and alpha", {.components = 2, .hasAlpha = true}, 8, 2, kCGImageAlphaLast},
        {"RGB is padded", {}, 8, 4, kCGImageAlphaNoneSkipLast},
        {"RGB of 16 bits", {.depth = 16}, 16, 3, kCGImageAlphaNone},
        {"RGB of 12 bits is spread", {.depth = 12}, 16, 3, kCGImageAlphaNone},
        {"RGB of 5 bits is spread", {.depth = 5}, 8, 4, kCGImageAlphaNoneSkipLast},
        {"RGBA", {.components = 4, .hasAlpha = true}, 8, 4, kCGImageAlphaLast},
        {"four inks", {.components = 4, .isCMYK = true}, 8, 4, kCGImageAlphaNone},
        {"coarser components", {.chromaStep = 2}, 8, 4, kCGImageAlphaNoneSkipLast},
    };
    for (const auto& [what, file, bits, slots, alpha] : cases) {
        const Image image = imageOf(makeJpeg2000(file));
        ASSERT_TRUE(image) << what;
        EXPECT_EQ(CGImageGetBitsPerComponent(image.get()), bits) << what;
        EXPECT_EQ(CGImageGetBitsPerPixel(image.get()), bits * slots) << what;
        EXPECT_EQ(CGImageGetAlphaInfo(image.get()), alpha) << what;
        const Bytes pixels = pixelsOf(image.get());
        const double scale = double((1u << bits) - 1) / double((1u << file.depth) - 1);
        std::size_t different = 0;
        for (int c = 0; c < file.components; ++c) {
            const auto samples = jpeg2000Samples(file, c);
            const std::size_t step = c == 0 ? 1 : std::size_t(file.chromaStep);
            const std::size_t rowSamples = (file.width + step - 1) / step;
            for (std::size_t i = 0; i < std::size_t(file.width) * file.height; ++i) {
                const std::size_t x = i % file.width / step, y = i / file.width / step;
                const auto expected = std::lround(samples[y * rowSamples + x] * scale);
                different += sampleOf(pixels, bits / 8, i * slots + std::size_t(c)) != expected;
            }
        }
        EXPECT_EQ(different, 0u) << what;
    }
}

// Held against the definition, in whole steps.
TEST(Jpeg2000Reader, ConvertsLumaAndColourDifferences) {
    const Jpeg2000File file{.chromaStep = 2, .isSYCC = true};
    const Bytes pixels = pixelsOf(imageOf(makeJpeg2000(file)).get());
    ASSERT_EQ(pixels.size(), file.width * file.height * std::size_t(4));
    const auto luma = jpeg2000Samples(file, 0), blue = jpeg2000Samples(file, 1),
               red = jpeg2000Samples(file, 2);
    double largest = 0;
    for (std::size_t i = 0; i < luma.size(); ++i) {
        const std::size_t coarse = i / file.width / 2 * ((file.width + 1) / 2) + i % file.width / 2;
        const double y = luma[i], cb = blue[coarse] - 128.0, cr = red[coarse] - 128.0;
        const double rgb[3] = {
            y + 1.402 * cr, y - (0.114 * 1.772 * cb + 0.299 * 1.402 * cr) / 0.587, y + 1.772 * cb};
        for (std::size_t c = 0; c < 3; ++c)
            largest =
                std::max(largest, std::abs(pixels[i * 4 + c] - std::clamp(rgb[c], 0.0, 255.0)));
    }
    EXPECT_LE(largest, 0.51);
}

// The samples of each component as the library decodes a file on its own.
std::vector<std::vector<int>> decodedByOpenJPEG(const std::string& path) {
    opj_stream_t* const stream = opj_stream_create_default_file_stream(path.c_str(), OPJ_TRUE);
    opj_codec_t* const codec = opj_create_decompress(OPJ_CODEC_JP2);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_image_t* image = nullptr;
    std::vector<std::vector<int>> result;
    if (opj_setup_decoder(codec, &parameters) && opj_read_header(stream, codec, &image) &&
        opj_decode(codec, stream, image))
        for (std::size_t c = 0; c < image->numcomps; ++c) {
            const opj_image_comp_t& component = image->comps[c];
            result.emplace_back(component.data, component.data + component.w * component.h);
        }
    opj_image_destroy(image);
    opj_destroy_codec(codec);
    opj_stream_destroy(stream);
    return result;
}

TEST(Jpeg2000Reader, GivesTheDrawingLibraryTheValuesOfOpenJPEG) {
    const struct {
        const char* what;
        Jpeg2000File file;
    } cases[] = {
        {"lossless", {}},
        {"lossy", {.width = 130, .height = 90, .compressionRate = 12}},
        {"lossy tiles", {.width = 130, .height = 90, .tileSide = 32, .compressionRate = 8}},
        {"tiles of luma and differences", {.width = 70, .height = 50, .tileSide = 16}},
    };
    const TemporaryFolder folder;
    for (const auto& [what, description] : cases) {
        const Bytes file = makeJpeg2000(description);
        const std::string path = folder.write("picture.jp2", {file.begin(), file.end()});
        const auto provider = cf::adopt(CGDataProviderCreateWithFilename(path.c_str()));
        const Image image = cf::adopt(CGImageCreateWithJPEGDataProvider(
            provider.get(), nullptr, true, kCGRenderingIntentDefault));
        ASSERT_TRUE(image) << what;
        EXPECT_TRUE(CFEqual(CGImageGetUTType(image.get()), CFSTR("public.jpeg-2000"))) << what;
        const Bytes pixels = pixelsOf(image.get());
        const auto expected = decodedByOpenJPEG(path);
        ASSERT_EQ(expected.size(), 3u) << what;
        std::size_t different = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            different += i % 4 < 3 && pixels[i] != std::clamp(expected[i % 4][i / 4], 0, 255);
        EXPECT_EQ(different, 0u) << what;
    }
}

// ---- Headers that ask for more than their file can hold.

struct HostileStyle {
    std::uint16_t layers = 1;
    std::vector<std::uint8_t> precincts; // Exponents, the height's in the upper half.
    bool isInTilePart = false;
};

// A large picture of next to no bytes, whose coding style is said otherwise than it was written.
Bytes hostileCodestream(const HostileStyle& style, std::uint16_t side) {
    Bytes file = makeJpeg2000({.width = 32, .height = 32, .components = 1, .hasBoxes = false});
    const auto find = [&](std::uint8_t marker) {
        const std::uint8_t bytes[] = {0xFF, marker};
        return std::search(file.begin(), file.end(), std::begin(bytes), std::end(bytes));
    };
    for (const std::ptrdiff_t at : {8, 12, 24, 28}) { // The picture's and the tile's sides.
        file[std::size_t(at + 2)] = std::uint8_t(side >> 8);
        file[std::size_t(at + 3)] = std::uint8_t(side);
    }
    const auto cod = find(0x52);
    Bytes marker(cod, cod + 14);
    marker[3] = std::uint8_t(marker[3] + style.precincts.size());
    marker[4] = std::uint8_t(style.precincts.empty() ? 0 : 1);
    marker[6] = std::uint8_t(style.layers >> 8);
    marker[7] = std::uint8_t(style.layers);
    marker.insert(marker.end(), style.precincts.begin(), style.precincts.end());
    if (style.isInTilePart) {
        const auto tilePart = find(0x90);
        std::fill(tilePart + 6, tilePart + 10, std::uint8_t(0)); // Its length: up to the end.
        file.insert(tilePart + 12, marker.begin(), marker.end());
    } else {
        file.insert(file.erase(cod, cod + 14), marker.begin(), marker.end());
    }
    return file;
}

TEST(Jpeg2000Reader, RefusesToSetUpMoreThanAFileCanHold) {
    const struct {
        const char* what;
        HostileStyle style;
        std::uint16_t side;
        bool isDecoded;
    } cases[] = {
        {"as it was written", {}, 32, true},
        {"a large blank", {}, 2000, true},
        {"precincts as large as can be", {.precincts = {0xFF, 0xFF, 0xFF}}, 2000, true},
        {"precincts of a pixel", {.precincts = {0x00, 0x11, 0x11}}, 2000, false},
        {"the same for a tile",
         {.precincts = {0x00, 0x11, 0x11}, .isInTilePart = true},
         2000,
         false},
        {"flat precincts", {.precincts = {0x0F, 0x1F, 0x1F}}, 2000, true},
        {"many layers", {.layers = 100}, 2000, true},
        {"many layers of small precincts",
         {.layers = 65535, .precincts = {0x00, 0x11, 0x11}},
         64,
         false},
    };
    for (const auto& [what, style, side, isDecoded] : cases) {
        const Image image = imageOf(hostileCodestream(style, side));
        ASSERT_TRUE(image) << what;
        EXPECT_EQ(!pixelsOf(image.get()).empty(), isDecoded) << what;
    }
}

} // namespace
