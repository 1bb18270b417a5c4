// InstalledNamesTest.cpp: names and measures of every installed face, beside fontconfig's reading.

#include "FontManager/Queries/QueriedFont.h"

#include <fontconfig/fontconfig.h>
// After fontconfig's own header, which it needs.
#include <fontconfig/fcfreetype.h>

#include FT_TYPE1_TABLES_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

using namespace test;

namespace {

// What fontconfig makes of a face.
class Pattern {
public:
    Pattern(FT_Face face, const InstalledFace& where)
        : native_(FcFreeTypeQueryFace(face, reinterpret_cast<const FcChar8*>(where.path.c_str()),
                                      static_cast<unsigned>(where.index), nullptr)) {}
    ~Pattern() { FcPatternDestroy(native_); }
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    // The values whose language, told by another object, is English.
    std::set<std::string> english(const char* object, const char* languages) const {
        std::set<std::string> texts;
        FcChar8 *value, *language;
        for (int i = 0; FcPatternGetString(native_, object, i, &value) == FcResultMatch; ++i) {
            const bool isSaid =
                FcPatternGetString(native_, languages, i, &language) == FcResultMatch;
            if (!isSaid || std::strcmp(reinterpret_cast<char*>(language), "en") == 0)
                texts.insert(reinterpret_cast<char*>(value));
        }
        return texts;
    }
    double number(const char* object) const {
        double value = NAN;
        FcPatternGetDouble(native_, object, 0, &value);
        return value;
    }

private:
    FcPattern* native_;
};

std::string nameOf(const fm::FontRef& font, CFStringRef (*copy)(FMFontRef, bool)) {
    std::string name = text(cf::adopt(copy(font.get(), false)).get());
    // Fontconfig trims names.
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name;
}

// Fontconfig takes names that differ in blanks alone for one.
std::string withoutBlanks(std::string name) {
    std::erase(name, ' ');
    return name;
}

bool isAmong(const std::set<std::string>& names, const std::string& name) {
    return std::ranges::any_of(names, [&](const std::string& other) {
        return withoutBlanks(other) == withoutBlanks(name);
    });
}

// A number in a table, big end first; 0 where the table does not reach.
uint32_t tableNumber(hb_face_t* face, hb_tag_t tag, unsigned offset, unsigned size) {
    hb_blob_t* const blob = hb_face_reference_table(face, tag);
    unsigned length = 0;
    const char* const bytes = hb_blob_get_data(blob, &length);
    uint32_t number = 0;
    for (unsigned i = 0; i < size && offset + size <= length; ++i)
        number = number << 8 | static_cast<uint8_t>(bytes[offset + i]);
    hb_blob_destroy(blob);
    return number;
}

} // namespace

// Languages are English: the tests' environment says nothing else.
TEST(InstalledNames, AreAmongThoseThatFontconfigReads) {
    int compared = 0;
    for (const InstalledFace& where : installedFaces()) {
        const fm::FontRef font = openFont(where);
        const auto native = where.openFreeType();
        const Pattern pattern(native.get(), where);
        const auto families = pattern.english(FC_FAMILY, FC_FAMILYLANG);
        const auto styles = pattern.english(FC_STYLE, FC_STYLELANG);
        const auto fullNames = pattern.english(FC_FULLNAME, FC_FULLNAMELANG);
        const std::string family = nameOf(font, FMFontCopyFamilyName);
        EXPECT_TRUE(isAmong(families, family)) << where.what() << ' ' << family;
        const std::string preferred = nameOf(font, FMFontCopyPreferredFamilyName);
        EXPECT_TRUE(preferred == "(none)" || isAmong(families, preferred)) << where.what();
        EXPECT_TRUE(isAmong(styles, nameOf(font, FMFontCopyStyleName))) << where.what();
        const std::string full = nameOf(font, FMFontCopyFullName);
        PS_FontInfoRec info;
        // Fontconfig makes full names up for fonts that are in no SFNT wrapper.
        if (FT_IS_SFNT(native.get())) {
            EXPECT_TRUE(isAmong(fullNames, full)) << where.what() << ' ' << full;
        } else if (FT_Get_PS_Font_Info(native.get(), &info) == 0) {
            EXPECT_EQ(full, info.full_name) << where.what();
        }
        ++compared;
    }
    std::printf("%d faces compared\n", compared);
    EXPECT_GT(compared, 400);
}

TEST(InstalledNames, HavePostScriptNamesWhereTheTableHas) {
    int named = 0;
    for (const InstalledFace& where : installedFaces()) {
        const fm::FontRef font = openFont(where);
        const auto native = where.openFreeType();
        const std::string name = nameOf(font, FMFontCopyPostScriptName);
        if (FT_IS_SFNT(native.get())) {
            const char* const expected = FT_Get_Postscript_Name(native.get());
            // FreeType holds back names that no PostScript program could use.
            if (!expected) {
                EXPECT_NE(name.find(' '), std::string::npos) << where.what();
            } else {
                EXPECT_EQ(name, expected) << where.what();
            }
            ++named;
        } else if (FT_IS_SCALABLE(native.get())) {
            EXPECT_EQ(name, "(none)") << where.what();
        } else {
            EXPECT_EQ(name.find_first_of(" ()"), std::string::npos) << where.what();
        }
    }
    EXPECT_GT(named, 300);
}

