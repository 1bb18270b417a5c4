// RasterShapes.h: the shapes that scenes draw, built anew in every round.
#pragma once

#include "RasterEngines.h"

#include <array>
#include <cmath>

namespace raster {

inline constexpr std::size_t kStarPoints = 24;
using Points = std::array<CGPoint, kStarPoints>;

// The points of a star in the middle of the picture, `size` across.
inline Points star(float size) {
    Points points;
    for (std::size_t i = 0; i < kStarPoints; ++i) {
        const float angle = static_cast<float>(i) * 6.2831855f / kStarPoints;
        const float radius = (i % 2 ? 0.4f : 1) * size / 2;
        points[i] = {kSize / 2.f + radius * std::cos(angle),
                     kSize / 2.f + radius * std::sin(angle)};
    }
    return points;
}

template <typename Engine>
void addStar(Engine& engine, const Points& points) {
    engine.moveTo(points[0]);
    for (std::size_t i = 1; i < points.size(); ++i)
        engine.lineTo(points[i]);
    engine.close();
}

// The same points joined by curves.
template <typename Engine>
void addFlower(Engine& engine, const Points& p) {
    engine.moveTo(p[0]);
    for (std::size_t i = 1; i + 2 < p.size(); i += 3)
        engine.curveTo(p[i], p[i + 1], p[i + 2]);
    engine.close();
}

} // namespace raster
