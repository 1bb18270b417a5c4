// InstalledFontsTest.cpp: every face of the machine, beside FreeType, HarfBuzz and fontconfig.

#include "QueriedFont.h"

#include <fontconfig/fontconfig.h>
// After fontconfig's own header, which it needs.
#include <fontconfig/fcfreetype.h>
#include <hb-ot.h>

#include FT_ADVANCES_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TRUETYPE_TABLES_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

using namespace test;

namespace {

// What fonts lack is drawn as something else, which FreeType knows nothing of.
const std::map<uint32_t, uint32_t> kStandIns = {{0x9, 0x20},    {0xA, 0x20},      {0xD, 0x20},
                                                {0xA0, 0x20},   {0x2028, 0x20},   {0x2029, 0x20},
                                                {0xFFFC, 0x20}, {0x2011, 0x2010}, {0x202F, 0x2009}};

std::set<uint32_t> mappedCodePoints(FT_Face face) {
    std::set<uint32_t> codePoints;
    FT_UInt glyph = 0;
    for (FT_ULong code = FT_Get_First_Char(face, &glyph); glyph != 0;
         code = FT_Get_Next_Char(face, code, &glyph))
        codePoints.insert(codePoints.end(), static_cast<uint32_t>(code));
    return codePoints;
}

CGGlyph expectedGlyph(FT_Face face, uint32_t codePoint) {
    const FT_UInt glyph = FT_Get_Char_Index(face, codePoint);
    const auto standIn = kStandIns.find(codePoint);
    return static_cast<CGGlyph>(
        glyph || standIn == kStandIns.end() ? glyph : FT_Get_Char_Index(face, standIn->second));
}

void appendUTF16(std::vector<UniChar>& text, uint32_t codePoint) {
    if (codePoint < 0x10000) {
        text.push_back(static_cast<UniChar>(codePoint));
        return;
    }
    text.push_back(static_cast<UniChar>(0xD7C0 + (codePoint >> 10)));
    text.push_back(static_cast<UniChar>(0xDC00 + (codePoint & 0x3FF)));
}

} // namespace

TEST(InstalledFonts, AreOfEveryContainer) {
    std::map<std::string, int> faces;
    for (const InstalledFace& face : installedFaces())
        ++faces[face.path.substr(face.path.rfind('.') + 1)];
    for (const auto& [container, count] : faces)
        std::printf("%-4s %d faces\n", container.c_str(), count);
    for (const char* const container : {"ttf", "otf", "ttc", "t1", "pfb", "gz"})
        EXPECT_GT(faces[container], 0) << container;
}

TEST(InstalledFonts, MapCharactersAsFreeTypeDoes) {
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        ASSERT_TRUE(font) << face.what();
        auto codePoints = mappedCodePoints(native.get());
        for (const auto& [codePoint, other] : kStandIns)
            codePoints.insert(codePoint);

        const std::vector<UTF32Char> asked(codePoints.begin(), codePoints.end());
        std::vector<UniChar> utf16;
        std::vector<CGGlyph> expected, expectedOfUTF16;
        for (const uint32_t codePoint : codePoints) {
            expected.push_back(expectedGlyph(native.get(), codePoint));
            if (codePoint >> 11 == 0x1B)
                continue; // A surrogate is no character of its own.
            appendUTF16(utf16, codePoint);
            expectedOfUTF16.push_back(expected.back());
            expectedOfUTF16.resize(utf16.size(), 0);
        }
        std::vector<CGGlyph> glyphs(asked.size()), glyphsOfUTF16(utf16.size());
        FMFontGetGlyphsForCodePoints(font.get(), asked.data(), glyphs.data(), asked.size());
        FMFontGetGlyphsForCharactersBijectively(font.get(), utf16.data(), glyphsOfUTF16.data(),
                                                utf16.size());
        ASSERT_EQ(glyphs, expected) << face.what();
        ASSERT_EQ(glyphsOfUTF16, expectedOfUTF16) << face.what();
    }
}

