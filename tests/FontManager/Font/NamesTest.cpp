// NamesTest.cpp: which names a font is found to have, in which language and encoding.

#include "EditedFont.h"
#include "EveryCall.h"
#include "FontManager/Queries/QueriedFont.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace test;

namespace {

fm::FontRef fontNamed(const std::vector<NameRecord>& records,
                      const std::vector<std::string>& tags = {}) {
    EditedFont edited;
    edited.tables["name"] = nameTable(records, tags);
    const std::string bytes = edited.bytes();
    return fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
}

std::string nameOf(const fm::FontRef& font, CopyName copy, bool afresh = false) {
    return text(cf::adopt(copy(font.get(), afresh)).get());
}

// The user's languages, for a scope.
class Languages {
public:
    explicit Languages(const char* list) {
        setenv("LC_ALL", "en_US.UTF-8", 1); // Else no list counts.
        setenv("LANGUAGE", list, 1);
    }
    ~Languages() {
        unsetenv("LC_ALL");
        unsetenv("LANGUAGE");
    }
};

} // namespace

TEST(FontNames, AreDecodedFromEveryPlatformsEncodings) {
    const struct {
        const char* what;
        NameRecord record;
        const char* expected;
    } cases[] = {
        {"Unicode", {0, 3, 0, 9, std::string("\0A\x30\x42", 4)}, "Aあ"},
        {"Unicode beyond 16 bits", {3, 10, 0x409, 9, std::string("\xD8\x3D\xDE\x00", 4)}, "😀"},
        {"half a unit at the end", {3, 1, 0x409, 9, std::string("\0A\0", 3)}, "A"},
        {"end marks", {3, 1, 0x409, 9, std::string("\0A\0\0\0\0", 6)}, "A"},
        {"symbol", {3, 0, 0x409, 9, std::string("\0\xE9", 2)}, "é"},
        {"Mac Roman", {1, 0, 0, 9, "caf\x8E"}, "café"},
        {"Mac Roman in Turkish", {1, 0, 17, 9, "\xDB"}, "ğ"},
        {"Mac Japanese", {1, 1, 11, 9, "\x83\x41"}, "ア"},
        {"Mac Cyrillic", {1, 7, 32, 9, "\x80\xE0"}, "Аа"},
        {"Shift-JIS", {3, 2, 0x411, 9, "\x83\x41"}, "ア"},
        {"Shift-JIS in 16-bit units", {3, 2, 0x411, 9, std::string("\0A\x83\x41", 4)}, "Aア"},
        {"GB 2312", {3, 3, 0x804, 9, "\xD6\xD0"}, "中"},
        {"Big5", {3, 4, 0x404, 9, "\xA4\xA4"}, "中"},
        {"Wansung", {3, 5, 0x412, 9, "\xB0\xA1"}, "가"},
        {"ASCII", {2, 0, 0, 9, "abc"}, "abc"},
        {"ISO Latin 1", {2, 2, 0, 9, "\xE9"}, "é"},
        {"a platform of our dreams", {9, 0, 0, 9, "abc"}, "(none)"},
        {"nothing", {3, 1, 0x409, 9, ""}, "(none)"},
    };
    for (const auto& [what, record, expected] : cases)
        EXPECT_EQ(nameOf(fontNamed({record}), FMFontCopyDesigner), expected) << what;
}

