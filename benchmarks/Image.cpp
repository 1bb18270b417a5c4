// Image.cpp: drawing images into a bitmap context beside the same calls on a bare Skia canvas.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer.

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkImage.h"

#include <benchmark/benchmark.h>

#if NIMBRA_HAS_CAIRO
#include <cairo.h>
#endif

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace {

constexpr int kSize = 512;
constexpr int kImageSize = 256;

enum class Kind { Opaque, Translucent, Mask };

// Rows of bytes that are a picture of any kind: premultiplied BGRA, or coverage turned around.
std::vector<std::uint8_t> pictureBytes(Kind kind) {
    std::mt19937 random(3);
    std::vector<std::uint8_t> bytes(kImageSize * kImageSize * (kind == Kind::Mask ? 1 : 4));
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        bytes[at] = static_cast<std::uint8_t>(random() % 128);
        if (kind != Kind::Mask && at % 4 == 3)
            bytes[at] = static_cast<std::uint8_t>(kind == Kind::Opaque ? 255 : 128 + random() % 64);
    }
    return bytes;
}

struct Placement {
    CGAffineTransform ctm;
    CGRect rect;
    CGInterpolationQuality quality;
    SkSamplingOptions sampling;
};

const Placement kPlacements[] = {
    {{1, 0, 0, 1, 0, 0}, {{64, 64}, {256, 256}}, kCGInterpolationDefault, {SkFilterMode::kLinear}},
    {{1, 0, 0, 1, 0, 0}, {{6, 6}, {500, 500}}, kCGInterpolationDefault, {SkFilterMode::kLinear}},
    {{1, 0, 0, 1, 0, 0}, {{6, 6}, {500, 500}}, kCGInterpolationNone, {}},
    {{1, 0, 0, 1, 0, 0},
     {{6, 6}, {100, 100}},
     kCGInterpolationDefault,
     {SkFilterMode::kLinear, SkMipmapMode::kNearest}},
    {{0.9f, 0.5f, -0.5f, 0.9f, 120, 20},
     {{20, 20}, {256, 256}},
     kCGInterpolationDefault,
     {SkFilterMode::kLinear}},
    {{1, 0, 0, 1, 0, 0},
     {{6, 6}, {500, 500}},
     kCGInterpolationHigh,
     SkSamplingOptions(SkCubicResampler::CatmullRom())},
    {{1, 0, 0, 1, 0, 0}, {{64, 64}, {16, 16}}, kCGInterpolationNone, {}},
};
const char* const kNames[] = {"own size", "enlarged",     "nearest", "reduced",
                              "rotated",  "high quality", "tiny"};

cf::Ref<CGImageRef> makeImage(Kind kind) {
    const auto bytes = pictureBytes(kind);
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    if (kind == Kind::Mask)
        return cf::adopt(CGImageMaskCreate(kImageSize, kImageSize, 8, 8, kImageSize, provider.get(),
                                           nullptr, true));
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGBitmapInfo info = CGBitmapInfo{kind == Kind::Opaque ? kCGImageAlphaNoneSkipFirst
                                                                : kCGImageAlphaPremultipliedFirst} |
                              CGBitmapInfo{kCGBitmapByteOrder32Little};
    return cf::adopt(CGImageCreate(kImageSize, kImageSize, 8, 32, 4 * kImageSize, space.get(), info,
                                   provider.get(), nullptr, true, kCGRenderingIntentDefault));
}

sk_sp<SkImage> bareImage(Kind kind) {
    auto bytes = pictureBytes(kind);
    if (kind == Kind::Mask) {
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(255 - byte);
    }
    const SkImageInfo info = SkImageInfo::Make(
        kImageSize, kImageSize, kind == Kind::Mask ? kAlpha_8_SkColorType : kBGRA_8888_SkColorType,
        kind == Kind::Opaque ? kOpaque_SkAlphaType : kPremul_SkAlphaType);
    return SkImages::RasterFromPixmapCopy(SkPixmap(info, bytes.data(), info.minRowBytes()));
}

void draw(benchmark::State& state, Kind kind) {
    const Placement& place = kPlacements[state.range(0)];
    state.SetLabel(kNames[state.range(0)]);
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGBitmapInfo info =
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
    const auto context =
        cf::adopt(CGBitmapContextCreate(nullptr, kSize, kSize, 8, 0, space.get(), info));
    CGContextSetAllowsAcceleration(context.get(), false); // Records nothing.
    const auto image = makeImage(kind);
    CGContextSetRGBFillColor(context.get(), 0.2f, 0.4f, 0.8f, 0.5f);
    CGContextSetInterpolationQuality(context.get(), place.quality);
    CGContextConcatCTM(context.get(), place.ctm);
    for (auto _ : state)
        CGContextDrawImage(context.get(), place.rect, image.get());
}