TEST(InstalledFonts, CoverTheCharactersThatFreeTypeWalks) {
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        const auto set = cf::adopt(FMFontCopyCharacterSet(font.get()));
        ASSERT_TRUE(set) << face.what();
        std::vector<bool> mapped(0x30000);
        for (const uint32_t codePoint : mappedCodePoints(native.get())) {
            ASSERT_TRUE(CFCharacterSetIsLongCharacterMember(set.get(), codePoint)) << face.what();
            if (codePoint < mapped.size())
                mapped[codePoint] = true;
        }
        for (uint32_t codePoint = 0; codePoint < mapped.size(); ++codePoint)
            if (CFCharacterSetIsLongCharacterMember(set.get(), codePoint) != mapped[codePoint])
                FAIL() << face.what() << " U+" << std::hex << codePoint;
    }
}

TEST(InstalledFonts, CoverWhatFontconfigSays) {
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        const auto set = cf::adopt(FMFontCopyCharacterSet(font.get()));
        FcCharSet* const theirs = FcFreeTypeCharSet(native.get(), nullptr);
        ASSERT_TRUE(set && theirs) << face.what();
        // Of control characters, fontconfig keeps its own account.
        for (uint32_t codePoint = 0x20; codePoint < 0x30000; ++codePoint)
            if (CFCharacterSetIsLongCharacterMember(set.get(), codePoint) !=
                FcCharSetHasChar(theirs, codePoint))
                FAIL() << face.what() << " U+" << std::hex << codePoint;
        FcCharSetDestroy(theirs);
    }
}

TEST(InstalledFonts, AdvanceAsFreeTypeAndHarfBuzzDo) {
    std::printf("at most 4,000 glyphs of a face, evenly spread\n");
    int measuredByHarfBuzz = 0;
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        if (!FT_IS_SCALABLE(native.get()) && !FT_IS_SFNT(native.get()))
            continue; // Bitmaps: see BitmapFonts.
        const auto glyphs = sampledGlyphs(native->num_glyphs, 4000);
        std::vector<CGSize> advances(glyphs.size());
        ASSERT_TRUE(
            FMFontGetAdvancesForGlyphs(font.get(), glyphs.data(), advances.data(), glyphs.size()));
        const auto harfBuzz = face.openHarfBuzz();
        hb_font_t* const scaled = hb_font_create(harfBuzz.get());
        const bool hasTables = hb_face_get_table_tags(harfBuzz.get(), 0, nullptr, nullptr) > 0;
        measuredByHarfBuzz += hasTables;
        for (size_t i = 0; i < glyphs.size(); ++i) {
            FT_Fixed expected = 0;
            FT_Get_Advance(native.get(), glyphs[i], FT_LOAD_NO_SCALE, &expected);
            ASSERT_EQ(advances[i].width, static_cast<CGFloat>(expected))
                << face.what() << " " << glyphs[i];
            ASSERT_EQ(advances[i].height, 0);
            if (hasTables)
                ASSERT_EQ(advances[i].width,
                          static_cast<CGFloat>(hb_font_get_glyph_h_advance(scaled, glyphs[i])))
                    << face.what() << " " << glyphs[i];
        }
        hb_font_destroy(scaled);
    }
    EXPECT_GT(measuredByHarfBuzz, 300);
}

TEST(InstalledFonts, HaveTheTablesOfTheirFiles) {
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto harfBuzz = face.openHarfBuzz();
        unsigned count = 256;
        hb_tag_t expected[256];
        const unsigned total = hb_face_get_table_tags(harfBuzz.get(), 0, &count, expected);
        ASSERT_EQ(total, FMFontGetAvailableTablesCount(font.get())) << face.what();
        const auto tags = cf::adopt(FMFontCopyAvailableTables(font.get()));
        ASSERT_EQ(tags != nullptr, total > 0) << face.what();
        for (unsigned i = 0; i < count; ++i) {
            const auto tag = reinterpret_cast<uintptr_t>(CFArrayGetValueAtIndex(tags.get(), i));
            EXPECT_EQ(tag, expected[i]) << face.what();
            hb_blob_t* const bytes = hb_face_reference_table(harfBuzz.get(), expected[i]);
            const auto table = cf::adopt(FMFontCopyTable(font.get(), expected[i]));
            ASSERT_TRUE(table && FMFontHasTable(font.get(), expected[i])) << face.what();
            unsigned length = 0;
            const char* const data = hb_blob_get_data(bytes, &length);
            ASSERT_EQ(CFDataGetLength(table.get()), CFIndex{length}) << face.what();
            EXPECT_EQ(std::memcmp(CFDataGetBytePtr(table.get()), data, length), 0) << face.what();
            hb_blob_destroy(bytes);
        }
        EXPECT_FALSE(FMFontHasTable(font.get(), 0));
        EXPECT_FALSE(FMFontHasTable(font.get(), HB_TAG('n', 'o', 'n', 'e')));
    }
}