TEST(FontNames, ComeInTheUsersLanguageElseInEnglish) {
    const fm::FontRef font = fontNamed({{1, 0, 0, 9, "mac en"},
                                        {3, 1, 0x404, 9, utf16("zh-TW")},
                                        {3, 1, 0x407, 9, utf16("de")},
                                        {3, 1, 0x409, 9, utf16("en-US")},
                                        {3, 1, 0x416, 9, utf16("pt-BR")},
                                        {3, 1, 0x804, 9, utf16("zh-CN")},
                                        {3, 1, 0x809, 9, utf16("en-GB")},
                                        {3, 1, 0x816, 9, utf16("pt-PT")},
                                        {0, 3, 0x8001, 9, utf16("fi")},
                                        {3, 1, 0x407, 6, utf16("Deutsch")},
                                        {3, 1, 0x409, 6, utf16("English")}},
                                       {utf16("se"), utf16("fi")});
    const struct {
        const char* languages;
        const char* expected;
    } cases[] = {
        {"en_US", "en-US"},   {"en_GB", "en-GB"}, {"de", "de"},       {"de_AT", "de"},
        {"pt_PT", "pt-PT"},   {"pt_BR", "pt-BR"}, {"zh_HK", "zh-TW"}, {"zh_SG", "zh-CN"},
        {"zh_Hant", "zh-TW"}, {"fr:de", "de"},    {"fr:ja", "en-US"}, {"fi", "fi"},
    };
    for (const auto& [languages, expected] : cases) {
        const Languages scope(languages);
        EXPECT_EQ(nameOf(font, FMFontCopyDesigner, true), expected) << languages;
        EXPECT_EQ(nameOf(font, FMFontCopyPostScriptName, true), "English") << languages;
    }
    // Better in any language than not at all; but not from bytes that are no text.
    EXPECT_EQ(nameOf(fontNamed({{3, 1, 0x411, 9, utf16("ja")}}), FMFontCopyDesigner), "ja");
    EXPECT_EQ(nameOf(fontNamed({{3, 1, 0x409, 9, std::string("\xDC\x00\xDC\x00", 4)},
                                {1, 0, 0, 9, "mac"}}),
                     FMFontCopyDesigner),
              "mac");
}

TEST(FontNames, AreEachOfTheirOwnEntry) {
    const struct {
        CopyName copy;
        uint32_t name;
    } cases[] = {
        {FMFontCopyCopyright, 0},
        {FMFontCopyFamilyName, 1},
        {FMFontCopySubFamilyName, 2},
        {FMFontCopyUniqueId, 3},
        {FMFontCopyFullName, 4},
        {FMFontCopyVersion, 5},
        {FMFontCopyPostScriptName, 6},
        {FMFontCopyTrademark, 7},
        {FMFontCopyManufacturer, 8},
        {FMFontCopyDesigner, 9},
        {FMFontCopyDescription, 10},
        {FMFontCopyVendorURL, 11},
        {FMFontCopyDesignerURL, 12},
        {FMFontCopyLicense, 13},
        {FMFontCopyLicenseURL, 14},
        {FMFontCopyPreferredFamilyName, 16},
        {FMFontCopyPreferredSubFamilyName, 17},
        {FMFontCopySampleText, 19},
        {FMFontCopyPostScriptCIDName, 20},
        {FMFontCopyWWSFamilyName, 21},
        {FMFontCopyWWSSubFamilyName, 22},
    };
    std::vector<NameRecord> records;
    for (uint32_t name = 0; name <= 22; ++name)
        records.push_back({3, 1, 0x409, name, utf16("name " + std::to_string(name))});
    const fm::FontRef full = fontNamed(records), empty = fontNamed({});
    for (const auto& [copy, name] : cases) {
        EXPECT_EQ(nameOf(full, copy), "name " + std::to_string(name));
        EXPECT_EQ(nameOf(empty, copy), "(none)") << name;
    }
    EXPECT_EQ(nameOf(empty, FMFontCopyNimbraFamilyName), "Unnamed Font Family");
    EXPECT_EQ(nameOf(empty, FMFontCopyNimbraId),
              "Unnamed Font Family:Unnamed Font Family:Regular:OpenType PostScript:0:6253");
}

