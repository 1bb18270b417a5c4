// Shading.h: shadings painted onto a surface.
#pragma once

#include "XGGState.h"
#include <CoreGraphics/CGShading.h>

#include "Backend/Raster/Surface.h"

#include <cstdint>

namespace cg {

// Paints the surface's whole clip, whose colours are of `space`, under the state's alpha and blend
// mode.
void paintShading(Surface& surface, XGGStateRef state, uint32_t flags, CGShadingRef shading,
                  CGColorSpaceRef space);

} // namespace cg
