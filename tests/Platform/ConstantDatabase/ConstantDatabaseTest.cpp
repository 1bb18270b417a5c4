// ConstantDatabaseTest.cpp: what is written is found again, by us and by TinyCDB, and damage is
// not.

#include "Support/TemporaryFolder.h"

#include <ConstantDatabase/ConstantDatabase.h>
#include <cdb.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using constantdatabase::Bytes;
using constantdatabase::Reader;
using constantdatabase::Writer;
using Records = std::vector<std::pair<std::string, std::string>>;

Bytes bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

std::string textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string write(const test::TemporaryFolder& folder, const Records& records) {
    const host::Descriptor file(HostFileOpenForWriting(folder.path("records").c_str()));
    Writer writer(file.get());
    for (const auto& [key, value] : records)
        EXPECT_TRUE(writer.add(bytesOf(key), bytesOf(value)));
    EXPECT_TRUE(writer.finish());
    return folder.path("records");
}

// Keys that repeat, that are empty, that are long, and enough of them to fill every table.
Records manyRecords() {
    std::mt19937 random(7);
    Records records = {{"", "of the empty key"}, {"empty", ""}, {std::string(5000, 'k'), "long"}};
    for (int i = 0; i < 3000; ++i)
        records.emplace_back(std::to_string(random() % 2000), std::string(random() % 40, 'v'));
    return records;
}

TEST(ConstantDatabase, HoldsTheRecordsThatAnotherReaderFinds) {
    const test::TemporaryFolder folder;
    const Records records = manyRecords();
    const std::string path = write(folder, records);
    const host::Descriptor file(HostFileOpenForReading(path.c_str()));
    const auto reader = Reader::overFile(file.get());
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->count(), records.size());

    struct cdb peer;
    ASSERT_EQ(cdb_init(&peer, file.get()), 0);
    std::map<std::string, std::string> firsts;
    for (const auto& [key, value] : records)
        firsts.emplace(key, value);
    for (const auto& [key, value] : firsts) {
        const auto found = reader->find(bytesOf(key));
        ASSERT_TRUE(found) << key;
        EXPECT_EQ(textOf(*found), value) << key;
        ASSERT_EQ(cdb_find(&peer, key.data(), unsigned(key.size())), 1) << key;
        EXPECT_EQ(std::string(static_cast<const char*>(cdb_getdata(&peer)), cdb_datalen(&peer)),
                  value);
    }
    for (int i = 2000; i < 4000; ++i)
        EXPECT_FALSE(reader->find(bytesOf(std::to_string(i)))) << i;
    cdb_free(&peer);

    Records visited;
    EXPECT_TRUE(reader->forEach(
        [&](Bytes key, Bytes value) { visited.emplace_back(textOf(key), textOf(value)); }));
    EXPECT_EQ(visited, records);
}

TEST(ConstantDatabase, IsEmptyWithoutRecords) {
    const test::TemporaryFolder folder;
    write(folder, {});
    const std::string bytes = folder.read("records");
    const auto reader = Reader::overBytes(bytesOf(bytes));
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->count(), 0u);
    EXPECT_FALSE(reader->find(bytesOf("")));
}

TEST(ConstantDatabase, IsRefusedWithEverySizeButItsOwn) {
    const test::TemporaryFolder folder;
    write(folder, {{"one", "1"}, {"two", "2"}, {"three", ""}});
    const std::string bytes = folder.read("records");
    ASSERT_TRUE(Reader::overBytes(bytesOf(bytes)));
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        // A copy of its own, so that the sanitizer sees its end.
        const std::string cut = bytes.substr(0, size);
        EXPECT_FALSE(Reader::overBytes(bytesOf(cut))) << size;
    }
    for (const std::size_t more : {1u, 8u, 4096u}) {
        const std::string longer = bytes + std::string(more, '\0');
        EXPECT_FALSE(Reader::overBytes(bytesOf(longer))) << more;
    }
    EXPECT_FALSE(Reader::overFile(-1));
}

TEST(ConstantDatabase, StaysWithinItsBytesWhateverTheySay) {
    const test::TemporaryFolder folder;
    write(folder, {{"one", "1"}, {"two", std::string(30, '2')}, {"one", "again"}, {"", ""}});
    const std::string bytes = folder.read("records");
    int opened = 0;
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string flipped = bytes;
        flipped[bit / 8] = char(flipped[bit / 8] ^ 1 << bit % 8);
        const auto reader = Reader::overBytes(bytesOf(flipped));
        if (!reader)
            continue;
        ++opened;
        for (const char* key : {"one", "two", "", "absent"}) {
            const Bytes value = reader->find(bytesOf(key)).value_or(bytesOf(flipped).last(0));
            const auto start = value.data() - bytesOf(flipped).data();
            EXPECT_GE(start, 0) << bit;
            EXPECT_LE(std::size_t(start) + value.size(), flipped.size()) << bit;
        }
        std::size_t sum = 0;
        reader->forEach([&](Bytes key, Bytes value) { sum += key.size() + value.size(); });
        EXPECT_LE(sum, bytes.size()) << bit;
    }
    EXPECT_GT(opened, 0);
}

TEST(ConstantDatabase, WriterTellsWhatTheHostRefused) {
    const Records records = manyRecords();
    for (const int descriptor : {-1, open("/dev/full", O_WRONLY), open("/dev/null", O_RDONLY)}) {
        const host::Descriptor file(descriptor);
        Writer writer(file.get());
        for (const auto& [key, value] : records)
            writer.add(bytesOf(key), bytesOf(value));
        EXPECT_FALSE(writer.finish());
        EXPECT_FALSE(writer.add(bytesOf("late"), {}));
    }
}

} // namespace
