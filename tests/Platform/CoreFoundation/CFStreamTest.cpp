// CFStreamTest.cpp: streams over files and memory, through all their states.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFStream.h>

#include "Support/TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

using In = cf::Ref<CFReadStreamRef>;
using Out = cf::Ref<CFWriteStreamRef>;

const UInt8* bytes(const char* text) {
    return reinterpret_cast<const UInt8*>(text);
}

In readMemory(const char* text) {
    return cf::adopt(CFReadStreamCreateWithBytesNoCopy(
        nullptr, bytes(text), CFIndex(std::strlen(text)), kCFAllocatorNull));
}

std::string readAll(const In& stream, CFIndex blockSize) {
    std::string text;
    char block[64];
    CFIndex count;
    while ((count = CFReadStreamRead(stream.get(), reinterpret_cast<UInt8*>(block), blockSize)) > 0)
        text.append(block, size_t(count));
    return text;
}

CFIndex put(const Out& stream, const char* text) {
    return CFWriteStreamWrite(stream.get(), bytes(text), CFIndex(std::strlen(text)));
}

std::string written(const Out& stream) {
    const auto data = cf::adopt(static_cast<CFDataRef>(
        CFWriteStreamCopyProperty(stream.get(), kCFStreamPropertyDataWritten)));
    if (!data)
        return test::kNone;
    return std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
                       size_t(CFDataGetLength(data.get())));
}

class CFStreamOnFile : public testing::Test {
protected:
    cf::Ref<CFURLRef> url(const char* name) {
        const std::string path = folder.path(name);
        return cf::adopt(CFURLCreateFromFileSystemRepresentation(nullptr, bytes(path.c_str()),
                                                                 CFIndex(path.size()), false));
    }
    In reading(const char* name) {
        return cf::adopt(CFReadStreamCreateWithFile(nullptr, url(name).get()));
    }
    Out writing(const char* name) {
        return cf::adopt(CFWriteStreamCreateWithFile(nullptr, url(name).get()));
    }

    test::TemporaryFolder folder;
};

TEST(CFStream, ReadsMemoryInBlocksOfAnySize) {
    for (const CFIndex size : {1, 3, 8, 64}) {
        const In stream = readMemory("01234567");
        ASSERT_TRUE(CFReadStreamOpen(stream.get()));
        EXPECT_TRUE(CFReadStreamHasBytesAvailable(stream.get()));
        EXPECT_EQ(readAll(stream, size), "01234567") << size;
        EXPECT_FALSE(CFReadStreamHasBytesAvailable(stream.get()));
        EXPECT_EQ(CFReadStreamGetStatus(stream.get()), kCFStreamStatusAtEnd);
    }
}

TEST(CFStream, LendsItsMemory) {
    const char text[] = "0123";
    const In stream = readMemory(text);
    CFIndex count = 7;
    EXPECT_EQ(CFReadStreamGetBuffer(stream.get(), 0, &count), nullptr);
    EXPECT_EQ(count, -1) << "not open";
    CFReadStreamOpen(stream.get());
    EXPECT_EQ(CFReadStreamGetBuffer(stream.get(), 3, &count), bytes(text));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(CFReadStreamGetBuffer(stream.get(), 0, &count), bytes(text) + 3);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(CFReadStreamGetBuffer(stream.get(), 0, &count), nullptr);
    EXPECT_EQ(count, 0);
}

TEST(CFStream, FreesTheBytesItWasGiven) {
    // Unfreed or freed twice it would be reported by the address sanitizer.
    auto* const memory = static_cast<UInt8*>(std::malloc(4));
    std::memcpy(memory, "abcd", 4);
    const In stream =
        cf::adopt(CFReadStreamCreateWithBytesNoCopy(nullptr, memory, 4, kCFAllocatorMalloc));
    CFReadStreamOpen(stream.get());
    EXPECT_EQ(readAll(stream, 64), "abcd");
}

