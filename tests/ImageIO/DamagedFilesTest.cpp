// DamagedFilesTest.cpp: files that break off or have single bits turned end in a picture or in
// nothing, which the sanitizers watch.

#include "Sources.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace test;

struct Outcome {
    int pictures = 0, parts = 0, nothing = 0;
};

// What is decoded has all its bytes; the rows before the damage are those of the whole picture.
void read(const Bytes& file, Outcome& outcome) {
    const Source source = sourceOf(file);
    CGImageSourceGetStatus(source.get());
    const auto properties = cf::adopt(CGImageSourceCopyPropertiesAtIndex(source.get(), 0, nullptr));
    const Image image = cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
    EXPECT_EQ(bool(image), bool(properties));
    // The damage may be in the size.
    if (!image || CGImageGetWidth(image.get()) * CGImageGetHeight(image.get()) > 100000) {
        ++outcome.nothing;
        return;
    }
    const Bytes pixels = pixelsOf(image.get());
    if (pixels.empty()) {
        ++outcome.nothing;
        return;
    }
    ++outcome.pictures;
    EXPECT_EQ(pixels.size(), CGImageGetBytesPerRow(image.get()) * CGImageGetHeight(image.get()));
}

struct Kind {
    const char* what;
    Bytes file;
};

std::vector<Kind> kinds() {
    return {
        {"PNG", makePng({})},
        {"palette with interlacing",
         makePng({.depth = 4, .colorType = 3, .isInterlaced = true, .hasTransparentColor = true})},
        {"16-bit PNG", makePng({.depth = 16, .colorType = 4})},
        {"JPEG", makeJpeg({})},
        {"progressive JPEG", makeJpeg({.isProgressive = true})},
        {"inks", makeJpeg({.components = 4, .hasAdobeMarker = true})},
        {"JPEG 2000", makeJpeg2000({})},
        {"JPEG 2000 codestream", makeJpeg2000({.chromaStep = 2, .hasBoxes = false})},
    };
}

TEST(DamagedFiles, MayBreakOffAnywhere) {
    for (const auto& [what, file] : kinds()) {
        Outcome outcome;
        for (std::size_t size = 0; size < file.size(); ++size)
            read(Bytes(file.begin(), file.begin() + std::ptrdiff_t(size)), outcome);
        EXPECT_GT(outcome.pictures, 0) << what;
        EXPECT_GT(outcome.nothing, 0) << what;
    }
}

TEST(DamagedFiles, MayHaveAnyBitTurned) {
    constexpr std::size_t kMostVariants = 3000;
    for (auto& [what, file] : kinds()) {
        Outcome outcome;
        const std::size_t stride = std::max<std::size_t>(1, file.size() * 8 / kMostVariants);
        for (std::size_t bit = 0; bit < file.size() * 8; bit += stride) {
            Bytes damaged = file;
            damaged[bit / 8] = std::uint8_t(damaged[bit / 8] ^ (1u << bit % 8));
            read(damaged, outcome);
        }
        EXPECT_GT(outcome.pictures, 0) << what;
    }
}

TEST(DamagedFiles, KeepTheRowsBeforeTheDamage) {
    const Kind files[] = {
        {"PNG", makePng({.width = 200, .height = 300})},
        {"JPEG", makeJpeg({.width = 200, .height = 300})},
    };
    for (const auto& [what, file] : files) {
        const Bytes whole = pixelsOf(imageOf(file).get());
        const Bytes part(file.begin(), file.begin() + std::ptrdiff_t(file.size() / 2));
        const Bytes half = pixelsOf(imageOf(part).get());
        ASSERT_EQ(half.size(), whole.size()) << what;
        const auto same = std::size_t(std::ranges::mismatch(half, whole).in1 - half.begin());
        EXPECT_GT(same, whole.size() / 3) << what;
        EXPECT_EQ(half.back(), 0) << what;
    }
}

} // namespace
