// ImageIO.cpp: decoding PNG and JPEG through an image source beside the bare libraries.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer, which writes the
// same pixel format into memory of its own. Both start from the file's bytes and end with the
// pixels freed again.

#include "XGDataProvider.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/BareCodecs.h"

#include <ImageIO/ImageIO.h>
#include <benchmark/benchmark.h>

namespace {

using test::Bytes;

constexpr std::uint32_t kWidth = 1024, kHeight = 768;

// Slopes with some noise, as photographs have.
Bytes makePixels(std::size_t components) {
    Bytes pixels(components * kWidth * kHeight);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        random = random * 1664525 + 1013904223;
        const std::size_t x = i / components % kWidth, y = i / components / kWidth;
        pixels[i] =
            static_cast<std::uint8_t>((x * (i % components + 1) + y) / 8 + random / (1u << 30));
    }
    return pixels;
}

// ---- Files.

Bytes makePng(std::uint32_t format, std::size_t components) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = kWidth;
    image.height = kHeight;
    image.format = format;
    const Bytes pixels = makePixels(components);
    png_alloc_size_t size = 0;
    png_image_write_to_memory(&image, nullptr, &size, 0, pixels.data(), 0, nullptr);
    Bytes file(size);
    png_image_write_to_memory(&image, file.data(), &size, 0, pixels.data(), 0, nullptr);
    file.resize(size);
    return file;
}

Bytes makeJpeg(bool isProgressive) {
    return test::encodeJpeg({makePixels(3).data(), kWidth, kHeight, 3},
                            [=](jpeg_compress_struct& jpeg) {
                                jpeg_set_quality(&jpeg, 85, TRUE);
                                if (isProgressive)
                                    jpeg_simple_progression(&jpeg);
                            });
}

const Bytes& pngFile(bool hasAlpha) {
    static const Bytes opaque = makePng(PNG_FORMAT_RGB, 3),
                       transparent = makePng(PNG_FORMAT_RGBA, 4);
    return hasAlpha ? transparent : opaque;
}
const Bytes& jpegFile(bool isProgressive) {
    static const Bytes plain = makeJpeg(false), progressive = makeJpeg(true);
    return isProgressive ? progressive : plain;
}

// ---- Ours.

void decode(benchmark::State& state, const Bytes& file) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, file.data(), static_cast<CFIndex>(file.size())));
    for (auto _ : state) {
        const auto source = cf::adopt(CGImageSourceCreateWithData(data.get(), nullptr));
        const auto image = cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
        const CGDataProviderRef provider = CGImageGetDataProvider(image.get());
        const void* const pixels = XGDataProviderLockData(provider);
        if (!pixels)
            state.SkipWithError("nothing was decoded");
        benchmark::DoNotOptimize(pixels);
        XGDataProviderUnlockData(provider);
    }
}

// ---- The bare libraries.

void decodeBarePng(benchmark::State& state, bool hasAlpha) {
    for (auto _ : state) {
        test::PngInput input(pngFile(hasAlpha));
        png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        input.attachTo(png);
        png_read_info(png, info);
        if (!hasAlpha)
            png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
        png_read_update_info(png, info);
        auto* const pixels = static_cast<png_bytep>(std::malloc(4 * kWidth * kHeight));
        for (std::size_t y = 0; y < kHeight; ++y)
            png_read_row(png, pixels + y * kWidth * 4, nullptr);
        png_destroy_read_struct(&png, &info, nullptr);
        benchmark::DoNotOptimize(pixels);
        std::free(pixels);
    }
}

void decodeBareJpeg(benchmark::State& state, bool isProgressive) {
    const Bytes& file = jpegFile(isProgressive);
    for (auto _ : state) {
        void* pixels = nullptr;
        test::decodeJpeg(
            file, [](jpeg_decompress_struct& jpeg) { jpeg.out_color_space = JCS_EXT_BGRX; },
            [&](std::size_t size) {
                pixels = std::malloc(size);
                return static_cast<std::uint8_t*>(pixels);
            });
        benchmark::DoNotOptimize(pixels);
        std::free(pixels);
    }
}

void readPngRGB(benchmark::State& state) {
    decode(state, pngFile(false));
}
void readPngRGBBare(benchmark::State& state) {
    decodeBarePng(state, false);
}
void readPngRGBA(benchmark::State& state) {
    decode(state, pngFile(true));
}
void readPngRGBABare(benchmark::State& state) {
    decodeBarePng(state, true);
}
void readJpeg(benchmark::State& state) {
    decode(state, jpegFile(false));
}
void readJpegBare(benchmark::State& state) {
    decodeBareJpeg(state, false);
}
void readJpegProgressive(benchmark::State& state) {
    decode(state, jpegFile(true));
}
void readJpegProgressiveBare(benchmark::State& state) {
    decodeBareJpeg(state, true);
}

BENCHMARK(readPngRGB);
BENCHMARK(readPngRGBBare);
BENCHMARK(readPngRGBA);
BENCHMARK(readPngRGBABare);
BENCHMARK(readJpeg);
BENCHMARK(readJpegBare);
BENCHMARK(readJpegProgressive);
BENCHMARK(readJpegProgressiveBare);

} // namespace
