// NameInferenceTest.cpp: what names of fonts are taken to say.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>

#include <gtest/gtest.h>

#include <string>

namespace {

cf::Ref<CFStringRef> string(const char* text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
}

std::string textOf(CFStringRef string) {
    char text[512] = "";
    CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

TEST(NameInference, SortsTheWordsOfAName) {
    const struct {
        const char* what;
        const char* name;
        const char* family;
        uint32_t traits;
        int32_t weight;
    } cases[] = {
        {"a family alone", "Optima", "optima", 0, 0},
        {"words at spaces, hyphens and capitals", "DejaVu Sans-MonoWide", "dejavusansmono", 0x20,
         0},
        {"doubled separators are one", "Noto - Sans", "notosans", 0, 0},
        {"capitals in a row are one word", "Arial-BoldMT", "arial", 2, 400},
        {"a digit ends no word", "Inter18Bold", "inter18bold", 0, 0},
        {"an alias after a condensed family", "Helvetica Neue Condensed Bold", "helveticaneue",
         0x42, 400},
        {"condensed without an alias stays", "Roboto Condensed", "robotocondensed", 0x40, 0},
        {"a misspelled alias", "Academy Engraved LET:1.0", "academyenravedlet", 0, 0},
        {"a shortened alias", "Bodoni Ornaments ITC TT", "bodoniornamnts", 0, 0},
        {"two words are one weight", "SemiBold", "", 0, 300},
        {"two words with a family before", "Foo Extra-Black", "foo", 2, 620},
        {"words that are no weight together", "Foo Sans Light", "foosans", 0, -400},
        {"ultra light", "FooUltraLight", "foo", 0, -800},
        {"ultra bold", "Foo Ultra Bold", "foo", 2, 620},
        {"the first weight counts, others are names", "Arial Black Bold", "arialbold", 2, 620},
        {"regular is a weight, too", "Foo Regular Bold", "foobold", 0, 0},
        {"medium is not bold", "Foo Medium Italic", "foo", 1, 230},
        {"oblique is italic", "Foo Book Oblique", "foo", 1, 0},
        {"written as one lower-case word", "foo semibold", "foo", 0, 300},
        {"other scripts", "ÄrialÖbliqueΩmegaBold", "ärialöbliqueωmega", 2, 400},
        {"nothing", "", "", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CFStringRef family = nullptr;
        uint32_t traits = ~0u;
        int32_t weight = -1;
        FMLibraryInferFromName(string(c.name).get(), &family, &traits, &weight);
        const auto owned = cf::adopt(family);
        EXPECT_EQ(textOf(family), c.family);
        EXPECT_EQ(traits, c.traits);
        EXPECT_EQ(weight, c.weight);
    }
}

TEST(NameInference, AnswersWhatItIsAskedFor) {
    FMLibraryInferFromName(string("Foo Bold").get(), nullptr, nullptr, nullptr);
    auto family = reinterpret_cast<CFStringRef>(1);
    uint32_t traits = 1;
    int32_t weight = 1;
    FMLibraryInferFromName(nullptr, &family, &traits, &weight);
    EXPECT_EQ(family, nullptr);
    EXPECT_EQ(traits, 0u);
    EXPECT_EQ(weight, 0);
}

} // namespace
