// ImageShadow.h: shadows of marks that are more than a shape: images, groups, patterned paths.
#pragma once

#include "Backend/Raster/Surface.h"

namespace cg {

// How a shadow is put down.
struct ShadowCast {
    SkVector offset = {0, 0}; // In device space.
    float sigma = 0;          // Of its blur; 0 for sharp edges.
    SkPaint paint;            // Its colour, and the mask filter that blurs with `sigma`.
};

// `shown` and all that may throw shadow into it, in columns and rows; `shown` alone where that
// would be too large to be drawn aside.
SkIRect areaThrowingShadowInto(const SkIRect& shown, const ShadowCast& shadow);

// The blurred shape of an image, as far as `pattern` covers it, if that is given: a shader over the
// surface's pixels. `deviceHeight` is the height of the area that the surface shows a part of.
void drawImageShadow(Surface& surface, int deviceHeight, const PlacedImage& image,
                     const ShadowCast& shadow, sk_sp<SkShader> pattern = nullptr);

// The blurred shape of a path in device space under a paint, whose shader covers as much as it is
// opaque.
void drawPathShadow(Surface& surface, int deviceHeight, const SkPath& devicePath,
                    const SkPaint& mark, const ShadowCast& shadow);

// The blurred shape of glyphs under a paint, one shadow for all of them.
void drawGlyphsShadow(Surface& surface, int deviceHeight, const PlacedGlyphs& glyphs,
                      const SkPaint& mark, const ShadowCast& shadow);

} // namespace cg
