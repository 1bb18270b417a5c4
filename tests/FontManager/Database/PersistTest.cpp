// PersistTest.cpp: databases on disk, whoever writes them and whenever he is killed.

#include "Databases.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <thread>

using namespace test;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kNames = 3000;

// Under the address sanitizer a process takes long to come into being.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kKills = 200;
#elif defined(__has_feature)
constexpr int kKills = __has_feature(address_sanitizer) ? 200 : 1000;
#else
constexpr int kKills = 1000;
#endif

std::string nameOf(int generation, int index) {
    return std::to_string(generation) + " of " + std::to_string(index);
}

// A database that takes many writes, in which every record tells its generation.
Database makeGeneration(int generation) {
    const Database database = makeDatabase();
    for (int i = 0; i < kNames; ++i)
        FMDatabaseStoreString(database.get(), "0203", i + 1, string(nameOf(generation, i)).get());
    FMDatabaseStoreUInt64(database.get(), "0100", -1, kNames + 1);
    FMDatabaseStoreUInt64(database.get(), "0212", 1, uint64_t(generation));
    return database;
}

// The generation of a database that is whole; -1 for any other.
int generationIn(const std::string& path) {
    const Database database = test::open(path);
    if (FMDatabaseGetFontsCount(database.get()) != kNames)
        return -1;
    const int generation = int(FMDatabaseGetFontNumberOfGlyphs(database.get(), 1));
    for (int i = 0; i < kNames; ++i)
        if (text(cf::adopt(FMDatabaseCopyFontFullName(database.get(), i + 1))) !=
            nameOf(generation, i))
            return -1;
    return generation;
}

template <typename Work>
pid_t inProcess(Work work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work() ? 0 : 1);
    return child;
}

bool hasSucceeded(pid_t child) {
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(Persist, ReplacesTheFileAndLeavesReadersTheirs) {
    const TemporaryFolder folder;
    const std::string path = folder.path("fonts.db");
    const mode_t mask = umask(027);
    EXPECT_TRUE(persist(makeGeneration(1), path));
    umask(mask);
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    const Database old = test::open(path);
    EXPECT_TRUE(persist(makeGeneration(2), path));
    EXPECT_EQ(text(cf::adopt(FMDatabaseCopyFontFullName(old.get(), 3))), nameOf(1, 2));
    EXPECT_EQ(generationIn(path), 2);
    EXPECT_FALSE(folder.has("fonts.db.tmp"));
}

TEST(Persist, LeavesTheOldFileWhenItFails) {
    const TemporaryFolder folder;
    const std::string path = folder.path("fonts.db");
    EXPECT_TRUE(persist(makeGeneration(1), path));
    EXPECT_FALSE(persist(test::open(path), path)); // What was opened is on disk already.
    EXPECT_FALSE(persist(makeGeneration(2), folder.path("missing/fonts.db")));
    ASSERT_EQ(mkdir(folder.path("fonts.db.tmp").c_str(), 0700), 0);
    EXPECT_FALSE(persist(makeGeneration(2), path));
    ASSERT_EQ(rmdir(folder.path("fonts.db.tmp").c_str()), 0);
    ASSERT_EQ(mkfifo(folder.path("fonts.db.tmp").c_str(), 0600), 0);
    EXPECT_FALSE(persist(makeGeneration(2), path));
    EXPECT_EQ(generationIn(path), 1);
    // Another try may do: the leftovers of a writer that died are used again.
    std::filesystem::remove(folder.path("fonts.db.tmp"));
    folder.write("fonts.db.tmp", std::string(1 << 20, 'x'));
    EXPECT_TRUE(persist(makeGeneration(3), path));
    EXPECT_EQ(generationIn(path), 3);
}

TEST(Persist, LeavesTheOldDatabaseOrTheNewOneWheneverItIsKilled) {
    const TemporaryFolder folder;
    const std::string path = folder.path("fonts.db");
    const auto start = Clock::now();
    ASSERT_TRUE(persist(makeGeneration(0), path));
    const auto start2 = Clock::now();
    ASSERT_TRUE(persist(makeGeneration(0), path));
    const auto longest = (Clock::now() - start2 + (start2 - start)) / 2;
    const Database generations[] = {makeGeneration(0), makeGeneration(1)};

    std::mt19937 random(1);
    int current = 0, stayed = 0, changed = 0, unfinished = 0;
    for (int round = 0; round < kKills; ++round) {
        const int next = 1 - current;
        const pid_t child = inProcess([&] { return persist(generations[next], path); });
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(longest * (random() % 1000) / 1000);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const int found = generationIn(path);
        ASSERT_TRUE(found == current || found == next) << round << ": " << found;
        ++(found == current ? stayed : changed);
        unfinished += folder.has("fonts.db.tmp");
        current = found;
    }
    // Kills that come before all writing, or after it, would show nothing.
    EXPECT_GT(unfinished, kKills / 50);
    EXPECT_GT(stayed, kKills / 50);
    EXPECT_GT(changed, kKills / 50);
}

TEST(Persist, IsWholeWhileSeveralProcessesWrite) {
    const TemporaryFolder folder;
    const std::string path = folder.path("fonts.db");
    ASSERT_TRUE(persist(makeGeneration(0), path));
    std::vector<pid_t> children;
    for (int generation = 1; generation <= 3; ++generation) {
        const Database database = makeGeneration(generation);
        children.push_back(inProcess([&] {
            bool isDone = true;
            for (int round = 0; round < 30; ++round)
                isDone = persist(database, path) && isDone;
            return isDone;
        }));
    }
    for (int look = 0; look < 30; ++look)
        EXPECT_GE(generationIn(path), 0) << look;
    for (const pid_t child : children)
        EXPECT_TRUE(hasSucceeded(child));
    EXPECT_GT(generationIn(path), 0);
}

} // namespace
