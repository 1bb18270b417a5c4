// Text.h: draws text elements.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

namespace svg {

// Draws a text element with its fills, strokes and lines; the context's user space is its own.
void drawText(Scene& scene, CGContextRef context, const Occurrence& text);

// Fills its glyphs with the context's fill colour, for clip paths.
void drawTextSilhouette(Scene& scene, CGContextRef context, const Occurrence& text);

// The box around a text element's glyphs, in its user space; the null rectangle around none.
CGRect textBounds(Scene& scene, const Occurrence& text);

} // namespace svg
