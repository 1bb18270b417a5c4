// CGImageSourceThreadsTest.cpp: one source and one image in the hands of several threads.

#include "XGDataProvider.h"

#include "Sources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

namespace {

using namespace test;

template <typename Work>
void onThreads(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(ImageSourceThreads, ReadOneSource) {
    for (const Bytes& file : {makePng({}), makeJpeg({}), makeJpeg2000({})}) {
        const Bytes expected = pixelsOf(imageOf(file).get());
        const Source source = sourceOf(file);
        onThreads([&] {
            for (int i = 0; i < 20; ++i) {
                const Image image =
                    cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
                EXPECT_EQ(pixelsOf(image.get()), expected);
                EXPECT_EQ(CGImageSourceGetStatus(source.get()), kCGImageStatusComplete);
            }
        });
    }
}

TEST(ImageSourceThreads, LockAndPurgeOneImage) {
    const Bytes file = makePng({});
    const Bytes expected = pixelsOf(imageOf(file).get());
    const Image image = imageOf(file);
    const CGDataProviderRef provider = CGImageGetDataProvider(image.get());
    onThreads([&] {
        for (int i = 0; i < 50; ++i) {
            const void* const pixels = XGDataProviderLockData(provider);
            EXPECT_EQ(std::memcmp(pixels, expected.data(), expected.size()), 0);
            XGDataProviderUnlockData(provider);
            XGDataProviderPurge(provider);
        }
    });
}

TEST(ImageSourceThreads, UpdateAndReadOneSource) {
    const Bytes file = makeJpeg({});
    const Source source = cf::adopt(CGImageSourceCreateIncremental(nullptr));
    std::thread writer([&] {
        for (std::size_t size = 1; size <= file.size(); size += 7)
            CGImageSourceUpdateData(source.get(), dataOf({file.data(), file.data() + size}).get(),
                                    false);
        CGImageSourceUpdateData(source.get(), dataOf(file).get(), true);
    });
    onThreads([&] {
        while (CGImageSourceGetStatus(source.get()) != kCGImageStatusComplete)
            if (const Image image =
                    cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr)))
                pixelsOf(image.get());
    });
    writer.join();
}

} // namespace
