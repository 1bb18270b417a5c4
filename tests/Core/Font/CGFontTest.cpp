// CGFontTest.cpp: fonts and their glyphs, beside FreeType.

#include "XGFont.h"
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/EditedFont.h"
#include "Support/Fonts.h"

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

using test::Font;
using test::makeFont;

namespace {

std::string textOf(CFStringRef string) {
    std::vector<char> text(1024);
    const auto owned = cf::adopt(string);
    return string && CFStringGetCString(string, text.data(), 1024, kCFStringEncodingUTF8)
               ? text.data()
               : "(none)";
}

Font fontOfBytes(const test::FontBytes& bytes) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    return cf::adopt(CGFontCreateWithDataProvider(provider.get()));
}

// A table of a font's with some of its bytes replaced by a big-endian number.
test::FontBytes edited(const char* path, uint32_t tag, size_t at, uint32_t number, int bytes) {
    const auto table = cf::adopt(CGFontCopyTableForTag(makeFont(path).get(), tag));
    test::FontBytes result(CFDataGetBytePtr(table.get()),
                           CFDataGetBytePtr(table.get()) + CFDataGetLength(table.get()));
    for (int i = bytes; i-- > 0; number >>= 8)
        result.at(at + static_cast<size_t>(i)) = static_cast<uint8_t>(number);
    return result;
}

// A face of FreeType's own.
class BareFace {
public:
    BareFace(const char* path, int face) {
        FT_Init_FreeType(&library_);
        FT_New_Face(library_, path, face, &face_);
    }
    ~BareFace() { FT_Done_FreeType(library_); }
    BareFace(const BareFace&) = delete;
    BareFace& operator=(const BareFace&) = delete;
    FT_Face get() const { return face_; }

private:
    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
};

float number(CFTypeRef dictionary, CFStringRef key) {
    const auto value = static_cast<CFNumberRef>(
        CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key));
    float result = -1;
    EXPECT_TRUE(value && CFNumberGetValue(value, kCFNumberFloat32Type, &result));
    return result;
}

const struct {
    const char* path;
    int face;
} kScalable[] = {{test::kTrueTypeFont, 0}, {test::kMonospacedFont, 0}, {test::kCFFFont, 0},
                 {test::kType1Font, 0},    {test::kVariableFont, 0},   {test::kCollection, 2}};

} // namespace

TEST(CGFont, MeasuresGlyphsAsFreeTypeDoes) {
    for (const auto& [path, index] : kScalable) {
        SCOPED_TRACE(path);
        const Font font = makeFont(path, index);
        const BareFace bare(path, index);
        ASSERT_TRUE(font && bare.get());
        EXPECT_EQ(CGFontGetUnitsPerEm(font.get()), bare.get()->units_per_EM);
        ASSERT_EQ(CGFontGetNumberOfGlyphs(font.get()), size_t(bare.get()->num_glyphs));
        const size_t count = std::min<size_t>(CGFontGetNumberOfGlyphs(font.get()), 3000);
        std::vector<CGGlyph> glyphs(count);
        std::iota(glyphs.begin(), glyphs.end(), CGGlyph{0});
        std::vector<int> advances(count);
        std::vector<CGRect> boxes(count);
        ASSERT_TRUE(CGFontGetGlyphAdvances(font.get(), glyphs.data(), count, advances.data()));
        ASSERT_TRUE(CGFontGetGlyphBBoxes(font.get(), glyphs.data(), count, boxes.data()));
        for (size_t glyph = 0; glyph < count; ++glyph) {
            ASSERT_EQ(FT_Load_Glyph(bare.get(), FT_UInt(glyph), FT_LOAD_NO_SCALE), 0);
            EXPECT_EQ(advances[glyph], bare.get()->glyph->metrics.horiAdvance) << glyph;
            FT_BBox box;
            FT_Outline_Get_CBox(&bare.get()->glyph->outline, &box);
            // Control points may lie outside the outline itself.
            EXPECT_GE(boxes[glyph].origin.x, float(box.xMin)) << glyph;
            EXPECT_LE(CGRectGetMaxY(boxes[glyph]), float(box.yMax)) << glyph;
        }
    }
}

