// PaintServer.h: what the fills and strokes of a document paint with.
#pragma once

#include "Gradient.h"
#include "Occurrence.h"
#include "PatternTile.h"

#include <variant>

namespace svg {

// Nothing, one colour, or a gradient or pattern in the shape's user space.
using PaintSource = std::variant<std::monostate, Color, Gradient, PatternTile>;

// What `paint` comes to on a shape with this outline.
PaintSource paintSourceOf(Scene& scene, const Occurrence& shape, const Paint& paint,
                          CGPathRef outline);

} // namespace svg
