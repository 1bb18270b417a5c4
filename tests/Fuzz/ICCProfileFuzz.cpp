// ICCProfileFuzz.cpp: profiles of any bytes; colours and rows go into sRGB and back.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using Space = cf::Ref<CGColorSpaceRef>;

constexpr std::size_t kPixels = 16;
constexpr std::size_t kMostComponents = 5;

void require(bool condition) {
    if (!condition)
        std::abort();
}

void convertRow(CGColorSpaceRef from, CGColorSpaceRef to, std::uint32_t bits) {
    const CGColorConverterFormat format = {bits, true};
    const auto converter =
        cf::adopt(CGColorConverterCreate(from, &format, to, &format, kCGRenderingIntentDefault));
    if (!converter)
        return;
    // Bytes that make every kind of float, among them such as are no numbers.
    std::array<std::uint32_t, kPixels*kMostComponents> in = {}, out = {};
    for (std::size_t index = 0; index < in.size(); ++index)
        in[index] = static_cast<std::uint32_t>(index) * 0x3F9E3779u;
    require(CGColorConverterConvertRows(converter.get(), in.data(), sizeof in, out.data(),
                                        sizeof out, kPixels, 1));
}

void convertColor(CGColorSpaceRef from, CGColorSpaceRef to) {
    const auto transform = cf::adopt(CGColorTransformCreate(to, nullptr));
    const std::array<CGFloat, kMostComponents> components = {0.25f, 0.5f, 0.75f, 0.125f, 1};
    const auto color = cf::adopt(CGColorCreate(from, components.data()));
    const auto converted = cf::adopt(CGColorTransformConvertColor(
        transform.get(), color.get(), kCGRenderingIntentRelativeColorimetric));
    require(!converted || CGColorGetNumberOfComponents(converted.get()) ==
                              CGColorSpaceGetNumberOfComponents(to) + 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes, static_cast<CFIndex>(size)));
    const Space space = cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
    if (!space)
        return 0;
    static const CGColorSpaceRef standard = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    // The bytes choose a format. Integers on the way back are rare: the engine prepares them with a
    // grid over all of RGB, which takes a thousand times as long as the rest.
    std::uint32_t choice = 0;
    for (std::size_t index = 0; index < size; ++index)
        choice = choice * 31 + bytes[index];
    constexpr std::array<std::uint32_t, 3> kBits = {8, 16, 32};
    convertRow(space.get(), standard, kBits[choice % kBits.size()]);
    convertRow(standard, space.get(), choice % 64 == 0 ? kBits[choice / 64 % kBits.size()] : 32);
    convertColor(space.get(), standard);
    convertColor(standard, space.get());
    return 0;
}
