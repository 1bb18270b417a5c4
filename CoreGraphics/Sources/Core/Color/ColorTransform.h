// ColorTransform.h: components from one space's profile to another's.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

#include <array>
#include <optional>

namespace cg {

// Components of a colour without its opacity: up to four are used.
using ColorComponents = std::array<CGFloat, 4>;

// The components in the space `to`. Empty when either has no profile, or the two do not meet.
std::optional<ColorComponents> transformed(CGColorSpaceRef from, CGColorSpaceRef to,
                                           CGColorRenderingIntent intent,
                                           const ColorComponents& components);

} // namespace cg
