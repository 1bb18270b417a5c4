// BitmapInksTest.cpp: bitmaps of inks and of colour tables, and memory that the caller writes, too.

#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kSide = 24;
constexpr CGBitmapInfo kBGRX = kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little;

struct Mark {
    const char* what;
    void (*draw)(CGContextRef context);
};

const Mark kMarks[] = {
    {"opaque rectangle",
     [](CGContextRef c) {
         CGContextSetRGBFillColor(c, 1, 0.6f, 0.2f, 1);
         CGContextFillRect(c, CGRectMake(3, 2, 9, 13));
     }},
    {"soft ellipse",
     [](CGContextRef c) {
         CGContextSetRGBFillColor(c, 0.1f, 0.7f, 0.4f, 0.6f);
         CGContextFillEllipseInRect(c, CGRectMake(2.3f, 3.6f, 15, 11));
     }},
    {"group at half opacity",
     [](CGContextRef c) {
         CGContextSetAlpha(c, 0.5f);
         CGContextBeginTransparencyLayer(c, nullptr);
         CGContextSetGrayFillColor(c, 0, 1);
         CGContextFillRect(c, CGRectMake(2, 2, 10, 10));
         CGContextSetRGBFillColor(c, 1, 1, 0, 1);
         CGContextFillRect(c, CGRectMake(6, 6, 12, 12));
         CGContextEndTransparencyLayer(c);
     }},
    {"cleared", [](CGContextRef c) { CGContextClearRect(c, CGRectMake(4, 4, 7, 9)); }},
};

using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;

Bytes fileBytes(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What Little CMS makes of sRGB pixels in the profile's inks.
Bytes inksOf(const Bytes& profile, const Bytes& rgb) {
    const Profile from(cmsCreate_sRGBProfile(), cmsCloseProfile);
    const Profile to(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())),
        cmsCloseProfile);
    const auto transform = cmsCreateTransform(from.get(), TYPE_RGB_8, to.get(), TYPE_CMYK_8,
                                              INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE);
    Bytes inks(rgb.size() / 3 * 4);
    cmsDoTransform(transform, rgb.data(), inks.data(), cmsUInt32Number(rgb.size() / 3));
    cmsDeleteTransform(transform);
    return inks;
}

} // namespace

TEST(BitmapInks, AreWhatTheProfileMakesOfTheColorsDrawn) {
    const Bytes profile = fileBytes("/usr/share/color/icc/ghostscript/default_cmyk.icc");
    if (profile.empty())
        GTEST_SKIP() << "no profile of inks is installed (libgs-common)";
    const auto data =
        cf::adopt(CFDataCreate(nullptr, profile.data(), static_cast<CFIndex>(profile.size())));
    const auto space = cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
    const Bytes paper(kSide * kSide * 4, 9);
    for (const auto& [what, draw] : kMarks) {
        SCOPED_TRACE(what);
        Bytes bytes = paper;
        const auto context = cf::adopt(CGBitmapContextCreate(bytes.data(), kSide, kSide, 8, 0,
                                                             space.get(), kCGImageAlphaNone));
        ASSERT_TRUE(context);
        // Begins with the paper's colour as the library shows it.
        const auto native = test::makeContext(kSide, kSide, kBGRX);
        const auto picture = cf::adopt(CGBitmapContextCreateImage(context.get()));
        CGContextDrawImage(native.get(), CGRectMake(0, 0, kSide, kSide), picture.get());
        const auto* const pixels =
            static_cast<const std::uint8_t*>(CGBitmapContextGetData(native.get()));
        const Bytes start(pixels, pixels + kSide * kSide * 4);
        draw(context.get());
        draw(native.get());
        Bytes rgb;
        for (const auto* pixel = pixels; pixel < pixels + kSide * kSide * 4; pixel += 4)
            rgb.insert(rgb.end(), {pixel[2], pixel[1], pixel[0]});
        const Bytes inks = inksOf(profile, rgb);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool isTouched = std::memcmp(&pixels[i / 4 * 4], &start[i / 4 * 4], 3) != 0;
            // One step of red, green or blue, which is what gradients may round, is three of some
            // inks.
            ASSERT_NEAR(bytes[i], isTouched ? inks[i] : paper[i], isTouched ? 1 : 0)
                << "pixel " << i / 4 << " ink " << i % 4;
        }
    }
}

TEST(BitmapInks, OfTheirOwnSpaceArriveAsGiven) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceCMYK());
    Bytes bytes(16 * 4);
    const auto context =
        cf::adopt(CGBitmapContextCreate(bytes.data(), 4, 4, 8, 0, space.get(), kCGImageAlphaNone));
    ASSERT_TRUE(context);
    CGContextSetCMYKFillColor(context.get(), 0.2f, 0.4f, 0.6f, 0.8f, 1);
    CGContextFillRect(context.get(), CGRectMake(0, 3, 4, 1)); // All of the top row.
    CGContextSetCMYKFillColor(context.get(), 1, 0, 0.2f, 0, 1);
    CGContextFillEllipseInRect(context.get(), CGRectMake(-20, -40, 40, 41.5f));
    CGContextSetCMYKStrokeColor(context.get(), 0, 0, 0, 1, 1);
    CGContextStrokeRect(context.get(), CGRectMake(-5, 2.5f, 20, 20));
    EXPECT_EQ(Bytes(&bytes[4 * 4], &bytes[4 * 5]), (Bytes{0, 0, 0, 255})) << "stroke";
    EXPECT_EQ(Bytes(&bytes[13 * 4], &bytes[14 * 4]), (Bytes{255, 0, 51, 0})) << "path";
    EXPECT_EQ(Bytes(&bytes[0], &bytes[4]), (Bytes{51, 102, 153, 204})) << "rectangle";
}

