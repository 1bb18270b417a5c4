// Color.cpp: rows and colours in other spaces, beside Little CMS and skcms called directly.
//
// Of benchmarks of one name the first is ours; "LittleCMS" and "Skcms" are its peers, "Bare" is a
// plain record behind a shared pointer.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "modules/skcms/skcms.h"

#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kPixels = 4096;

using Bytes = std::vector<unsigned char>;
using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Transform = std::unique_ptr<void, decltype(&cmsDeleteTransform)>;
using Space = cf::Ref<CGColorSpaceRef>;

Bytes readProfile(const char* name) {
    std::ifstream file(std::string("/usr/share/color/icc/") + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Profile open(const Bytes& bytes) {
    return {cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())),
            cmsCloseProfile};
}

Space spaceOf(const Bytes& bytes) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
}

// Pixels like a photograph's: few equal neighbours.
Bytes randomRow(std::size_t channels) {
    std::mt19937 random(1);
    Bytes row(kPixels * channels);
    for (auto& byte : row)
        byte = static_cast<unsigned char>(random());
    return row;
}

struct Pair {
    const char* from;
    const char* to;
    std::size_t channels;
    cmsUInt32Number fromFormat, toFormat;
    std::size_t outChannels;
    skcms_PixelFormat skcmsFrom;
};

constexpr const char* kAdobe = "colord/AdobeRGB1998.icc";
constexpr const char* kStandard = "colord/sRGB.icc";
constexpr Pair kRGB = {kAdobe, kStandard, 3, TYPE_RGB_8, TYPE_RGB_8, 3, skcms_PixelFormat_RGB_888};
constexpr Pair kGray = {"Gray-CIE_L.icc",     kStandard, 1, TYPE_GRAY_8, TYPE_RGB_8, 3,
                        skcms_PixelFormat_G_8};
constexpr Pair kCMYK = {"ghostscript/default_cmyk.icc", kStandard, 4, TYPE_CMYK_8, TYPE_RGB_8, 3,
                        skcms_PixelFormat_RGBA_8888};

void count(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPixels));
}

void rows(benchmark::State& state, const Pair& pair) {
    const Space from = spaceOf(readProfile(pair.from)), to = spaceOf(readProfile(pair.to));
    const CGColorConverterFormat format = {8, false};
    const auto converter = cf::adopt(
        CGColorConverterCreate(from.get(), &format, to.get(), &format, kCGRenderingIntentDefault));
    const Bytes in = randomRow(pair.channels);
    Bytes out(kPixels * pair.outChannels);
    for (auto _ : state) {
        if (!CGColorConverterConvertRows(converter.get(), in.data(), in.size(), out.data(),
                                         out.size(), kPixels, 1))
            state.SkipWithError("no conversion");
        benchmark::ClobberMemory();
    }
    count(state);
}

void rowsLittleCMS(benchmark::State& state, const Pair& pair) {
    const Bytes fromBytes = readProfile(pair.from), toBytes = readProfile(pair.to);
    const Profile from = open(fromBytes), to = open(toBytes);
    const Transform transform(cmsCreateTransform(from.get(), pair.fromFormat, to.get(),
                                                 pair.toFormat, INTENT_PERCEPTUAL, 0),
                              cmsDeleteTransform);
    const Bytes in = randomRow(pair.channels);
    Bytes out(kPixels * pair.outChannels);
    for (auto _ : state) {
        cmsDoTransform(transform.get(), in.data(), out.data(), kPixels);
        benchmark::ClobberMemory();
    }
    count(state);
}

void rowsSkcms(benchmark::State& state, const Pair& pair) {
    const Bytes fromBytes = readProfile(pair.from), toBytes = readProfile(pair.to);
    skcms_ICCProfile from, to;
    if (!skcms_Parse(fromBytes.data(), fromBytes.size(), &from) ||
        !skcms_Parse(toBytes.data(), toBytes.size(), &to) || !skcms_MakeUsableAsDestination(&to)) {
        state.SkipWithError("a profile that skcms does not read");
        return;
    }
    const Bytes in = randomRow(pair.channels);
    Bytes out(kPixels * pair.outChannels);
    for (auto _ : state) {
        if (!skcms_Transform(in.data(), pair.skcmsFrom, skcms_AlphaFormat_Opaque, &from, out.data(),
                             skcms_PixelFormat_RGB_888, skcms_AlphaFormat_Opaque, &to, kPixels))
            state.SkipWithError("no conversion");
        benchmark::ClobberMemory();
    }
    count(state);
}

BENCHMARK_CAPTURE(rows, RGB, kRGB);
BENCHMARK_CAPTURE(rowsLittleCMS, RGB, kRGB);
BENCHMARK_CAPTURE(rowsSkcms, RGB, kRGB);
BENCHMARK_CAPTURE(rows, Gray, kGray);
BENCHMARK_CAPTURE(rowsLittleCMS, Gray, kGray);
BENCHMARK_CAPTURE(rowsSkcms, Gray, kGray);
BENCHMARK_CAPTURE(rows, CMYK, kCMYK);
BENCHMARK_CAPTURE(rowsLittleCMS, CMYK, kCMYK);
BENCHMARK_CAPTURE(rowsSkcms, CMYK, kCMYK);

