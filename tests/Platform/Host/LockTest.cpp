// LockTest.cpp: mutexes of both kinds.

#include <Host/Host.h>

#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

namespace {

TEST(HostMutex, KeepsOthersOut) {
    host::Mutex mutex;
    long count = 0;
    test::onThreads([&](std::size_t) {
        for (int i = 0; i < 5000; ++i) {
            const std::lock_guard hold(mutex);
            ++count;
        }
    });
    EXPECT_EQ(count, 20000);
}

TEST(HostMutex, OnlyTheRecursiveKindLetsItsOwnerInAgain) {
    host::Mutex plain;
    const std::lock_guard holdPlain(plain);
    EXPECT_FALSE(plain.try_lock());

    host::RecursiveMutex recursive;
    const std::lock_guard holdRecursive(recursive);
    EXPECT_TRUE(recursive.try_lock());
    std::thread([&] { EXPECT_FALSE(recursive.try_lock()) << "another thread"; }).join();
    recursive.unlock();
}

} // namespace
