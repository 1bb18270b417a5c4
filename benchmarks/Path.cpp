// Path.cpp: building and reading paths beside the same calls on bare Skia.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer. Each round starts
// from an emptied path that keeps its memory, unless the name says that it is a new one.

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGPath.h>

#include "include/core/SkMatrix.h"
#include "include/core/SkPath.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <vector>

namespace {

constexpr std::size_t kSegments = 240;

std::vector<CGPoint> makePoints() {
    std::vector<CGPoint> points(3 * kSegments + 1);
    unsigned seed = 1;
    const auto next = [&seed] {
        seed = seed * 1664525 + 1013904223;
        return static_cast<float>(seed >> 16) / 64;
    };
    for (CGPoint& p : points)
        p = {next(), next()};
    return points;
}

const std::vector<CGPoint>& points() {
    static const std::vector<CGPoint> made = makePoints();
    return made;
}

CGRect rectAt(std::size_t i) {
    return {points()[i], {8, 5}};
}

const CGAffineTransform kTurned = {0.8f, 0.6f, -0.6f, 0.8f, 3, 4};

// The peers' path is Skia's own object inside one of ours, so that both start a round alike.
struct Canvas {
    cf::Ref<CGMutablePathRef> path = cf::adopt(CGPathCreateMutable());
    SkPath& native = *static_cast<SkPath*>(_CGPathGetNativeObject(path.get()));
};

template <typename Build>
void ours(benchmark::State& state, Build build) {
    Canvas canvas;
    for (auto _ : state) {
        canvas.native.rewind();
        build(canvas.path.get());
        benchmark::ClobberMemory();
    }
}

template <typename Build>
void bare(benchmark::State& state, Build build) {
    Canvas canvas;
    for (auto _ : state) {
        canvas.native.rewind();
        build(canvas.native);
        benchmark::ClobberMemory();
    }
}

// ---- Building

void addLines(CGMutablePathRef path, const CGAffineTransform* m) {
    CGPathMoveToPoint(path, m, points()[0].x, points()[0].y);
    for (std::size_t i = 1; i <= kSegments; ++i)
        CGPathAddLineToPoint(path, m, points()[i].x, points()[i].y);
    CGPathCloseSubpath(path);
}
void addLines(SkPath& path) {
    path.moveTo(points()[0].x, points()[0].y);
    for (std::size_t i = 1; i <= kSegments; ++i)
        path.lineTo(points()[i].x, points()[i].y);
    path.close();
}
void lines(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) { addLines(path, nullptr); });
}
void linesBare(benchmark::State& state) {
    bare(state, [](SkPath& path) { addLines(path); });
}
BENCHMARK(lines);
BENCHMARK(linesBare);

void linesTransformed(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) { addLines(path, &kTurned); });
}
void linesTransformedBare(benchmark::State& state) {
    const auto map = [](CGPoint p) {
        const CGAffineTransform& m = kTurned;
        return SkPoint{m.a * p.x + m.c * p.y + m.tx, m.b * p.x + m.d * p.y + m.ty};
    };
    bare(state, [&map](SkPath& path) {
        path.moveTo(map(points()[0]));
        for (std::size_t i = 1; i <= kSegments; ++i)
            path.lineTo(map(points()[i]));
        path.close();
    });
}
BENCHMARK(linesTransformed);
BENCHMARK(linesTransformedBare);

void polyline(benchmark::State& state) {
    ours(state,
         [](CGMutablePathRef path) { CGPathAddLines(path, nullptr, points().data(), kSegments); });
}
void polylineBare(benchmark::State& state) {
    bare(state, [](SkPath& path) {
        path.addPoly({reinterpret_cast<const SkPoint*>(points().data()), kSegments}, false);
    });
}
BENCHMARK(polyline);
BENCHMARK(polylineBare);

void addQuads(CGMutablePathRef path) {
    CGPathMoveToPoint(path, nullptr, points()[0].x, points()[0].y);
    for (std::size_t i = 1; i < 2 * kSegments; i += 2)
        CGPathAddQuadCurveToPoint(path, nullptr, points()[i].x, points()[i].y, points()[i + 1].x,
                                  points()[i + 1].y);
}
void addQuads(SkPath& path) {
    path.moveTo(points()[0].x, points()[0].y);
    for (std::size_t i = 1; i < 2 * kSegments; i += 2)
        path.quadTo(points()[i].x, points()[i].y, points()[i + 1].x, points()[i + 1].y);
}
void quads(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) { addQuads(path); });
}
void quadsBare(benchmark::State& state) {
    bare(state, [](SkPath& path) { addQuads(path); });
}
BENCHMARK(quads);
BENCHMARK(quadsBare);

void addCubics(CGMutablePathRef path) {
    CGPathMoveToPoint(path, nullptr, points()[0].x, points()[0].y);
    for (std::size_t i = 1; i < 3 * kSegments; i += 3) {
        const CGPoint* const p = &points()[i];
        CGPathAddCurveToPoint(path, nullptr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
    }
}
void addCubics(SkPath& path) {
    path.moveTo(points()[0].x, points()[0].y);
    for (std::size_t i = 1; i < 3 * kSegments; i += 3) {
        const CGPoint* const p = &points()[i];
        path.cubicTo(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
    }
}
void cubics(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) { addCubics(path); });
}
void cubicsBare(benchmark::State& state) {
    bare(state, [](SkPath& path) { addCubics(path); });
}
BENCHMARK(cubics);
BENCHMARK(cubicsBare);

