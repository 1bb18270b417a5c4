// ImageShadow.h: the shadow that an image throws.
#pragma once

#include "Backend/Raster/Surface.h"

namespace cg {

// The blurred shape of an image in the colour of `paint`, whose mask filter blurs with `sigma` (0:
// sharp), `offset` away in device space. `deviceHeight` is the height of the area that the surface
// shows a part of.
void drawImageShadow(Surface& surface, int deviceHeight, const PlacedImage& image, SkVector offset,
                     float sigma, const SkPaint& paint);

} // namespace cg