TEST(InstalledMetrics, AgreeWithTheTablesAndWithFontconfig) {
    constexpr int32_t kWeights[] = {-800, -600, -400, 0, 230, 300, 400, 560, 620};
    for (const InstalledFace& where : installedFaces()) {
        const fm::FontRef font = openFont(where);
        const auto native = where.openFreeType();
        const auto harfBuzz = where.openHarfBuzz();
        const Pattern pattern(native.get(), where);
        const FMFontMetrics& metrics = *FMFontGetMetrics(font.get());
        EXPECT_EQ(FMFontGetNumberOfGlyphs(font.get()), native->num_glyphs) << where.what();
        EXPECT_GT(metrics.unitsPerEm, 0u) << where.what();
        EXPECT_GT(metrics.ascent, 0) << where.what();
        if (FT_IS_SCALABLE(native.get())) {
            EXPECT_EQ(metrics.unitsPerEm, native->units_per_EM) << where.what();
            EXPECT_EQ(metrics.ascent, native->ascender) << where.what();
            EXPECT_EQ(metrics.descent, native->descender) << where.what();
            EXPECT_EQ(CGRectGetMaxX(metrics.bbox), static_cast<CGFloat>(native->bbox.xMax));
            EXPECT_EQ(CGRectGetMinY(metrics.bbox), static_cast<CGFloat>(native->bbox.yMin));
            // Neither letter of which stems are measured: not known.
            const bool hasStem = FT_Get_Char_Index(native.get(), 'l') != 0 ||
                                 FT_Get_Char_Index(native.get(), '.') != 0;
            EXPECT_EQ(metrics.stemV > 0, hasStem) << where.what();
        }
        EXPECT_EQ(static_cast<bool>(metrics.traits & kFMFontTraitItalic),
                  pattern.number(FC_SLANT) > 0)
            << where.what();
        if (!FT_IS_SFNT(native.get()))
            continue;
        // Of variable fonts fontconfig gives ranges, and numbers only for what does not vary.
        const double weight = pattern.number(FC_WEIGHT);
        if (!std::isnan(weight)) {
            const double weightClass = FcWeightToOpenTypeDouble(weight);
            const long hundreds = std::clamp(std::lround(weightClass / 100), 1l, 9l);
            EXPECT_EQ(metrics.weight, kWeights[hundreds - 1]) << where.what() << ' ' << weightClass;
        }
        const double width = pattern.number(FC_WIDTH);
        if (!std::isnan(width)) {
            EXPECT_EQ(static_cast<bool>(metrics.traits & kFMFontTraitCondensed), width < 100)
                << where.what();
            EXPECT_EQ(static_cast<bool>(metrics.traits & kFMFontTraitExpanded), width > 100)
                << where.what();
        }
        hb_face_t* const raw = harfBuzz.get();
        constexpr auto kPost = HB_TAG('p', 'o', 's', 't'), kOS2 = HB_TAG('O', 'S', '/', '2');
        EXPECT_EQ(metrics.italicAngle, static_cast<int32_t>(tableNumber(raw, kPost, 4, 4)))
            << where.what();
        EXPECT_EQ(metrics.underlinePosition, static_cast<int16_t>(tableNumber(raw, kPost, 8, 2)))
            << where.what();
        EXPECT_EQ(static_cast<bool>(metrics.traits & kFMFontTraitFixedPitch),
                  tableNumber(raw, kPost, 12, 4) != 0)
            << where.what();
        if (tableNumber(raw, kOS2, 0, 2) >= 2 && tableNumber(raw, kOS2, 88, 2) != 0) {
            EXPECT_EQ(metrics.capHeight, static_cast<int16_t>(tableNumber(raw, kOS2, 88, 2)))
                << where.what();
        }
        EXPECT_EQ(metrics.panose[2], tableNumber(raw, kOS2, 34, 1)) << where.what();
        EXPECT_EQ(FMFontGetRestrictions(font.get()) >> 2 & 1,
                  (tableNumber(raw, kOS2, 8, 2) & 0x202) != 0)
            << where.what();
    }
}

TEST(InstalledMetrics, OfColouredBitmapsComeFromTheirTables) {
    int found = 0;
    for (const InstalledFace& where : installedFaces()) {
        const auto native = where.openFreeType();
        const bool isColoured = FT_HAS_COLOR(native.get()) && FT_HAS_FIXED_SIZES(native.get());
        const fm::FontRef font = openFont(where);
        EXPECT_EQ(FMFontHasColorBitmap(font.get()), isColoured) << where.what();
        if (!isColoured)
            continue;
        ++found;
        const auto harfBuzz = where.openHarfBuzz();
        const FMFontMetrics& metrics = *FMFontGetMetrics(font.get());
        constexpr auto kHhea = HB_TAG('h', 'h', 'e', 'a'), kHead = HB_TAG('h', 'e', 'a', 'd');
        EXPECT_EQ(metrics.ascent, static_cast<int16_t>(tableNumber(harfBuzz.get(), kHhea, 4, 2)));
        EXPECT_EQ(metrics.descent, static_cast<int16_t>(tableNumber(harfBuzz.get(), kHhea, 6, 2)));
        EXPECT_EQ(metrics.unitsPerEm, tableNumber(harfBuzz.get(), kHead, 18, 2));
        EXPECT_EQ(CGRectGetMaxX(metrics.bbox),
                  static_cast<int16_t>(tableNumber(harfBuzz.get(), kHead, 40, 2)));
        EXPECT_EQ(FMFontGetFormat(font.get()), kFMFontFormatOpenTypeBitmap);
    }
    EXPECT_GT(found, 0) << "no font of coloured bitmaps is installed";
}