TEST(FontNames, AreWorkedOutOfOthers) {
    const auto record = [](uint32_t name, std::string_view text) {
        return NameRecord{3, 1, 0x409, name, utf16(text)};
    };
    const fm::FontRef telling = fontNamed(
        {record(1, "My Sans"), record(2, "Bold"), record(3, "unique"), record(4, "My Sans Bold")});
    EXPECT_EQ(nameOf(telling, FMFontCopyDisplayName), "My Sans Bold");
    EXPECT_EQ(nameOf(telling, FMFontCopyNimbraFamilyName), "mysans");
    EXPECT_EQ(nameOf(telling, FMFontCopyNimbraId), "mysans:unique:Bold:OpenType PostScript:0:6253");
    EXPECT_EQ(nameOf(telling, FMFontCopyPostScriptName), "(none)");
    const fm::FontRef cryptic =
        fontNamed({record(1, "My Sans"), record(2, "Bold"), record(4, "MySans-Bd")});
    EXPECT_EQ(nameOf(cryptic, FMFontCopyDisplayName), "My Sans Bold");
    const fm::FontRef german = fontNamed({record(1, "My Sans"), {3, 1, 0x407, 3, utf16("einzig")}});
    EXPECT_EQ(nameOf(german, FMFontCopyNimbraId),
              "mysans:mysans:Regular:OpenType PostScript:0:6253");
    EXPECT_EQ(nameOf(german, FMFontCopyUniqueId), "einzig");
    EXPECT_EQ(nameOf(german, FMFontCopyFullName), "My Sans");

    const struct {
        const char* family;
        const char* weight;
        const char* expected;
    } bitmaps[] = {{"My Font", "Bold", "MyFont-BoldItalic"},
                   {"\tA*b_c-d.", "Bold", "A_b_c-d_-BoldItalic"}};
    for (const auto& [family, weight, expected] : bitmaps) {
        const std::string bytes = bitmapFont(family, weight);
        const auto font =
            fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
        ASSERT_TRUE(font) << family;
        EXPECT_EQ(nameOf(font, FMFontCopyPostScriptName), expected);
        EXPECT_EQ(FMFontGetMetrics(font.get())->unitsPerEm, 8u) << "its pixels";
    }
}

TEST(FontNames, AreReadOnceEvenWhenThereAreNone) {
    const fm::FontRef font = fontNamed({{3, 1, 0x409, 9, utf16("designer")}});
    EXPECT_EQ(nameOf(font, FMFontCopyTrademark, true), "(none)");
    EXPECT_EQ(nameOf(font, FMFontCopyDesigner), "designer");
    EXPECT_EQ(nameOf(font, FMFontCopyTrademark), "(none)");
    FMFontClearFaceData(font.get());
    EXPECT_EQ(nameOf(font, FMFontCopyDesigner), "designer");
    EXPECT_EQ(nameOf(font, FMFontCopyTrademark), "(none)");
    EXPECT_FALSE(FMFontIsActive(font.get())) << "what is known needs no face";
    EXPECT_EQ(nameOf(font, FMFontCopyDesigner, true), "designer");
    EXPECT_TRUE(FMFontIsActive(font.get()));
    FMFontPurge(font.get());
    EXPECT_EQ(nameOf(font, FMFontCopyDesigner), "designer");
    EXPECT_TRUE(FMFontIsActive(font.get())) << "names go with the purge";
}

TEST(SanitizedFamilyName, IsLowerCaseWithoutSuffixAndSeparators) {
    const struct {
        const char* name;
        const char* suffix;
        const char* expected;
    } cases[] = {
        {"DejaVu Sans-Mono", nullptr, "dejavusansmono"},
        {"Arial MT", "mt", "arial"},
        {"Arial mt", "MT", "arial"},
        {"MT Arial", "MT", "mtarial"},
        {"ÉTUDE - 1", "", "étude1"},
        {"mt", "MT", ""},
        {"", "x", ""},
        {nullptr, "x", "(none)"},
        {"\xFF", nullptr, "(none)"},
    };
    for (const auto& [name, suffix, expected] : cases)
        EXPECT_EQ(text(cf::adopt(FMFontCopySanitizedFamilyName(name, suffix)).get()), expected)
            << (name ? name : "NULL");
}
