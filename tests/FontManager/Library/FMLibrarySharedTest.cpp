// FMLibrarySharedTest.cpp: the shared library over several runs of a program: what it keeps, when
// it believes that, and what it opens.

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Fonts, caches, configurations and resources of a test's own.
class FMLibraryShared : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const name :
             {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf", "DejaVuSansMono.ttf", "DejaVuSerif.ttf"}) {
            const fs::path source = fs::path("/usr/share/fonts/truetype/dejavu") / name;
            if (!fs::exists(source))
                GTEST_SKIP() << source << " is not installed";
            fs::create_directories(folder_.path("fonts"));
            fs::copy(source, folder_.path(std::string("fonts/") + name));
        }
        folder_.write("etc/fonts.conf",
                      "<?xml version='1.0'?><!DOCTYPE fontconfig SYSTEM 'fonts.dtd'>"
                      "<fontconfig><dir>" +
                          folder_.path("fonts") + "</dir><cachedir>" + folder_.path("fontconfig") +
                          "</cachedir></fontconfig>");
        folder_.write("resources/System/Fonts/FontConfig.xml",
                      "<fontConfig><database mode='3'/><substitutions>"
                      "<substitution family='Ping'><family>Pong</family></substitution>"
                      "<substitution family='Pong'><family>Ping</family></substitution>"
                      "<substitution family='nimbra_sans'><family>DejaVu Sans</family>"
                      "</substitution>"
                      "<substitution family='nimbra_ja'><family>DejaVu Sans Mono</family>"
                      "</substitution>"
                      "<substitution family='nimbra_zh-Hans'><family>DejaVu Serif</family>"
                      "</substitution></substitutions></fontConfig>");
        // What has just been written is not settled: lists of it are not kept.
        const auto past = fs::file_time_type::clock::now() - std::chrono::hours(1);
        for (const auto& entry : fs::recursive_directory_iterator(folder_.path()))
            fs::last_write_time(entry, past);
        fs::last_write_time(folder_.path(), past);
    }

    std::string database() const { return "cache/FontProbe/SystemFonts2.db"; }

    // What the probe prints, after a line for each in the log; "failed" when it does not end well.
    std::string run(const std::string& language = "en") const {
        const std::string command =
            "env HOME='" + folder_.path("home") + "' XDG_CACHE_HOME='" + folder_.path("cache") +
            "' FONTCONFIG_FILE='" + folder_.path("etc/fonts.conf") + "' NIMBRA_RESOURCES='" +
            folder_.path("resources") +
            "' NIMBRA_LOG_LEVEL=4 LC_ALL=en_US.UTF-8 LANGUAGE=" + language +
            " '" FONT_PROBE "' 'dejavu-sans BOLD' nimbra_sans nothing Ping 2>&1";
        std::FILE* const pipe = popen(command.c_str(), "r");
        std::string output;
        char text[512];
        while (std::fgets(text, sizeof text, pipe))
            output += text;
        return pclose(pipe) == 0 ? output : "failed\n" + output;
    }

    static std::string answers(const char* cjk) {
        return "dejavu-sans BOLD: DejaVuSans-Bold\nnimbra_sans: DejaVuSans\nnothing: -\nPing: -\n"
               "cjk: " +
               std::string(cjk) + "\n";
    }
    static constexpr const char* kLoop = "Reached 5 recursive substitution. Stopping.\n";

    struct Outcome {
        std::string answers; // Without the log.
        int opened = -1;     // Font files, also those that fontconfig opens to make its caches.
    };
    static Outcome outcomeOf(const std::string& output) {
        Outcome outcome;
        std::stringstream lines(output);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("opened "))
                outcome.opened = std::stoi(line.substr(7));
            else if (!line.starts_with("["))
                outcome.answers += line + "\n";
        }
        return outcome;
    }

    // Another number for each file that takes the place of one; 0 for none.
    ino_t databaseFile() const {
        struct stat status {};
        return stat(folder_.path(database()).c_str(), &status) == 0 ? status.st_ino : 0;
    }

    enum class Database { Believed, MadeAnew };
    // Runs the probe and looks at its answers, and whether it opened all the fonts or none.
    void expectRun(Database database, const std::string& what, const char* cjk = "DejaVuSerif",
                   const std::string& language = "en") const {
        const ino_t before = databaseFile();
        const Outcome outcome = outcomeOf(run(language));
        EXPECT_EQ(outcome.answers, answers(cjk)) << what;
        if (database == Database::Believed) {
            EXPECT_EQ(outcome.opened, 0) << what;
            EXPECT_EQ(databaseFile(), before) << what;
        } else {
            EXPECT_GE(outcome.opened, 4) << what;
            EXPECT_NE(databaseFile(), before) << what;
        }
    }

    test::TemporaryFolder folder_;
};

