// WrittenPixels.h: an image's pixels in a layout that files have.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace imageio {

// Colour spaces that a file can say its pixels are in.
struct FileColors {
    CGColorSpaceRef space = nullptr; // To read the pixels in; NULL for the image's own. Lent.
    CGColorSpaceModel model = kCGColorSpaceModelMonochrome; // Monochrome, RGB or CMYK.
    bool isSRGB = false;
    cf::Ref<CFDataRef> profile; // Empty for the device's own colours.

    std::uint32_t componentCount() const;
};

enum class InkColors : std::uint8_t { Refused, Accepted };

// The image's own colours if a file can have and name them, else sRGB. Masks, and opacity without a
// colour, are gray.
FileColors fileColors(CGImageRef image, InkColors inks);

// Whether the image, or what masks it, lets something through. Not of images that are masks.
bool hasOpacity(CGImageRef image);

// Interleaved components in the host's order, opacity behind them; rows without padding.
struct WrittenLayout {
    CGColorSpaceRef space = nullptr; // NULL: the image's own colours.
    std::uint32_t colorCount = 1;
    std::uint32_t bitsPerComponent = 8; // Or 16.
    bool hasAlpha = false;
    bool isPremultiplied = false;

    std::size_t bytesPerPixel() const {
        return std::size_t{colorCount + (hasAlpha ? 1 : 0)} * (bitsPerComponent / 8);
    }
};

// The rows of an image from the top to the bottom: the provider's own bytes where they have the
// layout already, else converted a band at a time.
class WrittenRows {
public:
    WrittenRows(CGImageRef image, const WrittenLayout& layout);
    ~WrittenRows();
    WrittenRows(const WrittenRows&) = delete;
    WrittenRows& operator=(const WrittenRows&) = delete;

    // Good until the next call. NULL when bytes are missing or memory runs out; the log says so.
    const std::uint8_t* row(std::size_t y);

private:
    bool lockOwnBytes();
    bool readBand(std::size_t firstRow);

    CGImageRef image_;
    WrittenLayout layout_;
    CGDataProviderRef locked_ = nullptr; // Lent by the image.
    const std::uint8_t* ownBytes_ = nullptr;
    std::size_t height_;
    std::size_t bytesPerRow_; // Of the band, or of the provider's bytes.
    std::size_t bandRows_ = 0;
    std::size_t bandStart_ = 0;
    std::size_t bandEnd_ = 0;
    std::unique_ptr<std::uint8_t[]> band_;
};

} // namespace imageio
