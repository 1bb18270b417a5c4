// FontsTest.cpp: the installed fonts, beside what fontconfig says itself.

#include <Host/Fonts.h>

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cctype>
#include <set>
#include <string>
#include <vector>

namespace {

struct Face {
    std::string path;
    std::string postScriptName;
    int index;
};

// All faces of files that are there, by a list of fontconfig's own making.
std::vector<Face> installedFaces() {
    FcPattern* const any = FcPatternCreate();
    FcObjectSet* const objects =
        FcObjectSetBuild(FC_FILE, FC_POSTSCRIPT_NAME, FC_INDEX, FC_VARIABLE, nullptr);
    FcFontSet* const set = FcFontList(nullptr, any, objects);
    std::vector<Face> faces;
    for (int i = 0; i < set->nfont; ++i) {
        FcChar8* path = nullptr;
        FcChar8* name = nullptr;
        int index = 0;
        FcPatternGetString(set->fonts[i], FC_FILE, 0, &path);
        FcPatternGetString(set->fonts[i], FC_POSTSCRIPT_NAME, 0, &name);
        FcPatternGetInteger(set->fonts[i], FC_INDEX, 0, &index);
        faces.push_back({reinterpret_cast<char*>(path), name ? reinterpret_cast<char*>(name) : "",
                         index & 0xffff});
    }
    FcFontSetDestroy(set);
    FcObjectSetDestroy(objects);
    FcPatternDestroy(any);
    return faces;
}

TEST(Fonts, ListEachInstalledFileOnceWithItsTime) {
    std::vector<std::string> paths;
    const auto collect = [](const HostFont* font, void* context) {
        struct stat status;
        ASSERT_NE(font->path, nullptr);
        ASSERT_EQ(stat(font->path, &status), 0) << font->path;
        EXPECT_EQ(font->modificationTime, status.st_mtim.tv_sec) << font->path;
        static_cast<std::vector<std::string>*>(context)->push_back(font->path);
    };
    ASSERT_TRUE(HostFontEnumerate(collect, &paths));
    std::set<std::string> expected;
    for (const Face& face : installedFaces())
        expected.insert(face.path);
    EXPECT_EQ(paths, std::vector<std::string>(expected.begin(), expected.end()));
    EXPECT_FALSE(HostFontEnumerate(nullptr, nullptr));
}

TEST(Fonts, GiveTheBytesOfTheFaceOfAName) {
    int tried = 0;
    for (const Face& face : installedFaces()) {
        if (face.postScriptName.empty() || ++tried > 20)
            continue;
        HostMapping mapping;
        int64_t index = -1;
        std::string shouted = face.postScriptName;
        for (char& character : shouted)
            character = static_cast<char>(std::toupper(character));
        ASSERT_TRUE(HostFontMapByName(shouted.c_str(), &mapping, &index)) << shouted;
        EXPECT_GT(mapping.size, 0u);
        // Several files may have a face of that name: it is one of them.
        bool isFace = false;
        for (const Face& other : installedFaces()) {
            struct stat status;
            isFace = isFace || (other.postScriptName == face.postScriptName &&
                                other.index == index && stat(other.path.c_str(), &status) == 0 &&
                                static_cast<size_t>(status.st_size) == mapping.size);
        }
        EXPECT_TRUE(isFace) << shouted;
        HostFileUnmap(&mapping);
    }
    if (tried == 0)
        GTEST_SKIP() << "no font with a PostScript name is installed";
    HostMapping mapping;
    EXPECT_FALSE(HostFontMapByName("no font of this name", &mapping, nullptr));
    EXPECT_EQ(mapping.bytes, nullptr);
}

} // namespace
