// CFPreferencesTest.cpp: settings in memory and in their files.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFPreferences.h>
#include <CoreFoundation/CFPropertyList.h>

#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"
#include "Support/Threads.h"
#include "Text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace {

using test::makeText;
using test::textOf;
using Value = cf::Ref<CFTypeRef>;

// The process looks for its folders once, so that all tests share these.
const test::TemporaryFolder& userFolder() {
    static const test::TemporaryFolder folder;
    return folder;
}
const test::TemporaryFolder& systemFolder() {
    static const test::TemporaryFolder folder;
    return folder;
}

class Environment : public testing::Environment {
public:
    void SetUp() override {
        setenv("XDG_CONFIG_HOME", userFolder().path("").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", (systemFolder().path("") + ":/elsewhere").c_str(), 1);
    }
};
[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

const CFStringRef kUser = kCFPreferencesCurrentUser;
const CFStringRef kAnyHost = kCFPreferencesAnyHost;

Value ask(CFStringRef key, CFStringRef application) {
    return cf::adopt<CFTypeRef>(CFPreferencesCopyAppValue(key, application));
}
std::string askText(CFStringRef key, CFStringRef application) {
    const Value value = ask(key, application);
    return textOf(static_cast<CFStringRef>(value.get()));
}

std::string plist(const std::string& entries) {
    return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}

TEST(CFPreferences, AreSeenAtOnceAndWrittenWhenSynchronised) {
    const CFStringRef application = CFSTR("org.example.written");
    const std::string file = "nimbra/./org.example.written.plist";
    CFPreferencesSetAppValue(CFSTR("color"), CFSTR("red"), application);
    EXPECT_EQ(askText(CFSTR("color"), application), "red");
    EXPECT_FALSE(userFolder().has(file));
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_NE(userFolder().read(file).find("<string>red</string>"), std::string::npos);

    EXPECT_EQ(askText(CFSTR("color"), application), "red") << "read back";
    userFolder().write(file, plist("<key>color</key><string>blue</string>"));
    EXPECT_EQ(askText(CFSTR("color"), application), "red") << "until the next synchronisation";
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(askText(CFSTR("color"), application), "blue");

    CFPreferencesSetAppValue(CFSTR("color"), nullptr, application);
    EXPECT_FALSE(ask(CFSTR("color"), application));
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(userFolder().read(file).find("color"), std::string::npos);
}

TEST(CFPreferences, KeepWhatOthersWroteMeanwhile) {
    const CFStringRef application = CFSTR("org.example.merged");
    CFPreferencesSetAppValue(CFSTR("mine"), CFSTR("1"), application);
    userFolder().write("nimbra/org.example.merged.plist",
                       plist("<key>theirs</key><string>2</string>"));
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(askText(CFSTR("mine"), application), "1");
    EXPECT_EQ(askText(CFSTR("theirs"), application), "2");
}

TEST(CFPreferences, AreLookedUpFromTheNearestDomainToTheFarthest) {
    const CFStringRef application = CFSTR("org.example.order");
    const CFStringRef key = CFSTR("order-test-key");
    const struct {
        CFStringRef application;
        CFStringRef user;
        CFStringRef host;
    } domains[] = {
        {application, kCFPreferencesCurrentUser, kCFPreferencesCurrentHost},
        {application, kCFPreferencesCurrentUser, kCFPreferencesAnyHost},
        {kCFPreferencesAnyApplication, kCFPreferencesCurrentUser, kCFPreferencesCurrentHost},
        {kCFPreferencesAnyApplication, kCFPreferencesCurrentUser, kCFPreferencesAnyHost},
        {application, kCFPreferencesAnyUser, kCFPreferencesCurrentHost},
        {application, kCFPreferencesAnyUser, kCFPreferencesAnyHost},
        {kCFPreferencesAnyApplication, kCFPreferencesAnyUser, kCFPreferencesCurrentHost},
        {kCFPreferencesAnyApplication, kCFPreferencesAnyUser, kCFPreferencesAnyHost},
    };
    for (size_t i = std::size(domains); i-- > 0;) {
        const auto& [who, user, host] = domains[i];
        const std::string value = std::to_string(i);
        CFPreferencesSetValue(key, makeText(value).get(), who, user, host);
        EXPECT_EQ(askText(key, application), value);
    }
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    for (size_t i = 0; i < std::size(domains); ++i) {
        const auto& [who, user, host] = domains[i];
        EXPECT_EQ(askText(key, application), std::to_string(i)) << "after reading the files";
        CFPreferencesSetValue(key, nullptr, who, user, host);
    }
    EXPECT_FALSE(ask(key, application));
    EXPECT_TRUE(systemFolder().has("nimbra/org.example.order.plist"));
}

TEST(CFPreferences, ReadAsTruthsAndNumbers) {
    const CFStringRef application = CFSTR("org.example.kinds");
    userFolder().write("nimbra/org.example.kinds.plist",
                       plist("<key>true</key><true/><key>seven</key><integer>7</integer>"
                             "<key>zero</key><integer>0</integer><key>half</key><real>0.5</real>"
                             "<key>Yes</key><string>Yes</string><key>no</key><string>NO</string>"
                             "<key>-12</key><string>-12</string><key>word</key><string>1x</string>"
                             "<key>list</key><array/><key>none</key><string></string>"));
    const struct {
        const char* key;
        bool isTruth;
        bool truth;
        bool isNumber;
        CFIndex number;
    } cases[] = {
        {"true", true, true, true, 1},     {"seven", true, true, true, 7},
        {"zero", true, false, true, 0},    {"half", true, true, false, 0},
        {"Yes", true, true, false, 0},     {"no", true, false, false, 0},
        {"-12", false, false, true, -12},  {"word", false, false, false, 0},
        {"list", false, false, false, 0},  {"none", false, false, false, 0},
        {"other", false, false, false, 0},
    };
    for (const auto& [name, isTruth, truth, isNumber, number] : cases) {
        const auto key = makeText(name);
        Boolean isThere = !isTruth;
        EXPECT_EQ(CFPreferencesGetAppBooleanValue(key.get(), application, &isThere), truth) << name;
        EXPECT_EQ(isThere, isTruth) << name;
        EXPECT_EQ(CFPreferencesGetAppIntegerValue(key.get(), application, &isThere), number)
            << name;
        EXPECT_EQ(isThere, isNumber) << name;
    }
}

TEST(CFPreferences, AreSetAndFetchedTogether) {
    const CFStringRef application = CFSTR("org.example.multiple");
    const void* keys[] = {CFSTR("a"), CFSTR("b")};
    const auto both = cf::adopt(CFDictionaryCreate(
        nullptr, keys, keys, 2, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    const auto first = cf::adopt(CFArrayCreate(nullptr, keys, 1, &kCFTypeArrayCallBacks));
    const auto all = [&] {
        return cf::adopt(CFPreferencesCopyMultiple(nullptr, application, kUser, kAnyHost));
    };
    EXPECT_EQ(CFPreferencesCopyKeyList(application, kUser, kAnyHost), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(all().get()), 0);
    CFPreferencesSetMultiple(both.get(), nullptr, application, kUser, kAnyHost);
    EXPECT_TRUE(CFEqual(all().get(), both.get()));
    const auto some =
        cf::adopt(CFPreferencesCopyMultiple(first.get(), application, kUser, kAnyHost));
    EXPECT_EQ(CFDictionaryGetCount(some.get()), 1);
    CFPreferencesSetMultiple(nullptr, first.get(), application, kUser, kAnyHost);
    const auto left = cf::adopt(CFPreferencesCopyKeyList(application, kUser, kAnyHost));
    ASSERT_EQ(CFArrayGetCount(left.get()), 1);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(left.get(), 0), CFSTR("b")));
}

TEST(CFPreferences, KeepCopiesOfWhatTheyAreGiven) {
    const CFStringRef application = CFSTR("org.example.copies");
    const auto list = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFPreferencesSetAppValue(CFSTR("list"), list.get(), application);
    CFArrayAppendValue(list.get(), CFSTR("late"));
    const Value kept = ask(CFSTR("list"), application);
    EXPECT_EQ(CFArrayGetCount(static_cast<CFArrayRef>(kept.get())), 0);
    CFPreferencesSetAppValue(CFSTR("list"), kCFNull, application);
    EXPECT_TRUE(ask(CFSTR("list"), application)) << "no property list, so ignored";
}

TEST(CFPreferences, SurviveCorruptFiles) {
    const CollectedLog log;
    const CFStringRef application = CFSTR("org.example.corrupt");
    const std::string file = "nimbra/org.example.corrupt.plist";
    userFolder().write(file, "<plist>garbage");
    EXPECT_FALSE(ask(CFSTR("a"), application));
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(userFolder().read(file), "<plist>garbage") << "nothing to write";
    CFPreferencesSetAppValue(CFSTR("a"), CFSTR("1"), application);
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(askText(CFSTR("a"), application), "1");
    EXPECT_EQ(userFolder().read(file + ".corrupt"), "<plist>garbage");
}

TEST(CFPreferences, KeepChangesThatCannotBeWritten) {
    const CFStringRef application = CFSTR("org.example.blocked");
    const std::string file = "nimbra/org.example.blocked.plist";
    std::filesystem::create_directories(userFolder().path(file));
    CFPreferencesSetAppValue(CFSTR("a"), CFSTR("1"), application);
    EXPECT_FALSE(CFPreferencesAppSynchronize(application)) << "a folder is in the way";
    EXPECT_EQ(askText(CFSTR("a"), application), "1");
    std::filesystem::remove(userFolder().path(file));
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_NE(userFolder().read(file).find("<key>a</key>"), std::string::npos);
}

TEST(CFPreferences, NamesCannotLeadOutOfTheFolder) {
    const char* const names[] = {"../escape", "a/b", ".hidden", "..", "100%"};
    for (const char* const name : names) {
        const auto application = makeText(name);
        CFPreferencesSetAppValue(CFSTR("a"), CFSTR("1"), application.get());
        EXPECT_TRUE(CFPreferencesAppSynchronize(application.get())) << name;
        EXPECT_EQ(askText(CFSTR("a"), application.get()), "1") << name;
    }
    EXPECT_FALSE(userFolder().has("escape.plist"));
    EXPECT_TRUE(userFolder().has("nimbra/%2E.%2Fescape.plist"));
}

TEST(CFPreferences, HoldStringsThatXMLCannot) {
    const CFStringRef application = CFSTR("org.example.binary");
    CFPreferencesSetAppValue(CFSTR("bell"), CFSTR("\a"), application);
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    EXPECT_EQ(askText(CFSTR("bell"), application), "\a");
}

TEST(CFPreferences, MayBeUsedByManyThreads) {
    const CFStringRef application = CFSTR("org.example.threads");
    test::onThreads([=](std::size_t thread) {
        const auto key = makeText(std::to_string(thread));
        for (int round = 0; round < 25; ++round) {
            CFPreferencesSetAppValue(key.get(), key.get(), application);
            CFPreferencesAppSynchronize(application);
            EXPECT_EQ(askText(key.get(), application), std::to_string(thread));
        }
    });
    const auto keys = cf::adopt(CFPreferencesCopyKeyList(application, kUser, kAnyHost));
    EXPECT_EQ(CFArrayGetCount(keys.get()), 4);
}

TEST(CFPreferences, UnknownDomainsHoldNothing) {
    CFPreferencesSetValue(CFSTR("a"), CFSTR("1"), CFSTR("x"), CFSTR("somebody"), kAnyHost);
    EXPECT_EQ(CFPreferencesCopyValue(CFSTR("a"), CFSTR("x"), CFSTR("somebody"), kAnyHost), nullptr);
    EXPECT_EQ(CFPreferencesCopyValue(CFSTR("a"), CFSTR("x"), kUser, CFSTR("elsewhere")), nullptr);
    EXPECT_FALSE(CFPreferencesSynchronize(CFSTR("x"), nullptr, nullptr));
    EXPECT_FALSE(CFPreferencesAppValueIsForced(CFSTR("a"), CFSTR("x")));
}

} // namespace
