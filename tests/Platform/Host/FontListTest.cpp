// FontListTest.cpp: a list of fonts that is kept for later, and what it is good for then.

#include "FontList.h"

#include <Host/Host.h>

#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using host::fontList;
using host::FontList;
using host::Freshness;
namespace fs = std::filesystem;
constexpr const char* kFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

void makeOld(const fs::path& path) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

// A machine of one font, in a process that has not asked fontconfig for anything yet.
class Machine {
public:
    Machine() {
        setenv("HOME", folder.path().c_str(), 1);
        for (const char* elsewhere : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            unsetenv(elsewhere);
        setenv("FONTCONFIG_FILE", configuration().c_str(), 1);
        fs::create_directory(fonts());
        fs::copy(kFont, fonts() / "Font.ttf");
        makeOld(fonts());
        makeOld(configuration());
        makeOld(folder.path("rules"));
    }
    fs::path fonts() const { return folder.path("fonts"); }
    std::string configuration() const {
        return folder.has("rules/fonts.conf")
                   ? folder.path("rules/fonts.conf")
                   : folder.write("rules/fonts.conf",
                                  "<fontconfig><dir>" + fonts().string() + "</dir><cachedir>" +
                                      folder.path("cache") + "</cachedir></fontconfig>");
    }

    // What was left for the next process; nothing when that was nothing.
    std::shared_ptr<const FontList> kept() const {
        char caches[4096];
        EXPECT_TRUE(HostPathGetCachesDirectory(caches, sizeof caches));
        std::stringstream text;
        text << std::ifstream(fs::path(caches) / "HostFonts.list").rdbuf();
        return host::parsedFontList(text.str());
    }

    test::TemporaryFolder folder;
};

void expectToOutlastNoChange() {
    const Machine machine;
    const fs::path font = machine.fonts() / "Font.ttf";
    const fs::path extra = machine.fonts() / "More.ttf";
    ASSERT_THAT(fontList(Freshness::Now)->files, testing::ElementsAre(font));
    const auto kept = machine.kept();
    ASSERT_TRUE(kept);
    EXPECT_THAT(kept->files, testing::ElementsAre(font));
    EXPECT_TRUE(kept->hasFamily("dejavu sans"));
    EXPECT_FALSE(kept->hasFamily("dejavu"));

    const struct {
        const char* what;
        std::function<void()> change;
        std::function<void()> undo;
    } changes[] = {
        {"a new font", [&] { fs::copy(kFont, extra); }, [&] { fs::remove(extra); }},
        {"a rule of the user's", [&] { machine.folder.write(".fonts.conf", "<fontconfig/>"); },
         [&] { fs::remove(machine.folder.path(".fonts.conf")); }},
        {"another variable", [] { setenv("XDG_DATA_HOME", "/none", 1); },
         [] { unsetenv("XDG_DATA_HOME"); }},
        {"other rules", [&] { fs::last_write_time(machine.configuration(), {}); }, [] {}},
    };
    for (const auto& [what, change, undo] : changes) {
        // As it was when the list was made.
        EXPECT_TRUE(kept->isCurrent()) << what;
        const auto fontsTime = fs::last_write_time(machine.fonts());
        const auto rulesTime = fs::last_write_time(machine.configuration());
        const auto homeTime = fs::last_write_time(machine.folder.path());
        change();
        EXPECT_FALSE(kept->isCurrent()) << what;
        undo();
        fs::last_write_time(machine.fonts(), fontsTime);
        fs::last_write_time(machine.configuration(), rulesTime);
        fs::last_write_time(machine.folder.path(), homeTime);
    }
    fs::copy(kFont, extra);
    EXPECT_THAT(fontList(Freshness::MayBeOlder)->files, testing::ElementsAre(font));
    EXPECT_THAT(fontList(Freshness::Now)->files, testing::ElementsAre(font, extra));
}

// What was changed just now may be changed again without its time telling.
void expectToBeKeptOnlyWhenSettled() {
    const Machine machine;
    fs::last_write_time(machine.fonts(), fs::file_time_type::clock::now());
    EXPECT_EQ(fontList(Freshness::Now)->files.size(), 1u);
    EXPECT_FALSE(machine.kept());
}

// Runs `expect` and ends the process with what became of it.
[[noreturn]] void exitAfter(void (*expect)()) {
    expect();
    std::exit(testing::Test::HasFailure());
}

TEST(FontListDeathTest, IsReadAgainAsLongAsNothingChanges) {
    if (!fs::exists(kFont))
        GTEST_SKIP() << "fonts-dejavu-core is not installed";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitAfter(expectToOutlastNoChange), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(exitAfter(expectToBeKeptOnlyWhenSettled), testing::ExitedWithCode(0), "");
}

TEST(FontList, IsReadAsAWholeOrNotAtAll) {
    const FontList list = {.environment = "a;b;",
                           .sources = {{"/etc/fonts", 5}, {"/none here", FontList::kAbsent}},
                           .files = {"/a", "/b c"},
                           .families = {"A", "Ü B"}};
    const std::string text = host::serialized(list);
    const auto read = host::parsedFontList(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->environment, list.environment);
    EXPECT_EQ(read->files, list.files);
    EXPECT_EQ(read->families, list.families);
    EXPECT_EQ(host::serialized(*read), text);
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_FALSE(host::parsedFontList(text.substr(0, size))) << size;
    for (const char* const line : {"\n", "x y\n", "s 5\n", "s x /a\n", "f\n"})
        EXPECT_FALSE(host::parsedFontList(text + line) ||
                     host::parsedFontList("installed fonts 1\n" + std::string(line) + "end\n"))
            << line;
}

} // namespace
