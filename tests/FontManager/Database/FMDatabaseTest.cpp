// FMDatabaseTest.cpp: records to the byte, and what is read back from them.

#include "Databases.h"
#include "Support/FontFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace test;

namespace {

const std::string kVersionKey = "0102";

std::string file(const TemporaryFolder& folder, const Database& database) {
    EXPECT_TRUE(persist(database, folder.path("fonts.db")));
    return folder.path("fonts.db");
}

// The records of a font that a file should hold, of what the font itself answers.
std::map<std::string, std::string> expectedRecords(FMFontRef font, FMFontId id) {
    const std::string idBytes = number(uint64_t(id));
    std::map<std::string, std::string> records;
    const auto addName = [&](const char* kind, CFStringRef name) {
        if (const String owned = cf::adopt(name))
            records[kind + idBytes] = text(owned);
    };
    const auto addNumber = [&](const char* kind, int64_t value) {
        records[kind + idBytes] = number(uint64_t(value));
    };
    addName("0200", FMFontCopyNimbraId(font, true));
    addName("0201", FMFontCopyUniqueId(font, true));
    addName("0202", FMFontCopyPostScriptName(font, true));
    addName("0203", FMFontCopyFullName(font, true));
    addName("0204", FMFontCopyStyleName(font, true));
    addName("0205", FMFontCopyNimbraFamilyName(font, true));
    addName("0213", FMFontCopyDisplayName(font, true));
    const auto location = cf::adopt(FMFontCopyLocationURL(font));
    if (location)
        addName("0206", static_cast<CFStringRef>(CFRetain(CFURLGetString(location.get()))));
    addNumber("0207", FMFontGetFaceIndex(font));
    addNumber("0209", FMFontGetRestrictions(font));
    addNumber("0210", FMFontGetFormat(font));
    addNumber("0211", uint32_t(FMFontGetStringEncoding(font)));
    addNumber("0212", FMFontGetNumberOfGlyphs(font));
    addNumber("0215", FMFontGetPermFlags(font));
    addNumber("0216", 0);
    std::string lower = text(cf::adopt(FMFontCopyNimbraId(font, true)));
    for (char& character : lower)
        character = char(std::tolower(character));
    records["0300" + lower] = number(uint64_t(id));
    return records;
}

void expectSameFont(FMDatabaseRef database, FMFontId id, FMFontRef font) {
    const auto same = [](CFStringRef stored, CFStringRef own) {
        return text(cf::adopt(stored)) == text(cf::adopt(own));
    };
    EXPECT_TRUE(same(FMDatabaseCopyFontNimbraId(database, id), FMFontCopyNimbraId(font, true)));
    EXPECT_TRUE(same(FMDatabaseCopyFontUniqueId(database, id), FMFontCopyUniqueId(font, true)));
    EXPECT_TRUE(
        same(FMDatabaseCopyFontPostScriptName(database, id), FMFontCopyPostScriptName(font, true)));
    EXPECT_TRUE(same(FMDatabaseCopyFontFullName(database, id), FMFontCopyFullName(font, true)));
    EXPECT_TRUE(same(FMDatabaseCopyFontStyleName(database, id), FMFontCopyStyleName(font, true)));
    EXPECT_TRUE(same(FMDatabaseCopyFontNimbraFamilyName(database, id),
                     FMFontCopyNimbraFamilyName(font, true)));
    EXPECT_TRUE(
        same(FMDatabaseCopyFontDisplayName(database, id), FMFontCopyDisplayName(font, true)));
    EXPECT_EQ(FMDatabaseGetFontFaceIndex(database, id), FMFontGetFaceIndex(font));
    EXPECT_EQ(FMDatabaseGetFontRestrictions(database, id), FMFontGetRestrictions(font));
    EXPECT_EQ(FMDatabaseGetFontFormat(database, id), FMFontGetFormat(font));
    EXPECT_EQ(FMDatabaseGetFontStringEncoding(database, id), FMFontGetStringEncoding(font));
    EXPECT_EQ(FMDatabaseGetFontNumberOfGlyphs(database, id), FMFontGetNumberOfGlyphs(font));
    EXPECT_EQ(FMDatabaseGetFontPermFlags(database, id), FMFontGetPermFlags(font));
    FMFontMetrics metrics = *FMFontGetMetrics(font);
    FMFontMetrics stored;
    std::memcpy(&stored, &metrics, sizeof stored);
    EXPECT_TRUE(FMDatabaseGetFontMetrics(database, id, &stored));
    EXPECT_EQ(std::memcmp(&metrics, &stored, sizeof stored), 0);
}

TEST(FMDatabase, FreshOneHoldsItsVersionAlone) {
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    EXPECT_TRUE(FMDatabaseIsInMemory(database.get()));
    EXPECT_TRUE(FMDatabaseIsLatestVersion(database.get()));
    EXPECT_EQ(FMDatabaseGetNextFontId(database.get(), false), 1);
    EXPECT_EQ(FMDatabaseGetFontsCount(database.get()), 0);
    const std::map<std::string, std::string> expected = {{kVersionKey, number(9)}};
    EXPECT_EQ(recordsIn(file(folder, database)), expected);
}

TEST(FMDatabase, KeepsFontsInRecordsOfTheirIds) {
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    std::map<std::string, std::string> expected = {{kVersionKey, number(9)}};
    const char* const paths[] = {kTrueTypeFont, kCompact,   kType1,
                                 kChinese,      kColorFont, kBitmapFont};
    std::vector<Font> fonts;
    for (const char* const path : paths) {
        if (Font font = openFont(path, path == kChinese ? 3 : 0)) {
            EXPECT_FALSE(FMDatabaseHasFont(database.get(), font.get())) << path;
            EXPECT_TRUE(FMDatabaseStoreFont(database.get(), font.get())) << path;
            EXPECT_TRUE(FMDatabaseHasFont(database.get(), font.get())) << path;
            fonts.push_back(std::move(font));
            EXPECT_EQ(FMFontGetFontId(fonts.back().get()), int(fonts.size())) << path;
            expected.merge(expectedRecords(fonts.back().get(), int(fonts.size())));
        }
    }
    ASSERT_GE(fonts.size(), 2u) << "no fonts are installed";
    expected["0100"] = number(fonts.size() + 1);
    const std::string path = file(folder, database);
    auto records = recordsIn(path);
    for (std::size_t id = 1; id <= fonts.size(); ++id) {
        EXPECT_EQ(records["0208" + number(id)].size(), 90u);
        records.erase("0208" + number(id)); // Metrics have a test of their own.
    }
    EXPECT_EQ(records, expected);

    const Database opened = test::open(path);
    for (FMDatabaseRef each : {database.get(), opened.get()})
        for (std::size_t i = 0; i < fonts.size(); ++i)
            expectSameFont(each, int(i) + 1, fonts[i].get());
    EXPECT_FALSE(FMDatabaseIsInMemory(opened.get()));
    EXPECT_EQ(FMDatabaseGetFontsCount(opened.get()), CFIndex(fonts.size()));
}

TEST(FMDatabase, RemembersWhenFontsWithoutAFileWereChanged) {
    std::stringstream bytes;
    bytes << std::ifstream(kTrueTypeFont, std::ios::binary).rdbuf();
    const std::string data = bytes.str();
    const Font font(FMFontCreateFromMemory(data.data(), data.size(), 0, false));
    ASSERT_TRUE(font) << "fonts-dejavu-core is not installed";
    FMFontCacheWindowsIdentifier(font.get(), CFSTR("DejaVu"));
    FMFontSetLastModtime(font.get(), 77);
    const Database database = makeDatabase();
    EXPECT_TRUE(FMDatabaseStoreFont(database.get(), font.get()));
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopyFontWindowsIdentifier(database.get(), 1))), "DejaVu");
    EXPECT_FALSE(cf::adopt(FMDatabaseCopyFontLocation(database.get(), 1)));
    int64_t seconds = 0;
    EXPECT_TRUE(FMDatabaseFetchLastModified(database.get(), CFSTR("dejavu"), &seconds));
    EXPECT_EQ(seconds, 77);
}

