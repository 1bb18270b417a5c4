// PolygonCut.cpp: clipping polygons against a line of constant x.

#include "PolygonCut.h"

#include <algorithm>

namespace {

// A number between corners in the middle of the order of x, if there is one.
std::optional<float> middleCut(std::span<const SkPoint> points) {
    std::vector<float> order(points.size());
    std::ranges::transform(points, order.begin(), &SkPoint::fX);
    const auto middle = order.begin() + static_cast<std::ptrdiff_t>(order.size() / 2);
    std::ranges::nth_element(order, middle);
    const float after = *middle;
    float before = -SK_FloatInfinity;
    for (auto at = order.begin(); at != middle; ++at)
        if (*at < after)
            before = std::max(before, *at);
    const float cut = before + (after - before) / 2;
    return before < cut && cut < after ? std::optional(cut) : std::nullopt;
}

// Where an edge meets the cut: the same for both sides, since both ask for the same edge.
SkPoint crossing(SkPoint from, SkPoint to, float cut) {
    const double share = (double{cut} - from.fX) / (double{to.fX} - from.fX);
    return {cut, static_cast<float>(from.fY + share * (double{to.fY} - from.fY))};
}

// Adds a contour to the sides that it reaches. Where it leaves a side and comes back, an edge along
// the cut takes the shortcut: around points of that side it winds as before.
void addTo(std::pair<cg::PathPolygons, cg::PathPolygons>& sides, std::span<const SkPoint> contour,
           float cut) {
    sides.first.beginContour();
    sides.second.beginContour();
    SkPoint from = contour.back();
    for (const SkPoint to : contour) {
        if ((from.fX < cut) != (to.fX < cut)) {
            const SkPoint both = crossing(from, to, cut);
            sides.first.add(both);
            sides.second.add(both);
        }
        (to.fX < cut ? sides.first : sides.second).add(to);
        from = to;
    }
}

} // namespace

std::optional<std::pair<cg::PathPolygons, cg::PathPolygons>>
cg::cutInTwo(const PathPolygons& polygons) {
    const std::size_t whole = polygons.points().size();
    const std::optional<float> cut = middleCut(polygons.points());
    if (!cut)
        return std::nullopt;
    std::pair<PathPolygons, PathPolygons> sides;
    for (std::size_t index = 0; index < polygons.contourCount(); ++index)
        addTo(sides, polygons.contour(index), *cut);
    sides.first.finish();
    sides.second.finish();
    // A sweep's time grows with the square: two of more than two thirds would take as long.
    const std::size_t larger = std::max(sides.first.points().size(), sides.second.points().size());
    return 3 * larger < 2 * whole ? std::optional(std::move(sides)) : std::nullopt;
}
