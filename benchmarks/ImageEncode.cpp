// ImageEncode.cpp: writing PNG and JPEG files beside libpng and libjpeg on their own.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/BareCodecs.h"

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/UTCoreTypes.h>
#include <benchmark/benchmark.h>

#include <cmath>

namespace {

constexpr std::size_t kSize = 512;

// Smooth with a little noise, as photographs are.
std::vector<std::uint8_t> pixels(std::size_t components) {
    std::vector<std::uint8_t> bytes(kSize * kSize * components);
    std::uint32_t noise = 1;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        noise = noise * 1664525 + 1013904223;
        const double x = double(i / components % kSize), y = double(i / components / kSize);
        const double value =
            120 + 90 * std::sin(x / 40 + double(i % components)) * std::cos(y / 60);
        bytes[i] = i % components == 3 ? 255 : std::uint8_t(value + double(noise >> 29));
    }
    return bytes;
}

cf::Ref<CGImageRef> image(const std::vector<std::uint8_t>& bytes, CGBitmapInfo info) {
    const std::size_t components = bytes.size() / (kSize * kSize);
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes.data(), CFIndex(bytes.size())));
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    return cf::adopt(CGImageCreate(kSize, kSize, 8, 8 * components, kSize * components, space.get(),
                                   info, provider.get(), nullptr, false,
                                   kCGRenderingIntentDefault));
}

void encode(benchmark::State& state, CFStringRef type, std::size_t components, CGBitmapInfo info) {
    const auto picture = image(pixels(components), info);
    for (auto _ : state) {
        const auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
        const auto file = cf::adopt(CGImageDestinationCreateWithData(data.get(), type, 1, nullptr));
        CGImageDestinationAddImage(file.get(), picture.get(), nullptr);
        if (!CGImageDestinationFinalize(file.get()))
            state.SkipWithError("not written");
    }
}

void barePng(benchmark::State& state, std::size_t components) {
    const auto bytes = pixels(components);
    for (auto _ : state) {
        std::vector<std::uint8_t> file;
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        test::writePngInto(file, png);
        png_set_IHDR(png, info, kSize, kSize, 8,
                     components == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (std::size_t y = 0; y < kSize; ++y)
            png_write_row(png, &bytes[y * kSize * components]);
        png_write_end(png, nullptr);
        png_destroy_write_struct(&png, &info);
        benchmark::DoNotOptimize(file.data());
    }
}

void bareJpeg(benchmark::State& state) {
    const auto bytes = pixels(3);
    for (auto _ : state)
        benchmark::DoNotOptimize(test::encodeJpeg({bytes.data(), kSize, kSize, 3}));
}

constexpr CGBitmapInfo kBGRA = kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little;

void encodePng(benchmark::State& state) {
    encode(state, kUTTypePNG, 3, kCGImageAlphaNone);
}
void encodeJpeg(benchmark::State& state) {
    encode(state, kUTTypeJPEG, 3, kCGImageAlphaNone);
}
// What bitmap contexts give: to be turned around and divided by its opacity.
void encodePngOfBitmap(benchmark::State& state) {
    encode(state, kUTTypePNG, 4, kBGRA);
}

BENCHMARK(encodePng)->Name("png/rgb");
BENCHMARK_CAPTURE(barePng, rgb, 3)->Name("bare png/rgb");
BENCHMARK(encodePngOfBitmap)->Name("png/bgra");
BENCHMARK_CAPTURE(barePng, rgba, 4)->Name("bare png/rgba");
BENCHMARK(encodeJpeg)->Name("jpeg/rgb");
BENCHMARK(bareJpeg)->Name("bare jpeg/rgb");

} // namespace
