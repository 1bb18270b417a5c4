// FMConfigTest.cpp: what configurations say, and what becomes of those that say nonsense.

#include <FontManager/FontManager.h>

#include "Config/FontOverrides.h"
#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"

#include <fontconfig/fontconfig.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::StartsWith;
using Config = cf::Ref<FMConfigRef>;
constexpr const char* kFile = "System/Fonts/FontConfig.xml";

// The folder where the library looks for its resources, of which it asks once in a process.
const test::TemporaryFolder& resources() {
    static const test::TemporaryFolder folder;
    static const bool isSet = setenv("NIMBRA_RESOURCES", folder.path().c_str(), 1) == 0;
    EXPECT_TRUE(isSet);
    return folder;
}

Config configOf(const std::string& document) {
    resources().write(kFile, document);
    return cf::adopt(FMConfigCreateDefault());
}

std::string textOf(CFTypeRef object) {
    char text[1024] = "";
    CFStringGetCString(static_cast<CFStringRef>(object), text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

cf::Ref<CFStringRef> string(const std::string& text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
}

std::vector<std::string> assetsOf(const Config& config) {
    const CFArrayRef urls = FMConfigGetAssetFontURLs(config.get());
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < CFArrayGetCount(urls); ++i)
        texts.push_back(
            textOf(CFURLGetString(static_cast<CFURLRef>(CFArrayGetValueAtIndex(urls, i)))));
    return texts;
}

// What stands for a family; nothing for a family that stands for itself.
std::vector<std::string> substitutesOf(const Config& config, const std::string& family) {
    const auto all = cf::adopt(FMConfigCopyFontSubstitution(config.get()));
    const auto found =
        static_cast<CFArrayRef>(CFDictionaryGetValue(all.get(), string(family).get()));
    std::vector<std::string> texts;
    for (CFIndex i = 0; found && i < CFArrayGetCount(found); ++i)
        texts.push_back(textOf(CFArrayGetValueAtIndex(found, i)));
    return texts;
}

FMFontMetrics overridden(const Config& config, const std::string& family) {
    FMFontMetrics metrics = {};
    const auto overrides = cf::adopt(FMConfigAdoptFontOverrides(config.get()));
    fm::applyOverrides(overrides.get(), string(family).get(), metrics);
    return metrics;
}

// A family that fontconfig knows, of plain words.
std::string installedFamily() {
    FcPattern* const any = FcPatternCreate();
    FcObjectSet* const objects = FcObjectSetBuild(FC_FAMILY, nullptr);
    FcFontSet* const set = FcFontList(nullptr, any, objects);
    std::string found;
    for (int i = 0; i < set->nfont; ++i) {
        FcChar8* family = nullptr;
        FcPatternGetString(set->fonts[i], FC_FAMILY, 0, &family);
        const std::string name = reinterpret_cast<char*>(family);
        if (name == "DejaVu Sans" || (found.empty() && name.find(' ') == std::string::npos))
            found = name;
    }
    FcFontSetDestroy(set);
    FcObjectSetDestroy(objects);
    FcPatternDestroy(any);
    return found;
}

std::string keyOf(const std::string& family) {
    CFStringRef key = nullptr;
    FMLibraryInferFromName(string(family).get(), &key, nullptr, nullptr);
    return textOf(cf::adopt(key).get());
}

TEST(FMConfig, TellsWhatItsFileSays) {
    const Config config = configOf(R"(<?xml version="1.0"?>
<fontConfig>
    <database mode="1"/>
    <assets>
        <font path="/fonts/A b.ttf"/> <!-- absolute -->
        <font path="more/B.otf"></font>
    </assets>
    <substitutions>
        <substitution family="Old Face"><family> New Face </family><family>Newer</family>
        </substitution>
        <substitution family="nimbra_zh-Hans"><family>None Such Bold</family></substitution>
    </substitutions>
    <overrides>
        <override family="Tall Face">
            <metrics heightMultiple="1.25" heightMultipleForUIKit="1.5"/>
            <metrics ascent="-7" italicAngle="-12.5" weight="400"/>
        </override>
        <override family="Tall Face"><metrics ascent="1900"/></override>
    </overrides>
</fontConfig>)");
    EXPECT_EQ(FMConfigGetType(config.get()), 1);
    EXPECT_THAT(assetsOf(config),
                ElementsAre("file:///fonts/A%20b.ttf",
                            "file://" + resources().path("System/Fonts/more/B.otf")));
    EXPECT_THAT(substitutesOf(config, "oldface"), ElementsAre("newface", "newer"));
    // Keys are what names are resolved by, without style and weight.
    EXPECT_THAT(substitutesOf(config, "nimbra_zhhans"), ElementsAre("nonesuch"));

    const FMFontMetrics metrics = overridden(config, "tallface");
    EXPECT_EQ(metrics.heightMultiple, 1.25f);
    EXPECT_EQ(metrics.heightMultipleForUIKit, 1.5f);
    EXPECT_EQ(metrics.ascent, 1900);
    EXPECT_EQ(metrics.italicAngle, -12 * 65536 - 32768);
    EXPECT_EQ(metrics.weight, 400);
    EXPECT_EQ(metrics.descent, 0);
    EXPECT_EQ(FMConfigAdoptFontOverrides(config.get()), nullptr);
}

TEST(FMConfig, PassesOverWhatItDoesNotKnow) {
    const CollectedLog log;
    const Config config = configOf(R"(<fontConfig color="green">stray
    <database mode="three"/><future><deep><deeper/></deep>text</future>
    <assets><sound/><font/><font path=""/></assets>
    <substitutions><substitution family=""><family>Any</family></substitution>
        <substitution><family>Any</family></substitution>
        <substitution family="Bold"/><substitution family="Face"><b>x</b><family/></substitution>
    </substitutions>
    <overrides><override family="Face">
        <metrics ascent="1e300" descent="nan" leading="12px" heightMultiple="0" width="3"/>
        <metrics xHeight=" 500 " capHeight="" heightMultipleForUIKit="-inf"/>
    </override></overrides></fontConfig>)");
    EXPECT_EQ(FMConfigGetType(config.get()), 3);
    EXPECT_THAT(assetsOf(config), ElementsAre());
    EXPECT_EQ(CFDictionaryGetCount(cf::adopt(FMConfigCopyFontSubstitution(config.get())).get()), 0);
    FMFontMetrics expected = {};
    expected.xHeight = 500;
    const FMFontMetrics metrics = overridden(config, "face");
    EXPECT_EQ(std::memcmp(&metrics, &expected, sizeof expected), 0);
    EXPECT_EQ(log.lines().size(), 17u);
    for (const std::string& line : log.lines())
        EXPECT_EQ(line[0], '4') << line;
}

TEST(FMConfig, IsTheBuiltInOneInPlaceOfAFileThatIsMalformed) {
    const std::string start = "<fontConfig><database mode=\"1\"/>";
    std::string deep, laughs = "<!DOCTYPE fontConfig [<!ENTITY a0 \"ha\">";
    for (int i = 0; i < 100000; ++i)
        deep += "<x>";
    for (int i = 0; i < 40; ++i) {
        const std::string previous = "&a" + std::to_string(i) + ";";
        laughs += "<!ENTITY a" + std::to_string(i + 1) + " \"" + previous + previous + "\">";
    }
    const struct {
        const char* what;
        std::string document;
    } cases[] = {
        {"nothing", ""},
        {"no XML", "mode = 1"},
        {"another root", "<fonts><database mode=\"1\"/></fonts>"},
        {"an end that is missing", start},
        {"an end of another element", start + "</fontconfig>"},
        {"two roots", start + "</fontConfig><fontConfig/>"},
        {"no UTF-8", start + "\xff\xfe</fontConfig>"},
        {"an unknown entity", start + "&what;</fontConfig>"},
        {"an attribute twice", "<fontConfig><database mode=\"1\" mode=\"1\"/></fontConfig>"},
        {"nesting without end", start + deep},
        {"an entity bomb", laughs + "]>" + start + "&a40;</fontConfig>"},
        {"an entity bomb in an attribute",
         laughs + "]><fontConfig><database mode=\"&a40;\"/></fontConfig>"},
        {"a file as entity", "<!DOCTYPE fontConfig [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>" +
                                 start + "&x;</fontConfig>"},
        {"a document type elsewhere",
         "<!DOCTYPE fontConfig SYSTEM \"http://localhost:1/x.dtd\">" + start + "</fontConfig>"},
        {"more than a megabyte", start + std::string(1 << 20, ' ') + "</fontConfig>"},
    };
    for (const auto& [what, document] : cases) {
        const CollectedLog log;
        const Config config = configOf(document);
        ASSERT_TRUE(config) << what;
        EXPECT_EQ(FMConfigGetType(config.get()), 3) << what;
        EXPECT_FALSE(substitutesOf(config, "nimbra_sans").empty()) << what;
        // The last line, perhaps after warnings, says what ended the reading.
        ASSERT_FALSE(log.lines().empty()) << what;
        EXPECT_THAT(log.lines().back(), StartsWith("3 ")) << what;
    }
}

TEST(FMConfig, SubstitutesTheFirstFamilyThatIsInstalled) {
    const std::string family = installedFamily();
    if (family.empty())
        GTEST_SKIP() << "no font with a plain family name is installed";
    const auto element = [](const std::string& name, const std::string& rest) {
        return "<substitution family=\"" + name + "\"" + rest + "</substitution>";
    };
    const std::string missing = "<family>None Such</family><family>Nor This</family>";
    const std::string installed = "<family>" + family + "</family>";
    const Config config =
        configOf("<fontConfig><substitutions>" + element("First", ">" + missing + installed) +
                 element("Itself", "><family>Itself</family>" + missing) +
                 element(family, ">" + installed + missing) +
                 element("Host", " generic=\"sans-serif\" language=\"ja\">" + missing) +
                 element("Unasked", " generic=\"sans-serif\">" + installed) +
                 "</substitutions></fontConfig>");
    EXPECT_THAT(substitutesOf(config, "first"), ElementsAre(keyOf(family), "nonesuch", "northis"));
    EXPECT_THAT(substitutesOf(config, "unasked"), ElementsAre(keyOf(family)));
    // What stands for itself would be looked up again and again.
    EXPECT_THAT(substitutesOf(config, "itself"), ElementsAre());
    EXPECT_THAT(substitutesOf(config, keyOf(family)), ElementsAre());
    // fontconfig always has an answer to "sans-serif", when anything is installed.
    const auto byHost = substitutesOf(config, "host");
    ASSERT_EQ(byHost.size(), 3u);
    EXPECT_NE(byHost[0], "nonesuch");
}

TEST(FMConfig, ShipsOneThatFindsItsFontsOnThisMachine) {
    std::filesystem::remove(resources().path(kFile));
    const CollectedLog log;
    const Config config = cf::adopt(FMConfigCreateDefault());
    EXPECT_EQ(FMConfigGetType(config.get()), kFMConfigTypeCachedDatabase);
    for (const char* const name : {"nimbra_sans", "nimbra_emoji", "nimbra_ja", "nimbra_zhhans",
                                   "nimbra_zhhant", "nimbra_kr", "helvetica", "timesroman"})
        EXPECT_FALSE(substitutesOf(config, name).empty()) << name;
    if (installedFamily() == "DejaVu Sans") {
        EXPECT_EQ(substitutesOf(config, "nimbra_sans")[0], "dejavusans");
    }
    EXPECT_THAT(log.lines(), ElementsAre());
}

} // namespace
