// CGDataConsumerTest.cpp: where written bytes go, and what is told when they do not.

#include "XGDataConsumer.h"
#include <CoreFoundation/CFRef.h>

#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Consumer = cf::Ref<CGDataConsumerRef>;

struct Sink {
    std::string text;
    std::size_t most = 100;
    int releases = 0;
};

size_t put(void* info, const void* bytes, size_t count) {
    auto& sink = *static_cast<Sink*>(info);
    const size_t taken = std::min(count, sink.most);
    sink.text.append(static_cast<const char*>(bytes), taken);
    return taken;
}

void release(void* info) {
    ++static_cast<Sink*>(info)->releases;
}

} // namespace

TEST(DataConsumer, CallsBackAndCountsShortWritesAsFailures) {
    Sink sink;
    const CGDataConsumerCallbacks callbacks = {put, release};
    {
        const Consumer consumer = cf::adopt(CGDataConsumerCreate(&sink, &callbacks));
        EXPECT_TRUE(XGDataConsumerWriteBytes(consumer.get(), "abc", 3));
        sink.most = 1;
        EXPECT_FALSE(XGDataConsumerWriteBytes(consumer.get(), "def", 3));
    }
    EXPECT_EQ(sink.text, "abcd");
    EXPECT_EQ(sink.releases, 1);
}

TEST(DataConsumer, SaysSoOnEveryWriteWithoutACallback) {
    const CGDataConsumerCallbacks callbacks = {nullptr, nullptr};
    const Consumer consumer = cf::adopt(CGDataConsumerCreate(nullptr, &callbacks));
    const CollectedLog log;
    EXPECT_FALSE(XGDataConsumerWriteBytes(consumer.get(), "a", 1));
    EXPECT_FALSE(XGDataConsumerWriteBytes(consumer.get(), "a", 1));
    const std::string line =
        "3 XGDataConsumerWriteBytes: Writing to DataConsumer failed with invalid callback.";
    EXPECT_EQ(log.lines(), (std::vector{line, line}));
}

TEST(DataConsumer, TakesDataWholeWhereItCan) {
    const auto data = cf::adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>("xyz"), 3));
    Sink sink;
    const XGDataConsumerCallbacks whole = {
        put, nullptr, [](void*, CFDataRef given) { return size_t(CFDataGetLength(given)) * 7; }};
    const Consumer taking = cf::adopt(_CGDataConsumerCreate(&sink, &whole));
    EXPECT_EQ(_CGDataConsumerWriteData(taking.get(), data.get()), 21u);
    EXPECT_EQ(sink.text, "");
    const auto target = cf::adopt(CFDataCreateMutable(nullptr, 0));
    const Consumer appending = cf::adopt(CGDataConsumerCreateWithCFData(target.get()));
    EXPECT_EQ(_CGDataConsumerWriteData(appending.get(), data.get()), 1u);
    EXPECT_TRUE(CFEqual(target.get(), data.get()));
}

TEST(DataConsumer, WritesFiles) {
    const test::TemporaryFolder folder;
    const auto urlOf = [](const std::string& path) {
        return cf::adopt(CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8*>(path.data()), CFIndex(path.size()), false));
    };
    {
        const Consumer file =
            cf::adopt(CGDataConsumerCreateWithURL(urlOf(folder.path("out")).get()));
        EXPECT_TRUE(XGDataConsumerWriteBytes(file.get(), "bytes", 5));
    }
    EXPECT_EQ(folder.read("out"), "bytes");
    EXPECT_EQ(CGDataConsumerCreateWithURL(urlOf(folder.path("no/folder")).get()), nullptr);
}
