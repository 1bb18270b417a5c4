// Layers.cpp: what is drawn aside first, or through a clip, beside the same calls on bare Skia.
//
// Pairs of benchmarks of one name: what comes first is ours, "Bare" is the peer. Both draw into
// pixels of the same kind, in a y-up space.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkBlurTypes.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkImage.h"
#include "include/core/SkMaskFilter.h"
#include "include/core/SkPath.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"
#include "include/effects/SkImageFilters.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <optional>
#include <vector>

namespace {

constexpr int kSize = 512;

cf::Ref<CGContextRef> makeContext(int size) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGBitmapInfo info =
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
    const auto side = static_cast<std::size_t>(size);
    auto context = cf::adopt(CGBitmapContextCreate(nullptr, side, side, 8, 0, space.get(), info));
    CGContextSetAllowsAcceleration(context.get(), false); // Records nothing.
    return context;
}

struct Ours {
    Ours() : owner(makeContext(kSize)), context(owner.get()) {
        CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.8f, 0.5f);
    }
    cf::Ref<CGContextRef> owner;
    CGContextRef context;
};

struct Bare {
    Bare() {
        SkGraphics::Init();
        bitmap.allocN32Pixels(kSize, kSize);
        bitmap.eraseColor(0);
        canvas.emplace(bitmap);
        canvas->translate(0, kSize);
        canvas->scale(1, -1);
        paint.setAntiAlias(true);
        paint.setColor(SkColorSetARGB(128, 51, 102, 204));
    }
    SkBitmap bitmap;
    std::optional<SkCanvas> canvas;
    SkPaint paint;
    SkPath path; // Rewound, not replaced: it keeps its memory as ours does.
};

std::vector<CGPoint> star(float side, int points = 24) {
    std::vector<CGPoint> result;
    for (int i = 0; i < points; ++i) {
        const float angle = static_cast<float>(i) * 6.2831855f / static_cast<float>(points);
        const float radius = (i % 2 ? 0.3f : 0.5f) * side;
        result.push_back({256 + radius * std::cos(angle), 256 + radius * std::sin(angle)});
    }
    return result;
}

void addStar(CGContextRef context, const std::vector<CGPoint>& points) {
    CGContextAddLines(context, points.data(), points.size());
    CGContextClosePath(context);
}

void addStar(SkPath& path, const std::vector<CGPoint>& points) {
    path.rewind();
    path.moveTo(points[0].x, points[0].y);
    for (std::size_t i = 1; i < points.size(); ++i)
        path.lineTo(points[i].x, points[i].y);
    path.close();
}

// ---- Layers

// A layer of a side, drawn at its size or larger.
void drawLayer(benchmark::State& state) {
    Ours ours;
    const auto side = static_cast<float>(state.range(0));
    const auto layer =
        cf::adopt(CGLayerCreateWithContext(ours.context, CGSizeMake(side, side), nullptr));
    CGContextSetRGBFillColor(CGLayerGetContext(layer.get()), 0.2f, 0.4f, 0.8f, 0.5f);
    CGContextFillEllipseInRect(CGLayerGetContext(layer.get()), CGRectMake(0, 0, side, side));
    const float drawn = state.range(1) ? side * 1.3f : side;
    for (auto _ : state)
        CGContextDrawLayerInRect(ours.context, CGRectMake(20, 30, drawn, drawn), layer.get());
}
void drawLayerBare(benchmark::State& state) {
    Bare bare;
    const int side = static_cast<int>(state.range(0));
    SkBitmap layer;
    layer.allocN32Pixels(side, side);
    layer.eraseColor(0);
    SkCanvas(layer).drawOval(SkRect::MakeIWH(side, side), bare.paint);
    const auto image = SkImages::RasterFromPixmap(layer.pixmap(), nullptr, nullptr);
    const float drawn = static_cast<float>(side) * (state.range(1) ? 1.3f : 1);
    SkPaint paint;
    paint.setAntiAlias(true);
    for (auto _ : state) {
        bare.canvas->save();
        bare.canvas->concat(SkMatrix::MakeAll(1, 0, 0, 0, -1, 60 + drawn, 0, 0, 1));
        bare.canvas->drawImageRect(image, SkRect::MakeXYWH(20, 30, drawn, drawn),
                                   SkSamplingOptions(SkFilterMode::kLinear), &paint);
        bare.canvas->restore();
    }
}
BENCHMARK(drawLayer)->ArgsProduct({{16, 256}, {0, 1}});
BENCHMARK(drawLayerBare)->ArgsProduct({{16, 256}, {0, 1}});