TEST(FMDatabase, PacksMetricsInto90Bytes) {
    const FMFontMetrics metrics = {
        .unitsPerEm = 0x01020304,
        .reserved4 = 0xdddddddd,
        .traits = 0x11121314,
        .weight = -2,
        .reserved16 = 0x21222324,
        .ascent = 0x31323334,
        .descent = -0x10,
        .leading = 0x41424344,
        .italicAngle = -0x10000,
        .stemV = 0x51525354,
        .xHeight = 0x61626364,
        .capHeight = 0x71727374,
        .reserved48 = 2400,
        .underlinePosition = -200,
        .underlineThickness = 100,
        .panose = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
        .bbox = {{1, -1}, {2, 0.5f}},
        .heightMultiple = 1.5f,
        .heightMultipleForUIKit = -2,
    };
    // Numbers with their lowest byte first; a float's 1 is 3f 80 00 00.
    const unsigned char expected[90] = {
        0x04, 0x03, 0x02, 0x01, 0x14, 0x13, 0x12, 0x11, 0,    0,    0x80, 0x3f, 0,    0,    0x80,
        0xbf, 0,    0,    0,    0x40, 0,    0,    0,    0x3f, 0xfe, 0xff, 0xff, 0xff, 0x24, 0x23,
        0x22, 0x21, 0x34, 0x33, 0x32, 0x31, 0xf0, 0xff, 0xff, 0xff, 0x44, 0x43, 0x42, 0x41, 0,
        0,    0xff, 0xff, 0x54, 0x53, 0x52, 0x51, 0x64, 0x63, 0x62, 0x61, 0x74, 0x73, 0x72, 0x71,
        0x60, 0x09, 0,    0,    0x38, 0xff, 0xff, 0xff, 0x64, 0,    0,    0,    0,    1,    2,
        3,    4,    5,    6,    7,    8,    9,    0,    0,    0xc0, 0x3f, 0,    0,    0,    0xc0};
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    EXPECT_TRUE(FMDatabaseStoreFontMetrics(database.get(), -5, &metrics));
    FMFontMetrics stored = {.reserved4 = 0xdddddddd}; // Left alone, as it is not stored.
    EXPECT_TRUE(FMDatabaseGetFontMetrics(database.get(), -5, &stored));
    EXPECT_EQ(std::memcmp(&stored, &metrics, sizeof stored), 0);
    const auto records = recordsIn(file(folder, database));
    EXPECT_EQ(records.at("0208" + number(uint64_t(-5))),
              std::string(reinterpret_cast<const char*>(expected), sizeof expected));
}

