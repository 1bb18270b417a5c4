// RasterFills.cpp: rectangles, polygons and curves filled, beside bare Skia and Cairo.

#include "RasterShapes.h"

namespace {

using namespace raster;

template <typename Engine>
void fillPolygon(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        addStar(engine, points);
        engine.fill();
    }
}
NIMBRA_SCENE(fillPolygon, ->Arg(16)->Arg(64)->Arg(400));

template <typename Engine>
void fillCurves(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        addFlower(engine, points);
        engine.fill();
    }
}
NIMBRA_SCENE(fillCurves, ->Arg(16)->Arg(64)->Arg(400));

// Rectangles from tiny to large, at whole and at fractional pixels.
struct RectKind {
    const char* name;
    float inset;
    float opacity;
};
constexpr RectKind kRectKinds[] = {{"opaque", 0, 1},
                                   {"half-transparent", 0, 0.5f},
                                   {"opaque, smooth edges", 0.3f, 1},
                                   {"half-transparent, smooth edges", 0.3f, 0.5f}};

template <typename Engine>
void fillRect(benchmark::State& state) {
    Engine engine;
    const auto& [name, inset, opacity] = kRectKinds[state.range(1)];
    const auto side = static_cast<float>(state.range(0));
    state.SetLabel(name);
    engine.setOpacity(opacity);
    for (auto _ : state)
        engine.fillRect(CGRectMake(20 + inset, 30 + inset, side, side));
}
NIMBRA_SCENE(fillRect, ->ArgsProduct({{4, 32, 400}, {0, 1, 2, 3}}));

} // namespace
