// DatabaseFontsTest.cpp: fonts that a library's database knows, and what they draw from it.

#include "EditedFont.h"
#include "EveryCall.h"
#include "FontManager/Queries/QueriedFont.h"
#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

using namespace test;

namespace {

using Database = cf::Ref<FMDatabaseRef>;

struct ReleaseLibrary {
    void operator()(FMLibraryRef library) const { FMLibraryRelease(library); }
};
using Library = std::unique_ptr<std::remove_pointer_t<FMLibraryRef>, ReleaseLibrary>;

struct StoredFonts {
    Database database = cf::adopt(FMDatabaseCreateInMemory());
    std::vector<fm::FontRef> originals;
    Library library;

    // `moveTo` is a location to be told instead of where the fonts are.
    explicit StoredFonts(std::initializer_list<std::string> paths, const std::string& moveTo = {}) {
        for (const std::string& path : paths) {
            originals.push_back(openFont(path));
            FMFontRef font = originals.back().get();
            EXPECT_TRUE(FMDatabaseStoreFont(database.get(), font)) << path;
            const auto url = cf::adopt(
                CFStringCreateWithCString(nullptr, moveTo.c_str(), kCFStringEncodingUTF8));
            if (!moveTo.empty())
                FMDatabaseStoreString(database.get(), "0206", FMFontGetFontId(font), url.get());
        }
        library.reset(FMLibraryCreate(nullptr, database.get()));
    }
};

// To the bit, but for the bytes between the classification and the box, which belong to neither.
bool haveTheSameMetrics(const fm::FontRef& font, const fm::FontRef& other) {
    const FMFontMetrics* const a = FMFontGetMetrics(font.get());
    const FMFontMetrics* const b = FMFontGetMetrics(other.get());
    constexpr std::size_t kNumbers = offsetof(FMFontMetrics, panose) + sizeof a->panose;
    constexpr std::size_t kBoxAndMultiples = sizeof *a - offsetof(FMFontMetrics, bbox);
    return std::memcmp(a, b, kNumbers) == 0 &&
           std::memcmp(&a->bbox, &b->bbox, kBoxAndMultiples) == 0;
}

std::string nameOf(const fm::FontRef& font, CopyName copy) {
    return text(cf::adopt(copy(font.get(), false)).get());
}

std::string dataURL(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string url = "data:application/octet-stream,";
    for (const char byte : bytes)
        url += {'%', kDigits[static_cast<uint8_t>(byte) >> 4], kDigits[byte & 0xF]};
    return url;
}

} // namespace

TEST(DatabaseFonts, AnswerAsTheFontsThatWereStoredAndOpenNone) {
    const StoredFonts stored({kSans, "/usr/share/fonts/opentype/urw-base35/C059-BdIta.otf",
                              "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf"});
    for (const fm::FontRef& original : stored.originals) {
        const FMFontId id = FMFontGetFontId(original.get());
        const auto font = fm::FontRef::adopt(FMFontCreateWithFontId(stored.library.get(), id));
        ASSERT_TRUE(font);
        EXPECT_EQ(FMFontGetFontId(font.get()), id);
        for (const CopyName copy :
             {FMFontCopyFullName, FMFontCopyPostScriptName, FMFontCopyUniqueId, FMFontCopyStyleName,
              FMFontCopyNimbraId, FMFontCopyNimbraFamilyName, FMFontCopyDisplayName})
            EXPECT_EQ(nameOf(font, copy), nameOf(original, copy)) << id;
        EXPECT_TRUE(haveTheSameMetrics(font, original)) << id;
        EXPECT_EQ(FMFontGetFormat(font.get()), FMFontGetFormat(original.get()));
        EXPECT_EQ(FMFontGetRestrictions(font.get()), FMFontGetRestrictions(original.get()));
        EXPECT_EQ(FMFontGetStringEncoding(font.get()), FMFontGetStringEncoding(original.get()));
        EXPECT_EQ(FMFontGetNumberOfGlyphs(font.get()), FMFontGetNumberOfGlyphs(original.get()));
        EXPECT_EQ(FMFontGetPermFlags(font.get()), FMFontGetPermFlags(original.get()));
        EXPECT_EQ(FMFontGetFaceIndex(font.get()), FMFontGetFaceIndex(original.get()));
        const auto here = cf::adopt(FMFontCopyLocationURL(font.get()));
        const auto there = cf::adopt(FMFontCopyLocationURL(original.get()));
        EXPECT_TRUE(here && CFEqual(here.get(), there.get()));
        EXPECT_FALSE(FMFontIsActive(font.get())) << "all that is in the database";

        EXPECT_EQ(nameOf(font, FMFontCopyDesigner), nameOf(original, FMFontCopyDesigner));
        EXPECT_TRUE(FMFontIsActive(font.get())) << "designers are not";
    }
}

