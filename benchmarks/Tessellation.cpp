// Tessellation.cpp: paths into triangles, beside GLU alone on contours that are flattened before.
//
// The peer gathers the same corners and indices, all contours in one polygon.

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGPath.h>

#include "Backend/Path/PathFlattening.h"
#include "Backend/Path/PathPolygons.h"

#include <GL/glu.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace {

using Path = cf::Ref<CGMutablePathRef>;

constexpr double kTolerance = 0.1;

// ---- Shapes

void addDisc(const Path& path, float x, float y, float radius) {
    CGPathAddEllipseInRect(path.get(), nullptr,
                           {{x - radius, y - radius}, {2 * radius, 2 * radius}});
}

Path disc() {
    Path path = cf::adopt(CGPathCreateMutable());
    addDisc(path, 0, 0, 100);
    return path;
}

// A star polygon: it crosses itself about as often as it has corners.
Path star(int corners, int step) {
    Path path = cf::adopt(CGPathCreateMutable());
    for (int i = 0; i < corners; ++i) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i * step) /
                            static_cast<float>(corners);
        (i ? CGPathAddLineToPoint : CGPathMoveToPoint)(path.get(), nullptr, 100 * std::cos(angle),
                                                       100 * std::sin(angle));
    }
    return path;
}

Path letter() {
    Path path = cf::adopt(CGPathCreateMutable());
    CGPathAddRoundedRect(path.get(), nullptr, {{0, 0}, {60, 100}}, 20, 20);
    addDisc(path, 30, 70, 15);
    addDisc(path, 30, 30, 18);
    _CGPathSetEvenOddFill(path.get(), 1);
    return path;
}

// Discs in rows, apart or so close that each overlaps its neighbours.
Path discs(int count, float distance) {
    Path path = cf::adopt(CGPathCreateMutable());
    const int side = static_cast<int>(std::sqrt(count));
    for (int i = 0; i < count; ++i)
        addDisc(path, static_cast<float>(i % side) * distance,
                static_cast<float>(i / side) * distance, 1);
    return path;
}

// ---- Runs

struct Triangles {
    std::vector<CGPoint> corners;
    std::vector<std::uint32_t> indices;
};

void ours(benchmark::State& state, const Path& path) {
    Triangles made;
    for (auto _ : state) {
        made.corners.clear();
        made.indices.clear();
        _CGPathTessellate(
            path.get(), kXGPathFillEvenOdd, kTolerance,
            [](void* info, const CGPoint* corners, size_t cornerCount, const uint32_t* indices,
               size_t indexCount) {
                auto& made = *static_cast<Triangles*>(info);
                made.corners.insert(made.corners.end(), corners, corners + cornerCount);
                made.indices.insert(made.indices.end(), indices, indices + indexCount);
            },
            &made, nullptr);
    }
    state.counters["triangles"] = static_cast<double>(made.indices.size() / 3);
}

void takeVertex(void* corner, void* made) {
    static_cast<Triangles*>(made)->indices.push_back(
        static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(corner)));
}
std::uint32_t addCorner(Triangles& made, const double* place) {
    made.corners.push_back({static_cast<float>(place[0]), static_cast<float>(place[1])});
    return static_cast<std::uint32_t>(made.corners.size() - 1);
}
void takeCrossing(double place[3], void**, float*, void** corner, void* made) {
    *corner = reinterpret_cast<void*>(
        static_cast<std::uintptr_t>(addCorner(*static_cast<Triangles*>(made), place)));
}
void ignoreEdge(GLboolean) {}

void tessellateBare(const cg::PathPolygons& polygons, Triangles& made) {
    GLUtesselator* const glu = gluNewTess();
    gluTessNormal(glu, 0, 0, 1);
    gluTessProperty(glu, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    gluTessCallback(glu, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(takeVertex));
    gluTessCallback(glu, GLU_TESS_COMBINE_DATA, reinterpret_cast<_GLUfuncptr>(takeCrossing));
    gluTessCallback(glu, GLU_TESS_EDGE_FLAG, reinterpret_cast<_GLUfuncptr>(ignoreEdge));
    gluTessBeginPolygon(glu, &made);
    for (std::size_t i = 0; i < polygons.contourCount(); ++i) {
        gluTessBeginContour(glu);
        for (const SkPoint point : polygons.contour(i)) {
            double place[3] = {point.fX, point.fY, 0};
            gluTessVertex(
                glu, place,
                reinterpret_cast<void*>(static_cast<std::uintptr_t>(addCorner(made, place))));
        }
        gluTessEndContour(glu);
    }
    gluTessEndPolygon(glu);
    gluDeleteTess(glu);
}

void bare(benchmark::State& state, const Path& path) {
    cg::PathPolygons polygons;
    cg::PathFlattener(kTolerance, polygons)
        .flatten(*static_cast<const SkPath*>(_CGPathGetNativeObject(path.get())));
    polygons.finish();
    Triangles made;
    for (auto _ : state) {
        made.corners.clear();
        made.indices.clear();
        tessellateBare(polygons, made);
    }
    state.counters["triangles"] = static_cast<double>(made.indices.size() / 3);
}

#define TESSELLATE(name, shape)                                                                    \
    void tessellate##name(benchmark::State& state) {                                               \
        ours(state, shape);                                                                        \
    }                                                                                              \
    void tessellate##name##Bare(benchmark::State& state) {                                         \
        bare(state, shape);                                                                        \
    }                                                                                              \
    BENCHMARK(tessellate##name)->Unit(benchmark::kMicrosecond);                                    \
    BENCHMARK(tessellate##name##Bare)->Unit(benchmark::kMicrosecond)

TESSELLATE(Disc, disc());
TESSELLATE(Letter, letter());
TESSELLATE(Star, star(31, 12));
TESSELLATE(LargeStar, star(1001, 40));
TESSELLATE(FewDots, discs(16, 3));
TESSELLATE(Dots, discs(2025, 3));
TESSELLATE(OverlappingDots, discs(2025, 1.5f));

} // namespace
