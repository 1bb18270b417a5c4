// PathsTest.cpp: joining paths, and where things lie.

#include <Host/Host.h>

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// Sets an environment variable for a scope.
class Environment {
public:
    Environment(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name))
            before_ = before, wasSet_ = true;
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Environment() { wasSet_ ? setenv(name_, before_.c_str(), 1) : unsetenv(name_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
    std::string before_;
    bool wasSet_ = false;
};

TEST(HostPath, JoinsWithExactlyOneSlash) {
    const struct {
        const char* what;
        const char* folder;
        const char* name;
        const char* expected;
    } cases[] = {
        {"plain parts", "a/b", "c", "a/b/c"}, {"slash behind", "a/", "c", "a/c"},
        {"slash in front", "a", "/c", "a/c"}, {"slashes on both sides", "a//", "//c/d", "a/c/d"},
        {"the root", "/", "c", "/c"},         {"no folder", "", "c", "c"},
        {"no name", "a", "", "a/"},
    };
    char buffer[64];
    for (const auto& [what, folder, name, expected] : cases) {
        EXPECT_TRUE(HostPathConcatenate(folder, name, buffer, sizeof buffer)) << what;
        EXPECT_STREQ(buffer, expected) << what;
    }
}

TEST(HostPath, RefusesWhatDoesNotFit) {
    char buffer[6] = "xxxxx";
    EXPECT_FALSE(HostPathConcatenate("abc", "de", buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(HostPathConcatenate("ab", "de", buffer, sizeof buffer)) << "exactly fits";
    EXPECT_STREQ(buffer, "ab/de");
    EXPECT_FALSE(HostPathConcatenate("", "abcdef", buffer, sizeof buffer));
    EXPECT_FALSE(HostPathConcatenate(nullptr, "a", buffer, sizeof buffer));
    EXPECT_FALSE(HostPathConcatenate("a", nullptr, buffer, sizeof buffer));
    EXPECT_FALSE(HostPathConcatenate("a", "b", nullptr, 5));
    EXPECT_FALSE(HostPathConcatenate("a", "b", buffer, 0));
    EXPECT_FALSE(HostPathGetExecutable(buffer, sizeof buffer));
    EXPECT_FALSE(HostPathGetExecutable(nullptr, 0));
    EXPECT_FALSE(HostPathGetCachesDirectory(nullptr, 0));
}

TEST(HostPath, FindsTheProgramAndItsLibraries) {
    char buffer[4096];
    ASSERT_TRUE(HostPathGetExecutable(buffer, sizeof buffer));
    const std::string program = buffer;
    EXPECT_TRUE(program.ends_with("/HostTests"));
    static const int inProgram = 0;
    ASSERT_TRUE(HostPathGetImageOfAddress(&inProgram, buffer, sizeof buffer));
    EXPECT_EQ(buffer, program);
    ASSERT_TRUE(HostPathGetImageOfAddress(reinterpret_cast<const void*>(&HostFileClose), buffer,
                                          sizeof buffer));
    EXPECT_NE(std::string(buffer).find("/libCoreFoundation.so"), std::string::npos);
    int onStack = 0;
    EXPECT_FALSE(HostPathGetImageOfAddress(&onStack, buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "");
}

TEST(HostPath, MakesTheUsersFolders) {
    const test::TemporaryFolder folder;
    char buffer[4096];
    {
        const Environment cache("XDG_CACHE_HOME", (folder.path("x/cache")).c_str());
        EXPECT_TRUE(HostPathGetCachesDirectory(buffer, sizeof buffer));
        EXPECT_EQ(buffer, folder.path("x/cache/HostTests"));
        EXPECT_TRUE(HostFileIsDirectory(buffer));
    }
    const Environment home("HOME", folder.path().c_str());
    const Environment cache("XDG_CACHE_HOME", "relative, so without meaning");
    const Environment config("XDG_CONFIG_HOME", nullptr);
    EXPECT_TRUE(HostPathGetCachesDirectory(buffer, sizeof buffer));
    EXPECT_EQ(buffer, folder.path(".cache/HostTests"));
    EXPECT_TRUE(HostPathGetPreferencesDirectory(buffer, sizeof buffer));
    EXPECT_EQ(buffer, folder.path(".config"));
    EXPECT_TRUE(HostFileIsDirectory(buffer));

    const Environment homeless("HOME", nullptr);
    EXPECT_FALSE(HostPathGetPreferencesDirectory(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "");
}

} // namespace
