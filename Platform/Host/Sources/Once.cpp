// Once.cpp: the once-only guard.

#include <Host/Host.h>

#include <atomic>

namespace {

enum State : uint32_t { kUntouched = 0, kRunning, kDone };

} // namespace

void HostOnceRun(HostOnce* once, void (*function)(void* context), void* context) {
    if (!once || !function)
        return;
    const std::atomic_ref<uint32_t> state(once->state);
    uint32_t seen = state.load(std::memory_order_acquire);
    if (seen == kDone) [[likely]]
        return;

    seen = kUntouched;
    if (state.compare_exchange_strong(seen, kRunning, std::memory_order_acquire)) {
        function(context);
        state.store(kDone, std::memory_order_release);
        state.notify_all();
        return;
    }
    while (seen != kDone) {
        state.wait(kRunning, std::memory_order_acquire);
        seen = state.load(std::memory_order_acquire);
    }
}