// ---- Groups

// Of a side, with two marks in it.
void group(benchmark::State& state) {
    Ours ours;
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        CGContextSaveGState(ours.context);
        CGContextClipToRect(ours.context, CGRectMake(10, 10, side, side));
        CGContextSetAlpha(ours.context, 0.5f);
        CGContextBeginTransparencyLayer(ours.context, nullptr);
        CGContextFillRect(ours.context, CGRectMake(0, 0, 300, 300));
        CGContextFillRect(ours.context, CGRectMake(20, 20, 300, 300));
        CGContextEndTransparencyLayer(ours.context);
        CGContextRestoreGState(ours.context);
    }
}
void groupBare(benchmark::State& state) {
    Bare bare;
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        bare.canvas->save();
        bare.canvas->clipRect(SkRect::MakeXYWH(10, 10, side, side), true);
        bare.canvas->saveLayerAlphaf(nullptr, 0.5f);
        bare.canvas->drawRect(SkRect::MakeWH(300, 300), bare.paint);
        bare.canvas->drawRect(SkRect::MakeXYWH(20, 20, 300, 300), bare.paint);
        bare.canvas->restore();
        bare.canvas->restore();
    }
}
BENCHMARK(group)->Arg(16)->Arg(64)->Arg(256);
BENCHMARK(groupBare)->Arg(16)->Arg(64)->Arg(256);

// Under a path, over all of the bitmap.
void groupUnderPath(benchmark::State& state) {
    Ours ours;
    const auto points = star(400);
    for (auto _ : state) {
        CGContextSaveGState(ours.context);
        addStar(ours.context, points);
        CGContextClip(ours.context);
        CGContextSetAlpha(ours.context, 0.5f);
        CGContextBeginTransparencyLayer(ours.context, nullptr);
        CGContextFillRect(ours.context, CGRectMake(0, 0, 300, 512));
        CGContextEndTransparencyLayer(ours.context);
        CGContextRestoreGState(ours.context);
    }
}
void groupUnderPathBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(400);
    for (auto _ : state) {
        bare.canvas->save();
        addStar(bare.path, points);
        bare.canvas->clipPath(bare.path, true);
        bare.canvas->saveLayerAlphaf(nullptr, 0.5f);
        bare.canvas->drawRect(SkRect::MakeWH(300, 512), bare.paint);
        bare.canvas->restore();
        bare.canvas->restore();
    }
}
BENCHMARK(groupUnderPath);
BENCHMARK(groupUnderPathBare);

// ---- Shadows, of a mark and of a group

void shadow(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    CGContextSetShadow(ours.context, {4, -5}, static_cast<CGFloat>(state.range(1)));
    for (auto _ : state) {
        addStar(ours.context, points);
        CGContextFillPath(ours.context);
    }
}
void shadowBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    SkPaint blurred = bare.paint;
    blurred.setColor(SkColorSetARGB(43, 0, 0, 0));
    const auto sigma = static_cast<float>(state.range(1)) / 2;
    for (auto _ : state) {
        addStar(bare.path, points);
        blurred.setMaskFilter(SkMaskFilter::MakeBlur(kNormal_SkBlurStyle, sigma, false));
        bare.canvas->save();
        bare.canvas->translate(4, -5);
        bare.canvas->drawPath(bare.path, blurred);
        bare.canvas->restore();
        bare.canvas->drawPath(bare.path, bare.paint);
    }
}
BENCHMARK(shadow)->ArgsProduct({{32, 256}, {4, 20}});
BENCHMARK(shadowBare)->ArgsProduct({{32, 256}, {4, 20}});

