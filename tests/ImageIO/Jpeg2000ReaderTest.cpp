// Jpeg2000ReaderTest.cpp: lossless JPEG 2000 pixels, held against what was written.

#include "Sources.h"

#include <gtest/gtest.h>

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

} // namespace
