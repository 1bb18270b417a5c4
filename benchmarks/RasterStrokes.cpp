// RasterStrokes.cpp: thin, wide and dashed strokes beside bare Skia and Cairo.

#include "RasterShapes.h"

namespace {

using namespace raster;

constexpr int kThin = 1, kMedium = 3, kWide = 20;

template <typename Engine>
void strokePolygon(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    engine.setLine(static_cast<float>(state.range(1)));
    for (auto _ : state) {
        addStar(engine, points);
        engine.stroke();
    }
}
NIMBRA_SCENE(strokePolygon, ->ArgsProduct({{16, 64, 400}, {kThin, kMedium, kWide}}));

template <typename Engine>
void strokeCurves(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    engine.setLine(static_cast<float>(state.range(1)));
    engine.setRoundJoin();
    for (auto _ : state) {
        addFlower(engine, points);
        engine.stroke();
    }
}
NIMBRA_SCENE(strokeCurves, ->ArgsProduct({{16, 64, 400}, {kThin, kMedium, kWide}}));

template <typename Engine>
void strokeDashed(benchmark::State& state) {
    Engine engine;
    const Points points = star(400);
    engine.setLine(static_cast<float>(state.range(0)));
    engine.setDash(12, 5);
    for (auto _ : state) {
        addFlower(engine, points);
        engine.stroke();
    }
}
NIMBRA_SCENE(strokeDashed, ->Arg(kThin)->Arg(kMedium)->Arg(kWide));

} // namespace
