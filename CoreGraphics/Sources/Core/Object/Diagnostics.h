// Diagnostics.h: log lines, and the two ways in which a programming error ends the process.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <Host/Host.h>

namespace cg {

// Logs a format in which "%@" stands for an object. The level has been tested by the macros below.
void logMessage(HostLogLevel level, const char* function, const char* format, ...);

// Logs a fault, which aborts with a backtrace.
[[noreturn]] void bug(const char* function, const char* file, int line);
[[noreturn]] void notYetImplemented(const char* function, const char* file, int line);

} // namespace cg

// The level is tested before the message is formed. Cast every argument to the type that its
// conversion prints.
#define CG_LOG_AS(level, function, ...)                                                            \
    do {                                                                                           \
        if (HostLogIsEnabled(level))                                                               \
            cg::logMessage(level, function, __VA_ARGS__);                                          \
    } while (false)

#define CG_LOG(level, ...) CG_LOG_AS(level, __func__, __VA_ARGS__)

#define CG_LOG_ERROR(...) CG_LOG(kHostLogError, __VA_ARGS__)
#define CG_LOG_WARNING(...) CG_LOG(kHostLogWarning, __VA_ARGS__)

// For what cannot happen, never for a caller's mistake.
#define CG_BUG_UNLESS(condition)                                                                   \
    do {                                                                                           \
        if (!(condition)) [[unlikely]]                                                             \
            cg::bug(__func__, __FILE__, __LINE__);                                                 \
    } while (false)

// For entry points that are declared but not implemented.
#define CG_NOT_YET_IMPLEMENTED() cg::notYetImplemented(__func__, __FILE__, __LINE__)
