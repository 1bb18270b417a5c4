// Paint.cpp: gradients and shadings beside the same on bare Skia, and what their set-up costs.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer.

#include "XGFunction.h"
#include "XGGradient.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/effects/SkGradientShader.h"

#include <benchmark/benchmark.h>

#if NIMBRA_HAS_CAIRO
#include <cairo.h>
#endif

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr int kSize = 512;
constexpr CGPoint kStart = {20, 30}, kEnd = {480, 400};
constexpr CGFloat kRadius = 400;

std::vector<SkColor4f> colorsOf(int count) {
    std::vector<SkColor4f> colors;
    for (int index = 0; index < count; ++index)
        colors.push_back({index % 2 ? 0.9f : 0.1f, 0.2f * static_cast<float>(index), 0.5f, 1});
    return colors;
}

cf::Ref<CGGradientRef> makeGradient(int count) {
    std::vector<CGFloat> components;
    for (const SkColor4f& color : colorsOf(count))
        components.insert(components.end(), {color.fR, color.fG, color.fB, color.fA});
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return cf::adopt(CGGradientCreateWithColorComponents(space.get(), components.data(), nullptr,
                                                         static_cast<std::size_t>(count)));
}

cf::Ref<CGContextRef> makeContext(int size) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    auto context = cf::adopt(CGBitmapContextCreate(
        nullptr, static_cast<std::size_t>(size), static_cast<std::size_t>(size), 8, 0, space.get(),
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little}));
    CGContextSetAllowsAcceleration(context.get(), false); // Records nothing.
    return context;
}

enum class Shape { Linear, Radial };

void drawGradient(benchmark::State& state, Shape shape, int count) {
    const auto context = makeContext(kSize);
    const auto gradient = makeGradient(count);
    const CGGradientDrawingOptions both = CGGradientDrawingOptions{
        kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation};
    for ([[maybe_unused]] auto round : state) {
        if (shape == Shape::Linear)
            CGContextDrawLinearGradient(context.get(), gradient.get(), kStart, kEnd, both);
        else
            CGContextDrawRadialGradient(context.get(), gradient.get(), kStart, 5, kEnd, kRadius,
                                        both);
    }
}

void drawGradientBare(benchmark::State& state, Shape shape, int count) {
    SkGraphics::Init();
    SkBitmap bitmap;
    bitmap.allocN32Pixels(kSize, kSize);
    bitmap.eraseColor(0);
    SkCanvas canvas(bitmap);
    canvas.translate(0, kSize);
    canvas.scale(1, -1);
    const auto colors = colorsOf(count);
    std::vector<float> locations;
    for (int index = 0; index < count; ++index)
        locations.push_back(static_cast<float>(index) / static_cast<float>(count - 1));
    const SkPoint ends[] = {{kStart.x, kStart.y}, {kEnd.x, kEnd.y}};
    for ([[maybe_unused]] auto round : state) {
        SkPaint paint;
        paint.setShader(
            shape == Shape::Linear
                ? SkGradientShader::MakeLinear(ends, colors.data(), nullptr, locations.data(),
                                               count, SkTileMode::kClamp)
                : SkGradientShader::MakeTwoPointConical(ends[0], 5, ends[1], kRadius, colors.data(),
                                                        nullptr, locations.data(), count,
                                                        SkTileMode::kClamp));
        canvas.drawPaint(paint);
    }
}

#if NIMBRA_HAS_CAIRO

void drawGradientCairo(benchmark::State& state, Shape shape, int count) {
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize);
    cairo_t* const cairo = cairo_create(surface);
    cairo_translate(cairo, 0, kSize);
    cairo_scale(cairo, 1, -1);
    const auto colors = colorsOf(count);
    for ([[maybe_unused]] auto round : state) {
        cairo_pattern_t* const pattern =
            shape == Shape::Linear
                ? cairo_pattern_create_linear(double{kStart.x}, double{kStart.y}, double{kEnd.x},
                                              double{kEnd.y})
                : cairo_pattern_create_radial(double{kStart.x}, double{kStart.y}, 5, double{kEnd.x},
                                              double{kEnd.y}, double{kRadius});
        for (int index = 0; index < count; ++index) {
            const SkColor4f& color = colors[static_cast<std::size_t>(index)];
            cairo_pattern_add_color_stop_rgba(pattern, index / double(count - 1), double{color.fR},
                                              double{color.fG}, double{color.fB}, double{color.fA});
        }
        cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
        cairo_set_source(cairo, pattern);
        cairo_paint(cairo);
        cairo_pattern_destroy(pattern);
    }
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

BENCHMARK_CAPTURE(drawGradientCairo, linear_2, Shape::Linear, 2);
BENCHMARK_CAPTURE(drawGradientCairo, linear_5, Shape::Linear, 5);
BENCHMARK_CAPTURE(drawGradientCairo, radial_2, Shape::Radial, 2);
BENCHMARK_CAPTURE(drawGradientCairo, radial_5, Shape::Radial, 5);

#endif

