// PixelImages.h: images over bytes that a test holds, and what their pixels are read as.
#pragma once

#include "XGImagePixels.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace test {

using Image = cf::Ref<CGImageRef>;
using Bytes = std::vector<std::uint8_t>;

struct ImageWords {
    std::size_t width = 1, height = 1;
    std::size_t bits = 8, bitsPerPixel = 8, bytesPerRow = 0;
    CGColorSpaceRef space = nullptr;
    CGBitmapInfo info = 0;
    const CGFloat* decode = nullptr;
};

// No bytes per row: as many as the pixels take.
inline Image makeImage(const ImageWords& words, const cf::Ref<CGDataProviderRef>& provider) {
    const std::size_t row =
        words.bytesPerRow ? words.bytesPerRow : (words.width * words.bitsPerPixel + 7) / 8;
    return cf::adopt(CGImageCreate(words.width, words.height, words.bits, words.bitsPerPixel, row,
                                   words.space, words.info, provider.get(), words.decode, false,
                                   kCGRenderingIntentDefault));
}

// `bytes` are not copied.
inline Image makeImage(const ImageWords& words, const Bytes& bytes) {
    return makeImage(words, cf::adopt(CGDataProviderCreateWithData(nullptr, bytes.data(),
                                                                   bytes.size(), nullptr)));
}

inline Image makeMask(std::size_t width, std::size_t height, std::size_t bits, const Bytes& bytes,
                      const CGFloat* decode = nullptr) {
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, bytes.data(), bytes.size(), nullptr));
    return cf::adopt(CGImageMaskCreate(width, height, bits, bits, (width * bits + 7) / 8,
                                       provider.get(), decode, false));
}

// All components of all pixels, or nothing when reading fails.
template <typename Component>
std::optional<std::vector<Component>> readPixels(CGImageRef image, std::size_t components,
                                                 bool hasAlpha, bool premultiplied,
                                                 CGColorSpaceRef space = nullptr) {
    const XGPixelRequest request = {.space = space,
                                    .bitsPerComponent = 8 * sizeof(Component),
                                    .hasAlpha = hasAlpha,
                                    .premultiplied = premultiplied};
    const std::size_t row = CGImageGetWidth(image) * components;
    std::vector<Component> pixels(row * CGImageGetHeight(image));
    if (!XGImageReadPixels(image, &request, 0, CGImageGetHeight(image), pixels.data(),
                           row * sizeof(Component)))
        return std::nullopt;
    return pixels;
}

} // namespace test
