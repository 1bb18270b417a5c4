// FMLibraryTest.cpp: fonts by their names, beside what fontconfig knows of the same files.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>
#include <Host/Host.h>

#include "Font/FontRef.h"
#include "Support/Threads.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using String = cf::Ref<CFStringRef>;

String string(const std::string& text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
}

std::string textOf(const String& string) {
    char text[512] = "-";
    if (string)
        CFStringGetCString(string.get(), text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

struct ReleaseLibrary {
    void operator()(FMLibraryRef library) const { FMLibraryRelease(library); }
};
using Library = std::unique_ptr<std::remove_pointer_t<FMLibraryRef>, ReleaseLibrary>;

fm::FontRef fontWithName(const Library& library, const std::string& name, uint32_t options = 0) {
    return fm::FontRef::adopt(
        FMLibraryCopyFontWithName(library.get(), string(name).get(), options));
}

std::string postScriptName(const fm::FontRef& font) {
    return textOf(cf::adopt(FMFontCopyPostScriptName(font.get(), false)));
}

// "path#index", as FMFont knows where it comes from.
std::string sourceOf(const fm::FontRef& font) {
    const auto url = cf::adopt(FMFontCopyLocationURL(font.get()));
    const String path =
        cf::adopt(url ? CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle) : nullptr);
    return textOf(path) + "#" + std::to_string(FMFontGetFaceIndex(font.get()));
}

fm::FontRef openFont(const std::string& path, long index = 0) {
    return fm::FontRef::adopt(FMFontCreateWithPath(string(path).get(), index, false));
}

std::string dejaVu(const char* name) {
    return std::string("/usr/share/fonts/truetype/dejavu/") + name + ".ttf";
}

// A database of a few fonts, in this order, and a library over it.
struct Small {
    explicit Small(std::vector<const char*> names)
        : database(cf::adopt(FMDatabaseCreateInMemory())) {
        for (const char* const name : names)
            FMDatabaseStoreFont(database.get(), openFont(dejaVu(name)).get());
        library.reset(FMLibraryCreate(nullptr, database.get()));
    }

    cf::Ref<FMDatabaseRef> database;
    Library library;
};

const std::vector<const char*> kFamilies = {"DejaVuSans",     "DejaVuSans-Bold",
                                            "DejaVuSansMono", "DejaVuSansMono-Bold",
                                            "DejaVuSerif",    "DejaVuSerif-Bold"};

bool hasDejaVu() {
    return openFont(dejaVu("DejaVuSans")) && openFont(dejaVu("DejaVuSerif-Bold"));
}

std::string lower(std::string text) {
    for (char& character : text)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return text;
}

// The faces that fontconfig lists under each full and PostScript name, as "path#index".
std::map<std::string, std::set<std::string>> facesByName() {
    std::map<std::string, std::set<std::string>> faces;
    FcPattern* const any = FcPatternCreate();
    FcObjectSet* const objects =
        FcObjectSetBuild(FC_FILE, FC_INDEX, FC_POSTSCRIPT_NAME, FC_FULLNAME, nullptr);
    FcFontSet* const set = FcFontList(nullptr, any, objects);
    for (int i = 0; i < set->nfont; ++i) {
        FcChar8* path = nullptr;
        int index = 0;
        FcPatternGetString(set->fonts[i], FC_FILE, 0, &path);
        FcPatternGetInteger(set->fonts[i], FC_INDEX, 0, &index);
        if (index >> 16 != 0)
            continue; // An instance of a variable font, whose face is listed as well.
        const std::string source =
            reinterpret_cast<const char*>(path) + ("#" + std::to_string(index));
        for (const char* const object : {FC_POSTSCRIPT_NAME, FC_FULLNAME}) {
            FcChar8* name = nullptr;
            for (int n = 0; FcPatternGetString(set->fonts[i], object, n, &name) == FcResultMatch;
                 ++n)
                faces[lower(reinterpret_cast<const char*>(name))].insert(source);
        }
    }
    FcFontSetDestroy(set);
    FcObjectSetDestroy(objects);
    FcPatternDestroy(any);
    return faces;
}

TEST(FMLibrary, FindsEveryInstalledFontByEachOfItsNames) {
    const Library library(FMLibraryCreate(nullptr, nullptr));
    const auto faces = facesByName();
    const auto names = cf::adopt(FMLibraryCopyDBFontNames(library.get()));
    const auto count = static_cast<FMFontId>(CFArrayGetCount(names.get()));
    ASSERT_GT(count, 20);
    // Of fonts that share a name the first one has it.
    std::map<std::string, FMFontId> owner;
    using CopyName = CFStringRef (*)(FMLibraryRef, FMFontId);
    const std::vector<CopyName> copies = {FMLibraryCopyFontFullName, FMLibraryCopyFontDisplayName,
                                          FMLibraryCopyFontPostScriptName};
    for (FMFontId id = 1; id <= count; ++id)
        for (const CopyName copy : copies)
            owner.try_emplace(lower(textOf(cf::adopt(copy(library.get(), id)))), id);
    int agreeing = 0;
    for (const auto& [name, id] : owner) {
        std::string shouted = name;
        for (char& character : shouted)
            character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
        const fm::FontRef font = fontWithName(library, shouted);
        ASSERT_EQ(FMFontGetFontId(font.get()), id) << name;
        EXPECT_TRUE(FMFontIsPermanent(font.get()));
        // Display names are ours, and may be the full name that another face has.
        const bool isItsOwn =
            name == lower(postScriptName(font)) ||
            name == lower(textOf(cf::adopt(FMFontCopyFullName(font.get(), false))));
        if (const auto known = faces.find(name); isItsOwn && known != faces.end()) {
            EXPECT_TRUE(known->second.contains(sourceOf(font))) << name << " " << sourceOf(font);
            ++agreeing;
        }
    }
    EXPECT_GT(agreeing, count);
}

TEST(FMLibrary, FindsTheNearestOfAFamilyByLooseNames) {
    if (!hasDejaVu())
        GTEST_SKIP() << "DejaVu fonts are not installed";
    const Small small(kFamilies);
    const struct {
        const char* what;
        const char* name;
        const char* font;
    } cases[] = {
        {"words run together", "dejavusans", "DejaVuSans"},
        {"hyphens and lower case", "dejavu-sans-bold", "DejaVuSans-Bold"},
        {"the style first", "Bold DejaVu Serif", "DejaVuSerif-Bold"},
        {"a weight between", "DejaVu Sans SemiBold", "DejaVuSans-Bold"},
        {"a light one", "DejaVu Sans Mono Light", "DejaVuSansMono"},
        {"a style that no font has", "DejaVu Serif Italic", "DejaVuSerif"},
        {"a black one", "DejaVu Sans Mono Black", "DejaVuSansMono-Bold"},
        {"the last resort", "lastRESORT", "LastResort"},
        {"no such family", "DejaVu", "-"},
        {"nothing", "", "-"},
    };
    for (const auto& [what, name, font] : cases)
        EXPECT_EQ(postScriptName(fontWithName(small.library, name)), font) << what;
    // Without names and what was found before, what remains is the family.
    EXPECT_EQ(postScriptName(fontWithName(small.library, "DejaVu Sans Bold", 1)),
              "DejaVuSans-Bold");
    EXPECT_EQ(postScriptName(fontWithName(small.library, "LastResort", 1)), "-");
    const auto bold = string("DejaVu Sans");
    const auto names =
        cf::adopt(FMLibraryCopyFontPSNamesForFamily(small.library.get(), bold.get()));
    EXPECT_EQ(CFArrayGetCount(names.get()), 2);
}

TEST(FMLibrary, RemembersMissesUntilAFontIsRegistered) {
    if (!hasDejaVu())
        GTEST_SKIP() << "DejaVu fonts are not installed";
    const Small small({"DejaVuSans"});
    HostTaskWaitForAll(); // Fonts that the background makes are registered, too.
    EXPECT_FALSE(fontWithName(small.library, "dejavu-serif"));
    // The family is there now, but nobody looks.
    FMDatabaseStoreFont(small.database.get(), openFont(dejaVu("DejaVuSerif")).get());
    EXPECT_FALSE(fontWithName(small.library, "dejavu-serif"));
    EXPECT_TRUE(fontWithName(small.library, "dejavu-serif", 1)) << "bypassing what is remembered";
    EXPECT_TRUE(fontWithName(small.library, "dejavu-serif")) << "it has been registered by that";
}

TEST(FMLibrary, RegistersAFontOnce) {
    if (!hasDejaVu())
        GTEST_SKIP() << "DejaVu fonts are not installed";
    const Small small({"DejaVuSans"});
    const fm::FontRef font = openFont(dejaVu("DejaVuSerif"));
    EXPECT_FALSE(fontWithName(small.library, "DejaVuSerif"));
    EXPECT_TRUE(FMLibraryRegisterFont(small.library.get(), font.get()));
    EXPECT_FALSE(FMLibraryRegisterFont(small.library.get(), font.get()));
    EXPECT_FALSE(FMLibraryRegisterFont(small.library.get(), openFont(dejaVu("DejaVuSerif")).get()));
    EXPECT_EQ(fontWithName(small.library, "dejavu SERIF").get(), font.get());
    const auto id = cf::adopt(FMFontCopyNimbraId(font.get(), false));
    EXPECT_EQ(fm::FontRef::adopt(FMLibraryCopyFontByNimbraId(small.library.get(), id.get())).get(),
              font.get());
    EXPECT_TRUE(FMLibraryUnregisterFont(small.library.get(), font.get()));
    EXPECT_FALSE(FMLibraryUnregisterFont(small.library.get(), font.get()));
    EXPECT_FALSE(fontWithName(small.library, "DejaVuSerif"));
    EXPECT_EQ(FMLibraryCopyFontByNimbraId(small.library.get(), id.get()), nullptr);
    // A font of the database is registered, whether or not it has been made.
    EXPECT_FALSE(FMLibraryRegisterFont(small.library.get(), openFont(dejaVu("DejaVuSans")).get()));
}

TEST(FMLibrary, GivesPermanentFontsById) {
    if (!hasDejaVu())
        GTEST_SKIP() << "DejaVu fonts are not installed";
    const Small small({"DejaVuSans", "DejaVuSerif"});
    const auto permanent = [&](FMFontId id) {
        return fm::FontRef::adopt(FMLibraryCopyPermanentFont(small.library.get(), id));
    };
    EXPECT_EQ(postScriptName(permanent(2)), "DejaVuSerif");
    EXPECT_EQ(permanent(2).get(), permanent(2).get());
    EXPECT_FALSE(FMFontIsActive(permanent(2).get()));
    EXPECT_EQ(postScriptName(permanent(4444)), "LastResort");
    for (const FMFontId none : {0, 3, -1, INT32_MAX, INT32_MIN})
        EXPECT_FALSE(permanent(none)) << none;
}

// The label "thread" has this run under the thread sanitizer.
TEST(FMLibraryThreads, AskAndPurgeAtOnce) {
    if (!hasDejaVu())
        GTEST_SKIP() << "DejaVu fonts are not installed";
    const Small small(kFamilies);
    const std::vector<const char*> names = {"DejaVu Sans", "dejavu-serif bold", "nothing",
                                            "DejaVuSansMono-Bold", "LastResort"};
    test::onThreads([&](std::size_t thread) {
        for (std::size_t step = 0; step < 300; ++step) {
            const char* const name = names[(step + thread) % names.size()];
            const fm::FontRef font = fontWithName(small.library, name);
            ASSERT_EQ(font.get() == nullptr, std::string(name) == "nothing");
            FMFontLock(font.get());
            FMFontGetFTFaceUnsafe(font.get(), true);
            FMFontUnlock(font.get());
            if (font)
                ASSERT_GT(FMFontGetMetrics(font.get())->unitsPerEm, 0u);
            const UniChar letter = static_cast<UniChar>('A' + step % 26);
            CGGlyph glyph = 0;
            FMFontGetGlyphsForCharactersBijectively(font.get(), &letter, &glyph, 1);
            if (step % 3 == thread % 3)
                FMFontPurge(font.get());
            uint32_t start = 0, end = 0, set = 0;
            FMLibraryQueryFallback(small.library.get(), static_cast<UTF32Char>(letter + step % 7),
                                   &start, &end, &set);
            ASSERT_NE(end, 0u);
            const FMFontRef *first = nullptr, *last = nullptr;
            FMLibraryGetFallbackFontSet(small.library.get(), set, &first, &last);
            ASSERT_EQ(last - first, 6);
            if (thread == 0 && step % 50 == 0) {
                const fm::FontRef own = openFont(dejaVu("DejaVuSerif-Italic"));
                FMLibraryRegisterFont(small.library.get(), own.get());
                FMLibraryUnregisterFont(small.library.get(), own.get());
            }
        }
    });
}

} // namespace
