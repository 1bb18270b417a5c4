// FMLock.cpp: the lock that serialises work across the whole font manager.

#include <FontManager/FMBase.h>

#include "Font/Locks.h"

namespace {

// Never destroyed: background tasks may hold it while the process ends.
fm::RecursiveMutex& globalMutex() {
    static auto& mutex = *new fm::RecursiveMutex;
    return mutex;
}

} // namespace

void FMLock() {
    globalMutex().lock();
}

void FMUnlock() {
    globalMutex().unlock();
}
