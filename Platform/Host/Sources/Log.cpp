// Log.cpp: levelled messages to stderr or to a sink.

#include <Host/Host.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kUnread = -1;

constinit std::atomic<int> threshold = kUnread;

// Guards the two below it; never held while a sink runs, so that a sink may log.
pthread_mutex_t sinkMutex = PTHREAD_MUTEX_INITIALIZER;
HostLogSink sink = nullptr;
void* sinkContext = nullptr;

int readThreshold() {
    const int fromEnvironment = HostOptionReadInteger("NIMBRA_LOG_LEVEL", kHostLogError);
    int expected = kUnread;
    // Whoever sets the threshold meanwhile wins.
    threshold.compare_exchange_strong(expected, std::max(0, fromEnvironment));
    return threshold.load(std::memory_order_relaxed);
}

void print(HostLogLevel level, const char* category, const char* function, const char* text) {
    HostMutexLock(&sinkMutex);
    const HostLogSink currentSink = sink;
    void* const context = sinkContext;
    HostMutexUnlock(&sinkMutex);

    if (currentSink)
        currentSink(level, category, function, text, context);
    else
        std::fprintf(stderr, "[%d] %s %s: %s\n", static_cast<int>(level), category, function, text);
}

struct Free {
    void operator()(char* text) const { std::free(text); }
};

} // namespace

bool HostLogIsEnabled(HostLogLevel level) {
    const int current = threshold.load(std::memory_order_relaxed);
    return level <= kHostLogFault || level <= (current == kUnread ? readThreshold() : current);
}

void HostLogSetThreshold(HostLogLevel level) {
    threshold.store(std::max(0, static_cast<int>(level)), std::memory_order_relaxed);
}

void HostLogSetSink(HostLogSink newSink, void* context) {
    HostMutexLock(&sinkMutex);
    sink = newSink;
    sinkContext = context;
    HostMutexUnlock(&sinkMutex);
}

void HostLogText(HostLogLevel level, const char* category, const char* function, const char* text) {
    if (HostLogIsEnabled(level))
        print(level, category ? category : "", function ? function : "", text ? text : "");
    if (level <= kHostLogFault)
        HostAbortWithBacktrace();
}

void HostLog(HostLogLevel level, const char* category, const char* function, const char* format,
             ...) {
    if (!format || !HostLogIsEnabled(level))
        return HostLogText(level, category, function, format);

    std::array<char, 512> small;
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(small.data(), small.size(), format, arguments);
    va_end(arguments);

    // Without memory for a long text its beginning has to do.
    std::unique_ptr<char, Free> large;
    if (length >= static_cast<int>(small.size())) {
        const std::size_t size = static_cast<std::size_t>(length) + 1;
        large.reset(static_cast<char*>(std::malloc(size)));
        if (large)
            std::vsnprintf(large.get(), size, format, again);
    }
    va_end(again);
    HostLogText(level, category, function,
                large        ? large.get()
                : length < 0 ? format
                             : small.data());
}
