// CFBundleTest.cpp: bundles of each layout, their resources, languages and code.

#include <CoreFoundation/CFBundle.h>

#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

using test::kNone;
using test::makeText;
using test::takeText;
using test::textOf;
using Bundle = cf::Ref<CFBundleRef>;
using URL = cf::Ref<CFURLRef>;

std::string info(const std::string& entries) {
    return "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
           "<string>org.example.bundle</string>" +
           entries + "</dict></plist>";
}

cf::Ref<CFArrayRef> texts(std::initializer_list<const char*> items) {
    const auto array = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const char* const item : items)
        CFArrayAppendValue(array.get(), makeText(item).get());
    return cf::retain<CFArrayRef>(array.get());
}

std::vector<std::string> listOf(const cf::Ref<CFArrayRef>& array) {
    std::vector<std::string> list;
    for (CFIndex i = 0; i < CFArrayGetCount(array.get()); ++i)
        list.push_back(textOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(array.get(), i))));
    return list;
}

class CFBundleInFolder : public testing::Test {
protected:
    URL url(const std::string& name) const {
        return cf::adopt(CFURLCreateWithFileSystemPath(nullptr, makeText(folder.path(name)).get(),
                                                       kCFURLPOSIXPathStyle, true));
    }
    Bundle open(const std::string& name) const {
        return cf::adopt(CFBundleCreate(nullptr, url(name).get()));
    }
    // A path as one below the test's folder.
    std::string below(const URL& url) const {
        const auto absolute = cf::adopt(CFURLCopyAbsoluteURL(url.get()));
        const std::string path =
            takeText(CFURLCopyFileSystemPath(absolute.get(), kCFURLPOSIXPathStyle));
        const std::string root = folder.path("") + "/";
        return path.starts_with(root) ? path.substr(root.size()) : path;
    }
    std::string resource(const Bundle& bundle, const char* name, const char* type,
                         const char* place = nullptr) const {
        const auto text = [](const char* part) { return part ? makeText(part) : nullptr; };
        return below(cf::adopt(CFBundleCopyResourceURL(bundle.get(), text(name).get(),
                                                       text(type).get(), text(place).get())));
    }

    test::TemporaryFolder folder;
};

TEST_F(CFBundleInFolder, HasOneOfThreeLayouts) {
    const struct {
        const char* what;
        const char* info;
        const char* resources;
        const char* executable;
    } cases[] = {
        {"contents", "Contents/Info.plist", "Contents/Resources/", "Contents/Linux/program"},
        {"resources", "Resources/Info.plist", "Resources/", "program"},
        {"flat", "Info.plist", "", "program"},
    };
    for (const auto& [what, infoFile, resources, executable] : cases) {
        const std::string root = std::string(what) + ".bundle/";
        folder.write(root + infoFile, info("<key>CFBundleExecutable</key><string>program</string>"
                                           "<key>CFBundleName</key><string>Name</string>"));
        folder.write(root + resources + "a.txt", "a");
        folder.write(root + executable, "");
        const Bundle bundle = open(root);
        ASSERT_TRUE(bundle) << what;
        EXPECT_EQ(textOf(CFBundleGetIdentifier(bundle.get())), "org.example.bundle") << what;
        EXPECT_EQ(textOf(static_cast<CFStringRef>(
                      CFBundleGetValueForInfoDictionaryKey(bundle.get(), kCFBundleNameKey))),
                  "Name")
            << what;
        EXPECT_EQ(resource(bundle, "a", "txt"), root + resources + "a.txt") << what;
        EXPECT_EQ(below(cf::adopt(CFBundleCopyExecutableURL(bundle.get()))), root + executable);
        EXPECT_EQ(below(cf::adopt(CFBundleCopyResourcesDirectoryURL(bundle.get()))) + "/",
                  root + resources);
        EXPECT_TRUE(CFEqual(cf::adopt(CFBundleCopyBundleURL(bundle.get())).get(), url(root).get()));
        const auto copied = cf::adopt(CFBundleCopyInfoDictionaryInDirectory(url(root).get()));
        EXPECT_TRUE(CFEqual(copied.get(), CFBundleGetInfoDictionary(bundle.get())));
    }
}

