// PixelBaking.h: copies of images in a few layouts that everything can draw.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace cg {

enum class Opacity : std::uint8_t { Opaque, Premultiplied };

// Four components of 8 bits with blue first or, of deeper images, of 16 bits in host order with red
// first; or, of masks and of opacity alone, one component of 8 bits.
struct BakedLayout {
    Opacity opacity = Opacity::Premultiplied;
    std::uint8_t components = 4;
    std::uint8_t bytesPerComponent = 1;

    std::size_t bytesPerPixel() const { return std::size_t{components} * bytesPerComponent; }
};

// Pixels of a picture in memory of its own, rows one after the other.
struct BakedPixels {
    std::size_t width = 0;
    std::size_t height = 0;
    BakedLayout layout;
    std::unique_ptr<std::byte[]> bytes;

    std::size_t bytesPerRow() const { return width * layout.bytesPerPixel(); }
    explicit operator bool() const { return bytes != nullptr; }
};

// Room for pixels; none when the sizes overflow or memory runs out.
BakedPixels roomFor(std::size_t width, std::size_t height, const BakedLayout& layout);

// All pixels of an image, with whatever masks it, in `space`, which is gray or RGB; of a mask its
// samples, decoded. None, with the reason in the log, when they cannot be read.
BakedPixels bake(CGImageRef image, CGColorSpaceRef space);

// An image over the pixels, which it owns then. It interpolates and renders as `like` does, and is
// a mask where that is one.
cf::Ref<CGImageRef> imageOf(BakedPixels pixels, CGColorSpaceRef space, CGImageRef like);

} // namespace cg
