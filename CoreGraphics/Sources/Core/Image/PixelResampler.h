// PixelResampler.h: pictures at another size.
#pragma once

#include "PixelBaking.h"

#include <cstddef>

namespace cg {

// Pixels of a picture from (x, y) on, rows downwards.
struct PixelRect {
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t width = 0;
    std::size_t height = 0;
};

// The part `part` of the picture brought to `width` by `height` pixels. Along each axis, a smaller
// picture averages the area that a pixel covers, and a larger one interpolates between the centres
// of pixels. None, with the reason in the log, when memory runs out.
BakedPixels resample(const BakedPixels& source, std::size_t width, std::size_t height,
                     const PixelRect& part);

} // namespace cg
