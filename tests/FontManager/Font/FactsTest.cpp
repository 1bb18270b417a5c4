// FactsTest.cpp: what is read off a face: measures, format, licence, encoding.

#include "EditedFont.h"
#include "Font/StyleWords.h"
#include "FontManager/Queries/QueriedFont.h"

#include FT_OUTLINE_H

#include <gtest/gtest.h>

using namespace test;

namespace {

fm::FontRef fontFrom(const std::string& bytes) {
    return fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
}

// One character map, with the real one's contents.
std::string charmapTable(const std::string& cmap, uint32_t platform, uint32_t encoding) {
    size_t subtable = 0;
    for (uint32_t i = 0; i < bigEndian(cmap, 2, 2); ++i)
        if (bigEndian(cmap, 4 + 8 * i, 4) == 0x00030001)
            subtable = bigEndian(cmap, 8 + 8 * i, 4);
    return bigEndian(0, 2) + bigEndian(1, 2) + bigEndian(platform, 2) + bigEndian(encoding, 2) +
           bigEndian(12, 4) + cmap.substr(subtable);
}

} // namespace

TEST(FontWeights, HaveWordsInUnevenBands) {
    const struct {
        int32_t weight;
        const char* word;
    } cases[] = {
        {INT32_MIN, "ultralight"},
        {-800, "ultralight"},
        {-799, "thin"},
        {-600, "thin"},
        {-599, "light"},
        {-400, "light"},
        {-399, "regular"},
        {0, "regular"},
        {1, "medium"},
        {230, "medium"},
        {231, "semibold"},
        {300, "semibold"},
        {301, "bold"},
        {400, "bold"},
        {401, "heavy"},
        {560, "heavy"},
        {561, "black"},
        {620, "black"},
        {621, "unknown"},
        {INT32_MAX, "unknown"},
    };
    for (const auto& [weight, word] : cases)
        EXPECT_EQ(text(FMFontGetWeightString(weight)), word) << weight;
}

TEST(FontWeights, ComeFromTheNearestClassAndFromWords) {
    const struct {
        uint16_t weightClass;
        int32_t weight;
    } classes[] = {{1, -800},  {100, -800}, {149, -800}, {250, -400},      {400, 0},
                   {549, 230}, {600, 300},  {900, 620},  {UINT16_MAX, 620}};
    for (const auto& [weightClass, weight] : classes)
        EXPECT_EQ(fm::weightOfClass(weightClass), weight) << weightClass;
    EXPECT_FALSE(fm::weightOfClass(0));

    const std::string far = std::string(96, ' ') + "Bold", beyond = std::string(97, ' ') + "Bold";
    const struct {
        const char* name;
        std::optional<int32_t> weight;
        int width;
    } names[] = {
        {"Thin", -600, 0},       {"Extra Light Italic", -400, 0}, {"Book", 0, 0},
        {"Medium Wide", 230, 1}, {"Bold Condensed", 400, -1},     {"Black", 620, 0},
        {far.c_str(), 400, 0},   {beyond.c_str(), {}, 0},         {"Roman", {}, 0},
        {nullptr, {}, 0},
    };
    for (const auto& [name, weight, width] : names) {
        const fm::StyleHints hints = fm::hintsOfStyle(name);
        EXPECT_EQ(hints.weight, weight) << (name ? name : "NULL");
        EXPECT_EQ(hints.width, width) << (name ? name : "NULL");
    }
}

TEST(FontFacts, FollowTheTablesOfTheFile) {
    EditedFont edited;
    const auto cutLayout = [&] {
        for (const char* const tag : {"GDEF", "GPOS", "GSUB"})
            edited.tables.erase(tag);
    };
    EXPECT_EQ(FMFontGetFormat(fontFrom(edited.bytes()).get()), kFMFontFormatOpenType);
    cutLayout();
    EXPECT_EQ(FMFontGetFormat(fontFrom(edited.bytes()).get()), kFMFontFormatTrueType);
    EXPECT_EQ(FMFontGetFormat(fontFrom(bitmapFont("A", "Bold")).get()), kFMFontFormatBitmap);

    std::string& os2 = edited.tables["OS/2"];
    const struct {
        uint32_t embedding;
        uint8_t restrictions;
    } licences[] = {{0, 0}, {1, 1}, {2, 4}, {4, 0}, {8, 0}, {0x100, 2}, {0x200, 4}, {0x303, 7}};
    for (const auto& [embedding, restrictions] : licences) {
        putBigEndian(os2, 8, embedding, 2);
        EXPECT_EQ(FMFontGetRestrictions(fontFrom(edited.bytes()).get()), restrictions) << embedding;
    }

    for (uint32_t familyClass = 0; familyClass < 16; ++familyClass) {
        putBigEndian(os2, 30, familyClass << 8 | 3, 2);
        const fm::FontRef font = fontFrom(edited.bytes());
        EXPECT_EQ(FMFontGetMetrics(font.get())->traits >> 28, familyClass);
        EXPECT_EQ(FMFontIsSerif(font.get()),
                  (familyClass >= 1 && familyClass <= 5) || familyClass == 7)
            << familyClass;
    }
}

