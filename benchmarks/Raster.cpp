// Raster.cpp: drawing into a bitmap context beside the same calls on bare Skia.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer. Both keep their
// path objects' memory and draw in a y-up space over the same kind of pixels.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkPath.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr int kSize = 512;

class Ours {
public:
    Ours() : pixels_(kSize * kSize) {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const CGBitmapInfo info = CGBitmapInfo{kCGImageAlphaPremultipliedFirst} |
                                  CGBitmapInfo{kCGBitmapByteOrder32Little};
        context_ =
            cf::adopt(CGBitmapContextCreate(pixels_.data(), kSize, kSize, 8, 0, space.get(), info));
        CGContextSetRGBFillColor(context_.get(), 0.2f, 0.4f, 0.8f, 0.5f);
        CGContextSetRGBStrokeColor(context_.get(), 0.2f, 0.4f, 0.8f, 0.5f);
    }
    CGContextRef context() { return context_.get(); }

private:
    std::vector<std::uint32_t> pixels_;
    cf::Ref<CGContextRef> context_;
};

class Bare {
public:
    Bare() {
        SkGraphics::Init();
        bitmap_.allocN32Pixels(kSize, kSize);
        bitmap_.eraseColor(0);
        canvas_.emplace(bitmap_);
        canvas_->translate(0, kSize);
        canvas_->scale(1, -1);
        paint.setAntiAlias(true);
        paint.setColor(SkColorSetARGB(128, 51, 102, 204));
    }
    SkCanvas& canvas() { return *canvas_; }
    SkPaint paint;
    SkPath path; // Rewound, not replaced: it keeps its memory as ours does.

private:
    SkBitmap bitmap_;
    std::optional<SkCanvas> canvas_;
};

// ---- Shapes, built anew in every round.

constexpr int kStarPoints = 24;

std::array<CGPoint, kStarPoints> star(float scale) {
    std::array<CGPoint, kStarPoints> points;
    for (int i = 0; i < kStarPoints; ++i) {
        const float angle = static_cast<float>(i) * 6.2831855f / kStarPoints;
        const float radius = (i % 2 ? 0.4f : 1) * scale / 2;
        points[static_cast<std::size_t>(i)] = {kSize / 2.f + radius * std::cos(angle),
                                               kSize / 2.f + radius * std::sin(angle)};
    }
    return points;
}

void addStar(CGContextRef context, const std::array<CGPoint, kStarPoints>& points) {
    CGContextMoveToPoint(context, points[0].x, points[0].y);
    for (std::size_t i = 1; i < points.size(); ++i)
        CGContextAddLineToPoint(context, points[i].x, points[i].y);
    CGContextClosePath(context);
}

void addStar(SkPath& path, const std::array<CGPoint, kStarPoints>& points) {
    path.moveTo(points[0].x, points[0].y);
    for (std::size_t i = 1; i < points.size(); ++i)
        path.lineTo(points[i].x, points[i].y);
    path.close();
}

void addFlower(CGContextRef context, const std::array<CGPoint, kStarPoints>& p) {
    CGContextMoveToPoint(context, p[0].x, p[0].y);
    for (std::size_t i = 1; i + 2 < p.size(); i += 3)
        CGContextAddCurveToPoint(context, p[i].x, p[i].y, p[i + 1].x, p[i + 1].y, p[i + 2].x,
                                 p[i + 2].y);
    CGContextClosePath(context);
}

void addFlower(SkPath& path, const std::array<CGPoint, kStarPoints>& p) {
    path.moveTo(p[0].x, p[0].y);
    for (std::size_t i = 1; i + 2 < p.size(); i += 3)
        path.cubicTo(p[i].x, p[i].y, p[i + 1].x, p[i + 1].y, p[i + 2].x, p[i + 2].y);
    path.close();
}

// ---- Fills

void fillPolygon(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        addStar(ours.context(), points);
        CGContextFillPath(ours.context());
    }
}
void fillPolygonBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        bare.path.rewind();
        addStar(bare.path, points);
        bare.canvas().drawPath(bare.path, bare.paint);
    }
}
BENCHMARK(fillPolygon)->Arg(16)->Arg(64)->Arg(400);
BENCHMARK(fillPolygonBare)->Arg(16)->Arg(64)->Arg(400);

void fillCurves(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        addFlower(ours.context(), points);
        CGContextFillPath(ours.context());
    }
}
void fillCurvesBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        bare.path.rewind();
        addFlower(bare.path, points);
        bare.canvas().drawPath(bare.path, bare.paint);
    }
}
BENCHMARK(fillCurves)->Arg(16)->Arg(64)->Arg(400);
BENCHMARK(fillCurvesBare)->Arg(16)->Arg(64)->Arg(400);

// Rectangles at whole and at fractional pixels, opaque and translucent.
struct RectKind {
    float inset;
    bool opaque;
};
constexpr RectKind kRectKinds[] = {{0, true}, {0, false}, {0.3f, true}, {0.3f, false}};

