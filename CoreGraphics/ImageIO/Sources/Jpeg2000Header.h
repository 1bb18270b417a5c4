// Jpeg2000Header.h: reading the headers of JPEG 2000 files, with and without boxes.
#pragma once

#include "ImageHeader.h"

#include <array>
#include <optional>

namespace imageio {

// Colour spaces as colour boxes number them; 0 where the file leaves it open.
enum class Jpeg2000Colors : std::uint32_t {
    Unspecified = 0,
    CMYK = 12,
    SRGB = 16,
    Gray = 17,
    SYCC = 18
};

struct Jpeg2000Header {
    struct Component {
        std::uint32_t depth = 0;
        std::uint32_t horizontalStep = 1, verticalStep = 1; // Grid points for a sample.
    };

    // Of the picture, which has as many pixels as its finest components.
    std::size_t width = 0, height = 0;
    // The picture's first grid point and the grid points for a pixel.
    std::uint32_t left = 0, top = 0, horizontalStep = 1, verticalStep = 1;

    // In grid points; no tile is larger than the picture.
    std::uint32_t tileWidth = 0, tileHeight = 0;
    double tileCount = 0;

    std::size_t componentCount = 0; // In the codestream, at most four.
    std::array<Component, 4> components;
    Jpeg2000Colors colors = Jpeg2000Colors::Unspecified;
    Bytes profile;
    std::size_t channelCount = 0; // With a palette applied.
    std::uint32_t depth = 0;      // The most bits of a channel.
    bool isPremultiplied = false;
    Bytes codestream;

    // One gray, three of a colour, four inks; what is left over is opacity.
    std::size_t colorCount() const;
    bool hasAlpha() const { return channelCount > colorCount(); }
};

// Nothing when the header is damaged, incomplete, or of a kind that cannot be decoded: more than
// four components or 16 bits, or colours that are not listed above.
std::optional<Jpeg2000Header> readJpeg2000Header(Bytes file);

} // namespace imageio
