// ConicShading.h: colours that turn around a point. Callers see them as gradients alone.
#pragma once

#include <CoreGraphics/CGShading.h>

#include <optional>

namespace cg {

// The function's colours once around `center`, from `angle` on, in radians from x towards y. NULL
// when something is missing or memory runs out. To whom does not know the kind it is a line
// without an extent, which paints nothing.
CGShadingRef createConicShading(CGColorSpaceRef space, CGPoint center, CGFloat angle,
                                CGFunctionRef function);

// Where the colours of a conic shading start; nothing for other kinds.
std::optional<CGFloat> startAngleOf(CGShadingRef shading);

} // namespace cg
