// TasksTest.cpp: background tasks, their end and the process's.

#include <Host/Host.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

TEST(HostTask, EveryTaskRunsOnceBeforeTheWaitEnds) {
    std::atomic<int> runs = 0;
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 100; ++i)
            ASSERT_TRUE(
                HostTaskSubmit([](void* runs) { ++*static_cast<std::atomic<int>*>(runs); }, &runs));
        HostTaskWaitForAll();
        ASSERT_EQ(runs, (round + 1) * 100);
    }
}

TEST(HostTask, RunsElsewhere) {
    static std::atomic<bool> elsewhere;
    static const std::thread::id here = std::this_thread::get_id();
    ASSERT_TRUE(
        HostTaskSubmit([](void*) { elsewhere = std::this_thread::get_id() != here; }, nullptr));
    HostTaskWaitForAll();
    EXPECT_TRUE(elsewhere);
}

TEST(HostTask, MaySubmitMore) {
    static std::atomic<int> runs = 0;
    const auto submit = [](void*) {
        HostTaskSubmit([](void*) { ++runs; }, nullptr);
        ++runs;
    };
    ASSERT_TRUE(HostTaskSubmit(submit, nullptr));
    HostTaskWaitForAll();
    EXPECT_EQ(runs, 2) << "a task submitted by a running one counts as submitted before its end";
}

TEST(HostTask, RefusesNothingToRun) {
    EXPECT_FALSE(HostTaskSubmit(nullptr, nullptr));
}

// In a process of its own: the first task is still running when exit begins, the rest never start.
TEST(HostTaskDeathTest, ExitWaitsForTheRunningTasksAndDropsTheRest) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static std::atomic<int> started = 0;
            for (int i = 0; i < 1000; ++i)
                HostTaskSubmit(
                    [](void*) {
                        ++started;
                        usleep(20000);
                        if (started < 1000)
                            dprintf(STDERR_FILENO, "ended\n");
                    },
                    nullptr);
            while (started == 0)
                std::this_thread::yield();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "ended");
}

} // namespace