TEST(FontFacts, NameTheEncodingOfTheCharacterMap) {
    const struct {
        uint32_t platform, encoding;
        int32_t expected;
    } cases[] = {
        {0, 0, 0x100},  {0, 3, 0x100}, {1, 0, 0},     {1, 25, 25},   {2, 0, 0x600},
        {2, 1, 0x100},  {2, 2, 0x201}, {3, 0, 0x100}, {3, 1, 0x100}, {3, 2, 0xA01},
        {3, 3, 0x630},  {3, 4, 0xA03}, {3, 5, 0x640}, {3, 6, 0x641}, {3, 7, 0x100},
        {3, 10, 0x100}, {7, 3, 0x201}, {7, 2, 0x100}, {4, 0, 0x100}, {1, 0x103, 0x100},
    };
    EditedFont edited;
    const std::string cmap = edited.tables["cmap"];
    // From glyph names FreeType would make a map of its own.
    putBigEndian(edited.tables["post"], 0, 0x00030000, 4);
    for (const auto& [platform, encoding, expected] : cases) {
        edited.tables["cmap"] = charmapTable(cmap, platform, encoding);
        EXPECT_EQ(FMFontGetStringEncoding(fontFrom(edited.bytes()).get()), expected)
            << platform << ", " << encoding;
    }
    edited.tables["cmap"] = bigEndian(0, 4);
    EXPECT_EQ(FMFontGetStringEncoding(fontFrom(edited.bytes()).get()), -1) << "no map";
}

TEST(FontMetrics, AreMeasuredWhereTablesSayNothing) {
    EditedFont edited;
    const fm::FontRef whole = fontFrom(edited.bytes());
    const auto native = openFreeTypeFace(kSans.c_str(), 0);
    const auto topOf = [&](char letter) {
        FT_Load_Char(native.get(), static_cast<FT_ULong>(letter), FT_LOAD_NO_SCALE);
        FT_BBox box;
        FT_Outline_Get_CBox(&native->glyph->outline, &box);
        return box.yMax;
    };
    std::string& os2 = edited.tables["OS/2"];
    putBigEndian(os2, 0, 1, 2); // Version 1 has no heights.
    putBigEndian(os2, 4, 0, 2); // No weight,
    putBigEndian(os2, 6, 0, 2); // nor width.
    edited.tables["name"] =
        nameTable({{3, 1, 0x409, 1, utf16("Test")}, {3, 1, 0x409, 2, utf16("Light Condensed")}});
    const FMFontMetrics measured = *FMFontGetMetrics(fontFrom(edited.bytes()).get());
    EXPECT_EQ(measured.xHeight, topOf('x'));
    EXPECT_EQ(measured.capHeight, topOf('H'));
    EXPECT_EQ(measured.weight, -400);
    EXPECT_TRUE(measured.traits & kFMFontTraitCondensed);
    EXPECT_NEAR(measured.stemV, 184, 40); // DejaVu's stems are 184 units wide, its full stop 254.
    EXPECT_EQ(FMFontGetMetrics(whole.get())->stemV, measured.stemV);
    EXPECT_EQ(FMFontGetHeightMultiple(whole.get()), 1);
    EXPECT_EQ(FMFontGetHeightMultipleForUIKit(whole.get()), 1);
}

TEST(LastResortFont, IsFixedAndNeedsNoFace) {
    const fm::FontRef font = fm::FontRef::adopt(FMFontCreateLastResortFont());
    const FMFontMetrics& metrics = *FMFontGetMetrics(font.get());
    EXPECT_EQ(metrics.unitsPerEm, 2048u);
    EXPECT_EQ(metrics.ascent, 1900);
    EXPECT_EQ(metrics.descent, -500);
    EXPECT_EQ(metrics.reserved48, 2400);
    EXPECT_EQ(metrics.panose[9], 4);
    EXPECT_EQ(metrics.bbox.size.width, 6013);
    EXPECT_TRUE(FMFontIsStandalone(font.get()));
    EXPECT_EQ(FMFontGetFontId(font.get()), 0);
    FMFontPurge(font.get());
    EXPECT_EQ(text(cf::adopt(FMFontCopyPostScriptName(font.get(), false)).get()), "LastResort");
    EXPECT_EQ(text(cf::adopt(FMFontCopyStyleName(font.get(), false)).get()), "regular");
    EXPECT_EQ(text(cf::adopt(FMFontCopyDisplayName(font.get(), false)).get()), "LastResort");
    EXPECT_FALSE(cf::adopt(FMFontCopyTrademark(font.get(), false)));
}
