// Context.cpp: saving, restoring and setting state, a call at a time, and contexts in two threads,
// beside bare Skia (its canvas and paint) and Cairo.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkPaint.h"
#include "include/core/SkPath.h"
#include "include/effects/SkDashPathEffect.h"

#include <benchmark/benchmark.h>

#if NIMBRA_HAS_CAIRO
#include <cairo.h>
#endif

#include <array>
#include <cmath>
#include <cstddef>
#include <string>

namespace {

constexpr int kSize = 256;

// ---- The engines, each over 32-bit pixels

struct Ours {
    cf::Ref<CGContextRef> context = [] {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        auto made = cf::adopt(CGBitmapContextCreate(nullptr, kSize, kSize, 8, 0, space.get(),
                                                    CGBitmapInfo{kCGImageAlphaPremultipliedFirst} |
                                                        CGBitmapInfo{kCGBitmapByteOrder32Little}));
        CGContextSetAllowsAcceleration(made.get(), false); // Records nothing.
        return made;
    }();
    CGContextRef c = context.get();
    cf::Ref<CGColorRef> colors[2] = {cf::adopt(CGColorCreateGenericRGB(1, 0, 0, 1)),
                                     cf::adopt(CGColorCreateGenericRGB(0, 0, 1, 1))};
};

struct Skia {
    SkBitmap bitmap = [] {
        SkGraphics::Init();
        SkBitmap made;
        made.allocN32Pixels(kSize, kSize);
        made.eraseColor(0);
        return made;
    }();
    SkCanvas canvas{bitmap};
    SkPaint paint;
    SkPath path;
};

#if NIMBRA_HAS_CAIRO
struct Cairo {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize);
    cairo_t* c = cairo_create(surface);

    Cairo() = default;
    Cairo(const Cairo&) = delete;
    Cairo& operator=(const Cairo&) = delete;
    ~Cairo() {
        cairo_destroy(c);
        cairo_surface_destroy(surface);
    }
};
#else
struct Cairo {};
#endif

// ---- Calls, numbered so that each can set something else than the one before

// A peer without such a call has none.
struct Subject {
    const char* name;
    void (*ours)(Ours& our, int call);
    void (*skia)(Skia& skia, int call);
    void (*cairo)(Cairo& cairo, int call);
};

#if NIMBRA_HAS_CAIRO
#define CAIRO(...) [](Cairo& cairo, [[maybe_unused]] int i) { __VA_ARGS__; }
#else
#define CAIRO(...) nullptr
#endif

constexpr float kStep = 1.f / 1024;
constexpr CGFloat kDash[] = {3, 1};

float opacityOf(int call) {
    return static_cast<float>(call % 1024) * kStep;
}
CGFloat widthOf(int call) {
    return static_cast<CGFloat>(call % 8 + 1);
}

