// TextTest.cpp: runs of glyphs, byte for byte what bare Skia draws of the same font.

#include "XGContext.h"
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Fonts.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkFont.h"
#include "include/core/SkFontMgr.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkSurfaceProps.h"
#include "include/core/SkTypeface.h"
#include "include/ports/SkFontMgr_empty.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr int kWidth = 200, kHeight = 120;

struct Setting {
    const char* what;
    const char* path = test::kTrueTypeFont;
    int face = 0;
    CGFloat size = 14;
    CGAffineTransform ctm = {1, 0, 0, 1, 0, 0};
    CGAffineTransform textMatrix = {1, 0, 0, 1, 0, 0}; // Its own inverse, as far as it is linear.
    CGPoint origin = {10, 40};
    CGFloat advance = 11;
    bool antialias = true, smooth = false, fractions = true, quantised = true;
    CGBitmapInfo info = test::kBGRA;
    std::u16string_view text = u"Hamburgefonts";
};

constexpr CGBitmapInfo kBGRX =
    CGBitmapInfo{kCGImageAlphaNoneSkipFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
constexpr CGAffineTransform kTurned = {0.9f, 0.3f, -0.3f, 0.9f, 20, -8};
constexpr CGAffineTransform kSlanted = {1, 0, 0.4f, 1.5f, 3.3f, -10.2f};

const Setting kSettings[] = {
    {.what = "plain"},
    {.what = "at a fraction", .origin = {10.3f, 40.7f}, .advance = 11.37f},
    {.what = "without fractions", .origin = {10.3f, 40.7f}, .advance = 11.37f, .fractions = false},
    {.what = "fractions in both directions", .origin = {10.3f, 40.7f}, .quantised = false},
    {.what = "hard edges", .antialias = false},
    {.what = "tiny", .size = 3.5f, .advance = 3},
    {.what = "of a size below one", .size = 0.7f, .advance = 3},
    {.what = "large", .size = 90, .origin = {4.4f, 10}, .advance = 60, .text = u"gR"},
    {.what = "scaled", .size = 5, .ctm = {3, 0, 0, 2, 0, 0}, .origin = {3, 20}, .advance = 4.6f},
    {.what = "turned", .ctm = kTurned, .advance = 10.2f},
    {.what = "slanted", .ctm = kSlanted, .advance = 10.2f},
    {.what = "turned without fractions", .ctm = kTurned, .fractions = false},
    {.what = "mirrored", .ctm = {-1, 0, 0, 1, 180, 0}},
    {.what = "upside down", .ctm = {1, 0, 0, -1, 0, 90}, .textMatrix = {1, 0, 0, -1, 0, 0}},
    {.what = "vertical", .ctm = {0, 1, -1, 0, 100, -30}, .origin = {40.6f, 10.1f}, .advance = 8.1f},
    {.what = "stripes of colour", .smooth = true, .info = kBGRX},
    {.what = "stripes where what is behind shows through", .smooth = true},
    {.what = "stripes at hard edges", .antialias = false, .smooth = true, .info = kBGRX},
    {.what = "CFF", .path = test::kCFFFont, .size = 22.5f},
    {.what = "Type 1", .path = test::kType1Font, .size = 17},
    {.what = "variable", .path = test::kVariableFont, .size = 19},
    {.what = "bitmap", .path = test::kBitmapFont, .size = 16, .advance = 8},
    {.what = "bitmap at another size", .path = test::kBitmapFont, .size = 23.5f, .text = u"Ham"},
    {.what = "bitmap with hard edges", .path = test::kBitmapFont, .size = 16, .antialias = false},
    {.what = "pictures", .path = test::kColorFont, .size = 30, .advance = 40, .text = u"☺☀★"},
    {.what = "pictures turned", .path = test::kColorFont, .size = 30, .ctm = kTurned, .text = u"☺"},
    {.what = "collection",
     .path = test::kCollection,
     .face = 2,
     .size = 24,
     .advance = 24,
     .text = u"漢字"},
};

std::vector<CGPoint> positionsOf(const Setting& setting) {
    std::vector<CGPoint> positions;
    for (std::size_t index = 0; index < setting.text.size(); ++index)
        positions.push_back(
            {setting.origin.x + setting.advance * static_cast<CGFloat>(index), setting.origin.y});
    return positions;
}

test::Context drawOurs(const Setting& setting, const std::vector<CGGlyph>& glyphs, CGFontRef font) {
    auto context = test::makeContext(kWidth, kHeight, setting.info);
    CGContextSetRGBFillColor(context.get(), 0.2f, 0.4f, 0.8f, 0.5f);
    CGContextConcatCTM(context.get(), setting.ctm);
    CGContextSetFont(context.get(), font);
    CGContextSetFontSize(context.get(), setting.size);
    CGContextSetTextMatrix(context.get(), setting.textMatrix);
    CGContextSetShouldAntialias(context.get(), setting.antialias);
    CGContextSetAllowsFontSmoothing(context.get(), setting.smooth);
    CGContextSetShouldSubpixelPositionFonts(context.get(), setting.fractions);
    CGContextSetShouldSubpixelQuantizeFonts(context.get(), setting.quantised);
    std::vector<CGPoint> positions = positionsOf(setting);
    for (CGPoint& position : positions)
        position = CGPointApplyAffineTransform(position, setting.textMatrix); // And back.
    CGContextShowGlyphsAtPositions(context.get(), glyphs.data(), positions.data(), glyphs.size());
    return context;
}

sk_sp<SkTypeface> bareTypeface(const Setting& setting) {
    static SkFontMgr* const manager = SkFontMgr_New_Custom_Empty().release();
    return manager->makeFromFile(setting.path, setting.face);
}

SkBitmap drawBare(const Setting& setting, const std::vector<CGGlyph>& glyphs) {
    SkGraphics::Init();
    const bool isOpaque = setting.info == kBGRX;
    SkBitmap bitmap;
    bitmap.allocPixels(SkImageInfo::Make(kWidth, kHeight, kBGRA_8888_SkColorType,
                                         isOpaque ? kOpaque_SkAlphaType : kPremul_SkAlphaType));
    std::memset(bitmap.getPixels(), 0, bitmap.computeByteSize());
    SkCanvas canvas(
        bitmap, SkSurfaceProps(0, isOpaque ? kRGB_H_SkPixelGeometry : kUnknown_SkPixelGeometry));
    const CGAffineTransform& m = setting.ctm;
    canvas.translate(0, kHeight);
    canvas.scale(1, -1);
    canvas.concat(SkMatrix::MakeAll(m.a, m.c, m.tx, m.b, m.d, m.ty, 0, 0, 1));
    canvas.scale(setting.textMatrix.a, -setting.textMatrix.d);

    SkFont font(bareTypeface(setting), setting.size);
    font.setHinting(SkFontHinting::kNone);
    font.setLinearMetrics(true);
    font.setSubpixel(setting.fractions);
    font.setBaselineSnap(setting.quantised);
    font.setEdging(!setting.antialias ? SkFont::Edging::kAlias
                   : setting.smooth   ? SkFont::Edging::kSubpixelAntiAlias
                                      : SkFont::Edging::kAntiAlias);
    std::vector<SkPoint> positions;
    for (const CGPoint position : positionsOf(setting))
        positions.push_back(
            {position.x * setting.textMatrix.a, -position.y * setting.textMatrix.d});
    SkPaint paint;
    paint.setColor(SkColorSetARGB(128, 51, 102, 204));
    canvas.drawGlyphs({glyphs.data(), glyphs.size()}, {positions.data(), positions.size()}, {0, 0},
                      font, paint);
    return bitmap;
}

int inked(const SkBitmap& bitmap) {
    int count = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            count += *bitmap.getAddr32(x, y) != 0;
    return count;
}

} // namespace

TEST(Text, IsWhatBareSkiaDrawsOfTheSameFont) {
    for (const Setting& setting : kSettings) {
        SCOPED_TRACE(setting.what);
        const test::Font font = test::makeFont(setting.path, setting.face);
        ASSERT_TRUE(font);
        const std::vector<CGGlyph> glyphs = test::glyphsOf(font.get(), setting.text);
        const test::Context ours = drawOurs(setting, glyphs, font.get());
        const SkBitmap bare = drawBare(setting, glyphs);
        EXPECT_GT(inked(bare), 5);
        for (int y = 0; y < kHeight; ++y) {
            const auto* const row =
                static_cast<const std::byte*>(CGBitmapContextGetData(ours.get())) +
                static_cast<std::size_t>(y) * CGBitmapContextGetBytesPerRow(ours.get());
            ASSERT_EQ(std::memcmp(row, bare.getAddr(0, y), kWidth * 4), 0) << "row " << y;
        }
    }
}
