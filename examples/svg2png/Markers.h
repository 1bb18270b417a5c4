// Markers.h: the symbols at the vertices of lines.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

namespace svg {

// Draws the markers of a shape of this outline, if it is one that has any.
void drawMarkers(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef outline);

// Whether a shape is one that may have markers, and asks for some.
bool hasMarkers(const Occurrence& shape);

} // namespace svg
