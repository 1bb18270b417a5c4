// Diagnostics.cpp: forming log lines and fault texts.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "Diagnostics.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr const char* kCategory = "CoreGraphics";

// Room for one line. Long lines take memory; they are cut when there is none, not lost.
class LineBuffer {
public:
    explicit LineBuffer(std::size_t bytesWanted) {
        if (bytesWanted > sizeof short_)
            long_.reset(static_cast<char*>(std::malloc(bytesWanted)));
        capacity_ = long_ ? bytesWanted : sizeof short_;
    }

    char* text() { return long_ ? long_.get() : short_; }
    std::size_t capacity() const { return capacity_; }

private:
    struct Free {
        void operator()(char* memory) const { std::free(memory); }
    };

    char short_[512];
    std::unique_ptr<char, Free> long_;
    std::size_t capacity_;
};

// Sends the text of a format that names objects. False when there is no memory to form it.
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

    const CFIndex units = CFStringGetLength(line.get());
    const CFIndex bytes = CFStringGetMaximumSizeForEncoding(units, kCFStringEncodingUTF8);
    LineBuffer buffer(static_cast<std::size_t>(bytes) + 1);
    CFIndex used = 0;
    CFStringGetBytes(line.get(), CFRangeMake(0, units), kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(buffer.text()),
                     static_cast<CFIndex>(buffer.capacity()) - 1, &used);
    buffer.text()[used] = '\0';
    HostLogText(level, kCategory, function, buffer.text());
    return true;
}

// The format comes from the macros' callers, who write it as a literal.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void logPlainFormat(HostLogLevel level, const char* function, const char* format,
                    va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return;
    LineBuffer buffer(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(buffer.text(), buffer.capacity(), format, arguments);
    HostLogText(level, kCategory, function, buffer.text());
}
#pragma GCC diagnostic pop

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
