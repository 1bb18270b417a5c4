// PaintServer.h: what gradients and patterns come to as long as they are not drawn as such.
#pragma once

#include "Occurrence.h"

#include <optional>

namespace svg {

// A single colour in place of the paint server that `paint` refers to: the fallback that the
// document names, else the average of a gradient's colours, so that shapes keep their rough look.
// Nothing for patterns and for servers that do not exist. Whatever it is, the report tells.
std::optional<Color> colorOfServer(Scene& scene, const Style& style, const Paint& paint);

} // namespace svg
