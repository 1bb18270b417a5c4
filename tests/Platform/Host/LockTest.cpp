// LockTest.cpp: mutexes of both kinds.

#include <Host/Host.h>

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace {

TEST(HostMutex, KeepsOthersOut) {
    host::Mutex mutex;
    long count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 5000; ++j) {
                const std::lock_guard hold(mutex);
                ++count;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
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

TEST(HostMutex, TakesNull) {
    EXPECT_FALSE(HostMutexInitialize(nullptr, kHostMutexPlain));
    EXPECT_FALSE(HostMutexTryLock(nullptr));
    HostMutexLock(nullptr);
    HostMutexUnlock(nullptr);
    HostMutexDestroy(nullptr);
}

} // namespace
