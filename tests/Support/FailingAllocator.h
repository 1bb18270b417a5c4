// FailingAllocator.h: what a piece of code allocates, and what it does when it gets nothing.
//
// Link Support/FailingAllocator.cpp into a test program: it takes the place of malloc and its
// family for the program and all libraries in it (operator new goes through malloc). Counts and
// failures are the calling thread's own, so that other threads do not disturb them.
//
// Under a sanitizer malloc is the sanitizer's. Memory is then counted through its hooks, and
// failures are injected one level up, through the thread's default CFAllocator: allocations made
// by malloc directly do not fail there.
#pragma once

#include <cstddef>

namespace test {

// Whether failures reach every allocation, rather than CFAllocator's alone.
bool allAllocationsCanFail();

// Counts from its construction on. What an allocator adds for alignment counts as allocated.
class AllocationMeter {
public:
    AllocationMeter();

    // How many blocks were asked for and given, resized ones included.
    std::size_t allocations() const;
    // The bytes allocated less those freed; negative when more was freed.
    std::ptrdiff_t liveBytes() const;

private:
    std::size_t allocationsBefore_;
    std::ptrdiff_t liveBytesBefore_;
};

// While it lives, the calling thread's `number`-th allocation (counted from 1) fails.
class AllocationFailure {
public:
    explicit AllocationFailure(std::size_t number);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // Whether there were so many allocations.
    bool happened() const;
};

// What became of an operation that was run with each of its allocations failing in turn.
struct FailureSweep {
    std::size_t failures = 0;       // How many allocations it has: each failed once.
    std::ptrdiff_t leakedBytes = 0; // Memory not given back, over all runs; 0 when all is well.
};

// One pass of failEachAllocation.
template <typename Operation>
FailureSweep sweepOnce(Operation& operation) {
    FailureSweep sweep;
    for (bool happened = true; happened;) {
        const AllocationMeter meter;
        {
            const AllocationFailure failure(sweep.failures + 1);
            operation();
            happened = failure.happened();
        }
        sweep.leakedBytes += meter.liveBytes();
        sweep.failures += happened ? 1 : 0;
    }
    return sweep;
}

// Runs `operation` with its first allocation failing, then its second, and so on, until it runs
// through. It must give back what it made. A whole pass goes before the one that counts: it makes
// what is made only once, on the ways that failures take, too. The operation must use no test
// assertions, which allocate: it notes what it sees in plain variables.
template <typename Operation>
FailureSweep failEachAllocation(Operation operation) {
    sweepOnce(operation);
    return sweepOnce(operation);
}

} // namespace test
