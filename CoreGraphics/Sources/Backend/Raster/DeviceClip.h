// DeviceClip.h: a clipping put onto a surface.
#pragma once

#include "XGClipping.h"

#include "Backend/Raster/Surface.h"

namespace cg {

// Replaces the surface's clip by `clipping`, or lifts it for NULL. What `outer` clips already, the
// clipping under which the surface's pixels will be composited, is left out, so that the soft edges
// of that clip are not applied twice.
void applyClipping(Surface& surface, XGClippingRef clipping, XGClippingRef outer,
                   Antialias antialias);

} // namespace cg
