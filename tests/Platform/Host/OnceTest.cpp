// OnceTest.cpp: the once-only guard under many threads.

#include <Host/Host.h>

#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

TEST(HostOnce, RunsOnceAndEverybodySeesItsEffects) {
    for (int round = 0; round < 200; ++round) {
        HostOnce once = HOST_ONCE_INIT;
        int value = 0; // Not atomic: the guard must order it.
        std::atomic<int> wrong = 0;
        test::onThreads([&](std::size_t) {
            HostOnceRun(
                &once,
                [](void* value) {
                    std::this_thread::yield();
                    ++*static_cast<int*>(value);
                },
                &value);
            wrong += value == 1 ? 0 : 1;
        });
        ASSERT_EQ(wrong, 0);
        ASSERT_EQ(value, 1);
    }
}

TEST(HostOnce, TakesNull) {
    HostOnce once = HOST_ONCE_INIT;
    HostOnceRun(&once, nullptr, nullptr);
    HostOnceRun(
        nullptr, [](void*) { FAIL(); }, nullptr);
    int calls = 0;
    HostOnceRun(
        &once, [](void* calls) { ++*static_cast<int*>(calls); }, &calls);
    EXPECT_EQ(calls, 1) << "nothing ran before";
}

} // namespace
