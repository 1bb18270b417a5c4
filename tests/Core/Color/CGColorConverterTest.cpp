// CGColorConverterTest.cpp: rows and colours in other spaces, beside Little CMS called directly.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/FailingAllocator.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <array>
#include <atomic>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Converter = cf::Ref<CGColorConverterRef>;
using Space = cf::Ref<CGColorSpaceRef>;
using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Bytes = std::vector<unsigned char>;

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Space spaceOf(const Bytes& profile) {
    const auto data =
        cf::adopt(CFDataCreate(nullptr, profile.data(), static_cast<CFIndex>(profile.size())));
    return cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
}

// An installed profile, as a space of ours and as Little CMS opens it.
struct Installed {
    Bytes bytes;
    Space space;
    Profile native{nullptr, cmsCloseProfile};
    cmsUInt32Number model = 0;
    cmsUInt32Number channels = 0;

    explicit Installed(const char* name)
        : bytes(readFile(std::string("/usr/share/color/icc/") + name)) {
        space = spaceOf(bytes);
        native.reset(
            cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
        if (native) {
            model =
                static_cast<cmsUInt32Number>(_cmsLCMScolorSpace(cmsGetColorSpace(native.get())));
            channels = cmsChannelsOf(cmsGetColorSpace(native.get()));
        }
    }
};

constexpr const char* kProfiles[] = {"colord/AdobeRGB1998.icc", "colord/ProPhotoRGB.icc",
                                     "ghostscript/ps_gray.icc", "ghostscript/default_cmyk.icc",
                                     "ghostscript/lab.icc"};

cmsUInt32Number nativeFormat(const Installed& side, const CGColorConverterFormat& format) {
    return FLOAT_SH(format.bitsPerComponent == 32 ? 1u : 0u) | COLORSPACE_SH(side.model) |
           EXTRA_SH(format.hasAlpha ? 1u : 0u) | CHANNELS_SH(side.channels) |
           BYTES_SH(format.bitsPerComponent / 8);
}

std::size_t pixelBytes(const Installed& side, const CGColorConverterFormat& format) {
    return (side.channels + format.hasAlpha) * format.bitsPerComponent / 8;
}

constexpr std::size_t kPixels = 300;

Bytes randomRow(const Installed& side, const CGColorConverterFormat& format) {
    std::mt19937 random(7);
    Bytes row(kPixels * pixelBytes(side, format));
    for (auto& byte : row)
        byte = static_cast<unsigned char>(random());
    if (format.bitsPerComponent == 32) {
        std::uniform_real_distribution<float> unit(0, 1);
        for (std::size_t at = 0; at < row.size(); at += sizeof(float)) {
            const float value = unit(random);
            std::memcpy(&row[at], &value, sizeof value);
        }
    }
    return row;
}

// Floats of ink are per cent to Little CMS.
void scaleInk(const Installed& side, const CGColorConverterFormat& format, Bytes& row,
              float factor) {
    if (side.model != PT_CMYK || format.bitsPerComponent != 32)
        return;
    const std::size_t step = side.channels + format.hasAlpha;
    for (std::size_t index = 0; index < row.size() / sizeof(float); ++index) {
        float value;
        std::memcpy(&value, &row[index * sizeof value], sizeof value);
        if (index % step < side.channels)
            value *= factor;
        std::memcpy(&row[index * sizeof value], &value, sizeof value);
    }
}

Bytes convertedByLittleCMS(const Installed& from, const CGColorConverterFormat& fromFormat,
                           const Installed& to, const CGColorConverterFormat& toFormat,
                           cmsUInt32Number intent, Bytes row) {
    scaleInk(from, fromFormat, row, 100);
    Bytes out(kPixels * pixelBytes(to, toFormat));
    const std::unique_ptr<void, decltype(&cmsDeleteTransform)> transform(
        cmsCreateTransform(from.native.get(), nativeFormat(from, fromFormat), to.native.get(),
                           nativeFormat(to, toFormat), intent,
                           fromFormat.hasAlpha ? cmsFLAGS_COPY_ALPHA : 0u),
        cmsDeleteTransform);
    if (!transform)
        return {};
    cmsDoTransform(transform.get(), row.data(), out.data(), kPixels);
    scaleInk(to, toFormat, out, 0.01f);
    return out;
}

Bytes convertedByUs(const Installed& from, const CGColorConverterFormat& fromFormat,
                    const Installed& to, const CGColorConverterFormat& toFormat,
                    CGColorRenderingIntent intent, const Bytes& row) {
    const Converter converter = cf::adopt(
        CGColorConverterCreate(from.space.get(), &fromFormat, to.space.get(), &toFormat, intent));
    Bytes out(kPixels * pixelBytes(to, toFormat));
    const bool done = CGColorConverterConvertRows(converter.get(), row.data(), row.size(),
                                                  out.data(), out.size(), kPixels, 1);
    return done ? out : Bytes{};
}

std::vector<Installed> installedProfiles() {
    std::vector<Installed> profiles;
    for (const char* name : kProfiles) {
        profiles.emplace_back(name);
        EXPECT_TRUE(profiles.back().space && profiles.back().native) << name;
    }
    return profiles;
}

TEST(ColorConverter, EqualsLittleCMSBetweenProfiles) {
    const auto profiles = installedProfiles();
    const struct {
        CGColorRenderingIntent ours;
        cmsUInt32Number native;
    } intents[] = {{kCGRenderingIntentPerceptual, INTENT_PERCEPTUAL},
                   {kCGRenderingIntentAbsoluteColorimetric, INTENT_ABSOLUTE_COLORIMETRIC},
                   {kCGRenderingIntentRelativeColorimetric, INTENT_RELATIVE_COLORIMETRIC},
                   {kCGRenderingIntentSaturation, INTENT_SATURATION}};
    const CGColorConverterFormat formats[] = {{8, true}, {16, true}, {32, false}};
    for (const Installed& from : profiles)
        for (const Installed& to : profiles)
            for (const auto& [ours, native] : intents)
                for (const auto& format : formats) {
                    if (&from == &to)
                        continue;
                    const Bytes row = randomRow(from, format);
                    const Bytes expected =
                        convertedByLittleCMS(from, format, to, format, native, row);
                    ASSERT_FALSE(expected.empty());
                    EXPECT_EQ(convertedByUs(from, format, to, format, ours, row), expected)
                        << kProfiles[&from - profiles.data()] << " to "
                        << kProfiles[&to - profiles.data()] << ", intent " << native << ", "
                        << format.bitsPerComponent << " bits";
                }
}

TEST(ColorConverter, ConvertsDeviceSpacesDirectly) {
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Space named = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const Installed standard("colord/sRGB.icc");
    const struct {
        const char* what;
        CGColorSpaceRef from, to;
        bool inAlpha, outAlpha;
        Bytes in, out;
    } cases[] = {
        {"gray is replicated", gray.get(), rgb.get(), false, true, {7}, {7, 7, 7, 255}},
        {"opacity passes", gray.get(), named.get(), true, true, {7, 9}, {7, 7, 7, 9}},
        {"gray RGB stays as bright", rgb.get(), gray.get(), false, false, {99, 99, 99}, {99}},
        {"green is the brightest", named.get(), gray.get(), false, false, {0, 255, 0}, {182}},
        {"the name changes nothing", named.get(), rgb.get(), true, false, {1, 2, 3, 4}, {1, 2, 3}},
        {"an sRGB profile is sRGB",
         standard.space.get(),
         named.get(),
         false,
         false,
         {1, 2, 3},
         {1, 2, 3}},
    };
    for (const auto& [what, from, to, inAlpha, outAlpha, in, out] : cases) {
        const CGColorConverterFormat inFormat = {8, inAlpha};
        const CGColorConverterFormat outFormat = {8, outAlpha};
        const Converter converter = cf::adopt(
            CGColorConverterCreate(from, &inFormat, to, &outFormat, kCGRenderingIntentDefault));
        Bytes result(out.size());
        EXPECT_TRUE(CGColorConverterConvertRows(converter.get(), in.data(), in.size(),
                                                result.data(), result.size(), 1, 1))
            << what;
        EXPECT_EQ(result, out) << what;
    }
}

TEST(ColorConverter, TypesRoundToTheNearestValue) {
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const auto convert = [&](std::uint32_t inBits, const void* in, std::uint32_t outBits, void* out,
                             std::size_t count) {
        const CGColorConverterFormat from = {inBits, false}, to = {outBits, false};
        const Converter converter = cf::adopt(
            CGColorConverterCreate(gray.get(), &from, gray.get(), &to, kCGRenderingIntentDefault));
        return CGColorConverterConvertRows(converter.get(), in, count * inBits / 8, out,
                                           count * outBits / 8, count, 1);
    };
    std::vector<std::uint16_t> words(65536);
    for (std::size_t index = 0; index < words.size(); ++index)
        words[index] = static_cast<std::uint16_t>(index);
    std::vector<std::uint8_t> bytes(words.size());
    ASSERT_TRUE(convert(16, words.data(), 8, bytes.data(), words.size()));
    for (std::size_t index = 0; index < words.size(); ++index)
        ASSERT_EQ(bytes[index], std::lround(static_cast<double>(index) / 257)) << index;
    std::vector<float> floats(words.size());
    ASSERT_TRUE(convert(16, words.data(), 32, floats.data(), words.size()));
    std::vector<std::uint16_t> back(words.size());
    ASSERT_TRUE(convert(32, floats.data(), 16, back.data(), words.size()));
    EXPECT_EQ(back, words);
    const std::array<float, 4> wild = {-1, 2, std::numeric_limits<float>::quiet_NaN(),
                                       std::numeric_limits<float>::infinity()};
    std::array<std::uint8_t, 4> tamed;
    ASSERT_TRUE(convert(32, wild.data(), 8, tamed.data(), wild.size()));
    EXPECT_EQ(tamed, (std::array<std::uint8_t, 4>{0, 255, 0, 255}));
}

TEST(ColorConverter, RefusesWhatCannotBe) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const unsigned char table[6] = {};
    const Space indexed = cf::adopt(CGColorSpaceCreateIndexed(rgb.get(), 1, table));
    const CGColorConverterFormat eight = {8, false}, twelve = {12, false};
    const auto create = [&](CGColorSpaceRef from, const CGColorConverterFormat& format) {
        return cf::adopt(
            CGColorConverterCreate(from, &format, rgb.get(), &eight, kCGRenderingIntentDefault));
    };
    EXPECT_FALSE(create(indexed.get(), eight)) << "an indexed space";
    EXPECT_FALSE(create(rgb.get(), twelve)) << "12 bits";
    const Converter converter = create(rgb.get(), eight);
    Bytes row(6), other(6);
    const auto fits = [&](std::size_t rowBytes, std::size_t width, std::size_t height) {
        return CGColorConverterConvertRows(converter.get(), row.data(), rowBytes, other.data(),
                                           rowBytes, width, height);
    };
    EXPECT_FALSE(fits(5, 2, 1)) << "a row too short";
    EXPECT_FALSE(fits(6, SIZE_MAX / 2, 1)) << "a width beyond sizes";
    EXPECT_FALSE(fits(SIZE_MAX / 2, 2, 3)) << "a height beyond sizes";
}

