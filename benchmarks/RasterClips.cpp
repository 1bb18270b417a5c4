// RasterClips.cpp: clips, shadows and groups beside bare Skia and Cairo.

#include "RasterShapes.h"

namespace {

using namespace raster;

// ---- Clips: saved, set, drawn under, restored

template <typename Engine>
void clipToRect(benchmark::State& state) {
    Engine engine;
    for (auto _ : state) {
        engine.save();
        engine.clipRect(CGRectMake(20, 30, 100, 90));
        engine.fillRect(CGRectMake(10.5f, 10.5f, 64, 64));
        engine.restore();
    }
}
NIMBRA_SCENE(clipToRect, );

template <typename Engine>
void clipToPath(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        engine.save();
        addFlower(engine, points);
        engine.clip(Rule::Winding);
        engine.fillRect(CGRectMake(100.5f, 100.5f, 300, 300));
        engine.restore();
    }
}
NIMBRA_SCENE(clipToPath, ->Arg(64)->Arg(400));

// What two paths and a rectangle have in common, drawn under ten times.
template <typename Engine>
void clipToSeveral(benchmark::State& state) {
    Engine engine;
    const Points flower = star(400), inner = star(300);
    for (auto _ : state) {
        engine.save();
        addFlower(engine, flower);
        engine.clip(Rule::Winding);
        addStar(engine, inner);
        engine.clip(Rule::EvenOdd);
        engine.clipRect(CGRectMake(120.5f, 120.5f, 250, 250));
        for (int index = 0; index < 10; ++index)
            engine.fillRect(CGRectMake(100, 100 + 30.f * static_cast<float>(index), 300, 20));
        engine.restore();
    }
}
NIMBRA_SCENE(clipToSeveral, );

// ---- Shadows

template <typename Engine>
void shadow(benchmark::State& state) {
    Engine engine;
    const Points points = star(static_cast<float>(state.range(0)));
    engine.setShadow(6, static_cast<float>(state.range(1)));
    for (auto _ : state) {
        addStar(engine, points);
        engine.fill();
    }
}
NIMBRA_SCENE_BESIDE_SKIA(shadow, ->ArgsProduct({{64, 400}, {0, 4}}));

// ---- Groups

template <typename Engine>
void transparencyLayer(benchmark::State& state) {
    Engine engine;
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        engine.save();
        engine.clipRect(CGRectMake(10, 10, side, side));
        engine.beginGroup(0.5f);
        engine.fillRect(CGRectMake(0, 0, 300, 300));
        engine.endGroup();
        engine.restore();
    }
}
NIMBRA_SCENE(transparencyLayer, ->Arg(32)->Arg(256));

} // namespace
