// DiagnosticsTest.cpp: what callers read in the log, faults, and options.

#include <CoreFoundation/CFString.h>

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeOptions.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void warn(const char* text) {
    CG_LOG_WARNING("about %s, %d", text, 7);
}

TEST(Diagnostics, LinesNameTheFunctionThatLogs) {
    const CollectedLog log;
    warn("that");
    CG_LOG(kHostLogError, "at %zu %%", std::size_t{3});
    EXPECT_THAT(log.lines(), ElementsAre("4 warn: about that, 7", "3 TestBody: at 3 %"));
}

TEST(Diagnostics, ObjectsAreDescribed) {
    const CollectedLog log;
    CG_LOG_ERROR("<%@> and %d and %@", CFSTR("h\xC3\xA9llo"), 5, static_cast<void*>(nullptr));
    EXPECT_THAT(log.lines(), ElementsAre("3 TestBody: <h\xC3\xA9llo> and 5 and (null)"));
}

TEST(Diagnostics, LongLinesStayWhole) {
    const CollectedLog log;
    const std::string text(3000, 'x');
    CG_LOG_ERROR("%s", text.c_str());
    CG_LOG_ERROR("%s%@", text.c_str(), CFSTR("!"));
    EXPECT_THAT(log.lines(), ElementsAre("3 TestBody: " + text, "3 TestBody: " + text + "!"));
}

TEST(Diagnostics, WithoutMemoryALineIsStillSaid) {
    static std::size_t shortest = 0;
    static std::size_t lines = 0;
    HostLogSetSink(
        [](HostLogLevel, const char*, const char*, const char* text, void*) {
            shortest = std::min(shortest, std::strlen(text));
            ++lines;
        },
        nullptr);
    const std::string text(3000, 'x');
    shortest = text.size();
    std::size_t runs = 0;
    const auto sweep = test::failEachAllocation([&text, &runs] {
        ++runs;
        CG_LOG_ERROR("%s", text.c_str());
        CG_LOG_ERROR("a format that names %@ and is said as it stands", CFSTR("an object"));
    });
    HostLogSetSink(nullptr, nullptr);
    EXPECT_EQ(lines, 2 * runs);
    EXPECT_GE(shortest, 40u);
    EXPECT_EQ(sweep.leakedBytes, 0);
    EXPECT_GE(sweep.failures, 2u);
}

TEST(Diagnostics, QuietLevelsDoNotEvaluateTheirArguments) {
    const CollectedLog log;
    HostLogSetThreshold(kHostLogError);
    int evaluations = 0;
    CG_LOG_WARNING("%d", ++evaluations);
    EXPECT_EQ(evaluations, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(DiagnosticsDeathTest, FaultsSayWhereAndAbort) {
    EXPECT_DEATH(CG_BUG_UNLESS(1 + 1 == 3), "BUG .*DiagnosticsTest.cpp:[0-9]+");
    EXPECT_DEATH(CG_NOT_YET_IMPLEMENTED(), "NOT YET IMPLEMENTED .*DiagnosticsTest.cpp:[0-9]+");
    CG_BUG_UNLESS(1 + 1 == 2);
}

TEST(RuntimeOptions, AreBoundToTheirVariables) {
    setenv("NIMBRA_TEST_FLAG", "off", 1);
    setenv("NIMBRA_TEST_COUNT", "-12", 1);
    static bool flag = true;
    static std::int32_t count = 5;
    EXPECT_TRUE(cg::registerOption({"NIMBRA_TEST_FLAG", "Flag", "Tests", "A flag."}, flag));
    EXPECT_TRUE(cg::registerOption({"NIMBRA_TEST_COUNT", "Count", "Tests", "A count."}, count));
    EXPECT_FALSE(flag);
    EXPECT_EQ(count, -12);
    EXPECT_TRUE(HostOptionSetBoolean("NIMBRA_TEST_FLAG", true));
    EXPECT_TRUE(flag);
    EXPECT_FALSE(HostOptionSetBoolean("NIMBRA_TEST_COUNT", true));
    EXPECT_FALSE(cg::registerOption({"NIMBRA_TEST_FLAG", "Again", "Tests", "No."}, flag));
}

} // namespace
