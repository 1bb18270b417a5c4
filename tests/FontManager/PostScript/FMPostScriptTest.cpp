// FMPostScriptTest.cpp: PostScript programs of a small font, to the byte.

#include <FontManager/FMFont.h>
#include <FontManager/FMPostScript.h>

#include "Support/FontFiles.h"
#include "Support/TemporaryFolder.h"
#include "TinyFont.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using test::Font;
using test::TinyFont;

namespace {

using Encoding = std::array<CGGlyph, 256>;

const TinyFont kTiny = {.glyphs = {{".notdef", {}, 500},
                                   {"corner", {{100, 0}, {100, 50}, {0, 50}}, 400},
                                   {"arch", {{30, 0}, {80, 100, false}, {130, 0}}, 600},
                                   {"space", {}, 250},
                                   {"", {{0, 0}, {5, 5}, {0, 5}}, 250}}};

Font open(const TinyFont& font) {
    const std::string bytes = font.bytes();
    return Font(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
}

std::string textOf(CFDataRef data) {
    if (!data)
        return "(none)";
    std::string text(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                     static_cast<std::size_t>(CFDataGetLength(data)));
    CFRelease(data);
    return text;
}

std::string subset(FMFontRef font, int format, std::vector<CGGlyph> glyphs,
                   const Encoding& encoding = {}) {
    return textOf(FMFontCreatePostScriptSubset(font, CFSTR("Tiny"), CGFontPostScriptFormat(format),
                                               glyphs.data(), glyphs.size(), encoding.data()));
}

Encoding latin() {
    Encoding encoding{};
    encoding[65] = 1;
    encoding[66] = 2;
    encoding[255] = 4;
    return encoding;
}

// As printing systems have known these programs for long.
const std::string kVector = "256 array 0 1 255 { 1 index exch /.notdef put } for\n"
                            "dup 65 /corner put\n"
                            "dup 66 /arch put\n";
const std::string kType1Head = "%!FontType1-1.0: Tiny 1.000.1.000\n"
                               "14 dict begin /FontName /Tiny def\n"
                               "/PaintType 0 def\n"
                               "/FontType 1 def\n"
                               "/Encoding " +
                               kVector +
                               "readonly def\n"
                               "/FontMatrix [ 0.0009765625 0 0 0.0009765625 0 0 ]\n"
                               "/FontBBox { -20 -200 700 900 } def\n"
                               "currentdict currentfile eexec\n";
const std::string kPrivate =
    "dup /Private 13 dict dup begin\n"
    "/RD { string currentfile exch readstring pop } executeonly def\n"
    "/ND { noaccess def } executeonly def\n"
    "/NP { noaccess put } executeonly def\n"
    "/BlueValues [] def\n"
    "/MinFeature { 16 16 } def\n"
    "/OtherSubrs [{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{ 16384 div 4 1 roll 16384 div 4 1 roll "
    "16384 div 4 1 roll 16384 div 4 1 roll 0 0 matrix astore matrix currentmatrix exch concat } "
    "executeonly { setmatrix } executeonly] noaccess def\n";
const std::string kCorner = "0 720 hsbw\n"
                            "100 hmoveto\n"
                            "50 vlineto\n"
                            "-100 hlineto\n"
                            "closepath\n"
                            "ND\n";
const std::string kArch = "30 720 hsbw\n"
                          "30 hmoveto\n"
                          "80 100 130 0 rrcurveto\n"
                          "closepath\n"
                          "ND\n";
const std::string kPrivateEnd = "end end readonly put noaccess put\n"
                                "dup /FontName get exch definefont pop\n"
                                "mark currentfile closefile\n";

std::string trailer() {
    std::string text;
    for (int line = 0; line < 8; ++line)
        text += std::string(64, '0') + "\n";
    return text + "cleartomark end\n";
}

std::string charStrings(int count) {
    return "2 index /CharStrings " + std::to_string(count) + " dict dup begin\n";
}

TinyFont withPowerOfTwo() {
    TinyFont font = kTiny;
    font.unitsPerEm = 1024;
    return font;
}

} // namespace

TEST(FMPostScript, EncodingNamesTheGlyphsThatHaveNames) {
    const Font font = open(kTiny);
    ASSERT_TRUE(font);
    EXPECT_EQ(textOf(FMFontCreatePostScriptEncoding(font.get(), latin().data())), kVector);
    EXPECT_EQ(FMFontCreatePostScriptEncoding(font.get(), nullptr), nullptr);
}

TEST(FMPostScript, Type1IsThisTextToTheByte) {
    const Font font = open(withPowerOfTwo());
    std::string expected = kPrivate + charStrings(2);
    expected += "/corner " + std::to_string(expected.size()) + " RD\n" + kCorner;
    expected += "/arch " + std::to_string(expected.size()) + " RD\n" + kArch;
    EXPECT_EQ(subset(font.get(), 1, {1, 2}, latin()),
              kType1Head + expected + kPrivateEnd + trailer());
}

TEST(FMPostScript, AGlyphWithoutANameEndsTheGlyphsOfAType1Font) {
    const Font font = open(withPowerOfTwo());
    std::string expected = kPrivate + charStrings(3);
    expected += "/corner " + std::to_string(expected.size()) + " RD\n" + kCorner;
    EXPECT_EQ(subset(font.get(), 1, {1, 4, 2}, latin()), kType1Head + expected + trailer());
}

TEST(FMPostScript, Type42IsThisTextToTheByte) {
    const Font font = open(kTiny);
    EXPECT_EQ(subset(font.get(), 42, {2, 4, 1}, latin()),
              "%!PS-TrueTypeFont-1.000-1.000-1\n"
              "14 dict begin /FontName /Tiny def\n"
              "/PaintType 0 def\n"
              "/Encoding " +
                  kVector +
                  "readonly def\n"
                  "/FontType 42 def\n"
                  "/FontMatrix matrix def\n"
                  "/FontBBox [ 1000 -20 1 index div -200 2 index div 700 3 index div 900 5 -1 roll "
                  "div ] cvx def\n"
                  "/sfnts [<\n"
                  ">] def\n"
                  "/CharStrings 3 dict dup begin\n"
                  "/arch 0 def\n"
                  "/corner 2 def\n"
                  "end readonly def\n"
                  "currentdict dup\n"
                  "/FontName get exch definefont pop end\n");
}

// Deliberate: the line names the family class where readers expect embedding permissions.
TEST(FMPostScript, TheFamilyClassIsWrittenAsFSType) {
    const struct {
        const char* what;
        uint8_t familyClass;
        const char* line; // None for no line.
    } cases[] = {
        {"none", 0, ""},
        {"serifs", 2, "/FontInfo 1 dict dup begin /FSType 2 def end readonly def\n"},
        {"no serifs, which is negative in four bits", 8,
         "/FontInfo 1 dict dup begin /FSType 4294967288 def end readonly def\n"},
    };
    for (const auto& [what, familyClass, line] : cases) {
        TinyFont tiny = kTiny;
        tiny.familyClass = familyClass;
        const Font font = open(tiny);
        for (const int format : {1, 42}) {
            const std::string text = subset(font.get(), format, {1});
            const std::size_t second = text.find('\n') + 1;
            EXPECT_EQ(text.substr(second, text.find("14 dict") - second), line) << what;
        }
    }
}

TEST(FMPostScript, OnlySomeFontsAndFormatsCanBeWritten) {
    const struct {
        const char* what;
        uint16_t permissions;
        int format;
        bool isWritten;
    } cases[] = {
        {"no restriction", 0, 1, true},
        {"no subsetting", 0x0100, 1, false},
        {"no subsetting of a wrapper", 0x0100, 42, false},
        {"restricted licence, which is for others to refuse", 0x0002, 42, true},
        {"type 3", 0, 3, false},
        {"no type at all", 0, 0, false},
    };
    for (const auto& [what, permissions, format, isWritten] : cases) {
        TinyFont tiny = kTiny;
        tiny.permissions = permissions;
        EXPECT_EQ(subset(open(tiny).get(), format, {1}) != "(none)", isWritten) << what;
    }
    EXPECT_EQ(subset(test::openFont(test::kBitmapFont).get(), 1, {1}), "(none)");
    EXPECT_EQ(FMFontCreatePostScriptSubset(open(kTiny).get(), nullptr, kCGFontPostScriptFormatType1,
                                           nullptr, 0, nullptr),
              nullptr);
}

namespace {

// What Ghostscript prints when it runs a program.
std::string interpret(const std::string& program) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("program.ps", program);
    const std::string command = "gs -q -dNODISPLAY -dBATCH -dNOPAUSE -dSAFER " + path + " 2>&1";
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[256];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe))
        output += buffer;
    if (pipe)
        pclose(pipe);
    return output;
}

} // namespace

// The glyphs themselves are out of its reach: they follow "eexec", after which an interpreter
// expects encrypted bytes, and a wrapper without tables is no font to it.
TEST(FMPostScript, GhostscriptReadsWhatIsNotEncrypted) {
    if (std::system("command -v gs >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "there is no Ghostscript";
    const Font font = open(kTiny);
    const std::string type1 = subset(font.get(), 1, {1, 2}, latin());
    const std::string head = type1.substr(0, type1.find("currentdict currentfile eexec"));
    EXPECT_EQ(interpret(head + "FontName == FontType == /FontBBox load == Encoding 65 get == "
                               "Encoding 67 get == end == ==\n"),
              "/Tiny\n1\n{-20 -200 700 900}\n/corner\n/.notdef\n"
              "[0.001 0 0 0.001 0 0]\n/FontMatrix\n");
    const std::string type42 = subset(font.get(), 42, {1, 2}, latin());
    EXPECT_EQ(interpret(type42 + "/Tiny findfont /CharStrings get /arch get ==\n"), "1\n");
}