void drawBare(benchmark::State& state, Kind kind) {
    const Placement& place = kPlacements[state.range(0)];
    state.SetLabel(kNames[state.range(0)]);
    SkGraphics::Init();
    SkBitmap bitmap;
    bitmap.allocN32Pixels(kSize, kSize);
    bitmap.eraseColor(0);
    SkCanvas canvas(bitmap);
    const auto image = bareImage(kind);
    const CGAffineTransform& m = place.ctm;
    const SkRect rect = SkRect::MakeXYWH(place.rect.origin.x, place.rect.origin.y,
                                         place.rect.size.width, place.rect.size.height);
    canvas.translate(0, kSize);
    canvas.scale(1, -1);
    canvas.concat(SkMatrix::MakeAll(m.a, m.c, m.tx, m.b, m.d, m.ty, 0, 0, 1));
    SkPaint paint;
    paint.setAntiAlias(true);
    if (kind == Kind::Mask)
        paint.setColor(SkColorSetARGB(128, 51, 102, 204));
    for (auto _ : state) {
        canvas.save();
        canvas.translate(0, rect.top() + rect.bottom());
        canvas.scale(1, -1);
        canvas.drawImageRect(image, rect, place.sampling, &paint);
        canvas.restore();
    }
}

#if NIMBRA_HAS_CAIRO

cairo_filter_t filterFor(CGInterpolationQuality quality) {
    if (quality == kCGInterpolationNone)
        return CAIRO_FILTER_NEAREST;
    return quality == kCGInterpolationHigh ? CAIRO_FILTER_BEST : CAIRO_FILTER_GOOD;
}

void drawCairo(benchmark::State& state, Kind kind) {
    const Placement& place = kPlacements[state.range(0)];
    state.SetLabel(kNames[state.range(0)]);
    auto bytes = pictureBytes(kind);
    cairo_surface_t* const image = cairo_image_surface_create_for_data(
        bytes.data(), kind == Kind::Opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, kImageSize,
        kImageSize, 4 * kImageSize);
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize);
    cairo_t* const cairo = cairo_create(surface);
    const CGAffineTransform& m = place.ctm;
    const cairo_matrix_t ctm = {double{m.a}, double{m.b},  double{m.c},
                                double{m.d}, double{m.tx}, double{m.ty}};
    cairo_translate(cairo, 0, kSize);
    cairo_scale(cairo, 1, -1);
    cairo_transform(cairo, &ctm);
    const CGRect& rect = place.rect;
    for (auto _ : state) {
        cairo_save(cairo);
        cairo_translate(cairo, double{rect.origin.x}, double{rect.origin.y + rect.size.height});
        cairo_scale(cairo, double{rect.size.width} / kImageSize,
                    -double{rect.size.height} / kImageSize);
        cairo_set_source_surface(cairo, image, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cairo), filterFor(place.quality));
        cairo_rectangle(cairo, 0, 0, kImageSize, kImageSize);
        cairo_fill(cairo);
        cairo_restore(cairo);
    }
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
    cairo_surface_destroy(image);
}

void opaqueCairo(benchmark::State& state) {
    drawCairo(state, Kind::Opaque);
}
void translucentCairo(benchmark::State& state) {
    drawCairo(state, Kind::Translucent);
}

BENCHMARK(opaqueCairo)->DenseRange(0, 6);
BENCHMARK(translucentCairo)->DenseRange(0, 6);

#endif

void opaque(benchmark::State& state) {
    draw(state, Kind::Opaque);
}
void opaqueBare(benchmark::State& state) {
    drawBare(state, Kind::Opaque);
}
void translucent(benchmark::State& state) {
    draw(state, Kind::Translucent);
}
void translucentBare(benchmark::State& state) {
    drawBare(state, Kind::Translucent);
}
void mask(benchmark::State& state) {
    draw(state, Kind::Mask);
}
void maskBare(benchmark::State& state) {
    drawBare(state, Kind::Mask);
}

BENCHMARK(opaque)->DenseRange(0, 6);
BENCHMARK(opaqueBare)->DenseRange(0, 6);
BENCHMARK(translucent)->DenseRange(0, 6);
BENCHMARK(translucentBare)->DenseRange(0, 6);
BENCHMARK(mask)->DenseRange(0, 4);
BENCHMARK(maskBare)->DenseRange(0, 4);

} // namespace
