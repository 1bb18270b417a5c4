// Images.h: images of made-up pixels, and writing them.
#pragma once

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CoreGraphics.h>

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/UTCoreTypes.h>

#include <cstdint>
#include <random>
#include <vector>

namespace test {

using Bytes = std::vector<std::uint8_t>;
using Image = cf::Ref<CGImageRef>;
using Space = cf::Ref<CGColorSpaceRef>;
using Data = cf::Ref<CFMutableDataRef>;

inline Bytes randomBytes(std::size_t count) {
    std::mt19937 random(20);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

inline cf::Ref<CGDataProviderRef> providerOf(const Bytes& bytes) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGDataProviderCreateWithCFData(data.get()));
}

struct Layout {
    std::size_t bitsPerComponent = 8;
    std::size_t bitsPerPixel = 8;
    CGBitmapInfo info = kCGImageAlphaNone;
};

constexpr std::size_t kWidth = 37;
constexpr std::size_t kHeight = 5;

inline std::size_t rowBytes(const Layout& layout) {
    return (kWidth * layout.bitsPerPixel + 7) / 8;
}

inline Image makeImage(const Layout& layout, const Bytes& bytes, CGColorSpaceRef space) {
    return cf::adopt(CGImageCreate(kWidth, kHeight, layout.bitsPerComponent, layout.bitsPerPixel,
                                   rowBytes(layout), space, layout.info, providerOf(bytes).get(),
                                   nullptr, false, kCGRenderingIntentDefault));
}

inline Data emptyData() {
    return cf::adopt(CFDataCreateMutable(nullptr, 0));
}

// The file's bytes; none when it was not written.
inline Bytes written(CGImageRef image, CFStringRef type, CFDictionaryRef properties = nullptr) {
    const Data data = emptyData();
    const auto file = cf::adopt(CGImageDestinationCreateWithData(data.get(), type, 1, nullptr));
    CGImageDestinationAddImage(file.get(), image, properties);
    if (!CGImageDestinationFinalize(file.get()))
        return {};
    const UInt8* bytes = CFDataGetBytePtr(data.get());
    return {bytes, bytes + CFDataGetLength(data.get())};
}

template <typename Number>
cf::Ref<CFNumberRef> number(CFNumberType type, Number value) {
    return cf::adopt(CFNumberCreate(nullptr, type, &value));
}

inline cf::Ref<CFMutableDictionaryRef> properties() {
    return cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                               &kCFTypeDictionaryValueCallBacks));
}

} // namespace test
