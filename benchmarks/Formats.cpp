// Formats.cpp: marks in bitmaps of other formats beside the same in the rasteriser's own.
//
// "BGRA" is the native format, the measure for the others. Those that are not native are read,
// drawn aside and written back with every mark, so that their price grows with the area.

#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include <benchmark/benchmark.h>

namespace {

enum class Space { RGB, Gray, CMYK };

struct Format {
    Space space;
    std::size_t bits;
    CGBitmapInfo info;
};

constexpr CGBitmapInfo kFirst = kCGImageAlphaPremultipliedFirst;
constexpr CGBitmapInfo kLast = kCGImageAlphaPremultipliedLast;
constexpr Format kBGRA = {Space::RGB, 8, kFirst | kCGBitmapByteOrder32Little};
constexpr Format k565 = {Space::RGB, 5, kCGImagePixelFormatRGB565 | kCGBitmapByteOrder16Little};
constexpr Format kRGBA64 = {Space::RGB, 16, kLast | kCGBitmapByteOrder16Little};
constexpr Format kABGR = {Space::RGB, 8, kLast | kCGBitmapByteOrder32Little};
constexpr Format kRGB24 = {Space::RGB, 8, kCGImageAlphaNone};
constexpr Format k555 = {Space::RGB, 5, kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder16Little};
constexpr Format kGrayAlpha = {Space::Gray, 8, kLast};
constexpr Format kCMYK = {Space::CMYK, 8, kCGImageAlphaNone};

cf::Ref<CGContextRef> makeContext(const Format& format) {
    const auto space = format.space == Space::RGB    ? cf::adopt(CGColorSpaceCreateDeviceRGB())
                       : format.space == Space::Gray ? cf::adopt(CGColorSpaceCreateDeviceGray())
                                                     : cf::adopt(CGColorSpaceCreateDeviceCMYK());
    auto context = cf::adopt(
        CGBitmapContextCreate(nullptr, 512, 512, format.bits, 0, space.get(), format.info));
    CGContextSetAllowsAcceleration(context.get(), false); // Records nothing.
    return context;
}

// The pixels change with every mark, as they do when a picture grows.
template <typename Draw>
void run(benchmark::State& state, const Format& format, CGFloat alpha, Draw&& draw) {
    const auto context = makeContext(format);
    CGFloat shade = 0;
    for (auto _ : state) {
        shade = shade > 0.5f ? 0.25f : 0.75f;
        CGContextSetRGBFillColor(context.get(), shade, 1 - shade, 0.5f, alpha);
        draw(context.get());
    }
}

void opaqueRect(benchmark::State& state, const Format& format) {
    run(state, format, 1,
        [](CGContextRef context) { CGContextFillRect(context, CGRectMake(50, 50, 100, 100)); });
}

void translucentRect(benchmark::State& state, const Format& format) {
    run(state, format, 0.5f,
        [](CGContextRef context) { CGContextFillRect(context, CGRectMake(50, 50, 100, 100)); });
}

void ellipse(benchmark::State& state, const Format& format) {
    run(state, format, 1, [](CGContextRef context) {
        CGContextFillEllipseInRect(context, CGRectMake(50, 50, 100, 100));
    });
}

void tinyRect(benchmark::State& state, const Format& format) {
    run(state, format, 0.5f,
        [](CGContextRef context) { CGContextFillRect(context, CGRectMake(50, 50, 4, 4)); });
}

#define EACH_FORMAT(mark)                                                                          \
    BENCHMARK_CAPTURE(mark, BGRA, kBGRA);                                                          \
    BENCHMARK_CAPTURE(mark, 565, k565);                                                            \
    BENCHMARK_CAPTURE(mark, RGBA64, kRGBA64);                                                      \
    BENCHMARK_CAPTURE(mark, ABGR, kABGR);                                                          \
    BENCHMARK_CAPTURE(mark, RGB24, kRGB24);                                                        \
    BENCHMARK_CAPTURE(mark, 555, k555);                                                            \
    BENCHMARK_CAPTURE(mark, GrayAlpha, kGrayAlpha);                                                \
    BENCHMARK_CAPTURE(mark, CMYK, kCMYK)

EACH_FORMAT(opaqueRect);
EACH_FORMAT(translucentRect);
EACH_FORMAT(ellipse);
EACH_FORMAT(tinyRect);

} // namespace
