// Pattern.cpp: filling with a pattern beside bare Skia's bitmap shader of the same cell.
//
// Pairs of benchmarks of one name: what comes first is ours, "Bare" is the peer. Both draw into
// pixels of the same kind, in a y-up space.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkImage.h"
#include "include/core/SkPath.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"

#include <benchmark/benchmark.h>

#include <optional>

namespace {

constexpr int kSize = 512;
constexpr CGFloat kCell = 16;

// A disc on nothing, or on a colour that leaves nothing uncovered.
void drawCell(void* isOpaque, CGContextRef context) {
    if (isOpaque) {
        CGContextSetRGBFillColor(context, 0.9f, 0.9f, 0.8f, 1);
        CGContextFillRect(context, CGRectMake(0, 0, kCell, kCell));
    }
    CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.8f, 1);
    CGContextFillEllipseInRect(context, CGRectMake(2, 2, kCell - 4, kCell - 4));
}

cf::Ref<CGContextRef> makeContext(std::size_t size) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGBitmapInfo info =
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
    auto context = cf::adopt(CGBitmapContextCreate(nullptr, size, size, 8, 0, space.get(), info));
    CGContextSetAllowsAcceleration(context.get(), false); // Records nothing.
    return context;
}

cf::Ref<CGPatternRef> makePattern(bool isOpaque, CGAffineTransform matrix) {
    constexpr CGPatternCallbacks callbacks = {0, drawCell, nullptr};
    static int opaque;
    return cf::adopt(CGPatternCreate(isOpaque ? &opaque : nullptr, CGRectMake(0, 0, kCell, kCell),
                                     matrix, kCell, kCell, kCGPatternTilingConstantSpacing, 1,
                                     &callbacks));
}

struct Ours {
    explicit Ours(bool isOpaque, CGAffineTransform matrix = CGAffineTransformIdentity)
        : context(makeContext(kSize)), pattern(makePattern(isOpaque, matrix)) {
        const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
        CGContextSetFillColorSpace(context.get(), space.get());
        setPattern();
    }
    void setPattern() {
        constexpr CGFloat alpha = 1;
        CGContextSetFillPattern(context.get(), pattern.get(), &alpha);
    }
    cf::Ref<CGContextRef> context;
    cf::Ref<CGPatternRef> pattern;
};

struct Bare {
    explicit Bare(bool isOpaque, const SkMatrix& matrix = SkMatrix::I(),
                  SkFilterMode filter = SkFilterMode::kNearest) {
        SkGraphics::Init();
        const auto drawn = makeContext(static_cast<std::size_t>(kCell));
        drawCell(isOpaque ? this : nullptr, drawn.get());
        bitmap.allocN32Pixels(kSize, kSize);
        bitmap.eraseColor(0);
        canvas.emplace(bitmap);
        canvas->translate(0, kSize);
        canvas->scale(1, -1);
        const SkPixmap pixels(SkImageInfo::MakeN32Premul(16, 16),
                              CGBitmapContextGetData(drawn.get()), 64);
        SkMatrix upright = SkMatrix::MakeAll(1, 0, 0, 0, -1, kCell, 0, 0, 1);
        upright.postConcat(matrix);
        paint.setAntiAlias(true);
        paint.setShader(SkImages::RasterFromPixmapCopy(pixels)->makeShader(
            SkTileMode::kRepeat, SkTileMode::kRepeat, SkSamplingOptions(filter), &upright));
    }
    SkBitmap bitmap;
    std::optional<SkCanvas> canvas;
    SkPaint paint;
};

// Of a side, opaque or not.
void fillRect(benchmark::State& state) {
    Ours ours(state.range(1));
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state)
        CGContextFillRect(ours.context.get(), CGRectMake(20, 30, side, side));
}
void fillRectBare(benchmark::State& state) {
    Bare bare(state.range(1));
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state)
        bare.canvas->drawRect(SkRect::MakeXYWH(20, 30, side, side), bare.paint);
}
BENCHMARK(fillRect)->ArgsProduct({{8, 32, 256}, {0, 1}});
BENCHMARK(fillRectBare)->ArgsProduct({{8, 32, 256}, {0, 1}});

// The pattern set anew for every fill, as programs do that draw from a description.
void setAndFillRect(benchmark::State& state) {
    Ours ours(false);
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        ours.setPattern();
        CGContextFillRect(ours.context.get(), CGRectMake(20, 30, side, side));
    }
}
void setAndFillRectBare(benchmark::State& state) {
    Bare bare(false);
    const auto shader = bare.paint.refShader();
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        bare.paint.setShader(shader);
        bare.canvas->drawRect(SkRect::MakeXYWH(20, 30, side, side), bare.paint);
    }
}
BENCHMARK(setAndFillRect)->Arg(32)->Arg(256);
BENCHMARK(setAndFillRectBare)->Arg(32)->Arg(256);

void fillPath(benchmark::State& state) {
    Ours ours(false);
    const auto side = static_cast<float>(state.range(0));
    for (auto _ : state) {
        CGContextMoveToPoint(ours.context.get(), 20, 30);
        CGContextAddLineToPoint(ours.context.get(), 20 + side, 40);
        CGContextAddLineToPoint(ours.context.get(), 40, 30 + side);
        CGContextClosePath(ours.context.get());
        CGContextFillPath(ours.context.get());
    }
}
void fillPathBare(benchmark::State& state) {
    Bare bare(false);
    const auto side = static_cast<float>(state.range(0));
    SkPath path;
    for (auto _ : state) {
        path.rewind();
        path.moveTo(20, 30).lineTo(20 + side, 40).lineTo(40, 30 + side).close();
        bare.canvas->drawPath(path, bare.paint);
    }
}
BENCHMARK(fillPath)->Arg(32)->Arg(256);
BENCHMARK(fillPathBare)->Arg(32)->Arg(256);

void fillTurned(benchmark::State& state) {
    Ours ours(false, CGAffineTransformMakeRotation(0.3f));
    for (auto _ : state)
        CGContextFillRect(ours.context.get(), CGRectMake(20, 30, 256, 256));
}
void fillTurnedBare(benchmark::State& state) {
    Bare bare(false, SkMatrix::RotateRad(0.3f), SkFilterMode::kLinear);
    for (auto _ : state)
        bare.canvas->drawRect(SkRect::MakeXYWH(20, 30, 256, 256), bare.paint);
}
BENCHMARK(fillTurned);
BENCHMARK(fillTurnedBare);

} // namespace