const Subject kSubjects[] = {
    {"saveRestore",
     [](Ours& our, int) {
         CGContextSaveGState(our.c);
         CGContextRestoreGState(our.c);
     },
     [](Skia& skia, int) {
         skia.canvas.save();
         skia.canvas.restore();
     },
     CAIRO(cairo_save(cairo.c); cairo_restore(cairo.c))},
    {"saveTransformRestore",
     [](Ours& our, int) {
         CGContextSaveGState(our.c);
         CGContextTranslateCTM(our.c, 1, 2);
         CGContextRestoreGState(our.c);
     },
     [](Skia& skia, int) {
         skia.canvas.save();
         skia.canvas.translate(1, 2);
         skia.canvas.restore();
     },
     CAIRO(cairo_save(cairo.c); cairo_translate(cairo.c, 1, 2); cairo_restore(cairo.c))},
    {"saveClipRestore",
     [](Ours& our, int) {
         CGContextSaveGState(our.c);
         CGContextClipToRect(our.c, CGRectMake(8, 8, 100, 100));
         CGContextRestoreGState(our.c);
     },
     [](Skia& skia, int) {
         skia.canvas.save();
         skia.canvas.clipRect(SkRect::MakeXYWH(8, 8, 100, 100));
         skia.canvas.restore();
     },
     CAIRO(cairo_save(cairo.c); cairo_rectangle(cairo.c, 8, 8, 100, 100); cairo_clip(cairo.c);
           cairo_restore(cairo.c))},
    {"saveColorRestore",
     [](Ours& our, int i) {
         CGContextSaveGState(our.c);
         CGContextSetRGBFillColor(our.c, 1, 0.5f, opacityOf(i), 1);
         CGContextRestoreGState(our.c);
     },
     nullptr,
     CAIRO(cairo_save(cairo.c); cairo_set_source_rgba(cairo.c, 1, 0.5, opacityOf(i), 1);
           cairo_restore(cairo.c))},
    {"lineWidth", [](Ours& our, int i) { CGContextSetLineWidth(our.c, widthOf(i)); },
     [](Skia& skia, int i) { skia.paint.setStrokeWidth(widthOf(i)); },
     CAIRO(cairo_set_line_width(cairo.c, widthOf(i)))},
    {"lineCap", [](Ours& our, int i) { CGContextSetLineCap(our.c, CGLineCap(i % 3)); },
     [](Skia& skia, int i) { skia.paint.setStrokeCap(SkPaint::Cap(i % 3)); },
     CAIRO(cairo_set_line_cap(cairo.c, cairo_line_cap_t(i % 3)))},
    {"dash", [](Ours& our, int i) { CGContextSetLineDash(our.c, widthOf(i), kDash, 2); },
     [](Skia& skia, int i) {
         skia.paint.setPathEffect(SkDashPathEffect::Make(kDash, 2, widthOf(i)));
     },
     CAIRO(const double dash[] = {3, 1}; cairo_set_dash(cairo.c, dash, 2, widthOf(i)))},
    {"alpha", [](Ours& our, int i) { CGContextSetAlpha(our.c, opacityOf(i)); },
     [](Skia& skia, int i) { skia.paint.setAlphaf(opacityOf(i)); }, nullptr},
    {"blendMode", [](Ours& our, int i) { CGContextSetBlendMode(our.c, CGBlendMode(i % 16)); },
     [](Skia& skia, int i) { skia.paint.setBlendMode(SkBlendMode(i % 16)); },
     CAIRO(cairo_set_operator(cairo.c, cairo_operator_t(i % 14)))},
    {"antialias", [](Ours& our, int i) { CGContextSetShouldAntialias(our.c, i % 2); },
     [](Skia& skia, int i) { skia.paint.setAntiAlias(i % 2); },
     CAIRO(cairo_set_antialias(cairo.c, cairo_antialias_t(i % 2 + 1)))},
    {"sameColor", [](Ours& our, int) { CGContextSetRGBFillColor(our.c, 1, 0.5f, 0, 1); },
     [](Skia& skia, int) {
         skia.paint.setColor4f({1, 0.5f, 0, 1});
     },
     CAIRO(cairo_set_source_rgba(cairo.c, 1, 0.5, 0, 1))},
    {"twoColors",
     [](Ours& our, int i) {
         CGContextSetRGBFillColor(our.c, 1, static_cast<CGFloat>(i % 2), 0, 1);
     },
     [](Skia& skia, int i) {
         skia.paint.setColor4f({1, static_cast<float>(i % 2), 0, 1});
     },
     CAIRO(cairo_set_source_rgba(cairo.c, 1, i % 2, 0, 1))},
    {"newColor", [](Ours& our, int i) { CGContextSetRGBFillColor(our.c, 1, 0, 0, opacityOf(i)); },
     [](Skia& skia, int i) {
         skia.paint.setColor4f({1, 0, 0, opacityOf(i)});
     },
     CAIRO(cairo_set_source_rgba(cairo.c, 1, 0, 0, opacityOf(i)))},
    {"newGray", [](Ours& our, int i) { CGContextSetGrayStrokeColor(our.c, opacityOf(i), 1); },
     nullptr, nullptr},
    {"newCMYK",
     [](Ours& our, int i) { CGContextSetCMYKFillColor(our.c, opacityOf(i), 0, 0, 0, 1); }, nullptr,
     nullptr},
    {"colorObject",
     [](Ours& our, int i) { CGContextSetFillColorWithColor(our.c, our.colors[i % 2].get()); },
     nullptr, nullptr},
    {"shadow",
     [](Ours& our, int i) {
         CGContextSetShadow(our.c, {3, -3}, widthOf(i));
     },
     nullptr, nullptr},
    {"translate", [](Ours& our, int i) { CGContextTranslateCTM(our.c, i % 2 ? 1 : -1, 2); },
     [](Skia& skia, int i) { skia.canvas.translate(i % 2 ? 1 : -1, 2); },
     CAIRO(cairo_translate(cairo.c, i % 2 ? 1 : -1, 2))},
    {"scale", [](Ours& our, int i) { CGContextScaleCTM(our.c, i % 2 ? 2 : 0.5f, 1); },
     [](Skia& skia, int i) { skia.canvas.scale(i % 2 ? 2 : 0.5f, 1); },
     CAIRO(cairo_scale(cairo.c, i % 2 ? 2 : 0.5, 1))},
    {"rotate", [](Ours& our, int) { CGContextRotateCTM(our.c, 0.7f); },
     [](Skia& skia, int) { skia.canvas.rotate(40); }, CAIRO(cairo_rotate(cairo.c, 0.7))},
    {"setTransform",
     [](Ours& our, int) {
         CGContextSetCTM(our.c, {2, 0, 0, 2, 5, 5});
     },
     [](Skia& skia, int) { skia.canvas.setMatrix(SkMatrix::MakeAll(2, 0, 5, 0, 2, 5, 0, 0, 1)); },
     CAIRO(const cairo_matrix_t m = {2, 0, 0, 2, 5, 5}; cairo_set_matrix(cairo.c, &m))},
    {"clipBounds",
     [](Ours& our, int) { benchmark::DoNotOptimize(CGContextGetClipBoundingBox(our.c)); },
     [](Skia& skia, int) { benchmark::DoNotOptimize(skia.canvas.getLocalClipBounds()); },
     CAIRO(double x; double y; double right; double top;
           cairo_clip_extents(cairo.c, &x, &y, &right, &top); benchmark::DoNotOptimize(top))},
    {"pathOfTwentyLines",
     [](Ours& our, int) {
         CGContextMoveToPoint(our.c, 0, 0);
         for (int line = 0; line < 20; ++line)
             CGContextAddLineToPoint(our.c, static_cast<CGFloat>(line), 5);
         CGContextBeginPath(our.c);
     },
     [](Skia& skia, int) {
         skia.path.moveTo(0, 0);
         for (int line = 0; line < 20; ++line)
             skia.path.lineTo(static_cast<float>(line), 5);
         skia.path.rewind();
     },
     CAIRO(cairo_move_to(cairo.c, 0, 0);
           for (int line = 0; line < 20; ++line) cairo_line_to(cairo.c, line, 5);
           cairo_new_path(cairo.c))},
};