TEST(FMDatabase, PutsEachKindOfRecordUnderItsKey) {
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    FMDatabaseRef db = database.get();
    const uint32_t values[] = {1, 0x04030201};
    const std::string longName(3000, 'N');
    EXPECT_TRUE(FMDatabaseStoreSystemResourcesToken(db, CFSTR("a token")));
    EXPECT_TRUE(FMDatabaseStoreSerializedPreferredLanguages(db, CFSTR("de,ja")));
    EXPECT_TRUE(FMDatabaseStoreLastModified(db, CFSTR("/Fonts/Ünder.TTF"), -3));
    EXPECT_TRUE(FMDatabaseStoreLastModified(db, string(longName).get(), 5));
    EXPECT_TRUE(FMDatabaseStoreCharmaps(db, -1, values, 2));
    EXPECT_TRUE(FMDatabaseStoreCharmaps(db, 7, nullptr, 0));
    EXPECT_TRUE(FMDatabaseStoreString(db, "0104", -1, string("fönt").get()));
    EXPECT_TRUE(FMDatabaseStoreUInt64(db, "0211", 2, 1));
    EXPECT_TRUE(FMDatabaseStoreUInt64(db, "0211", 2, 0xffffffff)); // In place of the first.
    EXPECT_TRUE(FMDatabaseStoreBytes(db, "0299", 0x01020304, "\0x", 2));
    EXPECT_FALSE(FMDatabaseStoreBytes(db, "029", 1, "x", 1));
    EXPECT_FALSE(FMDatabaseStoreString(db, "0200", 1, nullptr));
    const std::map<std::string, std::string> expected = {
        {kVersionKey, number(9)},
        {"0103", "a token"},
        {"0800", "de,ja"},
        {"0600/fonts/ünder.ttf", number(uint64_t(-3))},
        {"0600" + std::string(3000, 'n'), number(5)},
        {"0217", std::string("\1\0\0\0\1\2\3\4", 8)},
        {"0217" + number(7), ""},
        {"0104", "fönt"},
        {"0211" + number(2), number(0xffffffff)},
        {"0299" + number(0x01020304), std::string("\0x", 2)},
    };
    const std::string path = file(folder, database);
    EXPECT_EQ(recordsIn(path), expected);

    const Database opened = test::open(path);
    int64_t seconds = 0;
    EXPECT_TRUE(FMDatabaseFetchLastModified(opened.get(), CFSTR("/FONTS/üNDER.ttf"), &seconds));
    EXPECT_EQ(seconds, -3);
    EXPECT_EQ(FMDatabaseGetFontStringEncoding(opened.get(), 2), -1);
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopyBaseFontLocation(opened.get()))), "fönt");
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopySystemResourcesToken(opened.get()))), "a token");
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopySerializedPreferredLanguages(opened.get()))), "de,ja");
    uint32_t* copied = nullptr;
    size_t count = 0;
    ASSERT_TRUE(FMDatabaseCopyCharmaps(opened.get(), -1, &copied, &count));
    EXPECT_THAT(std::vector<uint32_t>(copied, copied + count), testing::ElementsAreArray(values));
    free(copied);
}