TEST(CFStream, GoesThroughItsStatesOnce) {
    const In stream = readMemory("a");
    UInt8 byte;
    EXPECT_EQ(CFReadStreamGetStatus(stream.get()), kCFStreamStatusNotOpen);
    EXPECT_EQ(CFReadStreamRead(stream.get(), &byte, 1), -1);
    CFReadStreamClose(stream.get());
    EXPECT_EQ(CFReadStreamGetStatus(stream.get()), kCFStreamStatusNotOpen);
    EXPECT_TRUE(CFReadStreamOpen(stream.get()));
    EXPECT_FALSE(CFReadStreamOpen(stream.get()));
    EXPECT_EQ(CFReadStreamGetStatus(stream.get()), kCFStreamStatusOpen);
    CFReadStreamClose(stream.get());
    EXPECT_EQ(CFReadStreamGetStatus(stream.get()), kCFStreamStatusClosed);
    EXPECT_EQ(CFReadStreamRead(stream.get(), &byte, 1), -1);
    EXPECT_FALSE(CFReadStreamOpen(stream.get()));
    EXPECT_EQ(CFReadStreamCopyError(stream.get()), nullptr);
}

TEST(CFStream, FillsABufferAndNoMore) {
    UInt8 buffer[5] = "....";
    const Out stream = cf::adopt(CFWriteStreamCreateWithBuffer(nullptr, buffer, 4));
    EXPECT_EQ(put(stream, "ab"), -1) << "not open";
    ASSERT_TRUE(CFWriteStreamOpen(stream.get()));
    EXPECT_TRUE(CFWriteStreamCanAcceptBytes(stream.get()));
    EXPECT_EQ(put(stream, "abc"), 3);
    EXPECT_EQ(put(stream, "defg"), 1);
    EXPECT_EQ(put(stream, "h"), 0);
    EXPECT_FALSE(CFWriteStreamCanAcceptBytes(stream.get()));
    EXPECT_EQ(CFWriteStreamGetStatus(stream.get()), kCFStreamStatusAtEnd);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "abcd");
    EXPECT_EQ(written(stream), "abcd");
}

TEST(CFStream, GrowsItsOwnMemory) {
    const Out stream = cf::adopt(CFWriteStreamCreateWithAllocatedBuffers(nullptr, nullptr));
    CFWriteStreamOpen(stream.get());
    std::string all;
    for (int i = 0; i < 1000; ++i) {
        const std::string part(size_t(i % 7), char('a' + i % 26));
        ASSERT_EQ(put(stream, part.c_str()), CFIndex(part.size()));
        all += part;
    }
    CFWriteStreamClose(stream.get());
    EXPECT_EQ(written(stream), all);
}

TEST(CFStream, WithoutMemoryItFails) {
    const Out stream =
        cf::adopt(CFWriteStreamCreateWithAllocatedBuffers(nullptr, kCFAllocatorNull));
    CFWriteStreamOpen(stream.get());
    EXPECT_EQ(put(stream, "a"), -1);
    EXPECT_EQ(CFWriteStreamGetStatus(stream.get()), kCFStreamStatusError);
    const auto error = cf::adopt(CFWriteStreamCopyError(stream.get()));
    EXPECT_TRUE(CFEqual(CFErrorGetDomain(error.get()), kCFErrorDomainPOSIX));
    EXPECT_EQ(CFErrorGetCode(error.get()), ENOMEM);
}

TEST_F(CFStreamOnFile, WritesAndReads) {
    const Out out = writing("file");
    ASSERT_TRUE(CFWriteStreamOpen(out.get()));
    EXPECT_EQ(put(out, "0123"), 4);
    EXPECT_EQ(put(out, "4567"), 4);
    CFWriteStreamClose(out.get());
    const In in = reading("file");
    ASSERT_TRUE(CFReadStreamOpen(in.get()));
    EXPECT_TRUE(CFReadStreamHasBytesAvailable(in.get()));
    EXPECT_EQ(readAll(in, 3), "01234567");
    EXPECT_EQ(CFReadStreamGetStatus(in.get()), kCFStreamStatusAtEnd);
    CFIndex count = 7;
    EXPECT_EQ(CFReadStreamGetBuffer(in.get(), 0, &count), nullptr);
    EXPECT_EQ(count, 0) << "a file lends nothing";
}

