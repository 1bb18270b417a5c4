// ShadingSampler.h: a function of one parameter as straight pieces.
#pragma once

#include "include/core/SkColor.h"

#include <functional>
#include <vector>

namespace cg {

// A colour, not premultiplied, at a place in 0 … 1.
struct ShadingStop {
    float location = 0;
    SkColor4f color = SkColors::kTransparent;
};

// Stops between which straight lines follow `colorAt` to within a fraction of a step of eight bits:
// the first at 0, the last at 1, two at the same location where the function jumps. A function that
// is too wild for that, noise for one, gets evenly spread stops, as many as a large bitmap is wide.
std::vector<ShadingStop> sampleShading(const std::function<SkColor4f(float)>& colorAt);

} // namespace cg
