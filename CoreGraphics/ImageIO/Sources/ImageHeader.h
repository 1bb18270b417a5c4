// ImageHeader.h: what a file's header says of its image, and how the pixels will lie in memory.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGImage.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace imageio {

using Bytes = std::span<const std::uint8_t>;

struct ImageHeader {
    std::size_t width = 0, height = 0;

    // The pixels as a decoder writes them. Formats are chosen so that what can be drawn from as it
    // stands need not be copied for drawing: opaque colours take four bytes.
    std::size_t bitsPerComponent = 0, bitsPerPixel = 0, bytesPerRow = 0;
    CGBitmapInfo bitmapInfo = 0;
    cf::Ref<CGColorSpaceRef> space;
    bool isInverted = false; // Samples count down: 255 is no ink.

    // The pixels as the file has them.
    std::uint32_t depth = 0;
    bool isIndexed = false, hasAlpha = false;
    std::uint32_t orientation = 1;
    double horizontalDPI = 0, verticalDPI = 0; // 0: not said.

    std::size_t byteCount() const { return bytesPerRow * height; }
};

// Sets the layout of `components` times `bits` a pixel and the row bytes that follow from it.
// False when there are no pixels, or more bytes than any picture may have.
bool setLayout(ImageHeader& header, std::size_t components, std::size_t bits, CGBitmapInfo info);

// `profile` as a colour space if it has that many components, else the device space that does.
cf::Ref<CGColorSpaceRef> spaceOfProfile(Bytes profile, std::size_t components);
cf::Ref<CGColorSpaceRef> deviceSpace(std::size_t components);

} // namespace imageio