void rects(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) {
        for (std::size_t i = 0; i < kSegments; ++i)
            CGPathAddRect(path, nullptr, rectAt(i));
    });
}
void rectsBare(benchmark::State& state) {
    bare(state, [](SkPath& path) {
        for (std::size_t i = 0; i < kSegments; ++i) {
            const CGPoint p = points()[i];
            path.addRect(SkRect::MakeLTRB(p.x, p.y, p.x + 8, p.y + 5));
        }
    });
}
BENCHMARK(rects);
BENCHMARK(rectsBare);

// The peer adds the same four cubics.
void addEllipse(SkPath& path, float x0, float y0, float x1, float y1) {
    const float rx = (x1 - x0) * 0.5f;
    const float ry = (y1 - y0) * 0.5f;
    const float k = 0.44808495f;
    path.moveTo(x1, y0 + ry);
    path.cubicTo(x1, y1 - k * ry, x1 - k * rx, y1, x1 - rx, y1);
    path.cubicTo(x0 + k * rx, y1, x0, y1 - k * ry, x0, y1 - ry);
    path.cubicTo(x0, y0 + k * ry, x0 + k * rx, y0, x0 + rx, y0);
    path.cubicTo(x1 - k * rx, y0, x1, y0 + k * ry, x1, y0 + ry);
    path.close();
}
void ellipses(benchmark::State& state) {
    ours(state, [](CGMutablePathRef path) {
        for (std::size_t i = 0; i < kSegments; ++i)
            CGPathAddEllipseInRect(path, nullptr, rectAt(i));
    });
}
void ellipsesBare(benchmark::State& state) {
    bare(state, [](SkPath& path) {
        for (std::size_t i = 0; i < kSegments; ++i)
            addEllipse(path, points()[i].x, points()[i].y, points()[i].x + 8, points()[i].y + 5);
    });
}
BENCHMARK(ellipses);
BENCHMARK(ellipsesBare);

void newEllipse(benchmark::State& state) {
    for (auto _ : state)
        CGPathRelease(CGPathCreateWithEllipseInRect(rectAt(0), nullptr));
}
void newEllipseBare(benchmark::State& state) {
    for (auto _ : state) {
        SkPath path;
        addEllipse(path, points()[0].x, points()[0].y, points()[0].x + 8, points()[0].y + 5);
        benchmark::DoNotOptimize(path);
    }
}
BENCHMARK(newEllipse);
BENCHMARK(newEllipseBare);

// ---- Copies and transforms of a path of cubics, given back at once

struct Curves : Canvas {
    Curves() { addCubics(path.get()); }
};

void copy(benchmark::State& state) {
    Curves curves;
    for (auto _ : state)
        CGPathRelease(CGPathCreateCopy(curves.path.get()));
}
void copyBare(benchmark::State& state) {
    Curves curves;
    for (auto _ : state) {
        auto* const made = new SkPath(curves.native);
        benchmark::DoNotOptimize(made);
        delete made;
    }
}
BENCHMARK(copy);
BENCHMARK(copyBare);

void transform(benchmark::State& state) {
    Curves curves;
    for (auto _ : state)
        CGPathRelease(CGPathCreateMutableCopyByTransformingPath(curves.path.get(), &kTurned));
}
void transformBare(benchmark::State& state) {
    Curves curves;
    const auto m = SkMatrix::MakeAll(0.8f, -0.6f, 3, 0.6f, 0.8f, 4, 0, 0, 1);
    for (auto _ : state) {
        SkPath made;
        curves.native.transform(m, &made);
        benchmark::DoNotOptimize(made);
    }
}
BENCHMARK(transform);
BENCHMARK(transformBare);

void append(benchmark::State& state) {
    Curves curves;
    ours(state, [&curves](CGMutablePathRef path) {
        for (int i = 0; i < 10; ++i)
            CGPathAddPath(path, &kTurned, curves.path.get());
    });
}
void appendBare(benchmark::State& state) {
    Curves curves;
    const auto m = SkMatrix::MakeAll(0.8f, -0.6f, 3, 0.6f, 0.8f, 4, 0, 0, 1);
    bare(state, [&curves, &m](SkPath& path) {
        for (int i = 0; i < 10; ++i)
            path.addPath(curves.native, m);
    });
}
BENCHMARK(append);
BENCHMARK(appendBare);

// ---- Reading: bounds are computed anew because the last point moves

void bounds(benchmark::State& state) {
    Curves curves;
    for (auto _ : state) {
        curves.native.setLastPt(1, 2);
        benchmark::DoNotOptimize(CGPathGetBoundingBox(curves.path.get()));
    }
}
void boundsBare(benchmark::State& state) {
    Curves curves;
    for (auto _ : state) {
        curves.native.setLastPt(1, 2);
        benchmark::DoNotOptimize(curves.native.getBounds());
    }
}
BENCHMARK(bounds);
BENCHMARK(boundsBare);

void apply(benchmark::State& state) {
    Curves curves;
    float sum = 0;
    const auto add = [](void* info, const CGPathElement* element) {
        if (element->type != kCGPathElementCloseSubpath)
            *static_cast<float*>(info) += element->points[0].x;
    };
    for (auto _ : state) {
        CGPathApply(curves.path.get(), &sum, add);
        benchmark::DoNotOptimize(sum);
    }
}
void applyBare(benchmark::State& state) {
    Curves curves;
    float sum = 0;
    for (auto _ : state) {
        SkPath::Iter iterator(curves.native, false);
        std::array<SkPoint, 4> element;
        for (auto verb = iterator.next(element.data()); verb != SkPath::kDone_Verb;
             verb = iterator.next(element.data()))
            sum += element[verb == SkPath::kMove_Verb ? 0 : 1].fX;
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(apply);
BENCHMARK(applyBare);

} // namespace
