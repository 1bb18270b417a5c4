// FilesTest.cpp: reading, writing and mapping files.

#include <Host/Host.h>

#include "Support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <limits>
#include <string>
#include <thread>

namespace {

TEST(HostFile, ReadsFromAnyOffsetAndInTurn) {
    const test::TemporaryFolder folder;
    const host::Descriptor file(HostFileOpenForReading(folder.write("f", "0123456789").c_str()));
    ASSERT_TRUE(file);
    EXPECT_EQ(HostFileGetSize(file.get()), 10);
    EXPECT_TRUE(fcntl(file.get(), F_GETFD) & FD_CLOEXEC);

    char buffer[16] = {};
    EXPECT_EQ(HostFileReadAt(file.get(), buffer, 3, 4), 3);
    EXPECT_STREQ(buffer, "456");
    EXPECT_EQ(HostFileReadAt(file.get(), buffer, 16, 8), 2) << "short at the end";
    EXPECT_EQ(HostFileReadAt(file.get(), buffer, 16, 50), 0);
    EXPECT_EQ(HostFileRead(file.get(), buffer, 6), 6) << "reading at an offset moves nothing";
    EXPECT_EQ(HostFileRead(file.get(), buffer, 16), 4);
    EXPECT_EQ(HostFileRead(file.get(), buffer, 16), 0);
}

TEST(HostFile, WritesOverWhatWasThere) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("f", "a long text");
    {
        const host::Descriptor file(HostFileOpenForWriting(path.c_str()));
        EXPECT_TRUE(HostFileWrite(file.get(), "ab", 2));
        EXPECT_TRUE(HostFileWrite(file.get(), nullptr, 0));
        EXPECT_TRUE(HostFileWrite(file.get(), "c", 1));
    }
    const host::Descriptor file(HostFileOpenForReading(path.c_str()));
    EXPECT_EQ(HostFileGetSize(file.get()), 3);
    EXPECT_FALSE(HostFileWrite(file.get(), "x", 1)) << "open for reading";
}

TEST(HostFile, ReadsWhatAPipeGivesBitByBit) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const host::Descriptor reading(ends[0]);
    std::thread writer([end = ends[1]] {
        for (const char* part : {"ab", "cd", "ef"}) {
            HostFileWrite(end, part, 2);
            std::this_thread::yield();
        }
        HostFileClose(end);
    });
    char buffer[8] = {};
    EXPECT_EQ(HostFileRead(reading.get(), buffer, 8), 6);
    writer.join();
    EXPECT_STREQ(buffer, "abcdef");
    EXPECT_EQ(HostFileGetSize(reading.get()), -1) << "not a regular file";
}

TEST(HostFile, MapsWholeFilesThatOutliveTheDescriptor) {
    const test::TemporaryFolder folder;
    HostMapping mapping = {};
    {
        const host::Descriptor file(HostFileOpenForReading(folder.write("f", "mapped").c_str()));
        ASSERT_TRUE(HostFileMap(file.get(), &mapping));
    }
    EXPECT_EQ(std::string(static_cast<const char*>(mapping.bytes), mapping.size), "mapped");
    HostFileUnmap(&mapping);
    EXPECT_EQ(mapping.bytes, nullptr);
    EXPECT_EQ(mapping.size, 0u);

    const host::Descriptor empty(HostFileOpenForReading(folder.write("e", "").c_str()));
    EXPECT_TRUE(HostFileMap(empty.get(), &mapping));
    EXPECT_EQ(mapping.bytes, nullptr);
}

TEST(HostFile, TellsFilesFromFoldersAndWhenTheyWereWritten) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("f", "x");
    EXPECT_TRUE(HostFileExists(path.c_str()));
    EXPECT_FALSE(HostFileIsDirectory(path.c_str()));
    EXPECT_TRUE(HostFileIsDirectory(folder.path().c_str()));
    EXPECT_FALSE(HostFileExists(folder.path("absent").c_str()));

    const timespec times[2] = {{1000, 0}, {2000, 500000000}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    double seconds = 0;
    EXPECT_TRUE(HostFileGetModificationTime(path.c_str(), &seconds));
    EXPECT_EQ(seconds, 2000.5);
    EXPECT_FALSE(HostFileGetModificationTime(folder.path("absent").c_str(), &seconds));
}

TEST(HostFile, RefusesMissingAndImpossibleArguments) {
    char byte = 0;
    HostMapping mapping = {&byte, 1};
    EXPECT_EQ(HostFileOpenForReading("/nowhere/at/all"), -1);
    EXPECT_EQ(HostFileOpenForWriting("/nowhere/at/all"), -1);
    EXPECT_EQ(HostFileGetSize(-1), -1);
    EXPECT_EQ(HostFileRead(-1, &byte, 1), -1);
    EXPECT_EQ(HostFileRead(0, nullptr, 1), -1);
    EXPECT_EQ(HostFileReadAt(0, &byte, 1, -1), -1);
    EXPECT_EQ(HostFileReadAt(0, &byte, 1, std::numeric_limits<int64_t>::max()), -1);
    EXPECT_FALSE(HostFileWrite(-1, &byte, 1));
    EXPECT_FALSE(HostFileWrite(1, nullptr, 1));
    EXPECT_FALSE(HostFileMap(-1, &mapping));
    EXPECT_EQ(mapping.bytes, nullptr) << "left empty";
    EXPECT_FALSE(HostFileMap(0, nullptr));
    HostFileClose(-1);
}

} // namespace
