// FMGlyphTest.cpp: rendered glyphs beside FreeType's own.

#include <CoreGraphics/CGPath.h>
#include <FontManager/FMFontGlyphs.h>

#include "Descriptions.h"
#include "Support/FontFiles.h"

#include FT_OUTLINE_H

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using test::BareFace;
using test::copyGlyph;
using test::Font;
using test::Glyph;
using test::openFont;

namespace {

std::string rowsOf(const FMGlyph& glyph, uint32_t bytesPerPixel) {
    std::string rows;
    for (uint32_t y = 0; y < glyph.height; ++y)
        rows.append(reinterpret_cast<const char*>(glyph.pixels) + y * glyph.bytesPerRow,
                    glyph.width * bytesPerPixel);
    return rows;
}

std::string rowsOf(const FT_Bitmap& bitmap, uint32_t bytesPerRow) {
    std::string rows;
    for (uint32_t y = 0; y < bitmap.rows; ++y)
        rows.append(reinterpret_cast<const char*>(bitmap.buffer) + y * uint32_t(bitmap.pitch),
                    bytesPerRow);
    return rows;
}

// What FreeType makes of the same glyph, unhinted; the place is in 1/64 pixel.
bool render(const BareFace& bare, CGGlyph glyph, double size, const CGAffineTransform& m,
            FT_Vector place, FT_Render_Mode mode) {
    FT_Matrix matrix = {FT_Fixed(std::lround(m.a * 65536)), FT_Fixed(std::lround(m.c * 65536)),
                        FT_Fixed(std::lround(m.b * 65536)), FT_Fixed(std::lround(m.d * 65536))};
    FT_Set_Char_Size(bare.get(), 0, FT_F26Dot6(std::lround(size * 64)), 0, 0);
    FT_Set_Transform(bare.get(), &matrix, &place);
    return FT_Load_Glyph(bare.get(), glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) == 0 &&
           FT_Render_Glyph(bare.slot(), mode) == 0;
}

} // namespace

TEST(FMGlyph, MasksAreFreeTypesForTheSameSizeTransformAndPlace) {
    const CGAffineTransform identity = CGAffineTransformIdentity;
    const CGAffineTransform turned = {0, 1, -1, 0, 0, 0};
    const CGAffineTransform slanted = {1, 0, 0.25f, 1, 0, 0};
    constexpr FMGlyphOptions quarters = kFMGlyphSubpixelPosition | kFMGlyphSubpixelQuantize;
    const struct {
        const char* what;
        CGFloat size;
        CGAffineTransform transform;
        CGPoint position;
        FMGlyphOptions options;
        FT_Vector place; // That the position and options come to.
    } cases[] = {
        {"small", 9, identity, {0, 0}, kFMGlyphAntialias, {0, 0}},
        {"not a whole size", 13.59375f, identity, {0, 0}, kFMGlyphAntialias, {0, 0}},
        {"large", 120, identity, {0, 0}, kFMGlyphAntialias, {0, 0}},
        {"turned by a quarter", 30, turned, {0, 0}, kFMGlyphAntialias, {0, 0}},
        {"slanted", 30, slanted, {0, 0}, kFMGlyphAntialias, {0, 0}},
        {"a place that is ignored", 20, identity, {7.5f, 2.5f}, kFMGlyphAntialias, {0, 0}},
        {"a place",
         20,
         identity,
         {7.53125f, -2.75f},
         kFMGlyphAntialias | kFMGlyphSubpixelPosition,
         {34, 16}},
        {"a place rounded down to quarters",
         20,
         identity,
         {7.7f, -0.05f},
         kFMGlyphAntialias | quarters,
         {32, 48}},
        {"in two colours", 20, identity, {0, 0}, FMGlyphOptions{}, {0, 0}},
        {"for a display's parts of pixels",
         20,
         identity,
         {0.5f, 0},
         kFMGlyphAntialias | kFMGlyphSmooth | quarters,
         {32, 0}},
    };
    for (const char* path :
         {test::kTrueTypeFont, test::kVariableFont, test::kCompact, test::kType1, test::kChinese}) {
        const Font font = openFont(path);
        const BareFace bare(path);
        ASSERT_TRUE(font && bare.get()) << path;
        for (const auto& [what, size, transform, position, options, place] : cases) {
            const bool isSmooth = options & kFMGlyphSmooth;
            const FT_Render_Mode mode = isSmooth                      ? FT_RENDER_MODE_LCD
                                        : options & kFMGlyphAntialias ? FT_RENDER_MODE_NORMAL
                                                                      : FT_RENDER_MODE_MONO;
            for (const FT_ULong character : {0x52u, 0x67u, 0x40u}) {
                const CGGlyph glyph = bare.glyph(character);
                const FMGlyphDescription description = {size, transform, position, options};
                const Glyph record = copyGlyph(font.get(), glyph, description);
                ASSERT_TRUE(record && render(bare, glyph, size, transform, place, mode))
                    << path << ": " << what;
                EXPECT_EQ(record->left, bare.slot()->bitmap_left) << path << ": " << what;
                EXPECT_EQ(record->top, bare.slot()->bitmap_top) << path << ": " << what;
                const uint32_t bytesPerPixel = isSmooth ? 3 : 1;
                EXPECT_EQ(record->width * bytesPerPixel, bare.slot()->bitmap.width) << what;
                if (mode != FT_RENDER_MODE_MONO)
                    EXPECT_TRUE(rowsOf(*record, bytesPerPixel) ==
                                rowsOf(bare.slot()->bitmap, record->width * bytesPerPixel))
                        << path << ": " << what;
            }
        }
    }
}

