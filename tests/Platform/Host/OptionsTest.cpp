// OptionsTest.cpp: options and the environment that sets them.

#include <Host/Host.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

int counter = 0;

// Registers an option of a name of its own while the environment holds `text`.
template <typename Value>
Value registered(HostOptionKind kind, const char* text, Value initial) {
    // Options live as long as the process, and so does what they refer to.
    auto* const name = new std::string("NIMBRA_TEST_OPTION_" + std::to_string(counter++));
    static auto* const keep = new std::vector<void*>;
    auto* const bound = new Value(initial);
    keep->push_back(name);
    keep->push_back(bound);
    if (text)
        setenv(name->c_str(), text, 1);
    const HostOption option = {name->c_str(), "title", "category", "text", kind, bound};
    EXPECT_TRUE(HostOptionRegister(&option));
    unsetenv(name->c_str());
    return *bound;
}

TEST(HostOption, ReadsBooleansFromTheEnvironment) {
    const struct {
        const char* what;
        const char* text;
        bool initial;
        bool expected;
    } cases[] = {
        {"nothing set", nullptr, true, true},
        {"0", "0", true, false},
        {"no", "no", true, false},
        {"false", "false", true, false},
        {"off in capitals", "OFF", true, false},
        {"1", "1", false, true},
        {"yes", "yes", false, true},
        {"true", "true", false, true},
        {"on", "on", false, true},
        {"another number", "2", false, false},
        {"empty", "", true, true},
        {"a word", "maybe", true, true},
    };
    for (const auto& [what, text, initial, expected] : cases)
        EXPECT_EQ(registered<bool>(kHostOptionBoolean, text, initial), expected) << what;
}

TEST(HostOption, ReadsIntegersFromTheEnvironment) {
    const struct {
        const char* what;
        const char* text;
        int32_t expected;
    } cases[] = {
        {"nothing set", nullptr, 42},
        {"a number", "17", 17},
        {"a negative number", "-3", -3},
        {"past 32 bits", "99999999999", std::numeric_limits<int32_t>::max()},
        {"past 64 bits", "-99999999999999999999999", std::numeric_limits<int32_t>::min()},
        {"a word", "many", 42},
        {"a number and more", "5 apples", 42},
        {"empty", "", 42},
    };
    for (const auto& [what, text, expected] : cases)
        EXPECT_EQ(registered<int32_t>(kHostOptionInteger, text, 42), expected) << what;
}

TEST(HostOption, CanBeListedAndSetByName) {
    static bool flag = false;
    static int32_t number = 1;
    const HostOption flagOption = {"NIMBRA_TEST_FLAG", "Flag", "Tests", "A flag.",
                                   kHostOptionBoolean, &flag};
    const HostOption numberOption = {"NIMBRA_TEST_NUMBER", "Number",           "Tests",
                                     "A number.",          kHostOptionInteger, &number};
    const size_t before = HostOptionGetCount();
    ASSERT_TRUE(HostOptionRegister(&flagOption));
    ASSERT_TRUE(HostOptionRegister(&numberOption));
    EXPECT_FALSE(HostOptionRegister(&flagOption)) << "a name is registered once";
    ASSERT_EQ(HostOptionGetCount(), before + 2);

    HostOption listed = {};
    ASSERT_TRUE(HostOptionGetAtIndex(before + 1, &listed));
    EXPECT_STREQ(listed.name, "NIMBRA_TEST_NUMBER");
    EXPECT_STREQ(listed.description, "A number.");
    EXPECT_FALSE(HostOptionGetAtIndex(before + 2, &listed));

    EXPECT_TRUE(HostOptionSetBoolean("NIMBRA_TEST_FLAG", true));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(HostOptionSetInteger("NIMBRA_TEST_NUMBER", -8));
    EXPECT_EQ(number, -8);
    EXPECT_FALSE(HostOptionSetInteger("NIMBRA_TEST_FLAG", 1)) << "of another kind";
    EXPECT_FALSE(HostOptionSetBoolean("NIMBRA_TEST_ABSENT", true));
}

TEST(HostOption, RefusesMissingArguments) {
    static bool flag = false;
    const HostOption unnamed = {nullptr, "", "", "", kHostOptionBoolean, &flag};
    const HostOption unbound = {"NIMBRA_TEST_UNBOUND", "", "", "", kHostOptionBoolean, nullptr};
    EXPECT_FALSE(HostOptionRegister(nullptr));
    EXPECT_FALSE(HostOptionRegister(&unnamed));
    EXPECT_FALSE(HostOptionRegister(&unbound));
    EXPECT_FALSE(HostOptionGetAtIndex(0, nullptr));
    EXPECT_FALSE(HostOptionSetBoolean(nullptr, true));
    EXPECT_EQ(HostOptionReadInteger(nullptr, 5), 5);
    EXPECT_EQ(HostOptionReadInteger("NIMBRA_TEST_ABSENT", 6), 6);
}

} // namespace
