// Filters.h: filters that come to shadows.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

#include <functional>

namespace svg {

// Calls `draw` with a context to draw the element into, as often as its filter shows it. The
// drawing interface blurs shadows and nothing else, so that a filter can be drawn if all that it
// blurs is of one colour; any other is left out, and the user told. `draw` finds the element's user
// space in the context. `outline` is that of a shape, or NULL.
void drawFiltered(Scene& scene, CGContextRef context, const Occurrence& filtered, CGPathRef outline,
                  const std::function<void(CGContextRef)>& draw);

// Whether the element has a filter at all.
bool hasFilter(const Scene& scene, const Occurrence& occurrence);

} // namespace svg
