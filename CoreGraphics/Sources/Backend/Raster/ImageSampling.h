// ImageSampling.h: how the pixels between an image's pixels are made up.
#pragma once

#include <CoreGraphics/CGContext.h>

#include "include/core/SkMatrix.h"
#include "include/core/SkSamplingOptions.h"

namespace cg {

// The sampling of a quality, for an image whose pixels `toPixels` maps to the destination's.
//
// | quality         | enlarged                | reduced                                        |
// |-----------------|-------------------------|------------------------------------------------|
// | none            | nearest pixel           | nearest pixel                                  |
// | low             | bilinear                | bilinear, which skips pixels below one half    |
// | default, medium | bilinear                | bilinear in the nearest of the halved images   |
// | high            | bicubic (Catmull, Rom)  | bilinear between the two nearest halved images |
//
// Anything else is low. The bicubic curve goes through the pixels, so that a picture at its own
// size is left as it is.
SkSamplingOptions samplingFor(CGInterpolationQuality quality, const SkMatrix& toPixels);

} // namespace cg
