// CommandLineTest.cpp: svg2png as its user meets it: exit status, messages, files.

#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string messages; // What went to stderr.
};

class CommandLine : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "svg2png-XXXXXX";
        ASSERT_TRUE(mkdtemp(pattern.data()));
        folder_ = pattern;
        write("good.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10'>"
                          "<rect width='10' height='10' fill='#f00' fill-opacity='.5'/></svg>");
    }
    void TearDown() override { fs::remove_all(folder_); }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    // Runs the program in the test's folder.
    Outcome run(const std::string& arguments, const std::string& before = {}) const {
        const std::string command = "cd '" + folder_.string() + "'; " + before + "'" SVG2PNG "' " +
                                    arguments + " 2>&1 >/dev/null";
        Outcome outcome;
        std::FILE* pipe = popen(command.c_str(), "r");
        std::array<char, 256> buffer;
        while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
            outcome.messages.append(buffer.data(), count);
        const int status = pclose(pipe);
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return outcome;
    }

    std::vector<std::string> pngFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(folder_))
            if (entry.path().string().find(".png") != std::string::npos)
                names.push_back(entry.path().filename());
        return names;
    }

    fs::path folder_;
};

TEST_F(CommandLine, RefusesBadInputWithOneLineAndLeavesNoFile) {
    write("empty.svg", "");
    write("cut.svg", "<svg xmlns='http://www.w3.org/2000/svg'><rect width='10'");
    write("page.svg", "<html><body/></html>");
    write("flat.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='0' height='10'/>");
    write("vast.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='1e9' height='1e9'/>");
    write("bomb.svg", "<!DOCTYPE svg [<!ENTITY a 'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa'>"
                      "<!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>"
                      "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;'>"
                      "<!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;'>"
                      "<!ENTITY e '&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;'>"
                      "<!ENTITY f '&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;'>]>"
                      "<svg xmlns='http://www.w3.org/2000/svg'>&f;&f;&f;&f;</svg>");
    std::string deep = "<svg xmlns='http://www.w3.org/2000/svg'>";
    for (int i = 0; i < 100000; ++i)
        deep += "<g>";
    write("deep.svg", deep);
    fs::create_directory(folder_ / "folder.png.d");
    const struct {
        const char* arguments;
        int status;
        const char* message; // Part of it.
    } cases[] = {
        {"missing.svg o.png", 1, "missing.svg: cannot read: No such file"},
        {". o.png", 1, "cannot read: Is a directory"},
        {"empty.svg o.png", 1, "empty.svg: line 1: Document is empty"},
        {"cut.svg o.png", 1, "cut.svg: line 1: "},
        {"page.svg o.png", 1, "not an SVG document"},
        {"flat.svg o.png", 1, "width or height is 0"},
        {"vast.svg o.png", 1, "too large"},
        {"bomb.svg o.png", 1, "bomb.svg: line 1: "},
        {"deep.svg o.png", 1, "deep.svg: line 1: "},
        {"good.svg o.png 0", 1, "\"0\" is not a size"},
        {"good.svg o.png -5", 1, "\"-5\" is not a size"},
        {"good.svg o.png 10 1e9", 1, "\"1e9\" is not a size"},
        {"good.svg o.png 99999999999999999999", 1, "is not a size"},
        {"good.svg o.png ten", 1, "\"ten\" is not a size"},
        {"good.svg o.png nan", 1, "\"nan\" is not a size"},
        {"good.svg o.png ''", 1, "\"\" is not a size"},
        {"good.svg o.png 2.5", 1, "\"2.5\" is not a size"},
        {"good.svg o.png 32767 32767", 1, "too large"},
        {"good.svg nowhere/o.png", 1, "cannot write: No such file"},
        {"good.svg folder.png.d", 1, "cannot write: not a regular file"},
        {"good.svg /dev/full", 1, "cannot write: not a regular file"},
        {"--batch missing.list", 1, "missing.list: cannot read"},
    };
    for (const auto& [arguments, status, message] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_NE(outcome.messages.find(message), std::string::npos)
            << arguments << ": " << outcome.messages;
        EXPECT_EQ(std::ranges::count(outcome.messages, '\n'), 1)
            << arguments << ": " << outcome.messages;
        EXPECT_EQ(pngFiles(), std::vector<std::string>{"folder.png.d"}) << arguments;
    }
}

TEST_F(CommandLine, ExplainsItselfToWhoCallsItWrongly) {
    for (const char* arguments : {"", "good.svg", "good.svg o.png 1 2 3", "--help", "--batch"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_TRUE(outcome.messages.starts_with("usage: svg2png ")) << arguments;
    }
}

TEST_F(CommandLine, LeavesTheOldPictureWhenTheNewOneCannotBeWritten) {
    write("o.png", "the old one");
    // The file may grow to one block; with the signal ignored the program sees an error instead.
    const Outcome outcome = run("good.svg o.png 3000 3000", "trap '' XFSZ; ulimit -f 1; ");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.messages.starts_with("svg2png: o.png: cannot write")) << outcome.messages;
    EXPECT_EQ(pngFiles(), std::vector<std::string>{"o.png"});
    EXPECT_EQ(fs::file_size(folder_ / "o.png"), 11u);
}

TEST_F(CommandLine, WritesStraightAlphaInTheSizeThatFollows) {
    const struct {
        const char* sizes;
        unsigned width;
        unsigned height;
    } cases[] = {{"", 20, 10}, {"40", 40, 20}, {"30 30", 30, 30}, {"1", 1, 1}};
    for (const auto& [sizes, width, height] : cases) {
        const Outcome outcome = run(std::string("good.svg o.png ") + sizes);
        EXPECT_EQ(outcome.status, 0) << outcome.messages;
        EXPECT_EQ(outcome.messages, "");
        png_image image = {};
        image.version = PNG_IMAGE_VERSION;
        ASSERT_TRUE(png_image_begin_read_from_file(&image, (folder_ / "o.png").c_str()));
        EXPECT_EQ(image.format, png_uint_32(PNG_FORMAT_RGBA));
        EXPECT_EQ(image.width, width) << sizes;
        EXPECT_EQ(image.height, height) << sizes;
        std::vector<png_byte> pixels(PNG_IMAGE_SIZE(image));
        ASSERT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
        if (width > 1) { // Half the drawing is red at half opacity: red must stay 255.
            const png_byte* pixel = &pixels[(height / 2 * width + width / 4) * 4];
            EXPECT_EQ(std::vector<int>(pixel, pixel + 4), (std::vector<int>{255, 0, 0, 128}));
            EXPECT_EQ(pixels[(height / 2 * width + width * 3 / 4) * 4 + 3], 0);
        }
    }
}

TEST_F(CommandLine, DrawsTheGoodFilesOfABatchAndSaysWhatItCannotDrawOnce) {
    write("text.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>"
                      "<text>a</text><foreignObject/><foreignObject/></svg>");
    write("list", "good.svg\ta.png\t16\nmissing.svg\tb.png\nnothing\ntext.svg\tc.png\t8\t8\n");
    const Outcome outcome = run("--batch list");
    EXPECT_EQ(outcome.status, 1);
    auto files = pngFiles();
    std::ranges::sort(files);
    EXPECT_EQ(files, (std::vector<std::string>{"a.png", "c.png"}));
    EXPECT_EQ(outcome.messages, "svg2png: missing.svg: cannot read: No such file or directory\n"
                                "svg2png: list: not INPUT, OUTPUT and at most two sizes: nothing\n"
                                "svg2png: text.svg: cannot draw foreignObject yet\n");
}

} // namespace
