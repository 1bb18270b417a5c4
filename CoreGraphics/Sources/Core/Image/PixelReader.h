// PixelReader.h: rows of any image as plain components.
#pragma once

#include <CoreGraphics/CGImage.h>

#include "Core/Color/RowTransform.h"

#include <cstddef>
#include <memory>

namespace cg {

enum class AlphaUse : std::uint8_t { None, Straight, Premultiplied };
// BGRX and RGBX are four components a pixel whatever the space: a gray is given three times, and
// where opacity is not wanted the fourth component is full.
enum class ComponentOrder : std::uint8_t { OfSpace, BGRX, RGBX };

// What pixels are wanted as.
struct PixelTarget {
    CGColorSpaceRef space = nullptr; // NULL: the image's own colours, an indexed image's base.
    ComponentType type = ComponentType::Unsigned8;
    AlphaUse alpha = AlphaUse::None;
    ComponentOrder order = ComponentOrder::OfSpace; // Others for gray and RGB alone.
    CGColorRenderingIntent intent = kCGRenderingIntentDefault;
};

// Goes through an image's rows, each pixel on this way: raw samples; masking colours, which are
// held against samples as they stand; decode array, or the colour table; colours without their
// opacity, if they must change; colour conversion; the mask; colours times opacity, if wanted.
//
// Arithmetic is in 8 bits where both the image's components and the wanted ones have no more, in
// floats where floats are wanted, premultiplied samples fit no integer exactly or Lab is converted,
// and otherwise in 16 bits. Each step rounds to the nearest value.
//
// An image mask gives its decoded samples as gray; pixels of opacity alone give black of that
// opacity, or, where opacity is not wanted, the opacity as gray. One thread at a time; any number
// of readers may read one image.
class PixelReader {
public:
    // NULL, with the reason in the log, for pixels that cannot be read as wanted.
    static std::unique_ptr<PixelReader> of(CGImageRef image, const PixelTarget& target);
    virtual ~PixelReader() = default;

    // What is written for a pixel.
    std::size_t componentsPerPixel() const { return componentsPerPixel_; }
    std::size_t bytesPerPixel() const;

    // Rows that the image has, to `out` in steps of `outBytesPerRow`. False, with a line in the
    // log, when bytes are missing: rows before that are good.
    virtual bool readRows(std::size_t firstRow, std::size_t rowCount, std::byte* out,
                          std::size_t outBytesPerRow) = 0;
    // `count` pixels of a row from `first` on, which begins on a whole byte.
    virtual bool readPixels(std::size_t row, std::size_t first, std::size_t count,
                            std::byte* out) = 0;

protected:
    PixelTarget target_;
    std::size_t componentsPerPixel_ = 0;
};

// The space that an image's colours are in once a table has been looked up: device gray for masks
// and for opacity alone. NULL for spaces that pixels cannot be in.
CGColorSpaceRef pixelSpace(CGImageRef image);

// Whether a mask, or colours that are masked out, decide on where the image shows.
bool isMasked(CGImageRef image);
// Whether a gray of the space `gray` is three times that value in `destination`.
bool isReplicated(CGColorSpaceRef gray, CGColorSpaceRef destination);
// Whether some pixel may be less than opaque, by its own opacity or a mask.
bool canBeTransparent(CGImageRef image);

} // namespace cg
