// PaintServer.h: what the fills and strokes of a document paint with.
#pragma once

#include "Gradient.h"
#include "Occurrence.h"

#include <variant>

namespace svg {

// Nothing, one colour, or a gradient in the shape's user space.
using PaintSource = std::variant<std::monostate, Color, Gradient>;

// What `paint` comes to on a shape with this outline. Patterns come to the fallback that the
// document names, or to nothing, and the report tells.
PaintSource paintSourceOf(Scene& scene, const Occurrence& shape, const Paint& paint,
                          CGPathRef outline);

} // namespace svg