// ---- Three inks

using Pipeline = std::unique_ptr<cmsPipeline, decltype(&cmsPipelineFree)>;

// Between Lab and inks by a table of eight bits' precision: what is not cyan is red, and so on.
Bytes makeProfileOfThreeInks() {
    const Profile made(cmsCreateProfilePlaceholder(nullptr), cmsCloseProfile);
    cmsSetProfileVersion(made.get(), 2.1);
    cmsSetDeviceClass(made.get(), cmsSigOutputClass);
    cmsSetColorSpace(made.get(), cmsSigCmyData);
    cmsSetPCS(made.get(), cmsSigLabData);
    const Profile lab(cmsCreateLab2Profile(nullptr), cmsCloseProfile);
    const Profile rgb(cmsCreate_sRGBProfile(), cmsCloseProfile);
    const auto addTable = [&](cmsTagSignature tag, void* from, void* to, bool intoInks) {
        const std::unique_ptr<void, decltype(&cmsDeleteTransform)> transform(
            cmsCreateTransform(from, intoInks ? TYPE_Lab_16 : TYPE_RGB_16, to,
                               intoInks ? TYPE_RGB_16 : TYPE_Lab_16, INTENT_PERCEPTUAL,
                               cmsFLAGS_NOOPTIMIZE),
            cmsDeleteTransform);
        struct Sampling {
            void* transform;
            bool intoInks;
        } sampling = {transform.get(), intoInks};
        const Pipeline pipeline(cmsPipelineAlloc(nullptr, 3, 3), cmsPipelineFree);
        cmsStage* const table = cmsStageAllocCLut16bit(nullptr, 33, 3, 3, nullptr);
        cmsStageSampleCLut16bit(
            table,
            [](const cmsUInt16Number* in, cmsUInt16Number* out, void* cargo) -> cmsInt32Number {
                const auto& [native, toInks] = *static_cast<const Sampling*>(cargo);
                std::array<cmsUInt16Number, 3> color = {in[0], in[1], in[2]};
                const auto exchange = [](cmsUInt16Number& value) {
                    value = static_cast<cmsUInt16Number>(0xFFFF - value);
                };
                if (!toInks)
                    std::for_each(color.begin(), color.end(), exchange);
                cmsDoTransform(native, color.data(), out, 1);
                if (toInks)
                    std::for_each(out, out + 3, exchange);
                return true;
            },
            &sampling, 0);
        cmsPipelineInsertStage(pipeline.get(), cmsAT_BEGIN, table);
        cmsWriteTag(made.get(), tag, pipeline.get());
    };
    addTable(cmsSigAToB0Tag, rgb.get(), lab.get(), false);
    addTable(cmsSigBToA0Tag, lab.get(), rgb.get(), true);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(made.get(), nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(made.get(), bytes.data(), &size);
    return bytes;
}

TEST(ColorConverter, MixesBlackOfThreeInks) {
    const Space inks = spaceOf(makeProfileOfThreeInks());
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    ASSERT_TRUE(inks);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(inks.get()), 4u);
    const struct {
        const char* what;
        std::array<float, 4> inks;
        std::array<float, 3> rgb;
    } cases[] = {
        {"paper", {0, 0, 0, 0}, {1, 1, 1}},
        {"two inks", {0, 1, 1, 0}, {1, 0, 0}},
        {"black alone", {0, 0, 0, 0.5f}, {0.5f, 0.5f, 0.5f}},
        {"black over an ink", {0.25f, 0, 0, 0.5f}, {0.25f, 0.5f, 0.5f}},
        {"more than all of the ink", {0.75f, 0.25f, 0, 0.75f}, {0, 0, 0.25f}},
    };
    for (const std::uint32_t bits : {8u, 16u, 32u}) {
        const CGColorConverterFormat format = {bits, true};
        const Converter there = cf::adopt(CGColorConverterCreate(
            inks.get(), &format, rgb.get(), &format, kCGRenderingIntentDefault));
        const Converter back = cf::adopt(CGColorConverterCreate(
            rgb.get(), &format, inks.get(), &format, kCGRenderingIntentDefault));
        ASSERT_TRUE(there && back) << bits;
        // Through floats and back, so that one table serves all widths.
        const auto toBits = [bits](float value, std::byte* to) {
            const auto eight = static_cast<std::uint8_t>(value * 255 + 0.5f);
            const auto sixteen = static_cast<std::uint16_t>(value * 65535 + 0.5f);
            bits == 8    ? std::memcpy(to, &eight, 1)
            : bits == 16 ? std::memcpy(to, &sixteen, 2)
                         : std::memcpy(to, &value, 4);
        };
        const auto fromBits = [bits](const std::byte* from) {
            std::uint8_t eight = 0;
            std::uint16_t sixteen = 0;
            float value = 0;
            bits == 8    ? std::memcpy(&eight, from, 1)
            : bits == 16 ? std::memcpy(&sixteen, from, 2)
                         : std::memcpy(&value, from, 4);
            return bits == 8 ? eight / 255.f : bits == 16 ? sixteen / 65535.f : value;
        };
        const std::size_t step = bits / 8;
        for (const auto& [what, in, expected] : cases) {
            alignas(float) std::array<std::byte, 20> source = {}, colors = {}, again = {};
            for (std::size_t index = 0; index < 4; ++index)
                toBits(in[index], &source[index * step]);
            toBits(0.5f, &source[4 * step]);
            ASSERT_TRUE(CGColorConverterConvertRows(there.get(), source.data(), 5 * step,
                                                    colors.data(), 4 * step, 1, 1));
            ASSERT_TRUE(CGColorConverterConvertRows(back.get(), colors.data(), 4 * step,
                                                    again.data(), 5 * step, 1, 1));
            for (std::size_t index = 0; index < 3; ++index) {
                EXPECT_NEAR(fromBits(&colors[index * step]), expected[index], 0.03f)
                    << what << ", " << bits << " bits";
                EXPECT_NEAR(fromBits(&again[index * step]), 1 - expected[index], 0.05f)
                    << what << ", " << bits << " bits, and back";
            }
            EXPECT_EQ(fromBits(&again[3 * step]), 0) << what;
            EXPECT_NEAR(fromBits(&again[4 * step]), 0.5f, 0.01f) << what;
        }
    }
}