// ---- Single colours

// What a program without objects of ours would write: one allocation, a shared count, the space
// kept, components within 0 … 1, and equality of the same meaning. Behind a call, as ours is.
struct BareSpace {
    int model = 1;
    std::size_t componentCount = 3;
};
struct BareColor {
    std::shared_ptr<const BareSpace> space;
    std::shared_ptr<const void> pattern;
    std::size_t count = 0;
    std::array<float, 5> components;
};

[[gnu::noinline]] std::shared_ptr<const BareColor>
makeBare(const std::shared_ptr<const BareSpace>& space, const float* components) {
    const auto color = std::make_shared<BareColor>();
    color->space = space;
    color->count = space->componentCount + 1;
    std::copy_n(components, color->count, color->components.begin());
    for (std::size_t index = 0; index < space->componentCount; ++index) {
        float& value = color->components[index];
        value = !std::isfinite(value) || value < 0 ? 0 : std::min(value, 1.f);
    }
    return color;
}

[[gnu::noinline]] bool areEqual(const BareColor* a, const BareColor* b) {
    if (a == b)
        return true;
    return a && b && a->count == b->count &&
           std::memcmp(a->components.data(), b->components.data(), a->count * sizeof(float)) == 0 &&
           a->pattern == b->pattern &&
           (a->space == b->space || (a->space->model == b->space->model &&
                                     a->space->componentCount == b->space->componentCount));
}

// Colours of inks in RGB: their numbers alone, and as objects.

constexpr std::array<CGFloat, 5> kInks = {0.1f, 0.2f, 0.3f, 0.4f, 1};

void convertComponents(benchmark::State& state) {
    const Space inks = spaceOf(readProfile(kCMYK.from)), rgb = spaceOf(readProfile(kCMYK.to));
    const auto transform = cf::adopt(CGColorTransformCreate(rgb.get(), nullptr));
    std::array<CGFloat, 3> out = {};
    for (auto _ : state) {
        CGColorTransformConvertColorComponents(transform.get(), inks.get(),
                                               kCGRenderingIntentDefault, kInks.data(), out.data());
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(convertComponents);

void convertColor(benchmark::State& state) {
    const Space inks = spaceOf(readProfile(kCMYK.from)), rgb = spaceOf(readProfile(kCMYK.to));
    const auto transform = cf::adopt(CGColorTransformCreate(rgb.get(), nullptr));
    const auto color = cf::adopt(CGColorCreate(inks.get(), kInks.data()));
    for (auto _ : state)
        benchmark::DoNotOptimize(cf::adopt(
            CGColorTransformConvertColor(transform.get(), color.get(), kCGRenderingIntentDefault)));
}
BENCHMARK(convertColor);

// The engine counts ink in per cent.
void convertLittleCMS(benchmark::State& state, bool makesObject) {
    const Bytes fromBytes = readProfile(kCMYK.from), toBytes = readProfile(kCMYK.to);
    const Profile from = open(fromBytes), to = open(toBytes);
    const Transform transform(cmsCreateTransform(from.get(), TYPE_CMYK_FLT, to.get(), TYPE_RGB_FLT,
                                                 INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE),
                              cmsDeleteTransform);
    const auto space = std::make_shared<const BareSpace>();
    std::array<float, 4> out = {0, 0, 0, 1};
    for (auto _ : state) {
        const std::array in = {100 * kInks[0], 100 * kInks[1], 100 * kInks[2], 100 * kInks[3]};
        cmsDoTransform(transform.get(), in.data(), out.data(), 1);
        if (makesObject)
            benchmark::DoNotOptimize(makeBare(space, out.data()));
        benchmark::DoNotOptimize(out);
    }
}
void convertComponentsLittleCMS(benchmark::State& state) {
    convertLittleCMS(state, false);
}
void convertColorLittleCMS(benchmark::State& state) {
    convertLittleCMS(state, true);
}
BENCHMARK(convertComponentsLittleCMS);
BENCHMARK(convertColorLittleCMS);

constexpr std::array<float, 4> kComponents = {0.1f, 0.2f, 0.3f, 1};

void colorCreation(benchmark::State& state) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    for (auto _ : state)
        benchmark::DoNotOptimize(cf::adopt(CGColorCreate(rgb.get(), kComponents.data())));
}
BENCHMARK(colorCreation);

void colorCreationBare(benchmark::State& state) {
    const auto space = std::make_shared<const BareSpace>();
    for (auto _ : state)
        benchmark::DoNotOptimize(makeBare(space, kComponents.data()));
}
BENCHMARK(colorCreationBare);

void colorEquality(benchmark::State& state) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    auto a = cf::adopt(CGColorCreate(rgb.get(), kComponents.data()));
    auto b = cf::adopt(CGColorCreate(rgb.get(), kComponents.data()));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(CGColorEqualToColor(a.get(), b.get()));
    }
}
BENCHMARK(colorEquality);

void colorEqualityBare(benchmark::State& state) {
    const auto space = std::make_shared<const BareSpace>();
    auto a = makeBare(space, kComponents.data()), b = makeBare(space, kComponents.data());
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(areEqual(a.get(), b.get()));
    }
}
BENCHMARK(colorEqualityBare);

} // namespace
