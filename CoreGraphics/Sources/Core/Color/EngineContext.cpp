// EngineContext.cpp: the context of Little CMS that all our profiles and transforms belong to.

#include "Core/Color/EngineContext.h"

#include <Host/Host.h>

#include "Core/Color/EngineMemory.h"

#include <lcms2_plugin.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <new>

namespace cg {

namespace {

// Profiles share a few locks in turn. The engine holds one profile's while it reads a tag of that
// profile and takes no other's meanwhile, so that sharing cannot deadlock; recursive, lest reading
// one profile within another's tag ever does.
constexpr std::size_t kLocks = 16;

void* lendLock(cmsContext) {
    using Locks = std::array<host::RecursiveMutex, kLocks>;
    alignas(Locks) static std::byte memory[sizeof(Locks)];
    static Locks* const locks = ::new (static_cast<void*>(memory)) Locks;
    static constinit std::atomic<std::size_t> next = 0;
    return &(*locks)[next.fetch_add(1, std::memory_order_relaxed) % kLocks];
}

void giveLockBack(cmsContext, void*) {}

cmsBool lock(cmsContext, void* mutex) {
    static_cast<host::RecursiveMutex*>(mutex)->lock();
    return true;
}

void unlock(cmsContext, void* mutex) {
    static_cast<host::RecursiveMutex*>(mutex)->unlock();
}

} // namespace

cmsContext engineContext() {
    // Not a function's own static: what failed for want of memory is tried again.
    static constinit std::atomic<cmsContext> shared = nullptr;
    if (const cmsContext made = shared.load(std::memory_order_acquire))
        return made;
    cmsPluginMutex plugin = {{cmsPluginMagicNumber, 2060, cmsPluginMutexSig, nullptr},
                             lendLock,
                             giveLockBack,
                             lock,
                             unlock};
    cmsPluginMemHandler memory = engineMemoryPlugin(&plugin.base);
    const cmsContext mine = cmsCreateContext(&memory, nullptr);
    cmsContext first = nullptr;
    if (!mine || shared.compare_exchange_strong(first, mine))
        return mine;
    cmsDeleteContext(mine);
    return first;
}

} // namespace cg
