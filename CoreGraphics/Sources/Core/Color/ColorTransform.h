// ColorTransform.h: the numbers of single colours from one space to another.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

#include <array>

namespace cg {

// Up to four components of a colour and, right behind those that there are, its opacity.
using ColorComponents = std::array<CGFloat, 5>;

// Writes the colour in the space `to`, as it is where the spaces are equal, to `out`. Indices go
// through their table, patterns through their base. Not clamped to what the space allows. False
// when either has no profile, or the two do not meet.
bool convertColor(CGColorSpaceRef from, const ColorComponents& color, CGColorSpaceRef to,
                  CGColorRenderingIntent intent, ColorComponents& out);

// The same through the profiles of two spaces, whether they are equal or not.
bool convertByProfiles(CGColorSpaceRef from, const ColorComponents& color, CGColorSpaceRef to,
                       CGColorRenderingIntent intent, ColorComponents& out);

} // namespace cg
