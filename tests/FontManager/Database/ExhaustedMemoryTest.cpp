// ExhaustedMemoryTest.cpp: databases that get no memory, at one allocation after another.

#include "Databases.h"
#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

// What a run shows that must never be: a record that is lost without a word.
struct Losses {
    int lostRecords = 0;
    int brokenFiles = 0;
    int whole = 0;
};

FailureSweep sweepMaking(const cf::Ref<CFURLRef>& file, Losses& losses) {
    const String name = string("Ünique " + std::string(300, 'n'));
    const uint32_t map[] = {1, 2};
    return failEachAllocation([&] {
        const Database made = cf::adopt(FMDatabaseCreateInMemory());
        bool isStored = made != nullptr;
        isStored = isStored && FMDatabaseGetNextFontId(made.get(), true) == 1;
        isStored = isStored && FMDatabaseStoreString(made.get(), "0203", 1, name.get());
        isStored = isStored && FMDatabaseStoreLastModified(made.get(), name.get(), 7);
        isStored = isStored && FMDatabaseStoreCharmaps(made.get(), 1, map, 2);
        int64_t seconds = 0;
        if (isStored && FMDatabaseFetchLastModified(made.get(), name.get(), &seconds))
            losses.lostRecords += seconds != 7;
        // A database that lacks a record must not become the one that later runs believe.
        const bool isWritten = made && FMDatabasePersistToDisk(made.get(), file.get());
        losses.lostRecords += isWritten && !isStored;
        const Database read = cf::adopt(FMDatabaseOpenWithURL(file.get()));
        const String stored = cf::adopt(FMDatabaseCopyFontFullName(read.get(), 1));
        losses.brokenFiles += read && !FMDatabaseIsLatestVersion(read.get());
        losses.whole += isWritten && stored && CFEqual(stored.get(), name.get());
    });
}

TEST(ExhaustedMemory, NeverLosesARecordSilently) {
    const TemporaryFolder folder;
    const auto file = url(folder.path("fonts.db"));
    Losses losses;
    const FailureSweep sweep = sweepMaking(file, losses);
    EXPECT_GT(sweep.failures, 5u);
    EXPECT_EQ(sweep.leakedBytes, 0);
    EXPECT_EQ(losses.lostRecords, 0);
    EXPECT_EQ(losses.brokenFiles, 0);
    EXPECT_GT(losses.whole, 0);
}

} // namespace
