// FMGlyphHostileTest.cpp: numbers that nothing can be drawn with, and fonts with damage.

#include "Descriptions.h"
#include "Support/FontFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>

using test::copyGlyph;
using test::Font;
using test::Glyph;

namespace {

constexpr CGFloat kNan = std::numeric_limits<CGFloat>::quiet_NaN();
constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
constexpr CGFloat kMost = std::numeric_limits<CGFloat>::max();

std::string contentsOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(FMGlyphHostile, SizesAndTransformsThatNothingCanBeDrawnWithGiveNoRecord) {
    const Font font = test::openFont(test::kTrueTypeFont);
    const struct {
        const char* what;
        FMGlyphDescription description;
    } cases[] = {
        {"no size", test::upright(0)},
        {"a negative size", test::upright(-12)},
        {"a size that is not a number", test::upright(kNan)},
        {"an infinite size", test::upright(kInfinity)},
        {"a size too small to see", test::upright(1e-30f)},
        {"a transform of zeroes", {12, {0, 0, 0, 0, 0, 0}, {0, 0}, kFMGlyphAntialias}},
        {"a transform that is not a number", {12, {kNan, 0, 0, 1, 0, 0}, {0, 0}, 0}},
        {"an infinite transform", {12, {1, 0, kInfinity, 1, 0, 0}, {0, 0}, 0}},
        {"a place that is not a number", {12, CGAffineTransformIdentity, {kNan, 0}, 31}},
    };
    for (const auto& [what, description] : cases)
        EXPECT_FALSE(copyGlyph(font.get(), 40, description)) << what;
    EXPECT_FALSE(copyGlyph(font.get(), kCGFontIndexInvalid, test::upright(12)));
    EXPECT_FALSE(FMFontCopyGlyph(font.get(), kCGFontIndexInvalid, nullptr));
    EXPECT_FALSE(FMFontCopyGlyph(nullptr, 40, nullptr));
}

TEST(FMGlyphHostile, AbsurdSizesOfAllKindsOfFontsAreSurvived) {
    const CGAffineTransform transforms[] = {CGAffineTransformIdentity,
                                            {1, 0, 1, 0, 0, 0},
                                            {1e-6f, 0, 0, 1e6f, 0, 0},
                                            {kMost, 0, 0, kMost, 0, 0},
                                            {1, 1e9f, -1e9f, 1, kNan, kInfinity}};
    for (const char* path :
         {test::kTrueTypeFont, test::kCompact, test::kType1, test::kColorFont, test::kBitmapFont}) {
        const Font font = test::openFont(path);
        ASSERT_TRUE(font) << path;
        for (const CGFloat size : {1e-3f, 0.25f, 700.f, 10000.f, 1e9f, kMost})
            for (const CGAffineTransform& transform : transforms)
                for (const FMGlyphOptions options : {0u, 1u, 3u, 15u, 31u}) {
                    const FMGlyphDescription description = {
                        size, transform, {kMost, -1e-9f}, options};
                    const Glyph glyph = copyGlyph(font.get(), 40, description);
                    EXPECT_TRUE(!glyph || glyph->width <= 2048) << path << " at " << size;
                }
    }
}

TEST(FMGlyphHostile, DamagedFontsNeverGiveMoreThanTheirPixels) {
    std::minstd_rand random(7); // Fixed: a failure comes again.
    for (const char* path : {test::kTrueTypeFont, test::kCompact, test::kType1}) {
        const std::string whole = contentsOf(path);
        ASSERT_FALSE(whole.empty()) << path;
        for (int round = 0; round < 60; ++round) {
            std::string bytes = whole;
            for (int i = 0; i < 40; ++i)
                bytes[random() % bytes.size()] = static_cast<char>(random());
            if (round % 4 == 0)
                bytes.resize(random() % bytes.size());
            const Font font(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
            for (CGGlyph glyph = 0; font && glyph < 120; ++glyph) {
                const Glyph mask = copyGlyph(font.get(), glyph, test::upright(17));
                EXPECT_TRUE(!mask || mask->width <= 257) << path;
                Glyph(FMFontCopyGlyph(font.get(), glyph, nullptr));
            }
        }
    }
}
