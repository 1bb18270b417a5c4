// EditedFontsTest.cpp: what few installed fonts have: charmaps of symbols, carets, features,
// declared languages, and tables that lie.

#include "QueriedFont.h"
#include "Support/EditedFont.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace test;
using testing::ElementsAre;

namespace {

constexpr const char* kSmallFont = "/usr/share/fonts/truetype/noto/NotoSansLycian-Regular.ttf";

fm::FontRef open(const EditedFont& font) {
    const FontBytes bytes = font.bytes();
    return fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
}

// One charmap: its platform, encoding and subtable.
FontBytes charmap(unsigned platform, unsigned encoding, const FontBytes& subtable) {
    FontBytes table = TableWriter().u16({0, 1, platform, encoding}).u32({12});
    table.insert(table.end(), subtable.begin(), subtable.end());
    return table;
}

CGGlyph glyphOf(FMFontRef font, UTF32Char codePoint) {
    CGGlyph glyph = 0xAAAA;
    FMFontGetGlyphsForCodePoints(font, &codePoint, &glyph, 1);
    return glyph;
}

} // namespace

TEST(EditedFonts, OfSymbolsAnswerForLettersTheyDoNotCover) {
    // Trimmed: from U+F041, glyphs 4, 5 and 6.
    const auto font =
        open(EditedFont(kSmallFont)
                 .set("cmap", charmap(3, 0, TableWriter().u16({6, 16, 0, 0xF041, 3, 4, 5, 6}))));
    EXPECT_EQ(glyphOf(font.get(), 0xF042), 5);
    EXPECT_EQ(glyphOf(font.get(), 'B'), 5);
    EXPECT_EQ(glyphOf(font.get(), 'D'), 0);
    EXPECT_EQ(glyphOf(font.get(), 0x142), 0);
    const auto set = cf::adopt(FMFontCopyCharacterSet(font.get()));
    EXPECT_TRUE(CFCharacterSetIsCharacterMember(set.get(), 0xF042));
    EXPECT_FALSE(CFCharacterSetIsCharacterMember(set.get(), 'B'));
}

TEST(EditedFonts, MapOnlyToGlyphsThatTheyHave) {
    const auto font =
        open(EditedFont(kSmallFont)
                 .set("cmap", charmap(3, 10,
                                      TableWriter().u16({12, 0}).u32(
                                          {40, 0, 2, 'A', 'A', 4, 'B', 'C', 60000}))));
    EXPECT_EQ(glyphOf(font.get(), 'A'), 4);
    EXPECT_EQ(glyphOf(font.get(), 'B'), 0);
    EXPECT_EQ(glyphOf(font.get(), 0xFFFFFFFF), 0);
}

TEST(EditedFonts, MayClaimFourThousandMillionCharacters) {
    const auto font = open(
        EditedFont(kSmallFont)
            .set("cmap",
                 charmap(3, 10, TableWriter().u16({13, 0}).u32({28, 0, 1, 0x20, 0xFFFFFFFF, 4}))));
    EXPECT_EQ(glyphOf(font.get(), 0x10FFFF), 4);
    const auto set = cf::adopt(FMFontCopyCharacterSet(font.get()));
    EXPECT_TRUE(CFCharacterSetIsLongCharacterMember(set.get(), 0x10FFFF));
    EXPECT_FALSE(CFCharacterSetIsLongCharacterMember(set.get(), 0x1F));
}

TEST(EditedFonts, GiveEachUTF16UnitAGlyph) {
    const auto font = openFont(kSmallFont);
    const CGGlyph lycian = glyphOf(font.get(), 0x10280);
    const CGGlyph space = glyphOf(font.get(), ' ');
    ASSERT_TRUE(lycian && space);
    const UniChar text[] = {0xD800, 0xDE80, ' ', 0xDE80, 0xD800, ' ', '\t', 0xD800};
    CGGlyph glyphs[std::size(text)];
    EXPECT_FALSE(FMFontGetGlyphsForCharactersBijectively(font.get(), text, glyphs, 8));
    EXPECT_THAT(glyphs, ElementsAre(lycian, 0, space, 0, 0, space, space, 0));
    EXPECT_TRUE(FMFontGetGlyphsForCharactersBijectively(font.get(), text, glyphs, 3));
}

TEST(EditedFonts, HaveCaretsInTheirLigatures) {
    // A list at 12: its coverage at 6, one glyph at 12; then glyph 5's carets at -10, 300 and 700.
    const FontBytes definitions = TableWriter()
                                      .u16({1, 0, 0, 0, 12, 0})
                                      .u16({6, 1, 12})
                                      .u16({1, 1, 5})
                                      .u16({3, 8, 12, 16})
                                      .u16({1, 0xFFF6, 1, 300, 1, 700});
    const auto font = open(EditedFont(kSmallFont).set("GDEF", definitions));
    CGFloat carets[4] = {-1, -1, -1, -1};
    EXPECT_EQ(FMFontGetLigatureCaretPositions(font.get(), 5, nullptr, 0), 3);
    EXPECT_EQ(FMFontGetLigatureCaretPositions(font.get(), 5, carets, 2), 3);
    EXPECT_THAT(carets, ElementsAre(-10, 300, -1, -1));
    EXPECT_EQ(FMFontGetLigatureCaretPositions(font.get(), 5, carets, 4), 3);
    EXPECT_THAT(carets, ElementsAre(-10, 300, 700, -1));
    EXPECT_EQ(FMFontGetLigatureCaretPositions(font.get(), 4, carets, 4), 0);
}

