// PolygonCut.h: cutting polygons in two, so that each half is quicker to sweep than the whole.
#pragma once

#include "PathPolygons.h"

#include <optional>
#include <utility>

namespace cg {

// The parts of polygons on either side of a line x = c near the middle of their corners. Both have
// the same corners on that line, so that their triangles meet there without a gap; none of the
// corners that were there before lies on it. Nothing where cutting would not pay.
std::optional<std::pair<PathPolygons, PathPolygons>> cutInTwo(const PathPolygons& polygons);

} // namespace cg