void groupShadow(benchmark::State& state) {
    Ours ours;
    const auto points = star(static_cast<float>(state.range(0)));
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        CGContextSaveGState(ours.context);
        CGContextClipToRect(ours.context,
                            CGRectMake(246 - side / 2, 246 - side / 2, side + 20, side + 20));
        CGContextSetShadow(ours.context, {4, -5}, 8);
        CGContextBeginTransparencyLayer(ours.context, nullptr);
        addStar(ours.context, points);
        CGContextFillPath(ours.context);
        CGContextEndTransparencyLayer(ours.context);
        CGContextRestoreGState(ours.context);
    }
}
void groupShadowBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(static_cast<float>(state.range(0)));
    const auto side = static_cast<float>(state.range(0));
    SkPaint layer;
    for (auto _ : state) {
        bare.canvas->save();
        bare.canvas->clipRect(
            SkRect::MakeXYWH(246 - side / 2, 246 - side / 2, side + 20, side + 20), true);
        layer.setImageFilter(
            SkImageFilters::DropShadow(4, -5, 4, 4, SkColorSetARGB(85, 0, 0, 0), nullptr));
        bare.canvas->saveLayer(nullptr, &layer);
        addStar(bare.path, points);
        bare.canvas->drawPath(bare.path, bare.paint);
        bare.canvas->restore();
        bare.canvas->restore();
    }
}
BENCHMARK(groupShadow)->Arg(32)->Arg(256);
BENCHMARK(groupShadowBare)->Arg(32)->Arg(256);

// ---- Clips

// Two paths and a rectangle, and ten marks under them.
void complexClip(benchmark::State& state) {
    Ours ours;
    const auto points = star(400), others = star(450, 90);
    for (auto _ : state) {
        CGContextSaveGState(ours.context);
        addStar(ours.context, points);
        CGContextClip(ours.context);
        addStar(ours.context, others);
        CGContextEOClip(ours.context);
        CGContextClipToRect(ours.context, CGRectMake(30.5f, 40.5f, 400, 300));
        for (int i = 0; i < 10; ++i)
            CGContextFillRect(ours.context,
                              CGRectMake(40 + 40 * static_cast<CGFloat>(i), 50, 30.5f, 400));
        CGContextRestoreGState(ours.context);
    }
}
void complexClipBare(benchmark::State& state) {
    Bare bare;
    const auto points = star(400), others = star(450, 90);
    for (auto _ : state) {
        bare.canvas->save();
        addStar(bare.path, points);
        bare.canvas->clipPath(bare.path, true);
        addStar(bare.path, others);
        bare.path.setFillType(SkPathFillType::kEvenOdd);
        bare.canvas->clipPath(bare.path, true);
        bare.canvas->clipRect(SkRect::MakeXYWH(30.5f, 40.5f, 400, 300), true);
        for (int i = 0; i < 10; ++i)
            bare.canvas->drawRect(SkRect::MakeXYWH(40 + 40 * static_cast<float>(i), 50, 30.5f, 400),
                                  bare.paint);
        bare.canvas->restore();
    }
}
BENCHMARK(complexClip);
BENCHMARK(complexClipBare);

// A gray picture of all of the bitmap, and a mark under it.
void maskClip(benchmark::State& state) {
    Ours ours;
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    std::vector<std::uint8_t> rows(kSize * kSize);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = static_cast<std::uint8_t>(i);
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, rows.data(), rows.size(), nullptr));
    const auto mask =
        cf::adopt(CGImageCreate(kSize, kSize, 8, 8, kSize, gray.get(), 0, provider.get(), nullptr,
                                true, kCGRenderingIntentDefault));
    for (auto _ : state) {
        CGContextSaveGState(ours.context);
        CGContextClipToMask(ours.context, CGRectMake(0, 0, kSize, kSize), mask.get());
        CGContextFillRect(ours.context, CGRectMake(10, 10, 400, 400));
        CGContextRestoreGState(ours.context);
    }
}
void maskClipBare(benchmark::State& state) {
    Bare bare;
    SkBitmap mask;
    mask.allocPixels(SkImageInfo::MakeA8(kSize, kSize));
    for (int i = 0; i < kSize * kSize; ++i)
        *mask.getAddr8(i % kSize, i / kSize) = static_cast<std::uint8_t>(i);
    mask.setImmutable();
    const SkMatrix upright = SkMatrix::MakeAll(1, 0, 0, 0, -1, kSize, 0, 0, 1);
    const auto shader = mask.makeShader(SkTileMode::kClamp, SkTileMode::kClamp,
                                        SkSamplingOptions(SkFilterMode::kLinear), &upright);
    for (auto _ : state) {
        bare.canvas->save();
        bare.canvas->clipShader(shader);
        bare.canvas->drawRect(SkRect::MakeXYWH(10, 10, 400, 400), bare.paint);
        bare.canvas->restore();
    }
}
BENCHMARK(maskClip);
BENCHMARK(maskClipBare);

} // namespace