TEST_F(CFBundleInFolder, IsOneObjectWhileInUse) {
    folder.write("a/Info.plist", info(""));
    Bundle bundle = open("a");
    EXPECT_EQ(open("a"), bundle);
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.example.bundle")), bundle.get());
    const auto isListed = [](const Bundle& wanted) {
        const CFArrayRef all = CFBundleGetAllBundles();
        return bool(CFArrayContainsValue(all, {0, CFArrayGetCount(all)}, wanted.get()));
    };
    EXPECT_TRUE(isListed(bundle));
    EXPECT_TRUE(isListed(cf::retain(CFBundleGetMainBundle())));
    CFBundleGetAllBundles();
    bundle = open("a");

    folder.write("a/Info.plist", info("<key>CFBundleName</key><string>New</string>"));
    EXPECT_EQ(CFDictionaryGetCount(CFBundleGetInfoDictionary(bundle.get())), 1);
    folder.write("b/Info.plist", info(""));
    bundle = open("b");
    CFBundleGetAllBundles();
    EXPECT_EQ(CFDictionaryGetCount(CFBundleGetInfoDictionary(open("a").get())), 2)
        << "read anew once nobody held it";
}

TEST_F(CFBundleInFolder, PrefersResourcesForAllLanguagesThenTheUsers) {
    folder.write("b/Info.plist", info("<key>CFBundleDevelopmentRegion</key><string>xx</string>"));
    folder.write("b/both.txt", "");
    folder.write("b/xx.lproj/both.txt", "");
    folder.write("b/xx.lproj/own.txt", "");
    folder.write("b/xx.lproj/sub/deep.txt", "");
    folder.write("b/Base.lproj/base.txt", "");
    folder.write("b/yy.lproj/foreign.txt", "");
    folder.write("b/sub/deep.png", "");
    const Bundle bundle = open("b");
    const struct {
        const char* name;
        const char* type;
        const char* place;
        const char* result;
    } cases[] = {
        {"both", "txt", nullptr, "b/both.txt"},
        {"both.txt", nullptr, nullptr, "b/both.txt"},
        {"both", ".txt", "", "b/both.txt"},
        {"own", "txt", nullptr, "b/xx.lproj/own.txt"},
        {"deep", "txt", "sub", "b/xx.lproj/sub/deep.txt"},
        {"deep", "png", "sub", "b/sub/deep.png"},
        {"base", "txt", nullptr, "b/Base.lproj/base.txt"},
        {"foreign", "txt", nullptr, kNone},
        {"missing", "txt", nullptr, kNone},
        {nullptr, "png", "sub", "b/sub/deep.png"},
        {"../b/both", "txt", nullptr, kNone},
        {"both", "txt", "../b", kNone},
        {"/etc/passwd", nullptr, nullptr, kNone},
        {"", nullptr, nullptr, kNone},
    };
    for (const auto& [name, type, place, result] : cases)
        EXPECT_EQ(resource(bundle, name, type, place), result) << (name ? name : "any");
    EXPECT_EQ(below(cf::adopt(CFBundleCopyResourceURLForLocalization(
                  bundle.get(), CFSTR("foreign"), CFSTR("txt"), nullptr, CFSTR("yy")))),
              "b/yy.lproj/foreign.txt");
    EXPECT_EQ(below(cf::adopt(CFBundleCopyResourceURLInDirectory(url("b").get(), CFSTR("own"),
                                                                 CFSTR("txt"), nullptr))),
              "b/xx.lproj/own.txt");
    const auto all = cf::adopt(CFBundleCopyResourceURLsOfType(bundle.get(), CFSTR("txt"), nullptr));
    std::vector<std::string> paths;
    for (CFIndex i = 0; i < CFArrayGetCount(all.get()); ++i)
        paths.push_back(
            below(cf::retain(static_cast<CFURLRef>(CFArrayGetValueAtIndex(all.get(), i)))));
    EXPECT_EQ(paths, (std::vector<std::string>{"b/both.txt", "b/xx.lproj/both.txt",
                                               "b/xx.lproj/own.txt", "b/Base.lproj/base.txt"}));
    EXPECT_EQ(listOf(cf::adopt(CFBundleCopyBundleLocalizations(bundle.get()))),
              (std::vector<std::string>{"Base", "xx", "yy"}));
}

