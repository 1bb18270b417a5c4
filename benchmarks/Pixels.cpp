// Pixels.cpp: images' pixels into the layout that is drawn, beside Skia's conversion of the same.
//
// Pairs of benchmarks of one name: what comes first is ours, "bare" is the peer. Both write into
// memory that is there already.

#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGImage.h>

#include "Core/Image/PixelReader.h"
#include "include/core/SkPixmap.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr std::size_t kSide = 512;

struct Kind {
    std::size_t bits, bitsPerPixel;
    CGBitmapInfo info;
    bool isGray;
    SkColorType type;
    SkAlphaType alpha;
};

constexpr Kind kRGBX = {
    8, 32, kCGImageAlphaNoneSkipLast, false, kRGB_888x_SkColorType, kOpaque_SkAlphaType};
constexpr Kind kStraight = {
    8, 32, kCGImageAlphaLast, false, kRGBA_8888_SkColorType, kUnpremul_SkAlphaType};
constexpr Kind kGray = {8, 8, kCGImageAlphaNone, true, kGray_8_SkColorType, kOpaque_SkAlphaType};
constexpr Kind kDeep = {16,
                        64,
                        kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Little,
                        false,
                        kR16G16B16A16_unorm_SkColorType,
                        kPremul_SkAlphaType};

std::vector<std::uint8_t> pixelsOf(const Kind& kind) {
    std::vector<std::uint8_t> bytes(kSide * kSide * kind.bitsPerPixel / 8);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 2654435761u >> 24);
    return bytes;
}

void convert(benchmark::State& state, const Kind& kind) {
    const auto bytes = pixelsOf(kind);
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, bytes.data(), bytes.size(), nullptr));
    const CGColorSpaceRef rgb = XGColorSpaceGetDeviceRGB();
    const auto image = cf::adopt(
        CGImageCreate(kSide, kSide, kind.bits, kind.bitsPerPixel, kSide * kind.bitsPerPixel / 8,
                      kind.isGray ? XGColorSpaceGetDeviceGray() : rgb, kind.info, provider.get(),
                      nullptr, false, kCGRenderingIntentDefault));
    const bool isOpaque = kind.alpha == kOpaque_SkAlphaType;
    std::vector<std::uint32_t> out(kSide * kSide);
    for (auto _ : state) {
        const auto reader = cg::PixelReader::of(
            image.get(), {.space = rgb,
                          .alpha = isOpaque ? cg::AlphaUse::None : cg::AlphaUse::Premultiplied,
                          .order = cg::ComponentOrder::BGRX});
        if (!reader || !reader->readRows(0, kSide, reinterpret_cast<std::byte*>(out.data()),
                                         kSide * sizeof(std::uint32_t)))
            state.SkipWithError("the image cannot be read");
        benchmark::ClobberMemory();
    }
}

void bareConvert(benchmark::State& state, const Kind& kind) {
    const auto bytes = pixelsOf(kind);
    constexpr int side = static_cast<int>(kSide);
    const SkPixmap source(SkImageInfo::Make(side, side, kind.type, kind.alpha), bytes.data(),
                          kSide * kind.bitsPerPixel / 8);
    const bool isOpaque = kind.alpha == kOpaque_SkAlphaType;
    std::vector<std::uint32_t> out(kSide * kSide);
    const SkPixmap target(SkImageInfo::Make(side, side, kBGRA_8888_SkColorType,
                                            isOpaque ? kOpaque_SkAlphaType : kPremul_SkAlphaType),
                          out.data(), kSide * sizeof(std::uint32_t));
    for (auto _ : state) {
        if (!source.readPixels(target))
            state.SkipWithError("the pixels cannot be read");
        benchmark::ClobberMemory();
    }
}

BENCHMARK_CAPTURE(convert, RGBX, kRGBX);
BENCHMARK_CAPTURE(bareConvert, RGBX, kRGBX);
BENCHMARK_CAPTURE(convert, StraightRGBA, kStraight);
BENCHMARK_CAPTURE(bareConvert, StraightRGBA, kStraight);
BENCHMARK_CAPTURE(convert, Gray, kGray);
BENCHMARK_CAPTURE(bareConvert, Gray, kGray);
BENCHMARK_CAPTURE(convert, Deep, kDeep);
BENCHMARK_CAPTURE(bareConvert, Deep, kDeep);

} // namespace