TEST(ColorConverter, ThreadsShareTransformsOfManyPairs) {
    const auto profiles = installedProfiles();
    const CGColorConverterFormat format = {8, true};
    std::vector<Bytes> expected;
    const auto each = [&](auto&& visit) {
        for (const Installed& from : profiles)
            for (const Installed& to : profiles)
                if (&from != &to)
                    visit(from, to);
    };
    each([&](const Installed& from, const Installed& to) {
        expected.push_back(convertedByLittleCMS(from, format, to, format, INTENT_PERCEPTUAL,
                                                randomRow(from, format)));
    });
    std::atomic<int> mismatches = 0;
    test::onThreads([&](std::size_t) {
        for (int round = 0; round < 2; ++round) {
            std::size_t index = 0;
            each([&](const Installed& from, const Installed& to) {
                mismatches += convertedByUs(from, format, to, format, kCGRenderingIntentDefault,
                                            randomRow(from, format)) != expected[index++];
            });
        }
    });
    EXPECT_EQ(mismatches, 0);
}

// The engine itself does not survive that memory runs out while it prepares a transform.
TEST(ColorConverter, WithoutMemoryThereIsNoneOrAWholeOne) {
    const struct {
        const char* what;
        const char* from;
        const char* to;
        std::size_t channels;
    } cases[] = {{"matrices", "colord/AdobeRGB1998.icc", "colord/ProPhotoRGB.icc", 3},
                 {"tables", "Gray-CIE_L.icc", "ghostscript/lab.icc", 1}};
    // A table that could not be made is done without, which is more exact.
    constexpr int kUnoptimized = 8;
    for (const auto& [what, from, to, channels] : cases) {
        const Installed source(from), destination(to);
        const CGColorConverterFormat format = {8, false};
        const Bytes row = {10, 120, 230, 40};
        const auto convert = [&, channels = channels](Bytes& out) {
            const Space fromSpace = spaceOf(source.bytes), toSpace = spaceOf(destination.bytes);
            const Converter converter = cf::adopt(CGColorConverterCreate(
                fromSpace.get(), &format, toSpace.get(), &format, kCGRenderingIntentDefault));
            return converter && CGColorConverterConvertRows(converter.get(), row.data(), channels,
                                                            out.data(), 3, 1, 1);
        };
        Bytes expected(3), out(3);
        ASSERT_TRUE(convert(expected)) << what;
        std::size_t wrong = 0, made = 0;
        const auto sweep = test::failEachAllocation([&] {
            if (!convert(out))
                return;
            ++made;
            for (std::size_t index = 0; index < out.size(); ++index)
                wrong += std::abs(out[index] - expected[index]) > kUnoptimized;
        });
        EXPECT_GT(sweep.failures, 3u) << what;
        EXPECT_GT(made, 0u) << what;
        EXPECT_EQ(wrong, 0u) << what;
    }
}

