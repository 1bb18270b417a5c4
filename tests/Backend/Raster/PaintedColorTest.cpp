// PaintedColorTest.cpp: colours of profiles painted into bitmaps.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

using Space = cf::Ref<CGColorSpaceRef>;
using Bytes = std::vector<unsigned char>;
using RGB = std::array<int, 3>;
using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;

// Nothing for no name, which is the device.
Bytes readProfile(const std::string& name) {
    if (name.empty())
        return {};
    std::ifstream file("/usr/share/color/icc/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Space spaceOf(const std::string& name) {
    if (name.empty())
        return cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Bytes bytes = readProfile(name);
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
}

// A pixel of a bitmap of the space after `draw`.
template <typename Draw>
RGB painted(CGColorSpaceRef space, Draw&& draw) {
    std::array<unsigned char, 4> pixel = {};
    const auto context =
        cf::adopt(CGBitmapContextCreate(pixel.data(), 1, 1, 8, 4, space, test::kBGRA));
    draw(context.get());
    return {pixel[2], pixel[1], pixel[0]};
}

void fill(CGContextRef context, CGColorRef color) {
    CGContextSetFillColorWithColor(context, color);
    CGContextFillRect(context, CGRectMake(0, 0, 1, 1));
}

void drawGradient(CGContextRef context, CGColorRef color) {
    const void* colors[] = {color, color};
    const auto array = cf::adopt(CFArrayCreate(nullptr, colors, 2, &kCFTypeArrayCallBacks));
    const auto gradient =
        cf::adopt(CGGradientCreateWithColors(CGColorGetColorSpace(color), array.get(), nullptr));
    CGContextDrawLinearGradient(context, gradient.get(), {0, 0}, {1, 0},
                                kCGGradientDrawsAfterEndLocation);
}

void drawImage(CGContextRef context, CGColorRef color) {
    const std::size_t count = CGColorGetNumberOfComponents(color) - 1;
    std::array<unsigned char, 4> bytes = {};
    for (std::size_t index = 0; index < count; ++index)
        bytes[index] = static_cast<unsigned char>(CGColorGetComponents(color)[index] * 255 + 0.5f);
    const auto data = cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(count)));
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    const auto image = cf::adopt(CGImageCreate(
        1, 1, 8, 8 * count, count, CGColorGetColorSpace(color), CGBitmapInfo{kCGImageAlphaNone},
        provider.get(), nullptr, false, kCGRenderingIntentDefault));
    CGContextDrawImage(context, CGRectMake(0, 0, 1, 1), image.get());
}

// The device shows as sRGB does. The bytes are to outlive the profile.
Profile open(const Bytes& bytes) {
    return {bytes.empty()
                ? cmsCreate_sRGBProfile()
                : cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())),
            cmsCloseProfile};
}

// What the engine makes of the colour by itself, in 8 bits.
RGB byLittleCMS(const std::string& from, const std::string& to, CGColorRef color) {
    const Bytes fromBytes = readProfile(from), toBytes = readProfile(to);
    const Profile source = open(fromBytes), destination = open(toBytes);
    const bool isGray = CGColorGetNumberOfComponents(color) == 2;
    const std::unique_ptr<void, decltype(&cmsDeleteTransform)> transform(
        cmsCreateTransform(source.get(), isGray ? TYPE_GRAY_FLT : TYPE_RGB_FLT, destination.get(),
                           TYPE_RGB_FLT, INTENT_PERCEPTUAL, 0),
        cmsDeleteTransform);
    std::array<float, 3> out = {};
    cmsDoTransform(transform.get(), CGColorGetComponents(color), out.data(), 1);
    RGB rounded;
    for (std::size_t index = 0; index < out.size(); ++index)
        rounded[index] = static_cast<int>(std::lround(std::clamp(out[index], 0.f, 1.f) * 255));
    return rounded;
}

int distance(const RGB& a, const RGB& b) {
    int most = 0;
    for (std::size_t index = 0; index < a.size(); ++index)
        most = std::max(most, std::abs(a[index] - b[index]));
    return most;
}

} // namespace

TEST(PaintedColor, LooksAsAnImageInItsSpaceDoes) {
    const struct {
        const char* what;
        std::string from, to;
        bool changes;
    } cases[] = {
        {"a wider gamut on the device", "colord/AdobeRGB1998.icc", "", true},
        {"red and green exchanged", "colord/SwappedRedAndGreen.icc", "", true},
        {"gray of another curve", "Gray-CIE_L.icc", "", true},
        {"one profile in another", "colord/AdobeRGB1998.icc", "colord/ProPhotoRGB.icc", true},
        {"sRGB by another name", "colord/sRGB.icc", "", false},
        {"the same profile", "colord/AdobeRGB1998.icc", "colord/AdobeRGB1998.icc", false},
        {"the device's own numbers", "", "colord/AdobeRGB1998.icc", false},
    };
    for (const auto& [what, from, to, changes] : cases) {
        const Space source = spaceOf(from), destination = spaceOf(to);
        ASSERT_TRUE(source && destination) << what;
        const bool isGray = CGColorSpaceGetNumberOfComponents(source.get()) == 1;
        const std::array<CGFloat, 4> components = {0.4f, isGray ? 1 : 0.8f, 0.2f, 1};
        const auto color = cf::adopt(CGColorCreate(source.get(), components.data()));
        const RGB raw = isGray ? RGB{102, 102, 102} : RGB{102, 204, 51};
        const RGB expected = changes ? byLittleCMS(from, to, color.get()) : raw;

        const auto in = [&](auto draw) {
            return painted(destination.get(), [&](CGContextRef c) { draw(c, color.get()); });
        };
        EXPECT_LE(distance(in(fill), expected), 1) << what;
        EXPECT_LE(distance(in(drawGradient), expected), 1) << what;
        EXPECT_LE(distance(in(drawImage), expected), 2) << what;
        EXPECT_EQ(distance(expected, raw) > 2, changes) << what;
    }
}

// Colours of two profiles are equal by their numbers, not by what they show.
TEST(PaintedColor, IsConvertedAgainForAnotherProfile) {
    const Space adobe = spaceOf("colord/AdobeRGB1998.icc"), device = spaceOf("");
    const Space swapped = spaceOf("colord/SwappedRedAndGreen.icc");
    const std::array<CGFloat, 4> components = {0.4f, 0.8f, 0.2f, 1};
    RGB last = {};
    for (const Space& space : {adobe, device, swapped}) {
        const auto color = cf::adopt(CGColorCreate(space.get(), components.data()));
        const RGB alone = painted(device.get(), [&](CGContextRef c) { fill(c, color.get()); });
        const RGB after = painted(device.get(), [&](CGContextRef c) {
            CGContextSetRGBFillColor(c, 0.4f, 0.8f, 0.2f, 1);
            CGContextFillRect(c, CGRectMake(0, 0, 1, 1));
            fill(c, color.get());
        });
        EXPECT_EQ(alone, after);
        EXPECT_NE(alone, last);
        last = alone;
    }
}
