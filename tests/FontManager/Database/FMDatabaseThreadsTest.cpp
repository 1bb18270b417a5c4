// FMDatabaseThreadsTest.cpp: one database under many threads.

#include "Databases.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <set>

using namespace test;

namespace {

TEST(FMDatabaseThreads, GiveEachIdOnceAndReadWhatOthersStored) {
    constexpr int kEach = 200;
    const TemporaryFolder folder;
    const Database database = makeDatabase();
    std::vector<std::vector<int64_t>> ids(kThreads);
    onThreads([&](std::size_t number) {
        for (int i = 0; i < kEach; ++i) {
            const int64_t id = FMDatabaseGetNextFontId(database.get(), true);
            ids[number].push_back(id);
            FMDatabaseStoreString(database.get(), "0203", FMFontId(id),
                                  string(std::to_string(id)).get());
            text(cf::adopt(FMDatabaseCopyFontFullName(database.get(), FMFontId(id / 2))));
        }
    });
    std::set<int64_t> all;
    for (const auto& own : ids)
        all.insert(own.begin(), own.end());
    EXPECT_EQ(all.size(), kThreads * kEach);
    EXPECT_EQ(*all.rbegin(), int64_t(kThreads * kEach));

    ASSERT_TRUE(persist(database, folder.path("fonts.db")));
    const Database opened = test::open(folder.path("fonts.db"));
    onThreads([&](std::size_t) {
        for (const int64_t id : all)
            EXPECT_EQ(text(cf::adopt(FMDatabaseCopyFontFullName(opened.get(), FMFontId(id)))),
                      std::to_string(id));
    });
}

} // namespace
