// Paint.h: fills and strokes one outline.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

#include <functional>

namespace svg {

// Paints a shape's outline with its fill and stroke, in the order that its style asks for. The
// context's user space is the shape's; all colours are thinned by `opacity`.
void paintShape(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef path,
                double opacity);

// The same for glyphs, which `show` shows in the text drawing mode that is set; `box` is the
// outline of the box that gradients and patterns fill. Strokes in gradients are left out.
void paintGlyphs(Scene& scene, CGContextRef context, const Occurrence& span, CGPathRef box,
                 const std::function<void()>& show);

// Whether at most one of fill and stroke can leave marks, so that the opacity of the shape as a
// whole is that of the one colour.
bool paintsOnce(const Style& style);

} // namespace svg