TEST(FMGlyph, WithoutAntialiasingEachPixelIsTheBitThatFreeTypeSets) {
    const Font font = openFont(test::kTrueTypeFont);
    const BareFace bare(test::kTrueTypeFont);
    const CGGlyph glyph = bare.glyph('R');
    const Glyph record = copyGlyph(font.get(), glyph, test::upright(20, FMGlyphOptions{}));
    ASSERT_TRUE(record &&
                render(bare, glyph, 20, CGAffineTransformIdentity, {0, 0}, FT_RENDER_MODE_MONO));
    const FT_Bitmap& bits = bare.slot()->bitmap;
    ASSERT_EQ(record->height, bits.rows);
    for (uint32_t y = 0; y < bits.rows; ++y)
        for (uint32_t x = 0; x < bits.width; ++x) {
            const bool isSet = bits.buffer[y * uint32_t(bits.pitch) + x / 8] & (0x80 >> x % 8);
            EXPECT_EQ(record->pixels[y * record->bytesPerRow + x], isSet ? 255 : 0)
                << x << "," << y;
        }
}

TEST(FMGlyph, TheSameShapeComesFromTheSizeAndFromTheTransform) {
    const Font font = openFont(test::kTrueTypeFont);
    const CGGlyph glyph = BareFace(test::kTrueTypeFont).glyph('g');
    const Glyph bySize = copyGlyph(font.get(), glyph, test::upright(36));
    FMGlyphDescription description = test::upright(1);
    description.transform = CGAffineTransformMakeScale(36, 36);
    const Glyph byTransform = copyGlyph(font.get(), glyph, description);
    EXPECT_EQ(bySize.get(), byTransform.get());
}

TEST(FMGlyph, WithoutASizeItMeasuresInFontUnits) {
    const struct {
        const char* what;
        const char* path;
        FT_ULong character;
        FMGlyphFormat format;
        bool hasOutline;
    } cases[] = {
        {"TrueType", test::kTrueTypeFont, 'g', kFMGlyphFormatOutline, true},
        {"a space", test::kTrueTypeFont, ' ', kFMGlyphFormatOutline, false},
        {"Compact Font Format", test::kCompact, 'g', kFMGlyphFormatOutline, true},
        {"Type 1", test::kType1, 'g', kFMGlyphFormatOutline, true},
        {"colours", test::kColorFont, 0x1F600, kFMGlyphFormatColor, false},
        {"bitmaps", test::kBitmapFont, 'g', kFMGlyphFormatGreyMask, false},
    };
    for (const auto& [what, path, character, format, hasOutline] : cases) {
        const Font font = openFont(path);
        const BareFace bare(path);
        const CGGlyph glyph = bare.glyph(character);
        const Glyph record(FMFontCopyGlyph(font.get(), glyph, nullptr));
        ASSERT_TRUE(record) << what;
        EXPECT_EQ(record->format, format) << what;
        EXPECT_EQ(hasOutline, record->path && !CGPathIsEmpty(record->path)) << what;
        EXPECT_EQ(record->pixels, nullptr) << what;
        CGSize advance = CGSizeZero;
        ASSERT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), &glyph, &advance, 1)) << what;
        EXPECT_EQ(record->advance.width, advance.width) << what;
        EXPECT_GT(advance.width, 0) << what;
        if (format == kFMGlyphFormatOutline) {
            ASSERT_EQ(FT_Load_Glyph(bare.get(), glyph, FT_LOAD_NO_SCALE), 0) << what;
            EXPECT_EQ(record->info, bare.slot()->metrics.horiBearingX) << what;
        }
    }
}