TEST(CFBundle, ChoosesLanguagesByPreference) {
    const auto available = texts({"en", "pt", "pt-PT", "zh_Hant", "de"});
    const struct {
        const char* what;
        std::initializer_list<const char*> preferred;
        std::vector<std::string> chosen;
    } cases[] = {
        {"exact", {"de"}, {"de"}},
        {"the language of a region", {"pt-BR"}, {"pt"}},
        {"region before language", {"pt-PT"}, {"pt-PT", "pt"}},
        {"other marks and case", {"ZH-hant-TW"}, {"zh_Hant"}},
        {"several", {"fr", "de-AT", "en"}, {"de", "en"}},
        {"none", {"fr"}, {"en"}},
    };
    for (const auto& [what, preferred, chosen] : cases)
        EXPECT_EQ(listOf(cf::adopt(CFBundleCopyLocalizationsForPreferences(
                      available.get(), texts(preferred).get()))),
                  chosen)
            << what;
    EXPECT_EQ(CFBundleCopyLocalizationsForPreferences(nullptr, nullptr), nullptr);
}

TEST_F(CFBundleInFolder, TranslatesByItsTables) {
    folder.write("b/Info.plist", info("<key>CFBundleDevelopmentRegion</key><string>xx</string>"
                                      "<key>CFBundleName</key><string>Plain</string>"));
    folder.write("b/xx.lproj/Localizable.strings", "/* greeting */ \"hello\" = \"salut\";\n");
    folder.write("b/xx.lproj/InfoPlist.strings", "CFBundleName = \"Local\";");
    folder.write("b/Other.strings", "<plist><dict><key>k</key><string>v</string></dict></plist>");
    const Bundle bundle = open("b");
    const struct {
        const char* key;
        const char* value;
        const char* table;
        const char* result;
    } cases[] = {
        {"hello", nullptr, nullptr, "salut"}, {"hello", "x", "", "salut"},
        {"bye", "adieu", nullptr, "adieu"},   {"bye", "", nullptr, "bye"},
        {"k", nullptr, "Other", "v"},         {"k", nullptr, "Missing", "k"},
    };
    for (const auto& [key, value, table, result] : cases) {
        const auto text = [](const char* part) { return part ? makeText(part) : nullptr; };
        EXPECT_EQ(takeText(CFBundleCopyLocalizedString(bundle.get(), makeText(key).get(),
                                                       text(value).get(), text(table).get())),
                  result)
            << key;
    }
    EXPECT_EQ(textOf(static_cast<CFStringRef>(
                  CFBundleGetValueForInfoDictionaryKey(bundle.get(), kCFBundleNameKey))),
              "Local");
    EXPECT_EQ(CFDictionaryGetCount(CFBundleGetLocalInfoDictionary(bundle.get())), 1);
}

TEST_F(CFBundleInFolder, ReadsItsVersion) {
    const struct {
        const char* version;
        UInt32 number;
    } cases[] = {
        {"<string>1.2.3</string>", 0x01238000}, {"<string>12</string>", 0x12008000},
        {"<string>1.2b7</string>", 0x01206007}, {"<string>1.0.1d255</string>", 0x010120FF},
        {"<string>1.0a256</string>", 0},        {"<string>123.0</string>", 0},
        {"<string>1.10</string>", 0},           {"<string>x</string>", 0},
        {"<string>1.2 beta</string>", 0},       {"<integer>77</integer>", 77},
        {"<integer>-1</integer>", 0},
    };
    int number = 0;
    for (const auto& [version, result] : cases) {
        const std::string name = std::to_string(++number);
        folder.write(name + "/Info.plist",
                     info(std::string("<key>CFBundleVersion</key>") + version));
        EXPECT_EQ(CFBundleGetVersionNumber(open(name).get()), result) << version;
    }
}

TEST_F(CFBundleInFolder, WithoutInformationItIsEmpty) {
    const CollectedLog log;
    folder.write("plain/file", "");
    folder.write("broken/Info.plist", "<plist>garbage");
    for (const char* const name : {"plain", "broken"}) {
        const Bundle bundle = open(name);
        ASSERT_TRUE(bundle);
        EXPECT_EQ(CFDictionaryGetCount(CFBundleGetInfoDictionary(bundle.get())), 0);
        EXPECT_EQ(CFBundleGetIdentifier(bundle.get()), nullptr);
        EXPECT_EQ(CFBundleCopyExecutableURL(bundle.get()), nullptr);
        EXPECT_FALSE(CFBundleLoadExecutable(bundle.get()));
    }
    EXPECT_FALSE(open("missing"));
    EXPECT_FALSE(open("plain/file"));
}