TEST(InstalledFonts, NameGlyphsAsFreeTypeDoes) {
    std::printf("at most 300 glyphs of a face, evenly spread\n");
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        for (const CGGlyph glyph : sampledGlyphs(native->num_glyphs, 300)) {
            const auto name = cf::adopt(FMFontCopyGlyphName(font.get(), glyph));
            char expected[256] = "";
            if (FT_HAS_GLYPH_NAMES(native.get()))
                FT_Get_Glyph_Name(native.get(), glyph, expected, sizeof expected);
            ASSERT_EQ(text(name.get()), *expected ? expected : "(none)") << face.what();
            if (!name)
                continue;
            // Fonts may give a name twice: the first glyph that has it answers to it.
            const CGGlyph found = FMFontGetGlyphWithCFName(font.get(), name.get());
            EXPECT_EQ(text(cf::adopt(FMFontCopyGlyphName(font.get(), found)).get()), expected);
            EXPECT_EQ(FMFontGetGlyphWithName(font.get(), expected), found);
        }
    }
}

namespace {

struct Styles {
    std::vector<std::string> names;
    std::vector<std::vector<float>> coordinates;
};

void collectStyle(const FMVariationNamedStyle* style, void* context) {
    auto& styles = *static_cast<Styles*>(context);
    styles.names.push_back(text(style->name));
    auto& coordinates = styles.coordinates.emplace_back();
    for (CFIndex i = 0; i < style->coordinateCount; ++i)
        coordinates.push_back(static_cast<float>(style->coordinates[i]) / 65536);
}

std::string nameOf(hb_face_t* face, hb_ot_name_id_t id) {
    char utf8[512] = "(none)";
    unsigned size = sizeof utf8;
    return hb_ot_name_get_utf8(face, id, hb_language_from_string("en", -1), &size, utf8) > 0
               ? utf8
               : "(none)";
}

} // namespace

TEST(InstalledFonts, VaryAsHarfBuzzSays) {
    int variable = 0;
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto harfBuzz = face.openHarfBuzz();
        unsigned count = 16;
        hb_ot_var_axis_info_t expected[16];
        hb_ot_var_get_axis_infos(harfBuzz.get(), 0, &count, expected);
        ASSERT_EQ(FMFontGetMMVariationAxisCount(font.get()), CFIndex{count}) << face.what();
        EXPECT_EQ(FMFontGetMMVariationDesignCount(font.get()), 0) << face.what();

        std::vector<FMVariationAxis> axes;
        std::vector<std::string> names;
        auto collected = std::pair(&axes, &names);
        const bool did = FMFontIterateMMVariationAxes(
            font.get(),
            [](const FMVariationAxis* axis, void* context) {
                auto& [axes, names] = *static_cast<decltype(collected)*>(context);
                axes->push_back(*axis);
                names->push_back(text(axis->name));
            },
            &collected);
        EXPECT_EQ(did, count > 0) << face.what();
        ASSERT_EQ(axes.size(), count);
        for (unsigned i = 0; i < count; ++i) {
            EXPECT_EQ(axes[i].tag, expected[i].tag);
            EXPECT_EQ(names[i], nameOf(harfBuzz.get(), expected[i].name_id));
            EXPECT_EQ(static_cast<float>(axes[i].minimum) / 65536, expected[i].min_value);
            EXPECT_EQ(static_cast<float>(axes[i].maximum) / 65536, expected[i].max_value);
            EXPECT_EQ(static_cast<float>(axes[i].defaultValue) / 65536, expected[i].default_value);
        }
        variable += count > 0;

        // FreeType adds a style for the default where the font has none there.
        const unsigned styles = hb_ot_var_get_named_instance_count(harfBuzz.get());
        Styles found;
        FMFontIterateMMVariationNamedStyles(font.get(), collectStyle, &found);
        ASSERT_EQ(static_cast<CFIndex>(found.names.size()),
                  FMFontGetMMVariationNamedStyleCount(font.get()));
        ASSERT_THAT(found.names.size(), testing::AnyOf(styles, styles + 1)) << face.what();
        for (unsigned i = 0; i < styles; ++i) {
            EXPECT_EQ(found.names[i],
                      nameOf(harfBuzz.get(),
                             hb_ot_var_named_instance_get_subfamily_name_id(harfBuzz.get(), i)));
            std::vector<float> coordinates(count);
            hb_ot_var_named_instance_get_design_coords(harfBuzz.get(), i, &count,
                                                       coordinates.data());
            EXPECT_EQ(found.coordinates[i], coordinates) << face.what();
        }
    }
    std::printf("%d variable faces\n", variable);
    EXPECT_GT(variable, 0);
}