TEST(FMDatabase, FindsFontsByNimbraIdsInAnyCase) {
    const Database database = makeDatabase();
    const Font font = openFont(kTrueTypeFont);
    ASSERT_TRUE(font) << "fonts-dejavu-core is not installed";
    ASSERT_TRUE(FMDatabaseStoreFont(database.get(), font.get()));
    const String nimbraId = cf::adopt(FMFontCopyNimbraId(font.get(), true));
    const auto shouted = cf::adopt(CFStringCreateMutableCopy(nullptr, 0, nimbraId.get()));
    CFStringUppercase(shouted.get(), nullptr);
    ASSERT_FALSE(CFEqual(shouted.get(), nimbraId.get()));
    FMFontId found = 0;
    EXPECT_TRUE(FMDatabaseLookupFontNimbraId(database.get(), shouted.get(), &found));
    EXPECT_EQ(found, 1);
    EXPECT_TRUE(FMDatabaseHasFontNimbraId(database.get(), shouted.get()));
    EXPECT_FALSE(FMDatabaseLookupFontNimbraId(database.get(), CFSTR("another"), &found));
    EXPECT_EQ(found, 1);
}

TEST(FMDatabase, ReadsBytesOfADataURL) {
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    EXPECT_TRUE(FMDatabaseStoreSystemResourcesToken(database.get(), CFSTR("here")));
    file(folder, database);
    std::string escaped = "data:,";
    for (const char byte : folder.read("fonts.db")) {
        char text[4];
        std::snprintf(text, sizeof text, "%%%02x", static_cast<unsigned char>(byte));
        escaped += text;
    }
    const auto address = cf::adopt(CFURLCreateWithString(nullptr, string(escaped).get(), nullptr));
    const Database opened = cf::adopt(FMDatabaseOpenWithURL(address.get()));
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopySystemResourcesToken(opened.get()))), "here");
    for (const char* const other : {"data:,x", "http://localhost/x", "nothing"}) {
        const auto bad = cf::adopt(CFURLCreateWithString(nullptr, string(other).get(), nullptr));
        EXPECT_EQ(FMDatabaseOpenWithURL(bad.get()), nullptr) << other;
    }
}

TEST(FMDatabaseDeathTest, EndsTheProcessThatStoresWhereNothingCanBe) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    const Database opened = test::open(file(folder, database));
    const std::string path = ".*CoreGraphics/Subprojects/FontManager/Sources/FMDatabase";
    for (FMDatabaseRef db : {database.get(), opened.get()}) {
        EXPECT_DEATH(FMDatabaseStoreSystemResourcesToken(db, CFSTR("late")),
                     "FMDatabaseStoreString: Assertion failed" + path);
        EXPECT_DEATH(FMDatabaseStoreCharmaps(db, 1, nullptr, 0),
                     "FMDatabaseStoreBytes: Assertion failed" + path);
        EXPECT_DEATH(FMDatabaseGetNextFontId(db, true),
                     "FMDatabaseStoreUInt64: Assertion failed" + path);
    }
}

} // namespace
