// ImageThreadsTest.cpp: one image, used by several threads at once.

#include <CoreFoundation/CFConstantString.h>

#include "Images.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using namespace test;

TEST(ImageThreads, CropCompareMarkAndTraceOneImage) {
    constexpr std::size_t kSide = 32;
    const Bytes bytes = patternBytes(kSide * kSide);
    const Image image = imageOf(kSide, kSide, 8, 8, kSide, gray(), 0, providerOf(bytes));
    const Image twin = imageOf(kSide, kSide, 8, 8, kSide, gray(), 0, providerOf(bytes));
    XGImageSetDebugSource(image.get(), CFSTR("shared"));
    std::atomic<int> mistakes = 0;
    const auto work = [&](std::size_t number) {
        for (std::size_t turn = 0; turn < 50; ++turn) {
            const std::size_t x = (turn + number) % (kSide - 4);
            const Image part = cf::adopt(
                CGImageCreateWithImageInRect(image.get(), CGRectMake(CGFloat(x), 1, 4, 2)));
            mistakes += bytesOf(part).at(0) != bytes[kSide + x];
            mistakes += !XGImageEqualToImage(image.get(), twin.get());
            CGImageAddFlags(image.get(), kXGImageUncacheable);
            mistakes += !XGImageIsUncacheable(cf::adopt(CGImageCreateCopy(image.get())).get());
            mistakes += XGImageGetTraceID(image.get()) != XGImageGetTraceID(image.get());
            mistakes += !CGImageForceDecode(image.get());
        }
    };
    onThreads(work);
    EXPECT_EQ(mistakes, 0);
}

} // namespace
