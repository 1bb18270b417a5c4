// CollectedLog.h: the log lines of a scope, for tests of what callers are told.
#pragma once

#include <Host/Host.h>

#include <string>
#include <vector>

// Collects messages as "level function: text" while it lives, down to warnings.
class CollectedLog {
public:
    CollectedLog() {
        HostLogSetSink(collect, this);
        HostLogSetThreshold(kHostLogWarning);
    }
    ~CollectedLog() {
        HostLogSetSink(nullptr, nullptr);
        HostLogSetThreshold(kHostLogError);
    }
    CollectedLog(const CollectedLog&) = delete;
    CollectedLog& operator=(const CollectedLog&) = delete;

    const std::vector<std::string>& lines() const { return lines_; }

private:
    static void collect(HostLogLevel level, const char*, const char* function, const char* text,
                        void* context) {
        static_cast<CollectedLog*>(context)->lines_.push_back(std::to_string(level) + " " +
                                                              function + ": " + text);
    }

    std::vector<std::string> lines_;
};
