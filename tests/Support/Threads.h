// Threads.h: work on several threads at once, for tests that the thread sanitizer watches.
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace test {

inline constexpr std::size_t kThreads = 4;

// Runs `work(number of the thread)` on threads that all start together; back when all are done.
template <typename Work>
void onThreads(Work work) {
    std::atomic<std::size_t> waiting = kThreads;
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < kThreads; ++number)
        threads.emplace_back([&, number] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            work(number);
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace test
