// Masks.h: limits drawing to what the masks of a document let through.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

#include <functional>

namespace svg {

// Calls `draw`; if the element has a mask, into a layer of its own of which so much stays at each
// place as the mask is bright or opaque there. The context's user space is the element's.
void drawMasked(Scene& scene, CGContextRef context, const Occurrence& masked,
                const std::function<void()>& draw);

} // namespace svg