void fillRect(benchmark::State& state) {
    Ours ours;
    const auto& kind = kRectKinds[state.range(1)];
    const auto side = static_cast<float>(state.range(0));
    CGContextSetAlpha(ours.context(), 1);
    CGContextSetRGBFillColor(ours.context(), 0.2f, 0.4f, 0.8f, kind.opaque ? 1 : 0.5f);
    for (auto _ : state)
        CGContextFillRect(ours.context(), CGRectMake(20 + kind.inset, 30 + kind.inset, side, side));
}
void fillRectBare(benchmark::State& state) {
    Bare bare;
    const auto& kind = kRectKinds[state.range(1)];
    const auto side = static_cast<float>(state.range(0));
    bare.paint.setAlpha(kind.opaque ? 255 : 128);
    for (auto _ : state)
        bare.canvas().drawRect(SkRect::MakeXYWH(20 + kind.inset, 30 + kind.inset, side, side),
                               bare.paint);
}
BENCHMARK(fillRect)->ArgsProduct({{4, 32, 400}, {0, 1, 2, 3}});
BENCHMARK(fillRectBare)->ArgsProduct({{4, 32, 400}, {0, 1, 2, 3}});

// ---- Strokes

void strokePolygon(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    CGContextSetLineWidth(ours.context(), 3);
    for (auto _ : state) {
        addStar(ours.context(), points);
        CGContextStrokePath(ours.context());
    }
}
void strokePolygonBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    bare.paint.setStyle(SkPaint::kStroke_Style);
    bare.paint.setStrokeWidth(3);
    bare.paint.setStrokeMiter(4);
    for (auto _ : state) {
        bare.path.rewind();
        addStar(bare.path, points);
        bare.canvas().drawPath(bare.path, bare.paint);
    }
}
BENCHMARK(strokePolygon)->Arg(16)->Arg(64)->Arg(400);
BENCHMARK(strokePolygonBare)->Arg(16)->Arg(64)->Arg(400);

void strokeCurves(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    CGContextSetLineWidth(ours.context(), 3);
    CGContextSetLineJoin(ours.context(), kCGLineJoinRound);
    for (auto _ : state) {
        addFlower(ours.context(), points);
        CGContextStrokePath(ours.context());
    }
}
void strokeCurvesBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    bare.paint.setStyle(SkPaint::kStroke_Style);
    bare.paint.setStrokeWidth(3);
    bare.paint.setStrokeMiter(4);
    bare.paint.setStrokeJoin(SkPaint::kRound_Join);
    for (auto _ : state) {
        bare.path.rewind();
        addFlower(bare.path, points);
        bare.canvas().drawPath(bare.path, bare.paint);
    }
}
BENCHMARK(strokeCurves)->Arg(16)->Arg(64)->Arg(400);
BENCHMARK(strokeCurvesBare)->Arg(16)->Arg(64)->Arg(400);

// ---- Clips: saved, set, drawn under, restored.

void clipToRect(benchmark::State& state) {
    Ours ours;
    for (auto _ : state) {
        CGContextSaveGState(ours.context());
        CGContextClipToRect(ours.context(), CGRectMake(20, 30, 100, 90));
        CGContextFillRect(ours.context(), CGRectMake(10.5f, 10.5f, 64, 64));
        CGContextRestoreGState(ours.context());
    }
}
void clipToRectBare(benchmark::State& state) {
    Bare bare;
    for (auto _ : state) {
        bare.canvas().save();
        bare.canvas().clipRect(SkRect::MakeXYWH(20, 30, 100, 90), true);
        bare.canvas().drawRect(SkRect::MakeXYWH(10.5f, 10.5f, 64, 64), bare.paint);
        bare.canvas().restore();
    }
}
BENCHMARK(clipToRect);
BENCHMARK(clipToRectBare);

void clipToPath(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        CGContextSaveGState(ours.context());
        addFlower(ours.context(), points);
        CGContextClip(ours.context());
        CGContextFillRect(ours.context(), CGRectMake(100.5f, 100.5f, 300, 300));
        CGContextRestoreGState(ours.context());
    }
}
void clipToPathBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        bare.canvas().save();
        bare.path.rewind();
        addFlower(bare.path, points);
        bare.canvas().clipPath(bare.path, true);
        bare.canvas().drawRect(SkRect::MakeXYWH(100.5f, 100.5f, 300, 300), bare.paint);
        bare.canvas().restore();
    }
}
BENCHMARK(clipToPath)->Arg(64)->Arg(400);
BENCHMARK(clipToPathBare)->Arg(64)->Arg(400);

// ---- Groups

void transparencyLayer(benchmark::State& state) {
    Ours ours;
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        CGContextSaveGState(ours.context());
        CGContextClipToRect(ours.context(), CGRectMake(10, 10, side, side));
        CGContextSetAlpha(ours.context(), 0.5f);
        CGContextBeginTransparencyLayer(ours.context(), nullptr);
        CGContextFillRect(ours.context(), CGRectMake(0, 0, 300, 300));
        CGContextEndTransparencyLayer(ours.context());
        CGContextRestoreGState(ours.context());
    }
}
void transparencyLayerBare(benchmark::State& state) {
    Bare bare;
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        bare.canvas().save();
        bare.canvas().clipRect(SkRect::MakeXYWH(10, 10, side, side), true);
        bare.canvas().saveLayerAlphaf(nullptr, 0.5f);
        bare.canvas().drawRect(SkRect::MakeWH(300, 300), bare.paint);
        bare.canvas().restore();
        bare.canvas().restore();
    }
}
BENCHMARK(transparencyLayer)->Arg(32)->Arg(256);
BENCHMARK(transparencyLayerBare)->Arg(32)->Arg(256);

} // namespace