BENCHMARK_CAPTURE(drawGradient, linear_2, Shape::Linear, 2);
BENCHMARK_CAPTURE(drawGradientBare, linear_2, Shape::Linear, 2);
BENCHMARK_CAPTURE(drawGradient, linear_5, Shape::Linear, 5);
BENCHMARK_CAPTURE(drawGradientBare, linear_5, Shape::Linear, 5);
BENCHMARK_CAPTURE(drawGradient, radial_2, Shape::Radial, 2);
BENCHMARK_CAPTURE(drawGradientBare, radial_2, Shape::Radial, 2);
BENCHMARK_CAPTURE(drawGradient, radial_5, Shape::Radial, 5);
BENCHMARK_CAPTURE(drawGradientBare, radial_5, Shape::Radial, 5);

// ---- A gradient's colour at a place, beside a loop over the same stops

constexpr std::size_t kPlaces = 256;

enum class Way { OneByOne, Span };

void evaluateGradient(benchmark::State& state, Way way) {
    const auto gradient = makeGradient(5);
    const CGFunctionRef function = XGGradientGetFunction(gradient.get());
    std::array<CGFloat, kPlaces> places;
    std::array<CGFloat, 4 * kPlaces> out;
    for (std::size_t place = 0; place < kPlaces; ++place)
        places[place] = static_cast<CGFloat>(place) / kPlaces;
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(places);
        if (way == Way::Span)
            XGFunctionEvaluateSpan(function, places.data(), places.size(), out.data());
        else
            for (std::size_t place = 0; place < kPlaces; ++place)
                XGFunctionEvaluate(function, &places[place], &out[4 * place]);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t{kPlaces});
}

// A loop of a program's own, which keeps the place and the colours in 0 … 1 as ours does.
float inUnit(float value) {
    return std::isfinite(value) && value > 0 ? std::min(value, 1.f) : 0;
}

void evaluateGradientBare(benchmark::State& state, Way) {
    const auto colors = colorsOf(5);
    std::array<float, 5> locations = {0, 0.25f, 0.5f, 0.75f, 1};
    std::array<float, kPlaces> places;
    std::array<float, 4 * kPlaces> out;
    for (std::size_t place = 0; place < kPlaces; ++place)
        places[place] = static_cast<float>(place) / kPlaces;
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(places);
        benchmark::DoNotOptimize(locations);
        float* to = out.data();
        for (const float place : places) {
            const float location = inUnit(place);
            std::size_t end = 1;
            while (end < 4 && location > locations[end])
                ++end;
            const float t = (location - locations[end - 1]) / (locations[end] - locations[end - 1]);
            for (int channel = 0; channel < 4; ++channel) {
                const float from = colors[end - 1][channel];
                *to++ = inUnit(from + t * (colors[end][channel] - from));
            }
        }
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t{kPlaces});
}

// A row of Skia's gradient, which yields premultiplied pixels.
void evaluateGradientSkia(benchmark::State& state, Way) {
    SkGraphics::Init();
    SkBitmap bitmap;
    bitmap.allocPixels(SkImageInfo::Make(kPlaces, 1, kRGBA_F32_SkColorType, kPremul_SkAlphaType));
    SkCanvas canvas(bitmap);
    const auto colors = colorsOf(5);
    const SkPoint ends[] = {{0, 0}, {kPlaces, 0}};
    SkPaint paint;
    paint.setBlendMode(SkBlendMode::kSrc);
    paint.setShader(
        SkGradientShader::MakeLinear(ends, colors.data(), nullptr, nullptr, 5, SkTileMode::kClamp));
    for ([[maybe_unused]] auto round : state)
        canvas.drawPaint(paint);
    state.SetItemsProcessed(state.iterations() * std::int64_t{kPlaces});
}

BENCHMARK_CAPTURE(evaluateGradient, one_by_one, Way::OneByOne);
BENCHMARK_CAPTURE(evaluateGradientBare, one_by_one, Way::OneByOne);
BENCHMARK_CAPTURE(evaluateGradient, span, Way::Span);
BENCHMARK_CAPTURE(evaluateGradientBare, span, Way::Span);
BENCHMARK_CAPTURE(evaluateGradientSkia, span, Way::Span);

// ---- What a function costs before its first pixel: the bitmap is one pixel

void setUpShading(benchmark::State& state, CGFunctionEvaluateCallback evaluate) {
    const CGFunctionCallbacks callbacks = {.evaluate = evaluate};
    const auto function = cf::adopt(CGFunctionCreate(nullptr, 1, nullptr, 4, nullptr, &callbacks));
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto shading =
        cf::adopt(CGShadingCreateAxial(space.get(), {0, 0}, {1, 0}, function.get(), 1, 1));
    const auto context = makeContext(1);
    for ([[maybe_unused]] auto round : state)
        CGContextDrawShading(context.get(), shading.get());
}

constexpr auto kLine = [](void*, const CGFloat* in, CGFloat* out) {
    out[0] = out[1] = out[2] = *in;
    out[3] = 1;
};
constexpr auto kWave = [](void*, const CGFloat* in, CGFloat* out) {
    out[0] = out[1] = out[2] = 0.5f + 0.5f * std::sin(20 * *in);
    out[3] = 1;
};
constexpr auto kSawtooth = [](void*, const CGFloat* in, CGFloat* out) {
    out[0] = out[1] = out[2] = std::fmod(300 * *in, 1.f);
    out[3] = 1;
};

BENCHMARK_CAPTURE(setUpShading, line, kLine);
BENCHMARK_CAPTURE(setUpShading, wave, kWave);
BENCHMARK_CAPTURE(setUpShading, sawtooth_of_300, kSawtooth);

} // namespace