namespace {

std::vector<std::string> languagesOf(FcStrSet* languages) {
    std::vector<std::string> list;
    FcStrList* const each = FcStrListCreate(languages);
    while (const FcChar8* const language = FcStrListNext(each))
        list.emplace_back(reinterpret_cast<const char*>(language));
    FcStrListDone(each);
    FcStrSetDestroy(languages);
    return list;
}

std::set<std::string> fontconfigLanguages(const InstalledFace& face) {
    const auto native = face.openFreeType();
    FcPattern* const pattern = FcFreeTypeQueryFace(
        native.get(), reinterpret_cast<const FcChar8*>(face.path.c_str()), 0, nullptr);
    FcLangSet* languages = nullptr;
    std::set<std::string> found;
    if (FcPatternGetLangSet(pattern, FC_LANG, 0, &languages) == FcResultMatch)
        for (const std::string& language : languagesOf(FcLangSetGetLangs(languages)))
            found.insert(language);
    FcPatternDestroy(pattern);
    return found;
}

std::set<std::string> ourLanguages(FMFontRef font) {
    std::set<std::string> found;
    const auto languages = cf::adopt(FMFontCopySupportedLanguages(font));
    for (CFIndex i = 0; languages && i < CFArrayGetCount(languages.get()); ++i)
        found.insert(text(static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), i))));
    return found;
}

} // namespace

// The two go by different lists of characters, and disagree over letters that a language hardly
// uses. What both know is what both find in some face.
TEST(InstalledFonts, SupportTheLanguagesThatFontconfigSays) {
    std::map<std::string, std::vector<std::pair<bool, bool>>> answers;
    for (const InstalledFace& face : installedFaces()) {
        const auto ours = ourLanguages(openFont(face).get());
        const auto theirs = fontconfigLanguages(face);
        for (const std::string& language : languagesOf(FcGetLangs()))
            answers[language].emplace_back(ours.contains(language), theirs.contains(language));
    }
    long known = 0, agreed = 0, total = 0;
    for (const auto& [language, pairs] : answers) {
        const bool weKnow =
            std::any_of(pairs.begin(), pairs.end(), [](auto& p) { return p.first; });
        const bool theyKnow =
            std::any_of(pairs.begin(), pairs.end(), [](auto& p) { return p.second; });
        if (!weKnow || !theyKnow)
            continue;
        ++known;
        total += static_cast<long>(pairs.size());
        agreed += std::count_if(pairs.begin(), pairs.end(),
                                [](auto& pair) { return pair.first == pair.second; });
    }
    std::printf("of %zu languages both know %ld: %ld of %ld answers agree, %.2f %%\n",
                answers.size(), known, agreed, total,
                100.0 * static_cast<double>(agreed) / static_cast<double>(total));
    EXPECT_GT(known, 100);
    EXPECT_GT(agreed * 100, total * 98);
}
