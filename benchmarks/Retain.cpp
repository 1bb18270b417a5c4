// Retain.cpp: a reference taken and given up beside a copy of std::shared_ptr.
//
// The peer counts atomically only once the process has a second thread, and so do we: each pair is
// measured before and after one has started.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <thread>

namespace {

cf::Ref<CFNumberRef> makeObject() {
    const int value = 5;
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &value));
}

// The C library remembers that the process once had a second thread.
void startAnotherThread() {
    std::thread([] {}).join();
}

void retain(benchmark::State& state) {
    const auto object = makeObject();
    for (auto _ : state) {
        CFTypeRef held = CFRetain(object.get());
        benchmark::DoNotOptimize(held);
        CFRelease(held);
    }
}

void copySharedPointer(benchmark::State& state) {
    const auto object = std::make_shared<int>(5);
    for (auto _ : state) {
        std::shared_ptr<int> held = object;
        benchmark::DoNotOptimize(held);
    }
}

void retainThreaded(benchmark::State& state) {
    startAnotherThread();
    retain(state);
}

void copySharedPointerThreaded(benchmark::State& state) {
    startAnotherThread();
    copySharedPointer(state);
}

// Several threads at one object: what the cache line's way between them costs.
void retainContended(benchmark::State& state) {
    static const auto object = makeObject();
    for (auto _ : state) {
        CFTypeRef held = CFRetain(object.get());
        benchmark::DoNotOptimize(held);
        CFRelease(held);
    }
}

void copySharedPointerContended(benchmark::State& state) {
    static const auto object = std::make_shared<int>(5);
    for (auto _ : state) {
        std::shared_ptr<int> held = object;
        benchmark::DoNotOptimize(held);
    }
}

BENCHMARK(retain)->Name("retain/alone");
BENCHMARK(copySharedPointer)->Name("std/alone");
BENCHMARK(retainThreaded)->Name("retain/threaded");
BENCHMARK(copySharedPointerThreaded)->Name("std/threaded");
BENCHMARK(retainContended)->Name("retain/contended")->Threads(2);
BENCHMARK(copySharedPointerContended)->Name("std/contended")->Threads(2);

} // namespace
