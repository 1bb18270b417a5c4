// PixelWriter.h: drawn pixels into any make-up that bitmaps have.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

#include "PixelLayout.h"

#include <cstddef>
#include <memory>

namespace cg {

// How pixels lie in the memory that they were drawn in: components in host order, times opacity.
// The fourth is full, and not looked at, where the written pixels have no opacity.
enum class DrawnFormat : std::uint8_t { BGRA8, RGBA16 };

// What the colours of drawn pixels are: those of the bitmap where it is of RGB, and the device's
// RGB where it is of inks or of a colour table. Gray is given three times and comes back as luma.
CGColorSpaceRef drawnSpace(CGColorSpaceRef bitmapSpace);

// The way back of PixelReader: what it read of a pixel writes the same pixel, but for the unused
// bits. Inks and indices are found anew from the colour, so that only what has changed should be
// written.
class PixelWriter {
public:
    // For pixels of one to eight whole bytes. NULL when there is no way to the space, or no memory.
    static std::unique_ptr<PixelWriter> of(const PixelLayout& layout, CGColorSpaceRef space,
                                           DrawnFormat drawn);
    virtual ~PixelWriter() = default;

    // For inks: a pixel that was drawn exactly as this one gets these components, 0…1, instead of
    // those that would be found, until the next such call. So colours of the bitmap's own space
    // arrive as they were given.
    virtual void keepColor(const std::byte* drawn, const CGFloat* components) = 0;
    virtual void write(const std::byte* drawn, std::size_t count, std::byte* pixels) = 0;
};

} // namespace cg