TEST(ColorTransform, EqualsXGColorAndKeepsOutputWhenThereIsNoWay) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Space pattern = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    const auto transform = cf::adopt(CGColorTransformCreate(rgb.get(), nullptr));
    EXPECT_EQ(CGColorTransformGetColorSpace(transform.get()), rgb.get());
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    std::array<CGFloat, 3> components = {0.25f, 9, 9};
    EXPECT_TRUE(CGColorTransformConvertColorComponents(transform.get(), gray.get(),
                                                       kCGRenderingIntentDefault, components.data(),
                                                       components.data()));
    EXPECT_EQ(components, (std::array<CGFloat, 3>{0.25f, 0.25f, 0.25f}));
    EXPECT_FALSE(CGColorTransformConvertColorComponents(transform.get(), pattern.get(),
                                                        kCGRenderingIntentDefault,
                                                        components.data(), components.data()));
    EXPECT_EQ(components[0], 0.25f);
}

TEST(ColorConversionInfo, TakesAListOfSpacesFromAFirstOne) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const Space pattern = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    EXPECT_TRUE(cf::adopt(CGColorConversionInfoCreate(rgb.get(), gray.get())));
    EXPECT_FALSE(cf::adopt(CGColorConversionInfoCreate(rgb.get(), pattern.get())));
    const auto list = [&](CGColorConversionInfoTransformType first,
                          CGColorConversionInfoTransformType second, CGColorSpaceRef end) {
        return static_cast<bool>(cf::adopt(CGColorConversionInfoCreateFromList(
            nullptr, rgb.get(), first, kCGRenderingIntentDefault, end, second,
            kCGRenderingIntentDefault, nullptr)));
    };
    EXPECT_TRUE(
        list(kCGColorConversionTransformFromSpace, kCGColorConversionTransformToSpace, gray.get()));
    EXPECT_FALSE(
        list(kCGColorConversionTransformToSpace, kCGColorConversionTransformToSpace, gray.get()));
    EXPECT_FALSE(list(kCGColorConversionTransformFromSpace, kCGColorConversionTransformFromSpace,
                      gray.get()));
    EXPECT_FALSE(
        list(kCGColorConversionTransformFromSpace, kCGColorConversionTransformToSpace, nullptr));
}

} // namespace
