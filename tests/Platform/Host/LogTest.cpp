// LogTest.cpp: which messages are printed, and where they go.

#include <Host/Host.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Collects messages as "level category function text" while it lives.
class CollectedLog {
public:
    CollectedLog() { HostLogSetSink(collect, this); }
    ~CollectedLog() {
        HostLogSetSink(nullptr, nullptr);
        HostLogSetThreshold(kHostLogError);
    }
    CollectedLog(const CollectedLog&) = delete;
    CollectedLog& operator=(const CollectedLog&) = delete;

    const std::vector<std::string>& lines() const { return lines_; }

private:
    static void collect(HostLogLevel level, const char* category, const char* function,
                        const char* text, void* context) {
        static_cast<CollectedLog*>(context)->lines_.push_back(
            std::to_string(level) + " " + category + " " + function + " " + text);
    }

    std::vector<std::string> lines_;
};

TEST(HostLog, PrintsLevelsUpToTheThreshold) {
    const CollectedLog log;
    HostLogSetThreshold(kHostLogWarning);
    EXPECT_TRUE(HostLogIsEnabled(kHostLogError));
    EXPECT_TRUE(HostLogIsEnabled(kHostLogWarning));
    EXPECT_FALSE(HostLogIsEnabled(kHostLogNotice));

    HostLog(kHostLogError, "Fonts", "open", "no file %d", 7);
    HostLogText(kHostLogWarning, "Fonts", "open", "as it is: %d");
    HostLog(kHostLogDebug, "Fonts", "open", "unseen");
    EXPECT_THAT(log.lines(), ElementsAre("3 Fonts open no file 7", "4 Fonts open as it is: %d"));
}

TEST(HostLog, PrintsLongTextsWhole) {
    const CollectedLog log;
    const std::string text(5000, 'x');
    HostLog(kHostLogError, "c", "f", "%s.", text.c_str());
    EXPECT_THAT(log.lines(), ElementsAre("3 c f " + text + "."));
}

TEST(HostLog, TakesMissingTexts) {
    const CollectedLog log;
    HostLogText(kHostLogError, nullptr, nullptr, nullptr);
    HostLog(kHostLogError, nullptr, nullptr, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("3   ", "3   "));
}

TEST(HostLog, StaysSilentBelowFaultsWhenTheThresholdIsZero) {
    const CollectedLog log;
    HostLogSetThreshold(static_cast<HostLogLevel>(0));
    HostLog(kHostLogError, "c", "f", "unseen");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(HostLogDeathTest, FaultPrintsAndAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(HostLog(kHostLogFault, "Core", "draw", "impossible: %d", 5),
                 "\\[2\\] Core draw: impossible: 5");
    EXPECT_EXIT(HostAbortWithBacktrace(), ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
