// DirectRows.h: rows of gray, RGB and inks whose colours stay what they are.
#pragma once

#include "Core/Color/RowTransform.h"

namespace cg {

struct DirectLayout {
    RowFormat format;
    std::size_t colorCount = 0; // Without the opacity.
};

// Copies components of equal number, replicates gray into RGB and takes the luma of RGB as gray.
// Types are converted to the nearest value; floats outside 0…1 saturate when they become integers.
void convertRowDirectly(const void* in, const DirectLayout& from, void* out, const DirectLayout& to,
                        std::size_t pixelCount);

// Brightness as gamma-coded components give it (ITU-R BT.709-6, 3.2).
inline float luma(float red, float green, float blue) {
    return 0.2126f * red + 0.7152f * green + 0.0722f * blue;
}

} // namespace cg
