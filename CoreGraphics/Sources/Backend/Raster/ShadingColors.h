// ShadingColors.h: a shading's colours as Skia's gradients take them.
#pragma once

#include <CoreGraphics/CGShading.h>

#include "Backend/Raster/ShadingSampler.h"
#include "Core/Color/DisplayedColor.h"
#include "include/private/base/SkTArray.h"

namespace cg {

// Colours at places that never go back, from 0 to 1; most gradients need no memory for them.
struct ShadingColors {
    skia_private::STArray<8, SkColor4f> colors;
    skia_private::STArray<8, float> locations;
    bool areEvenlySpread = false; // Then Skia finds a place at once.

    void add(float location, const SkColor4f& color) {
        colors.push_back(color);
        locations.push_back(location);
    }
    const float* positions() const { return areEvenlySpread ? nullptr : locations.data(); }
    int count() const { return colors.size(); }
    // Those of the same shading from its end to its start.
    ShadingColors reversed() const;
};

// The stops of a gradient as they are, and any other function sampled. Empty, after a warning, when
// the function does not fit a shading.
ShadingColors colorsOf(CGShadingRef shading, const ColorTarget& target);

} // namespace cg