TEST(BitmapIndices, AreThoseOfTheNearestColors) {
    const Bytes table = {0, 0, 0, 255, 0, 0, 0, 200, 0, 250, 250, 250, 120, 130, 140, 0, 0, 0};
    const auto space =
        cf::adopt(CGColorSpaceCreateIndexed(XGColorSpaceGetDeviceRGB(), 5, table.data()));
    std::mt19937 random(5);
    Bytes start(kSide * kSide);
    for (auto& index : start)
        index = static_cast<std::uint8_t>(random() % 6); // Two entries look the same.
    const auto distance = [&](std::uint8_t index, const std::uint8_t* bgr) {
        int sum = 0;
        for (std::size_t c = 0; c < 3; ++c)
            sum += (table[3u * index + c] - bgr[2 - c]) * (table[3u * index + c] - bgr[2 - c]);
        return sum;
    };
    for (const auto& [what, draw] : kMarks) {
        SCOPED_TRACE(what);
        Bytes bytes = start;
        const auto context = cf::adopt(CGBitmapContextCreate(bytes.data(), kSide, kSide, 8, 0,
                                                             space.get(), kCGImageAlphaNone));
        ASSERT_TRUE(context);
        Bytes native;
        for (const auto index : start)
            native.insert(native.end(),
                          {table[3u * index + 2], table[3u * index + 1], table[3u * index], 255});
        const Bytes nativeStart = native;
        const auto nativeContext = cf::adopt(CGBitmapContextCreate(
            native.data(), kSide, kSide, 8, 0, XGColorSpaceGetDeviceRGB(), kBGRX));
        draw(context.get());
        draw(nativeContext.get());
        for (std::size_t i = 0; i < kSide * kSide; ++i) {
            const auto* const drawn = &native[4 * i];
            if (std::memcmp(drawn, &nativeStart[4 * i], 3) == 0) {
                ASSERT_EQ(bytes[i], start[i]) << "untouched pixel " << i;
                continue;
            }
            int least = distance(0, drawn);
            for (std::uint8_t index = 1; index < 6; ++index)
                least = std::min(least, distance(index, drawn));
            ASSERT_LT(bytes[i], 6);
            ASSERT_EQ(distance(bytes[i], drawn), least) << "pixel " << i;
        }
    }
}

// ---- Memory that is somebody else's

TEST(BitmapFormats, SeeWhatTheCallerWritesBetweenMarks) {
    Bytes bytes(3 * 4, 0);
    const auto context = cf::adopt(CGBitmapContextCreate(
        bytes.data(), 4, 1, 8, 0, XGColorSpaceGetDeviceRGB(), kCGImageAlphaNone));
    const auto half = [&] {
        CGContextSetRGBFillColor(context.get(), 1, 1, 1, 0.5f);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
    };
    half();
    EXPECT_NEAR(bytes[0], 128, 1);
    bytes.assign(bytes.size(), 100);
    half();
    EXPECT_EQ(bytes[6], 100);
    EXPECT_NEAR(bytes[0], 178, 1);
}

TEST(BitmapFormats, GiveImagesThatStayAsTheyWereAndCanBeDrawn) {
    const struct {
        const char* what;
        bool isGray;
        std::size_t bitsPerComponent;
        CGBitmapInfo info;
        std::uint32_t untouched; // What zeroed memory shows as.
    } cases[] = {
        {"ABGR", false, 8, kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder32Little, 0},
        {"RGB", false, 8, kCGImageAlphaNone, 0xFF000000},
        {"5-6-5", false, 5, kCGImagePixelFormatRGB565 | kCGBitmapByteOrder16Little, 0xFF000000},
        {"1-5-5-5", false, 5, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder16Little, 0},
        {"16 bits", false, 16, kCGImageAlphaPremultipliedLast | kCGBitmapByteOrder16Little, 0},
        {"gray and alpha", true, 8, kCGImageAlphaPremultipliedLast, 0},
    };
    for (const auto& [what, isGray, bits, info, untouched] : cases) {
        SCOPED_TRACE(what);
        const auto space = isGray ? XGColorSpaceGetDeviceGray() : XGColorSpaceGetDeviceRGB();
        const auto context = cf::adopt(CGBitmapContextCreate(nullptr, 2, 2, bits, 0, space, info));
        CGContextSetGrayFillColor(context.get(), 1, 1);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
        const auto image = cf::adopt(CGBitmapContextCreateImage(context.get()));
        CGContextSetGrayFillColor(context.get(), 0, 1);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 2));

        const auto shown = test::makeContext(2, 2);
        CGContextDrawImage(shown.get(), CGRectMake(0, 0, 2, 2), image.get());
        const auto* const pixels =
            static_cast<const std::uint32_t*>(CGBitmapContextGetData(shown.get()));
        EXPECT_EQ(pixels[2], 0xFFFFFFFF);
        EXPECT_EQ(pixels[0], untouched);
    }
}
