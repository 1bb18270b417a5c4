// DamagedDatabasesTest.cpp: files that are not what a database wrote.

#include "Databases.h"
#include "Support/CollectedLog.h"
#include "Support/FontFiles.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

// Asks a database everything that it can be asked of fonts, and of itself.
void readAll(FMDatabaseRef database) {
    FMDatabaseIsLatestVersion(database);
    FMDatabaseFetchLastModified(database, CFSTR("/a"), nullptr);
    text(cf::adopt(FMDatabaseCopySystemResourcesToken(database)));
    text(cf::adopt(FMDatabaseCopySerializedPreferredLanguages(database)));
    const CFIndex count = FMDatabaseGetFontsCount(database);
    EXPECT_LE(count, 100) << "more fonts than records";
    for (FMFontId id = -1; id <= 2; ++id) {
        FMFontMetrics metrics;
        FMDatabaseGetFontMetrics(database, id, &metrics);
        FMDatabaseGetFontFormat(database, id);
        FMDatabaseGetFontNumberOfGlyphs(database, id);
        const String nimbraId = cf::adopt(FMDatabaseCopyFontNimbraId(database, id));
        FMDatabaseHasFontNimbraId(database, nimbraId.get());
        text(cf::adopt(FMDatabaseCopyFontLocation(database, id)));
        text(cf::adopt(FMDatabaseCopyFontFullName(database, id)));
        uint32_t* values = nullptr;
        size_t size = 0;
        FMDatabaseCopyCharmaps(database, id, &values, &size);
        free(values);
    }
    FMDatabasePrint(database);
}

std::string bytesOfADatabase(const TemporaryFolder& folder) {
    const Database database = makeDatabase();
    const uint32_t values[] = {1, 2, 3};
    if (const Font font = openFont(kTrueTypeFont)) {
        EXPECT_TRUE(FMDatabaseStoreFont(database.get(), font.get()));
    }
    EXPECT_TRUE(FMDatabaseStoreCharmaps(database.get(), -1, values, 3));
    EXPECT_TRUE(FMDatabaseStoreLastModified(database.get(), CFSTR("/a"), 1));
    EXPECT_TRUE(persist(database, folder.path("fonts.db")));
    return folder.read("fonts.db");
}

TEST(DamagedDatabases, AreRefusedWhenTheyAreCutOff) {
    const TemporaryFolder folder;
    const std::string bytes = bytesOfADatabase(folder);
    EXPECT_TRUE(test::open(folder.path("fonts.db")));
    const std::string path = folder.write("cut.db", bytes);
    for (std::size_t size = bytes.size(); size-- > 0;) {
        ASSERT_EQ(truncate(path.c_str(), off_t(size)), 0);
        EXPECT_FALSE(test::open(path)) << size;
    }
    EXPECT_FALSE(test::open(folder.path()));
    EXPECT_FALSE(test::open(folder.path("none.db")));
}

TEST(DamagedDatabases, ReadAsSomethingWhateverBitsAreFlipped) {
    const TemporaryFolder folder;
    const std::string bytes = bytesOfADatabase(folder);
    // So that the listing, too, goes over all that is there.
    const CollectedLog log;
    HostLogSetThreshold(kHostLogDebug);
    const std::string path = folder.write("flipped.db", bytes);
    const host::Descriptor file(::open(path.c_str(), O_WRONLY));
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const char flipped = char(bytes[at] ^ (at % 3 == 0 ? 0xff : 1 << at % 8));
        ASSERT_EQ(pwrite(file.get(), &flipped, 1, off_t(at)), 1);
        readAll(test::open(path).get());
        ASSERT_EQ(pwrite(file.get(), &bytes[at], 1, off_t(at)), 1);
    }
    EXPECT_FALSE(log.lines().empty());
}

TEST(DamagedDatabases, LackWhatHasAnotherSizeThanItShould) {
    const Database database = makeDatabase();
    FMDatabaseRef db = database.get();
    const char bytes[100] = "\xff\xff\xff\xff\xff\xff\xff\x7f";
    const struct {
        const char* kind;
        size_t size;
        bool (*isAbsent)(FMDatabaseRef);
    } cases[] = {
        {"0100", 4, [](FMDatabaseRef db) { return FMDatabaseGetNextFontId(db, false) == 1; }},
        {"0102", 0, [](FMDatabaseRef db) { return !FMDatabaseIsLatestVersion(db); }},
        {"0102", 4, [](FMDatabaseRef db) { return !FMDatabaseIsLatestVersion(db); }},
        {"0103", 1, // A byte that begins no character.
         [](FMDatabaseRef db) { return !cf::adopt(FMDatabaseCopySystemResourcesToken(db)); }},
        {"0217", 10,
         [](FMDatabaseRef db) {
             uint32_t* values = nullptr;
             size_t count = 1;
             return !FMDatabaseCopyCharmaps(db, -1, &values, &count) && !values && count == 0;
         }},
        {"0208", 89,
         [](FMDatabaseRef db) {
             FMFontMetrics metrics;
             return !FMDatabaseGetFontMetrics(db, -1, &metrics);
         }},
        {"0212", 9, [](FMDatabaseRef db) { return FMDatabaseGetFontNumberOfGlyphs(db, -1) == 0; }},
    };
    for (const auto& [kind, size, isAbsent] : cases) {
        EXPECT_TRUE(FMDatabaseStoreBytes(db, kind, -1, bytes, size));
        EXPECT_TRUE(isAbsent(db)) << kind << " of " << size;
    }
}

TEST(DamagedDatabases, AreOfAnotherVersionOrOfNoFonts) {
    const TemporaryFolder folder;
    for (const uint64_t version : {uint64_t{8}, uint64_t{10}, uint64_t{9} << 32}) {
        const Database database = makeDatabase();
        EXPECT_TRUE(FMDatabaseStoreUInt64(database.get(), "0102", -1, version));
        EXPECT_TRUE(persist(database, folder.path("fonts.db")));
        EXPECT_FALSE(FMDatabaseIsLatestVersion(test::open(folder.path("fonts.db")).get()));
    }
    // A walk over all fonts must not take forever: no file holds fewer records than fonts.
    for (const uint64_t next : {uint64_t{0}, uint64_t{1000}, ~uint64_t{0}}) {
        const Database database = makeDatabase();
        EXPECT_TRUE(FMDatabaseStoreUInt64(database.get(), "0100", -1, next));
        EXPECT_TRUE(persist(database, folder.path("fonts.db")));
        EXPECT_EQ(FMDatabaseGetFontsCount(test::open(folder.path("fonts.db")).get()), 0) << next;
    }
}

} // namespace
