// FoldersTest.cpp: making and listing folders, rewriting files, loading libraries.

#include <Host/Host.h>

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

std::set<std::string> namesIn(const std::string& path, bool& read) {
    std::set<std::string> names;
    read = HostDirectoryEnumerate(
        path.c_str(),
        [](const char* name, void* context) {
            static_cast<std::set<std::string>*>(context)->insert(name);
        },
        &names);
    return names;
}

TEST(HostDirectory, IsMadeWithThoseAboveAndListed) {
    const test::TemporaryFolder folder;
    EXPECT_TRUE(HostDirectoryCreate(folder.path("a/b/c").c_str()));
    EXPECT_TRUE(HostDirectoryCreate(folder.path("a/b/c").c_str())) << "it is there";
    folder.write("a/b/file", "");
    bool read = false;
    EXPECT_EQ(namesIn(folder.path("a/b"), read), (std::set<std::string>{"c", "file"}));
    EXPECT_TRUE(read);
    EXPECT_TRUE(namesIn(folder.path("none"), read).empty());
    EXPECT_FALSE(read);
    EXPECT_FALSE(HostDirectoryCreate(folder.path("a/b/file/d").c_str()));
    EXPECT_FALSE(HostDirectoryCreate(nullptr));
    EXPECT_FALSE(HostDirectoryEnumerate(nullptr, nullptr, nullptr));
}

TEST(HostFile, IsReplacedAsAWhole) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path("file");
    EXPECT_TRUE(HostFileReplace(path.c_str(), "first", 5));
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    const host::Descriptor before(HostFileOpenForReading(path.c_str()));
    EXPECT_TRUE(HostFileReplace(path.c_str(), "2", 1));
    EXPECT_EQ(folder.read("file"), "2");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
    char old[8] = "";
    EXPECT_EQ(HostFileRead(before.get(), old, sizeof old), 5) << "readers keep what they opened";
    EXPECT_TRUE(HostFileReplace(path.c_str(), nullptr, 0));
    EXPECT_EQ(folder.read("file"), "");

    EXPECT_FALSE(HostFileReplace(folder.path("none/file").c_str(), "x", 1));
    EXPECT_TRUE(HostDirectoryCreate(folder.path("taken").c_str()));
    EXPECT_FALSE(HostFileReplace(folder.path("taken").c_str(), "x", 1));
    bool read = false;
    EXPECT_EQ(namesIn(folder.path(""), read), (std::set<std::string>{"file", "taken"}))
        << "nothing is left of failed attempts";
    EXPECT_FALSE(HostFileReplace(path.c_str(), nullptr, 1));
    EXPECT_FALSE(HostFileReplace(nullptr, "x", 1));
}

TEST(HostFile, IsAppendedToRenamedAndReadAtAPosition) {
    const test::TemporaryFolder folder;
    folder.write("file", "0123");
    const std::string path = folder.path("file");
    {
        const host::Descriptor end(HostFileOpenForAppending(path.c_str()));
        EXPECT_TRUE(HostFileWrite(end.get(), "45", 2));
    }
    EXPECT_TRUE(HostFileRename(path.c_str(), folder.path("other").c_str()));
    EXPECT_FALSE(HostFileRename(path.c_str(), folder.path("other").c_str()));
    const host::Descriptor file(HostFileOpenForReading(folder.path("other").c_str()));
    char bytes[8] = "";
    EXPECT_TRUE(HostFileSetPosition(file.get(), 3));
    EXPECT_EQ(HostFileGetPosition(file.get()), 3);
    EXPECT_EQ(HostFileRead(file.get(), bytes, sizeof bytes), 3);
    EXPECT_STREQ(bytes, "345");
    EXPECT_FALSE(HostFileSetPosition(file.get(), -1));
    EXPECT_FALSE(HostFileSetPosition(-1, 0));
    EXPECT_EQ(HostFileGetPosition(-1), -1);
    EXPECT_EQ(HostFileOpenForAppending(nullptr), -1);
}

TEST(HostPath, IsEmptyWhenItDoesNotFit) {
    char path[4096];
    ASSERT_TRUE(HostPathGetWorkingDirectory(path, sizeof path));
    EXPECT_EQ(path, std::filesystem::current_path().string());
    for (const auto get :
         {HostPathGetWorkingDirectory, HostPathGetSystemPreferencesDirectory, HostGetMachineName}) {
        EXPECT_TRUE(get(path, sizeof path));
        EXPECT_NE(path[0], '\0');
        EXPECT_FALSE(get(path, 1));
        EXPECT_EQ(path[0], '\0');
        EXPECT_FALSE(get(nullptr, 10));
    }
}

TEST(HostLibrary, FindsItsNames) {
    void* const program = HostLibraryOpen(nullptr);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(HostLibraryFindSymbol(program, "HostLibraryOpen"),
              reinterpret_cast<void*>(&HostLibraryOpen));
    EXPECT_EQ(HostLibraryFindSymbol(program, "noSuchNameAnywhere"), nullptr);
    EXPECT_EQ(HostLibraryFindSymbol(nullptr, "malloc"), nullptr);
    HostLibraryClose(program);
    HostLibraryClose(nullptr);
    EXPECT_EQ(HostLibraryOpen("/no/such/library.so"), nullptr);
}

} // namespace