TEST(EditedFonts, HaveFeatures) {
    // Type 1, not exclusive: selectors 2 and 4; type 3, exclusive: selectors 0 and 1, the second
    // of which is on. Names are those of the font itself: 1 is its family, 2 its style.
    const FontBytes features = TableWriter()
                                   .u32({0x00010000})
                                   .u16({2, 0, 0, 0})
                                   .u16({1, 2, 0, 36, 0x0000, 1})
                                   .u16({3, 2, 0, 44, 0xC001, 2})
                                   .u16({2, 1, 4, 2})
                                   .u16({0, 1, 1, 2});
    const auto font = open(EditedFont(kSmallFont).set("feat", features));
    ASSERT_EQ(FMFontGetAATFeaturesCount(font.get()), 2);

    using Lines = std::vector<std::string>;
    Lines lines;
    EXPECT_TRUE(FMFontIterateAATFeatures(
        font.get(),
        [](const FMFeature* feature, void* lines) {
            static_cast<Lines*>(lines)->push_back(std::to_string(feature->type) + " " +
                                                  text(feature->name) +
                                                  (feature->isExclusive ? " exclusive" : ""));
        },
        &lines));
    EXPECT_THAT(lines, ElementsAre("1 Noto Sans Lycian", "3 Regular exclusive"));

    lines.clear();
    const auto addSetting = [](const FMFeatureSetting* setting, void* lines) {
        static_cast<Lines*>(lines)->push_back(std::to_string(setting->selector) + " " +
                                              text(setting->name) +
                                              (setting->isDefault ? " default" : ""));
    };
    EXPECT_TRUE(FMFontIterateAATFeatureSettings(font.get(), 1, addSetting, &lines));
    EXPECT_TRUE(FMFontIterateAATFeatureSettings(font.get(), 3, addSetting, &lines));
    EXPECT_THAT(lines, ElementsAre("2 Noto Sans Lycian", "4 Regular", "0 Noto Sans Lycian",
                                   "1 Regular default"));
    EXPECT_FALSE(FMFontIterateAATFeatureSettings(font.get(), 2, addSetting, &lines));
}

TEST(EditedFonts, DeclareLanguages) {
    const auto meta = [](uint32_t offset, uint32_t length) {
        return TableWriter()
            .u32({1, 0, 0, 2})
            .text("dlng")
            .u32({offset, length})
            .text("slng")
            .u32({40, 17})
            .text("xlc, tr, Lyci, tr-Latn, e!, ");
    };
    const struct {
        const char* what;
        FontBytes table;
        std::vector<std::string> languages;
    } cases[] = {
        {"both lists", meta(40, 7), {"xlc", "tr"}},
        {"scripts and nonsense apart", meta(40, 28), {"xlc", "tr", "tr-Latn"}},
        {"past the end", meta(0xFFFFFFFF, 4), {"xlc", "tr"}},
        {"longer than the table", meta(40, 0xFFFFFFFF), {"xlc", "tr"}},
    };
    for (const auto& [what, table, expected] : cases) {
        const auto font = open(EditedFont(kSmallFont).set("meta", table));
        const auto languages = cf::adopt(FMFontCopySupportedLanguages(font.get()));
        std::vector<std::string> found;
        for (CFIndex i = 0; i < CFArrayGetCount(languages.get()); ++i)
            found.push_back(
                text(static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), i))));
        EXPECT_EQ(found, expected) << what;
    }
}

TEST(EditedFonts, HaveNothingOfGlyphsThatTheyLack) {
    for (const char* const path :
         {kSmallFont, "/usr/share/fonts/type1/urw-base35/NimbusSans-Regular.t1",
          "/usr/share/fonts/opentype/urw-base35/NimbusSans-Regular.otf",
          "/usr/share/fonts/X11/misc/unifont.pcf.gz"}) {
        const auto font = openFont(path);
        const auto beyond = static_cast<CGGlyph>(FMFontGetNumberOfGlyphs(font.get()));
        const CGGlyph glyphs[] = {beyond, 65535};
        CGSize advances[2] = {{1, 1}, {1, 1}};
        CGRect rects[2] = {{{1, 1}, {1, 1}}, {{1, 1}, {1, 1}}};
        EXPECT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), glyphs, advances, 2)) << path;
        EXPECT_TRUE(FMFontGetBoundingRectsForGlyphs(font.get(), glyphs, rects, 2)) << path;
        for (int i = 0; i < 2; ++i) {
            EXPECT_TRUE(CGSizeEqualToSize(advances[i], CGSizeZero)) << path;
            EXPECT_TRUE(CGRectEqualToRect(rects[i], CGRectZero)) << path;
            EXPECT_EQ(FMFontCopyPathForGlyph(font.get(), glyphs[i]), nullptr) << path;
            EXPECT_EQ(FMFontCopyGlyphName(font.get(), glyphs[i]), nullptr) << path;
            EXPECT_EQ(FMFontGetKerningForGlyph(font.get(), glyphs[i], 1), 0) << path;
            EXPECT_EQ(FMFontGetLigatureCaretPositions(font.get(), glyphs[i], nullptr, 9), 0);
        }
        EXPECT_FALSE(FMFontGetAdvancesForGlyphs(font.get(), nullptr, advances, 2));
        EXPECT_FALSE(FMFontGetBoundingRectsForGlyphs(font.get(), glyphs, nullptr, 2));
        EXPECT_EQ(FMFontGetGlyphWithName(font.get(), ""), 0) << path;
        EXPECT_EQ(FMFontGetGlyphWithName(font.get(), std::string(5000, 'x').c_str()), 0) << path;
    }
}
