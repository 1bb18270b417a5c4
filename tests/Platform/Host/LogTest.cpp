// LogTest.cpp: which messages are printed, and where they go.

#include <Host/Host.h>

#include "Support/CollectedLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(HostLog, PrintsLevelsUpToTheThreshold) {
    const CollectedLog log;
    HostLogSetThreshold(kHostLogWarning);
    EXPECT_TRUE(HostLogIsEnabled(kHostLogError));
    EXPECT_TRUE(HostLogIsEnabled(kHostLogWarning));
    EXPECT_FALSE(HostLogIsEnabled(kHostLogNotice));

    HostLog(kHostLogError, "Fonts", "open", "no file %d", 7);
    HostLogText(kHostLogWarning, "Fonts", "open", "as it is: %d");
    HostLog(kHostLogDebug, "Fonts", "open", "unseen");
    EXPECT_THAT(log.lines(), ElementsAre("3 open: no file 7", "4 open: as it is: %d"));
}

TEST(HostLog, PrintsLongTextsWhole) {
    const CollectedLog log;
    const std::string text(5000, 'x');
    HostLog(kHostLogError, "c", "f", "%s.", text.c_str());
    EXPECT_THAT(log.lines(), ElementsAre("3 f: " + text + "."));
}

TEST(HostLog, TakesMissingTexts) {
    const CollectedLog log;
    HostLogText(kHostLogError, nullptr, nullptr, nullptr);
    HostLog(kHostLogError, nullptr, nullptr, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("3 : ", "3 : "));
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
