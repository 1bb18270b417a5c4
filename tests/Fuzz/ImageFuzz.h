// ImageFuzz.h: what the entries for picture files do with any bytes.
#pragma once

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include <ImageIO/ImageIO.h>

#include <cstdint>
#include <cstdlib>

namespace test {

inline void require(bool condition) {
    if (!condition)
        std::abort();
}

// Large pictures of few bytes cost time and find nothing that small ones do not.
inline bool isSmall(CGImageSourceRef source) {
    constexpr std::int64_t kMostPixels = 64 * 64;
    const auto properties = cf::adopt(CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr));
    if (!properties)
        return false;
    std::int64_t sides[2] = {};
    const CFStringRef keys[2] = {kCGImagePropertyPixelWidth, kCGImagePropertyPixelHeight};
    for (int i = 0; i < 2; ++i) {
        const auto number =
            static_cast<CFNumberRef>(CFDictionaryGetValue(properties.get(), keys[i]));
        require(number && CFNumberGetValue(number, kCFNumberSInt64Type, &sides[i]));
    }
    return sides[0] <= kMostPixels && sides[0] * sides[1] <= kMostPixels;
}

// What decodes has all its bytes, and decodes to the same ones again.
inline void decodeTwice(CGImageRef image) {
    const CGDataProviderRef provider = CGImageGetDataProvider(image);
    const auto once = cf::adopt(CGDataProviderCopyData(provider));
    if (!once)
        return;
    const std::size_t size = CGImageGetBytesPerRow(image) * CGImageGetHeight(image);
    require(std::size_t(CFDataGetLength(once.get())) == size);
    const auto copy = cf::adopt(CFDataCreate(nullptr, CFDataGetBytePtr(once.get()), CFIndex(size)));
    require(CFEqual(copy.get(), once.get()));
}

inline void readSource(CGImageSourceRef source) {
    CGImageSourceGetType(source);
    CGImageSourceGetStatus(source);
    require((CGImageSourceGetCount(source) == 1) ==
            bool(cf::adopt(CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr))));
    if (!isSmall(source))
        return;
    const auto image = cf::adopt(CGImageSourceCreateImageAtIndex(source, 0, nullptr));
    require(bool(image));
    decodeTwice(image.get());
    const auto thumbnail = cf::adopt(CGImageSourceCreateThumbnailAtIndex(source, 0, nullptr));
}

// The whole file, and the file with its second half still to come.
inline void readImage(const std::uint8_t* bytes, std::size_t size) {
    const auto whole = cf::adopt(CFDataCreate(nullptr, bytes, CFIndex(size)));
    readSource(cf::adopt(CGImageSourceCreateWithData(whole.get(), nullptr)).get());
    const auto half = cf::adopt(CFDataCreate(nullptr, bytes, CFIndex(size / 2)));
    const auto growing = cf::adopt(CGImageSourceCreateIncremental(nullptr));
    CGImageSourceUpdateData(growing.get(), half.get(), false);
    readSource(growing.get());
}

} // namespace test