TEST_F(CFBundleInFolder, AreFoundInADirectoryByTheirExtension) {
    folder.write("all/one.plugin/Info.plist", info(""));
    folder.write("all/two.plugin/x", "");
    folder.write("all/three.other/x", "");
    folder.write("all/file.plugin", "");
    const auto count = [&](CFStringRef type) {
        const auto found =
            cf::adopt(CFBundleCreateBundlesFromDirectory(nullptr, url("all").get(), type));
        return CFArrayGetCount(found.get());
    };
    EXPECT_EQ(count(CFSTR("plugin")), 2);
    EXPECT_EQ(count(nullptr), 3);
    EXPECT_EQ(CFBundleCreateBundlesFromDirectory(nullptr, url("none").get(), nullptr), nullptr);
}

TEST(CFBundle, TheMainBundleIsTheProgramsFolder) {
    const CFBundleRef main = CFBundleGetMainBundle();
    ASSERT_NE(main, nullptr);
    const auto executable = cf::adopt(CFBundleCopyExecutableURL(main));
    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(takeText(CFURLCopyFileSystemPath(executable.get(), kCFURLPOSIXPathStyle)),
              program.string());
    EXPECT_TRUE(CFBundleIsExecutableLoaded(main));
    EXPECT_EQ(CFBundleGetFunctionPointerForName(main, CFSTR("CFBundleGetMainBundle")),
              reinterpret_cast<void*>(&CFBundleGetMainBundle));
    EXPECT_EQ(CFBundleGetFunctionPointerForName(main, CFSTR("noSuchFunctionAnywhere")), nullptr);
}

TEST_F(CFBundleInFolder, LoadsItsLibrary) {
    const auto library = std::filesystem::canonical(CF_LIBRARY_FILE);
    folder.write("b/Info.plist", info("<key>CFBundleExecutable</key><string>library.so</string>"));
    std::filesystem::create_symlink(library, folder.path("b/library.so"));
    const Bundle bundle = open("b");
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));
    EXPECT_EQ(CFBundleGetDataPointerForName(bundle.get(), CFSTR("kCFBundleNameKey")),
              static_cast<const void*>(&kCFBundleNameKey));
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle.get()));
    CFBundleUnloadExecutable(bundle.get());
    EXPECT_FALSE(CFBundleIsExecutableLoaded(bundle.get()));

    folder.write("c/Info.plist", info("<key>CFBundleExecutable</key><string>text</string>"));
    folder.write("c/text", "no library");
    CFErrorRef stored = nullptr;
    EXPECT_FALSE(CFBundleLoadExecutableAndReturnError(open("c").get(), &stored));
    EXPECT_EQ(CFErrorGetCode(cf::adopt(stored).get()), 3587);
}

TEST_F(CFBundleInFolder, OfALibraryIsFoundByAnAddressInIt) {
    const auto address = reinterpret_cast<const void*>(&CFBundleGetMainBundle);
    folder.write("Kit/a.txt", "");
    setenv("NIMBRA_RESOURCES", folder.path("").c_str(), 1);
    const Bundle bundle =
        cf::adopt(_CFBundleCreateWithImageOfAddress(nullptr, address, CFSTR("Kit")));
    const Bundle none =
        cf::adopt(_CFBundleCreateWithImageOfAddress(nullptr, address, CFSTR("NoSuchKit")));
    unsetenv("NIMBRA_RESOURCES");
    ASSERT_TRUE(bundle);
    EXPECT_FALSE(none);
    EXPECT_EQ(resource(bundle, "a", "txt"), "Kit/a.txt");
    const auto executable = cf::adopt(CFBundleCopyExecutableURL(bundle.get()));
    const std::string path =
        takeText(CFURLCopyFileSystemPath(executable.get(), kCFURLPOSIXPathStyle));
    EXPECT_NE(path.find("libCoreFoundation"), std::string::npos) << path;

    int onTheStack = 0;
    EXPECT_EQ(_CFBundleCreateWithImageOfAddress(nullptr, &onTheStack, CFSTR("Kit")), nullptr);
    EXPECT_EQ(_CFBundleCreateWithImageOfAddress(nullptr, address, CFSTR("../Kit")), nullptr);
    EXPECT_EQ(_CFBundleCreateWithImageOfAddress(nullptr, address, nullptr), nullptr);
    EXPECT_EQ(_CFBundleCreateWithImageOfAddress(nullptr, nullptr, CFSTR("Kit")), nullptr);
}

} // namespace