TEST(DatabaseFonts, OpenWhereverTheirURLLeads) {
    const std::string bitmap = bitmapFont("My Font", "Bold");
    const struct {
        const char* what;
        std::string url;
        std::string family;
    } cases[] = {
        {"bytes in the URL", dataURL(bitmap), "My Font"},
        {"a file", "file:///usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
         "DejaVu Sans Mono"},
        {"no file", "file:///nowhere", "(none)"},
        {"a scheme that nobody knows", "dream:font", "(none)"},
    };
    for (const auto& [what, url, family] : cases) {
        const CollectedLog log;
        const StoredFonts stored({kSans}, url);
        const auto font = fm::FontRef::adopt(FMFontCreateWithFontId(stored.library.get(), 1));
        EXPECT_EQ(nameOf(font, FMFontCopyFamilyName), family) << what;
        EXPECT_EQ(nameOf(font, FMFontCopyFullName), "DejaVu Sans") << what;
        FMFontPurge(font.get());
        EXPECT_EQ(nameOf(font, FMFontCopyFamilyName), family) << what;
    }
}

TEST(DatabaseFontsDeathTest, EndTheProcessWithoutMeasures) {
    const StoredFonts stored({kSans});
    EXPECT_DEATH(FMFontCreateWithFontId(stored.library.get(), 99),
                 "FMFontCreateWithFontId.*Assertion failed "
                 "CoreGraphics/Subprojects/FontManager/Sources/FMFont");
    EXPECT_FALSE(FMFontCreateWithFontId(stored.library.get(), 0));
    EXPECT_FALSE(FMFontCreateWithFontId(nullptr, 1));
}

TEST(LastResortFont, DefersToTheLibrarysDefaultFont) {
    // Of 1,000 units, so that advances must be brought to the other's 2,048.
    EditedFont edited;
    putBigEndian(edited.tables["head"], 18, 1000, 2);
    const auto name = [](uint32_t id) { return NameRecord{3, 1, 0x409, id, utf16("nimbra_sans")}; };
    edited.tables["name"] = nameTable({name(1), name(4), name(6)});
    const TemporaryFolder folder;
    const StoredFonts stored({folder.write("sans.ttf", edited.bytes())});
    const auto font = fm::FontRef::adopt(FMLibraryCopyLastResortFont(stored.library.get()));
    const auto standIn = fm::FontRef::adopt(FMLibraryCopyDefaultFont(stored.library.get()));
    ASSERT_TRUE(font && standIn);
    const UniChar letter = 'A';
    CGGlyph glyph = 0;
    EXPECT_TRUE(FMFontGetGlyphsForCharactersBijectively(font.get(), &letter, &glyph, 1));
    CGSize ours, theirs;
    ASSERT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), &glyph, &ours, 1));
    ASSERT_TRUE(FMFontGetAdvancesForGlyphs(standIn.get(), &glyph, &theirs, 1));
    EXPECT_EQ(theirs.width, 1401);
    EXPECT_FLOAT_EQ(ours.width, theirs.width * 2.048f);
}
