// CGColorConversionInfoDataTest.cpp: pixels of every layout through conversions.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Info = cf::Ref<CGColorConversionInfoRef>;
using Space = cf::Ref<CGColorSpaceRef>;
using Bytes = std::vector<unsigned char>;

constexpr CGBitmapInfo kLast = kCGImageAlphaLast,
                       kPremultipliedLast = kCGImageAlphaPremultipliedLast;
constexpr CGBitmapInfo kPremultipliedFirst = kCGImageAlphaPremultipliedFirst;
constexpr CGBitmapInfo kNone = kCGImageAlphaNone, kSkipFirst = kCGImageAlphaNoneSkipFirst;
constexpr CGBitmapInfo kLittle16 = kCGBitmapByteOrder16Little,
                       kLittle32 = kCGBitmapByteOrder32Little;
constexpr CGBitmapInfo kFloat = kCGBitmapFloatComponents;

CGColorBufferFormat format(CGBitmapInfo info, std::size_t bits, std::size_t bitsPerPixel,
                           std::size_t width = 1) {
    return {0, info, bits, bitsPerPixel, (width * bitsPerPixel + 7) / 8};
}

Bytes floats(std::initializer_list<float> values) {
    Bytes bytes(values.size() * sizeof(float));
    std::memcpy(bytes.data(), std::data(values), bytes.size());
    return bytes;
}

Space profile(const char* name) {
    std::ifstream file(std::string("/usr/share/color/icc/") + name, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
}

} // namespace

// Full red at an opacity of 0.4, which every width holds exactly, in every layout.
TEST(ColorConversionInfo, ConvertsEveryLayoutIntoEveryOther) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Info info = cf::adopt(CGColorConversionInfoCreate(rgb.get(), rgb.get()));
    const struct {
        const char* what;
        CGColorBufferFormat format;
        Bytes pixel;
        bool hasAlpha;
    } layouts[] = {
        {"RGBA", format(kLast, 8, 32), {255, 0, 0, 102}, true},
        {"premultiplied BGRA",
         format(kPremultipliedFirst | kLittle32, 8, 32),
         {0, 0, 102, 102},
         true},
        {"RGBA of 16 bits", format(kLast, 16, 64), {255, 255, 0, 0, 0, 0, 102, 102}, true},
        {"premultiplied ARGB of 16 bits, little",
         format(kPremultipliedFirst | kLittle16, 16, 64),
         {102, 102, 102, 102, 0, 0, 0, 0},
         true},
        {"floats", format(kLast | kFloat | kLittle32, 32, 128), floats({1, 0, 0, 0.4f}), true},
        {"premultiplied floats", format(kPremultipliedLast | kFloat | kLittle32, 32, 128),
         floats({0.4f, 0, 0, 0.4f}), true},
        {"RGB of 24 bits", format(kNone, 8, 24), {255, 0, 0}, false},
        {"XRGB", format(kSkipFirst, 8, 32), {255, 255, 0, 0}, false},
        {"five bits each, little", format(kSkipFirst | kLittle16, 5, 16), {0x00, 0xFC}, false},
    };
    for (const auto& from : layouts)
        for (const auto& to : layouts) {
            Bytes out(to.pixel.size(), 0xAA);
            ASSERT_TRUE(CGColorConversionInfoConvertData(info.get(), 1, 1, out.data(), to.format,
                                                         from.pixel.data(), from.format, nullptr))
                << from.what << " to " << to.what;
            if (from.hasAlpha || !to.hasAlpha)
                EXPECT_EQ(out, to.pixel) << from.what << " to " << to.what;
        }
}

TEST(ColorConversionInfo, ConvertsRowsAsAConverterDoes) {
    const Space adobe = profile("colord/AdobeRGB1998.icc"),
                wide = profile("colord/ProPhotoRGB.icc");
    const Space inks = profile("ghostscript/default_cmyk.icc");
    const Info info = cf::adopt(CGColorConversionInfoCreateFromList(
        nullptr, adobe.get(), kCGColorConversionTransformFromSpace, kCGRenderingIntentDefault,
        inks.get(), kCGColorConversionTransformApplySpace, kCGRenderingIntentRelativeColorimetric,
        wide.get(), kCGColorConversionTransformToSpace, kCGRenderingIntentPerceptual, nullptr));
    ASSERT_TRUE(info);
    constexpr std::size_t kWidth = 700, kHeight = 3, kRow = 3 * kWidth + 5;
    Bytes in(kRow * kHeight), between(4 * kWidth * kHeight), expected(in.size()), out(in.size());
    for (std::size_t at = 0; at < in.size(); ++at)
        in[at] = static_cast<unsigned char>(at * 37 + at / 11);
    const auto convert = [&](const Space& from, const Space& to, CGColorRenderingIntent intent,
                             const Bytes& source, std::size_t sourceRow, Bytes& result,
                             std::size_t resultRow) {
        const CGColorConverterFormat eight = {8, false};
        const auto converter =
            cf::adopt(CGColorConverterCreate(from.get(), &eight, to.get(), &eight, intent));
        return CGColorConverterConvertRows(converter.get(), source.data(), sourceRow, result.data(),
                                           resultRow, kWidth, kHeight);
    };
    ASSERT_TRUE(convert(adobe, inks, kCGRenderingIntentRelativeColorimetric, in, kRow, between,
                        4 * kWidth));
    ASSERT_TRUE(
        convert(inks, wide, kCGRenderingIntentPerceptual, between, 4 * kWidth, expected, kRow));
    const CGColorBufferFormat rows = {0, kNone, 8, 24, kRow};
    EXPECT_TRUE(CGColorConversionInfoConvertData(info.get(), kWidth, kHeight, out.data(), rows,
                                                 in.data(), rows, nullptr));
    EXPECT_EQ(out, expected);
}

TEST(ColorConversionInfo, RefusesFormatsThatAreNone) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const Info info = cf::adopt(CGColorConversionInfoCreate(rgb.get(), gray.get()));
    const CGColorBufferFormat in = format(kNone, 8, 24), out = format(kNone, 8, 8);
    const Bytes source = {51, 51, 51};
    const struct {
        const char* what;
        std::size_t width, height;
        CGColorBufferFormat out, in;
        bool converts;
    } cases[] = {
        {"gray of RGB", 1, 1, out, in, true},
        {"no rows", 1, 0, out, in, true},
        {"a row that is too short", 2, 1, out, in, false},
        {"a width beyond sizes", SIZE_MAX / 4, 1, out, in, false},
        {"a height beyond sizes", 1, SIZE_MAX / 2, out, in, false},
        {"another version", 1, 1, {1, kNone, 8, 8, 1}, in, false},
        {"opacity alone", 1, 1, format(kCGImageAlphaOnly, 8, 8), in, false},
        {"too few bits", 1, 1, out, format(kNone, 8, 16), false},
        {"pixels of half a byte", 1, 1, format(kNone, 4, 4), in, false},
        {"no bits", 1, 1, format(kNone, 0, 8), in, false},
    };
    for (const auto& [what, width, height, to, from, converts] : cases) {
        unsigned char pixel = 7;
        EXPECT_EQ(CGColorConversionInfoConvertData(info.get(), width, height, &pixel, to,
                                                   source.data(), from, nullptr),
                  converts)
            << what;
        EXPECT_EQ(pixel, converts && height > 0 ? 51 : 7) << what;
    }
}
