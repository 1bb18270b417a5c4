// Diagnostics.cpp: forming log lines and fault texts.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "Diagnostics.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* kCategory = "CoreGraphics";

// Long lines are cut, not lost.
constexpr std::size_t kLineBytes = 1024;

// Sends the text of a format that names objects. False when there is no memory for it.
bool logObjectFormat(HostLogLevel level, const char* function, const char* format,
                     va_list arguments) {
    const auto formatString =
        cf::adopt(CFStringCreateWithCString(nullptr, format, kCFStringEncodingUTF8));
    if (!formatString)
        return false;
    const auto line = cf::adopt(
        CFStringCreateWithFormatAndArguments(nullptr, nullptr, formatString.get(), arguments));
    if (!line)
        return false;

    char text[kLineBytes];
    CFIndex used = 0;
    const CFRange whole = CFRangeMake(0, CFStringGetLength(line.get()));
    CFStringGetBytes(line.get(), whole, kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(text), sizeof text - 1, &used);
    text[used] = '\0';
    HostLogText(level, kCategory, function, text);
    return true;
}

void logPlainFormat(HostLogLevel level, const char* function, const char* format,
                    va_list arguments) {
    char text[kLineBytes];
    // The format comes from the macros' callers, who write it as a literal.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    if (std::vsnprintf(text, sizeof text, format, arguments) >= 0)
        HostLogText(level, kCategory, function, text);
#pragma GCC diagnostic pop
}

} // namespace

void cg::logMessage(HostLogLevel level, const char* function, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (!std::strstr(format, "%@"))
        logPlainFormat(level, function, format, arguments);
    else if (!logObjectFormat(level, function, format, arguments))
        HostLogText(level, kCategory, function, format);
    va_end(arguments);
}

void cg::bug(const char* function, const char* file, int line) {
    HostLog(kHostLogFault, kCategory, function, "BUG %s:%d", file, line);
    HostAbortWithBacktrace();
}

void cg::notYetImplemented(const char* function, const char* file, int line) {
    HostLog(kHostLogFault, kCategory, function, "NOT YET IMPLEMENTED %s (%s:%d)", function, file,
            line);
    HostAbortWithBacktrace();
}