TEST(CGFont, AnswersForStylesInEmsUnderTheTransform) {
    const Font font = makeFont(test::kTrueTypeFont);
    const CGGlyph glyphs[] = {36, 37, 0};
    int whole[3];
    CGSize sizes[3];
    const CGAffineTransform turned = {0, 24, -24, 0, 5, 5}; // The translation plays no part.
    ASSERT_TRUE(CGFontGetGlyphAdvances(font.get(), glyphs, 3, whole));
    ASSERT_TRUE(CGFontGetGlyphAdvancesForStyle(font.get(), &turned, 9, glyphs, 3, sizes));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(sizes[i].width, 0);
        EXPECT_FLOAT_EQ(sizes[i].height, float(whole[i]) * 24 / 2048);
    }
    EXPECT_FALSE(CGFontGetGlyphAdvances(font.get(), glyphs, 0, whole));
    EXPECT_FALSE(CGFontGetGlyphAdvancesForStyle(font.get(), &turned, 0, nullptr, 3, sizes));
    EXPECT_FALSE(CGFontGetGlyphBBoxes(font.get(), glyphs, 3, nullptr));
}

TEST(CGFont, TellsMeasuresNamesAndTables) {
    const Font font = makeFont(test::kTrueTypeFont);
    EXPECT_EQ(textOf(CGFontCopyFamilyName(font.get())), "DejaVu Sans");
    EXPECT_EQ(textOf(CGFontCopyFullName(font.get())), "DejaVu Sans");
    EXPECT_EQ(textOf(CGFontCopyPostScriptName(font.get())), "DejaVuSans");
    EXPECT_EQ(CGFontGetCapHeight(font.get()), 1493);
    EXPECT_EQ(CGFontGetXHeight(font.get()), 1120);
    EXPECT_FALSE(CGFontIsFixedPitch(font.get()));
    EXPECT_TRUE(CGFontIsFixedPitch(makeFont(test::kMonospacedFont).get()));
    EXPECT_EQ(textOf(CGFontCopyGlyphNameForGlyph(font.get(), 36)), "A");
    EXPECT_EQ(textOf(CGFontCopyGlyphNameForGlyph(font.get(), 0)), "(none)");
    EXPECT_EQ(CGFontGetGlyphWithGlyphName(font.get(), CFSTR("A")), 36);
    EXPECT_EQ(test::glyphsOf(font.get(), u"A"), std::vector<CGGlyph>{36});
    const auto tags = cf::adopt(CGFontCopyTableTags(font.get()));
    const auto head = reinterpret_cast<const void*>(uintptr_t{0x68656164});
    EXPECT_TRUE(
        CFArrayContainsValue(tags.get(), CFRangeMake(0, CFArrayGetCount(tags.get())), head));
    EXPECT_EQ(CFDataGetLength(cf::adopt(CGFontCopyTableForTag(font.get(), 0x68656164)).get()), 54);
}

TEST(CGFont, ReadsAnglesInFixedPointAndRestrictions) {
    const auto post = edited(test::kTrueTypeFont, 0x706F7374, 4, uint32_t(-786432), 4);
    const Font slanted =
        fontOfBytes(test::EditedFont(test::kTrueTypeFont).set("post", post).bytes());
    EXPECT_EQ(CGFontGetItalicAngle(slanted.get()), -12.f);

    const Font open = makeFont(test::kTrueTypeFont);
    const auto os2 = edited(test::kTrueTypeFont, 0x4F532F32, 8, 0x0002, 2);
    const Font closed = fontOfBytes(test::EditedFont(test::kTrueTypeFont).set("OS/2", os2).bytes());
    const struct {
        const char* what;
        CGFontRef font;
        int32_t format;
        bool can;
    } cases[] = {{"Type 1", open.get(), 1, true},
                 {"Type 3", open.get(), 3, false},
                 {"Type 42", open.get(), 42, true},
                 {"a restricted font", closed.get(), 42, false},
                 {"no font", nullptr, 42, false}};
    for (const auto& [what, font, format, can] : cases)
        EXPECT_EQ(CGFontCanCreatePostScriptSubset(font, CGFontPostScriptFormat(format)), can)
            << what;
    const std::vector<CGGlyph> encoding(256, 36);
    EXPECT_TRUE(cf::adopt(CGFontCreatePostScriptEncoding(open.get(), encoding.data())));
    EXPECT_FALSE(cf::adopt(CGFontCreatePostScriptEncoding(open.get(), nullptr)));
    EXPECT_FALSE(cf::adopt(CGFontCreatePostScriptSubset(open.get(), CFSTR("A"),
                                                        kCGFontPostScriptFormatType42,
                                                        encoding.data(), 0, encoding.data())));
}