TEST(FMGlyph, AdvancesAndBearingsGoWithTheTransform) {
    const Font font = openFont(test::kTrueTypeFont);
    const CGGlyph glyph = BareFace(test::kTrueTypeFont).glyph('g');
    const Glyph measured(FMFontCopyGlyph(font.get(), glyph, nullptr));
    FMGlyphDescription description = test::upright(64);
    description.transform = {0, 1, -1, 0, 0, 0};
    const Glyph turned = copyGlyph(font.get(), glyph, description);
    const CGFloat pixels = measured->advance.width * 64 / 2048;
    EXPECT_NEAR(turned->advance.width, 0, 0.001);
    EXPECT_NEAR(turned->advance.height, pixels, 0.001);
    EXPECT_NEAR(copyGlyph(font.get(), glyph, test::upright(64))->info, measured->info, 1);
}

TEST(FMGlyph, AGlyphTooLargeForAMaskIsAnOutlineInPixels) {
    const Font font = openFont(test::kTrueTypeFont);
    const CGGlyph glyph = BareFace(test::kTrueTypeFont).glyph('g');
    CGRect units;
    ASSERT_TRUE(FMFontGetBoundingRectsForGlyphs(font.get(), &glyph, &units, 1));
    for (const CGFloat size : {600.f, 10000.f}) {
        const Glyph record = copyGlyph(font.get(), glyph, test::upright(size));
        ASSERT_TRUE(record && record->path) << size;
        EXPECT_EQ(record->format, kFMGlyphFormatOutline) << size;
        const CGRect box = CGPathGetPathBoundingBox(record->path);
        EXPECT_NEAR(box.size.height, units.size.height * size / 2048, size / 1000) << size;
    }
    const Glyph asked = copyGlyph(font.get(), glyph, test::upright(12, kFMGlyphAsOutline));
    EXPECT_EQ(asked->format, kFMGlyphFormatOutline);
}

TEST(FMGlyph, StrikesAreUntouchedAtTheirSizeAndMeansOfItsPixelsAtOthers) {
    for (const char* path : {test::kColorFont, test::kBitmapFont}) {
        const Font font = openFont(path);
        const BareFace bare(path);
        ASSERT_TRUE(font && bare.get()) << path;
        const bool isColor = path == test::kColorFont;
        const CGGlyph glyph = bare.glyph(isColor ? 0x1F600 : 'R');
        const CGFloat strike = CGFloat(bare.get()->available_sizes[0].y_ppem) / 64;
        ASSERT_EQ(FT_Select_Size(bare.get(), 0), 0);
        ASSERT_EQ(FT_Load_Glyph(bare.get(), glyph, FT_LOAD_COLOR), 0);
        const Glyph exact = copyGlyph(font.get(), glyph, test::upright(strike));
        ASSERT_TRUE(exact) << path;
        EXPECT_EQ(exact->width, bare.slot()->bitmap.width) << path;
        EXPECT_EQ(exact->top, bare.slot()->bitmap_top) << path;
        if (isColor)
            EXPECT_TRUE(rowsOf(*exact, 4) == rowsOf(bare.slot()->bitmap, exact->width * 4));

        // A third of the size has a ninth of the coverage, wherever the pixels fall.
        const Glyph third = copyGlyph(font.get(), glyph, test::upright(strike / 3));
        ASSERT_TRUE(third) << path;
        const auto total = [&](const FMGlyph& record) {
            double sum = 0;
            for (const char byte : rowsOf(record, isColor ? 4 : 1))
                sum += uint8_t(byte);
            return sum;
        };
        EXPECT_NEAR(total(*third) * 9 / total(*exact), 1, 0.05) << path;
    }
}

TEST(FMGlyph, RecordsOutliveTheirFont) {
    Font font = openFont(test::kTrueTypeFont);
    const CGGlyph glyph = BareFace(test::kTrueTypeFont).glyph('g');
    const Glyph record = copyGlyph(font.get(), glyph, test::upright(20));
    const std::string rows = rowsOf(*record, 1);
    FMFontLock(font.get());
    const FMGlyphDescription description = test::upright(20);
    EXPECT_EQ(FMFontGetGlyphUnsafe(font.get(), glyph, &description), record.get());
    FMFontUnlock(font.get());
    FMFontPurge(font.get());
    EXPECT_EQ(copyGlyph(font.get(), glyph, test::upright(20)).get(), record.get());
    font = nullptr;
    EXPECT_EQ(rowsOf(*record, 1), rows);
}
