// Locks.h: the font manager's locks, as C++ knows them.
#pragma once

#include <FontManager/FMBase.h>
#include <Host/Host.h>

#include <mutex>

namespace fm {

// Fit for std::lock_guard. Memory that a host lacks for its locks is not to be had elsewhere
// either.
class RecursiveMutex {
public:
    RecursiveMutex() {
        if (!HostMutexInitialize(&mutex_, kHostMutexRecursive))
            HostAbortWithBacktrace();
    }
    ~RecursiveMutex() { HostMutexDestroy(&mutex_); }
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;

    void lock() { HostMutexLock(&mutex_); }
    void unlock() { HostMutexUnlock(&mutex_); }

private:
    HostMutex mutex_;
};

// The lock of FMLock, for a scope.
struct GlobalLock {
    GlobalLock() { FMLock(); }
    ~GlobalLock() { FMUnlock(); }
    GlobalLock(const GlobalLock&) = delete;
    GlobalLock& operator=(const GlobalLock&) = delete;
};

} // namespace fm