TEST(CGFont, TellsAxesAndTheVariationsThatItWasMadeWith) {
    const Font font = makeFont(test::kVariableFont);
    const auto axes = cf::adopt(CGFontCopyVariationAxes(font.get()));
    ASSERT_TRUE(axes);
    const auto variations = cf::adopt(CGFontCopyVariations(font.get()));
    for (CFIndex i = 0; i < CFArrayGetCount(axes.get()); ++i) {
        const auto axis = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(axes.get(), i));
        const void* const name = CFDictionaryGetValue(axis, kCGFontVariationAxisName);
        const void* const values = CFDictionaryGetValue(variations.get(), name);
        for (const CFStringRef key : {kCGFontVariationAxisMinValue, kCGFontVariationAxisMaxValue,
                                      kCGFontVariationAxisDefaultValue})
            EXPECT_EQ(number(axis, key), number(values, key));
    }
    const void* const weight = CFDictionaryGetValue(variations.get(), CFSTR("Weight"));
    ASSERT_TRUE(weight);
    EXPECT_EQ(number(weight, kCGFontVariationAxisMaxValue), 900);

    const Font copy = cf::adopt(CGFontCreateCopyWithVariations(font.get(), variations.get()));
    EXPECT_TRUE(CFEqual(copy.get(), font.get()));
    EXPECT_TRUE(CFEqual(cf::adopt(CGFontCopyVariations(copy.get())).get(), variations.get()));
    const Font plain = makeFont(test::kTrueTypeFont);
    EXPECT_FALSE(cf::adopt(CGFontCopyVariations(plain.get())));
    EXPECT_FALSE(cf::adopt(CGFontCopyVariationAxes(plain.get())));
}

TEST(CGFont, IsEqualOverTheSameFontAlone) {
    const Font font = makeFont(test::kTrueTypeFont);
    const Font same = cf::adopt(XGFontCreateWithFMFont(XGFontGetFMFont(font.get())));
    EXPECT_TRUE(XGFontEqualToFont(font.get(), same.get()));
    EXPECT_FALSE(XGFontEqualToFont(font.get(), makeFont(test::kTrueTypeFont).get()));
    EXPECT_FALSE(XGFontEqualToFont(nullptr, nullptr));
    const std::string text = textOf(CFCopyDescription(font.get()));
    EXPECT_TRUE(text.starts_with("<CGFont 0x")) << text;
    EXPECT_TRUE(text.ends_with("]>{FMFont: (DejaVu Sans)}")) << text;
}

TEST(CGFont, GivesOutlinesAtASize) {
    const Font font = makeFont(test::kTrueTypeFont);
    const struct {
        const char* what;
        CGGlyph glyph;
        CGFloat size;
        bool has;
    } cases[] = {{"a letter", 36, 20, true},          {"no size", 36, 0, false},
                 {"a negative size", 36, -3, false},  {"no number", 36, NAN, false},
                 {"the missing glyph", 0, 20, false}, {"a space", 3, 20, false}};
    for (const auto& [what, glyph, size, has] : cases) {
        int32_t info = 77;
        CGFloat advance = 77;
        const CGAffineTransform mirrored = {-1, 0, 0, 1, 0, 0};
        const auto path = cf::adopt(
            XGFontCreateGlyphPathAndInfo(font.get(), &mirrored, glyph, &info, &advance, size));
        EXPECT_EQ(bool(path), has) << what;
        CGRect box = CGRectZero;
        CGFontGetGlyphBBoxes(font.get(), &glyph, 1, &box);
        EXPECT_EQ(info, has ? int32_t(box.origin.x) : 77) << what;
        EXPECT_FLOAT_EQ(advance, has ? 1401 * size / 2048 : 77) << what;
        if (has)
            EXPECT_FLOAT_EQ(CGRectGetMaxX(CGPathGetPathBoundingBox(path.get())),
                            -box.origin.x * size / 2048);
    }
    EXPECT_FALSE(cf::adopt(XGFontCreateGlyphPath(makeFont(test::kColorFont).get(), nullptr, 9)));
}

TEST(CGFont, IsNoneWhereTheBytesAreNoFont) {
    const test::FontBytes noise(300, 0x41);
    EXPECT_FALSE(fontOfBytes(noise));
    EXPECT_FALSE(cf::adopt(CGFontCreateWithFontName(CFSTR("No such family at all"))));
    EXPECT_TRUE(cf::adopt(CGFontCreateWithFontName(CFSTR("dejavusans-bold"))));
}