TEST_F(FMLibraryShared, OpensNoFontOnceItHasADatabase) {
    EXPECT_NE(run().find(kLoop), std::string::npos);
    ASSERT_TRUE(folder_.has(database()));
    expectRun(Database::Believed, "the second run");
    EXPECT_TRUE(folder_.has("cache/FontProbe/HostFonts.list"));
    expectRun(Database::Believed, "the third run, without fontconfig");
}

TEST_F(FMLibraryShared, MakesADatabaseAnewWhenItDoesNotHold) {
    const struct {
        const char* what;
        void (*change)(const test::TemporaryFolder& folder);
    } cases[] = {
        {"a changed font",
         [](const auto& folder) {
             fs::last_write_time(folder.path("fonts/DejaVuSerif.ttf"),
                                 fs::file_time_type::clock::now());
         }},
        {"a new font",
         [](const auto& folder) {
             fs::copy("/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf",
                      folder.path("fonts/DejaVuSerif-Bold.ttf"));
         }},
        {"a font that is gone",
         [](const auto& folder) { fs::remove(folder.path("fonts/DejaVuSerif-Bold.ttf")); }},
        {"another configuration",
         [](const auto& folder) {
             fs::last_write_time(folder.path("resources/System/Fonts/FontConfig.xml"),
                                 fs::file_time_type::clock::now());
         }},
        {"no database", [](const auto& folder) { fs::remove_all(folder.path("cache")); }},
    };
    run();
    for (const auto& [what, change] : cases) {
        change(folder_);
        expectRun(Database::MadeAnew, what);
        expectRun(Database::Believed, std::string("the run after ") + what);
    }
}

TEST_F(FMLibraryShared, IsMadeForTheUsersLanguages) {
    run();
    expectRun(Database::MadeAnew, "Japanese", "DejaVuSansMono", "ja");
    expectRun(Database::Believed, "Japanese again", "DejaVuSansMono", "ja");
    expectRun(Database::MadeAnew, "Korean, as simplified Chinese", "DejaVuSerif", "ko_KR");
}

TEST_F(FMLibraryShared, SurvivesDamageToItsDatabase) {
    run();
    const std::string whole = folder_.read(database());
    ASSERT_GT(whole.size(), 2048u);
    std::mt19937 random(3);
    for (int damage = 0; damage < 40; ++damage) {
        std::string bytes = whole;
        if (damage % 2 == 0) {
            bytes.resize(random() % bytes.size());
            folder_.write(database(), bytes);
            expectRun(Database::MadeAnew, "cut to " + std::to_string(bytes.size()));
            continue;
        }
        for (int flip = 0; flip < 1 << damage / 8; ++flip)
            bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
        folder_.write(database(), bytes);
        // A flipped bit in a font's name makes another name, which is no fault of the file.
        EXPECT_GE(outcomeOf(run()).opened, 0) << "flipped bits, " << damage;
    }
    std::string bytes = whole;
    const std::size_t version = bytes.find("0102\x09");
    ASSERT_NE(version, bytes.npos);
    bytes[version + 4] = 8;
    folder_.write(database(), bytes);
    expectRun(Database::MadeAnew, "an older version");
    expectRun(Database::Believed, "the run after it");
}

TEST_F(FMLibraryShared, SurvivesDamageToTheListOfFonts) {
    const std::string name = "cache/FontProbe/HostFonts.list";
    run();
    run();
    ASSERT_TRUE(folder_.has(name));
    const std::string whole = folder_.read(name);
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 9) {
        folder_.write(name, whole.substr(0, size));
        expectRun(Database::Believed, "cut to " + std::to_string(size));
        EXPECT_EQ(folder_.read(name), whole) << size;
    }
}

TEST_F(FMLibraryShared, MayBeMadeByManyProcessesAtOnce) {
    for (int round = 0; round < 3; ++round) {
        fs::remove_all(folder_.path("cache"));
        std::vector<std::thread> processes;
        for (int process = 0; process < 4; ++process)
            processes.emplace_back(
                [this] { EXPECT_EQ(outcomeOf(run()).answers, answers("DejaVuSerif")); });
        for (std::thread& process : processes)
            process.join();
        expectRun(Database::Believed, "the run after them");
    }
}

} // namespace
