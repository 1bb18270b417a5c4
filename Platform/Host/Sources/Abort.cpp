// Abort.cpp: the end of a process that found itself in an impossible state.

#include <Host/Host.h>

#include <execinfo.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

// The symbols go straight to the descriptor: memory may be what is broken.
void HostAbortWithBacktrace(void) {
    std::array<void*, 64> frames;
    const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
    backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
    std::abort();
}
