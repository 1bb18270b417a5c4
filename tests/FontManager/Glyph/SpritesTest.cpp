// SpritesTest.cpp: text that a compositor draws from its texture beside text in bitmaps.

#include "XGCommandQueue.h"
#include "XGFont.h"
#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGContext.h>

#include "Descriptions.h"
#include "Support/AtlasHost.h"
#include "Support/FontFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

using test::AtlasHost;
using test::Font;

namespace {

constexpr size_t kWidth = 320, kHeight = 64;
constexpr CGBitmapInfo kFormat =
    CGBitmapInfo{kCGBitmapByteOrder32Little} | CGBitmapInfo{kCGImageAlphaPremultipliedFirst};

using Pixels = std::vector<uint8_t>;

struct TextOn {
    CGFloat text, background; // Grey values; text below 0 is red.
};

cf::Ref<CGContextRef> makeContext(void* pixels) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return cf::adopt(CGBitmapContextCreate(pixels, kWidth, kHeight, 8, pixels ? kWidth * 4 : 0,
                                           space.get(), kFormat));
}

void drawText(CGContextRef context, const char* path, CGFloat size, TextOn colors, CGFloat turn) {
    const Font font = test::openFont(path);
    const test::BareFace bare(path);
    const auto wrapped = cf::adopt(XGFontCreateWithFMFont(font.get()));
    CGContextSetRGBFillColor(context, colors.background, colors.background, colors.background, 1);
    CGContextFillRect(context, CGRectMake(0, 0, kWidth, kHeight));
    CGContextSetRGBFillColor(context, std::abs(colors.text), std::max(colors.text, 0.f),
                             std::max(colors.text, 0.f), 1);
    CGContextSetFont(context, wrapped.get());
    CGContextSetFontSize(context, size);
    CGContextTranslateCTM(context, 10.3f, 20.6f);
    CGContextRotateCTM(context, turn);
    std::vector<CGGlyph> glyphs;
    std::vector<CGPoint> positions;
    for (const FT_ULong character : std::u32string(U"Sprites \U0001F600 fly")) {
        glyphs.push_back(bare.glyph(character));
        positions.push_back({static_cast<CGFloat>(positions.size()) * size * 0.77f, 0});
    }
    CGContextShowGlyphsAtPositions(context, glyphs.data(), positions.data(), glyphs.size());
}

int largestDifference(const Pixels& a, const Pixels& b) {
    int most = 0;
    for (size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(int(a[i]) - int(b[i])));
    return most;
}

} // namespace

// Masks are FreeType's in both, and the host's arithmetic differs by its rounding alone. A turned
// glyph's coverage may be one step off, which is the most in faint edges of light text; glyphs in
// colours are scaled down by other means.
TEST(Sprites, PlayedFromTheAtlasAreTheTextOfABitmap) {
    const struct {
        const char* what;
        const char* path;
        CGFloat size;
        TextOn colors;
        CGFloat turn;
        int tolerance;
    } cases[] = {
        {"white on black", test::kTrueTypeFont, 20, {1, 0}, 0, 2},
        {"white on grey", test::kCompact, 33, {1, 0.5f}, 0, 2},
        {"dark grey on white", test::kChinese, 17, {0.3f, 1}, 0, 2},
        {"light grey on black", test::kType1, 17, {0.8f, 0}, 0, 2},
        {"red on grey", test::kTrueTypeFont, 17, {-1, 0.5f}, 0, 2},
        {"turned", test::kTrueTypeFont, 20, {1, 0}, 0.1f, 13},
        {"downwards", test::kTrueTypeFont, 20, {1, 0}, -1.5707963f, 2},
        {"black on white", test::kTrueTypeFont, 20, {0, 1}, 0, 2},
        {"colours", test::kColorFont, 24, {1, 0.25f}, 0, 75},
    };
    for (const auto& [what, path, size, colors, turn, tolerance] : cases) {
        AtlasHost host(1024);
        Pixels raster(kWidth * kHeight * 4), played(raster.size());
        drawText(makeContext(raster.data()).get(), path, size, colors, turn);
        const auto recording = makeContext(nullptr);
        drawText(recording.get(), path, size, colors, turn);
        const auto image = cf::adopt(CGBitmapContextCreateImage(recording.get()));
        const auto queue =
            cf::retain(static_cast<XGCommandQueueRef>(XGImageGetCommandQueue(image.get())));
        ASSERT_TRUE(queue) << what;
        ASSERT_EQ(XGCommandQueueGetCommandCount(queue.get()), 2) << what;
        EXPECT_EQ(XGCommandQueueGetCommandAtIndex(queue.get(), 1)->kind, kXGCommandDrawSprites);
        EXPECT_GT(host.sprites(), 0u) << what;
        ASSERT_TRUE(host.play(queue.get(), played)) << what;
        EXPECT_LE(largestDifference(raster, played), tolerance) << what;

        // Asked for its pixels, the context draws the same by itself.
        const auto* const own =
            static_cast<const uint8_t*>(CGBitmapContextGetData(recording.get()));
        ASSERT_TRUE(own) << what;
        EXPECT_LE(largestDifference({own, own + played.size()}, played), 1) << what;
    }
}

TEST(Sprites, ArePlacedOnceInAnAtlasAndAgainInTheNext) {
    const Font font = test::openFont(test::kTrueTypeFont);
    const CGGlyph glyph = test::BareFace(test::kTrueTypeFont).glyph('g');
    const FMGlyphDescription description = test::upright(21);
    const auto copy = [&](FMGlyphDescription how) {
        return test::Glyph(FMFontCopyBitmapGlyphWithSprite(font.get(), glyph, &how));
    };
    EXPECT_FALSE(copy(description)) << "without an atlas";
    for (int round = 0; round < 2; ++round) {
        AtlasHost host(64);
        const test::Glyph first = copy(description);
        ASSERT_TRUE(first);
        EXPECT_EQ(copy(description).get(), first.get());
        EXPECT_EQ(host.uploads(), 1u);
        EXPECT_FALSE(copy(test::upright(100))) << "no room";
        EXPECT_FALSE(copy(test::upright(20, kFMGlyphAsOutline)));
    }
}

TEST(Sprites, GiveTheirPlaceBackWithTheLastUser) {
    AtlasHost host(1024);
    const Font font = test::openFont(test::kColorFont);
    const CGGlyph glyph = test::BareFace(test::kColorFont).glyph(0x1F600);
    // Too large for the cache, which would be one more user.
    const FMGlyphDescription description = test::upright(400);
    test::Glyph first(FMFontCopyBitmapGlyphWithSprite(font.get(), glyph, &description));
    ASSERT_TRUE(first);
    test::Glyph second(FMGlyphRetain(first.get()));
    EXPECT_EQ(host.sprites(), 1u);
    first = nullptr;
    EXPECT_EQ(host.sprites(), 1u);
    second = nullptr;
    EXPECT_EQ(host.sprites(), 0u);
}