TEST_F(CFStreamOnFile, EmptiesTheFileUnlessItAppends) {
    const struct {
        const char* what;
        CFBooleanRef appends;
        const char* result;
    } cases[] = {{"emptied", kCFBooleanFalse, "new"}, {"appended", kCFBooleanTrue, "oldnew"}};
    for (const auto& [what, appends, result] : cases) {
        folder.write("file", "old");
        const Out out = writing("file");
        EXPECT_TRUE(CFWriteStreamSetProperty(out.get(), kCFStreamPropertyAppendToFile, appends));
        CFWriteStreamOpen(out.get());
        put(out, "new");
        CFWriteStreamClose(out.get());
        EXPECT_EQ(folder.read("file"), result) << what;
    }
}

TEST_F(CFStreamOnFile, MovesWithinTheFile) {
    folder.write("file", "01234567");
    const auto number = [](int value) {
        return cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &value));
    };
    const CFStringRef offset = kCFStreamPropertyFileCurrentOffset;
    const In in = reading("file");
    EXPECT_TRUE(CFReadStreamSetProperty(in.get(), offset, number(6).get()));
    EXPECT_FALSE(CFReadStreamSetProperty(in.get(), offset, number(-1).get()));
    EXPECT_FALSE(CFReadStreamSetProperty(in.get(), offset, CFSTR("1")));
    EXPECT_FALSE(CFReadStreamSetProperty(in.get(), CFSTR("other"), number(1).get()));
    CFReadStreamOpen(in.get());
    EXPECT_EQ(readAll(in, 4), "67");
    EXPECT_TRUE(CFReadStreamSetProperty(in.get(), offset, number(2).get()))
        << "also back from the end";
    EXPECT_EQ(readAll(in, 64), "234567");
    const auto place =
        cf::adopt(static_cast<CFNumberRef>(CFReadStreamCopyProperty(in.get(), offset)));
    EXPECT_TRUE(CFEqual(place.get(), number(8).get()));
}

TEST_F(CFStreamOnFile, SaysWhyItFailed) {
    const In missing = reading("missing");
    EXPECT_FALSE(CFReadStreamOpen(missing.get()));
    EXPECT_EQ(CFReadStreamGetStatus(missing.get()), kCFStreamStatusError);
    EXPECT_EQ(CFErrorGetCode(cf::adopt(CFReadStreamCopyError(missing.get())).get()), ENOENT);

    const Out unwritable = writing("missing/file");
    EXPECT_FALSE(CFWriteStreamOpen(unwritable.get()));
    EXPECT_EQ(CFErrorGetCode(cf::adopt(CFWriteStreamCopyError(unwritable.get())).get()), ENOENT);

    const In directory = reading("");
    UInt8 byte;
    CFReadStreamOpen(directory.get());
    EXPECT_EQ(CFReadStreamRead(directory.get(), &byte, 1), -1);
    EXPECT_EQ(CFErrorGetCode(cf::adopt(CFReadStreamCopyError(directory.get())).get()), EISDIR);
}

TEST(CFStream, IsNotMadeOfUnusableArguments) {
    const auto web = cf::adopt(CFURLCreateWithString(nullptr, CFSTR("http://h/a"), nullptr));
    EXPECT_EQ(CFReadStreamCreateWithFile(nullptr, web.get()), nullptr);
    EXPECT_EQ(CFReadStreamCreateWithBytesNoCopy(nullptr, nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(CFReadStreamCreateWithBytesNoCopy(nullptr, bytes("a"), -1, nullptr), nullptr);
    EXPECT_EQ(CFWriteStreamCreateWithBuffer(nullptr, nullptr, 1), nullptr);
}

} // namespace
