// DrawablePixels.h: an image's pixels as a rasteriser draws them.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGImage.h>

#include "Core/Data/LockedData.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace cg {

// Names give the order of bytes. X is not looked at. Alpha8 is coverage, of image masks and of
// images of opacity alone: 255 lets all paint through.
enum class DrawableFormat : std::uint8_t {
    BGRA8Premultiplied,
    BGRX8,
    RGBA8Premultiplied,
    RGBX8,
    Gray8,
    Alpha8,
};

struct ConvertedPixels;

// Pixels that stay where they are while this object lives. They are the provider's own, locked,
// where an image lies in one of the formats already: 8 bits, whole rows, no mask, no decode array,
// colours that mean the same in the destination. Other images are converted once and the result is
// kept with the image.
//
// Made by any number of threads from one image; the conversion then happens in one of them while
// the others wait.
class DrawablePixels {
public:
    // Colours are given in the space `destination`; where that is NULL or neither gray nor RGB, in
    // the device's RGB. Opaque pictures of a gray space drawn into the device's RGB are Gray8, and
    // so are those drawn into gray. Nothing, with the reason in the log, when bytes are missing or
    // memory runs out.
    static std::optional<DrawablePixels> of(CGImageRef image, CGColorSpaceRef destination,
                                            CGColorRenderingIntent intent);

    DrawableFormat format() const { return format_; }
    std::size_t width() const { return width_; }
    std::size_t height() const { return height_; }
    std::size_t bytesPerRow() const { return bytesPerRow_; }
    // Aligned to a pixel, as bytesPerRow is.
    const void* pixels() const { return pixels_; }

private:
    friend class PixelCache;
    DrawablePixels() = default;
    explicit DrawablePixels(cf::Ref<const ConvertedPixels*> converted);
    bool lockInPlace(CGImageRef image, CGColorSpaceRef destination);

    DrawableFormat format_ = DrawableFormat::BGRX8;
    std::size_t width_ = 0;
    std::size_t height_ = 0;
    std::size_t bytesPerRow_ = 0;
    const void* pixels_ = nullptr;
    // One of the two holds the pixels.
    std::optional<LockedData> locked_;
    cf::Ref<const ConvertedPixels*> converted_;
};

} // namespace cg
