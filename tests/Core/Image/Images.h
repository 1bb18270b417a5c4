// Images.h: images of known bytes for tests.
#pragma once

#include "XGImage.h"
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

using Image = cf::Ref<CGImageRef>;
using Provider = cf::Ref<CGDataProviderRef>;
using Space = cf::Ref<CGColorSpaceRef>;
using Bytes = std::vector<std::uint8_t>;

// Bytes of which no two neighbours, in a row or in a column of up to 251 bytes, are equal.
inline Bytes patternBytes(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 89 % 251);
    return bytes;
}

// Over a copy of `bytes`.
inline Provider providerOf(const Bytes& bytes) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGDataProviderCreateWithCFData(data.get()));
}

inline Space rgb() {
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}
inline Space gray() {
    return cf::adopt(CGColorSpaceCreateDeviceGray());
}

inline Image imageOf(std::size_t width, std::size_t height, std::size_t bitsPerComponent,
                     std::size_t bitsPerPixel, std::size_t bytesPerRow, const Space& space,
                     CGBitmapInfo info, const Provider& provider, const CGFloat* decode = nullptr) {
    return cf::adopt(CGImageCreate(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow,
                                   space.get(), info, provider.get(), decode, true,
                                   kCGRenderingIntentPerceptual));
}

// All bytes that can be read from the image's provider.
inline Bytes bytesOf(const Image& image) {
    const auto data = cf::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image.get())));
    if (!data)
        return {};
    const UInt8* const start = CFDataGetBytePtr(data.get());
    return {start, start + CFDataGetLength(data.get())};
}

} // namespace test
