// ShadingShader.h: the geometry of shadings as Skia's gradients.
#pragma once

#include <CoreGraphics/CGShading.h>

#include "Core/Color/DisplayedColor.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkShader.h"

namespace cg {

// What paints a shading, whose space `toPixels` maps to a surface's pixels; NULL when it paints
// nothing.
sk_sp<SkShader> makeShadingShader(CGShadingRef shading, const SkMatrix& toPixels,
                                  const ColorTarget& target);

} // namespace cg