template <typename Engine>
void repeat(benchmark::State& state, void (*call)(Engine&, int)) {
    Engine engine;
    int number = 0;
    for (auto _ : state)
        call(engine, number++ & 0xffff);
}

// ---- Threads, each with a context of its own

void drawScene(Ours& our, int round) {
    const CGContextRef c = our.c;
    constexpr CGAffineTransform kPlain = {1, 0, 0, 1, 0, 0};
    CGContextSaveGState(c);
    CGContextSetCTM(c, kPlain);
    CGContextSetRGBFillColor(c, 1, opacityOf(round), 0, 0.5f);
    CGContextFillEllipseInRect(c, CGRectMake(10, 10, 100, 80));
    CGContextClipToRect(c, CGRectMake(20, 20, 60, 60));
    CGContextSetLineWidth(c, 3);
    CGContextStrokeRect(c, CGRectMake(15, 15, 60, 60));
    CGContextRotateCTM(c, 0.3f);
    CGContextFillRect(c, CGRectMake(40, 30, 20, 20));
    CGContextRestoreGState(c);
}

void drawInThreads(benchmark::State& state) {
    Ours our;
    int round = 0;
    for (auto _ : state)
        drawScene(our, ++round);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(drawInThreads)->Threads(1)->Threads(2)->UseRealTime();

void setInThreads(benchmark::State& state) {
    Ours our;
    int round = 0;
    for (auto _ : state) {
        for (const Subject& subject : kSubjects)
            subject.ours(our, ++round & 0xffff);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(setInThreads)->Threads(1)->Threads(2)->UseRealTime();

const bool registered = [] {
    for (const Subject& subject : kSubjects) {
        const std::string name = subject.name;
        benchmark::RegisterBenchmark(name.c_str(), repeat<Ours>, subject.ours);
        if (subject.skia)
            benchmark::RegisterBenchmark((name + "Skia").c_str(), repeat<Skia>, subject.skia);
        if (subject.cairo)
            benchmark::RegisterBenchmark((name + "Cairo").c_str(), repeat<Cairo>, subject.cairo);
    }
    return true;
}();

} // namespace
