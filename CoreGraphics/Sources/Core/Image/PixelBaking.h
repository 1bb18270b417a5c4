// PixelBaking.h: copies of images in the one layout that everything can draw.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstddef>
#include <memory>

namespace cg {

enum class Opacity : std::uint8_t { Opaque, Premultiplied };

// Pixels of a picture in memory of its own: 32 bits, blue first, rows one after the other.
struct BakedPixels {
    std::size_t width = 0;
    std::size_t height = 0;
    Opacity opacity = Opacity::Premultiplied;
    std::unique_ptr<std::byte[]> bytes;

    std::size_t bytesPerRow() const { return width * 4; }
    explicit operator bool() const { return bytes != nullptr; }
};

// Room for pixels; none when the sizes overflow or memory runs out.
BakedPixels roomFor(std::size_t width, std::size_t height, Opacity opacity);

// All pixels of an image, with whatever masks it, in `space`, which is gray or RGB; none, with the
// reason in the log, when they cannot be read.
BakedPixels bake(CGImageRef image, CGColorSpaceRef space);

// An image over the pixels, which it owns then. It interpolates and renders as `like` does.
cf::Ref<CGImageRef> imageOf(BakedPixels pixels, CGColorSpaceRef space, CGImageRef like);

} // namespace cg
