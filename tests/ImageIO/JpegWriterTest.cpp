// JpegWriterTest.cpp: written JPEG files beside those that libjpeg writes on its own.

#include "Images.h"
#include "Support/BareCodecs.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

// The file that libjpeg makes of interleaved pixels.
Bytes bareJpeg(const Bytes& pixels, int components, int quality) {
    return encodeJpeg({pixels.data(), kWidth, kHeight, components},
                      [quality](jpeg_compress_struct& jpeg) {
                          jpeg_set_quality(&jpeg, quality, TRUE);
                          if (quality >= 90)
                              jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
                      });
}

cf::Ref<CFMutableDictionaryRef> quality(double value) {
    auto told = properties();
    CFDictionarySetValue(told.get(), kCGImageDestinationLossyCompressionQuality,
                         number(kCFNumberDoubleType, value).get());
    return told;
}

TEST(JpegWriter, WritesWhatLibjpegWrites) {
    const Space gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Space cmyk = cf::adopt(CGColorSpaceCreateDeviceCMYK());
    const struct {
        const char* what;
        CGColorSpaceRef space;
        int components;
        double quality;
        int percent;
    } cases[] = {
        {"gray", gray.get(), 1, 0.5, 50}, {"RGB", rgb.get(), 3, 0.5, 50},
        {"lowest", rgb.get(), 3, 0, 0},   {"highest", rgb.get(), 3, 1, 100},
        {"CMYK", cmyk.get(), 4, 0.8, 80}, {"out of range", rgb.get(), 3, 7, 75},
    };
    for (const auto& [what, space, components, asked, percent] : cases) {
        const Layout layout = {8, std::size_t(8 * components)};
        const Bytes bytes = randomBytes(rowBytes(layout) * kHeight);
        Bytes pixels = bytes;
        if (components == 4)
            for (std::uint8_t& ink : pixels)
                ink = std::uint8_t(255 - ink);
        const Image image = makeImage(layout, bytes, space);
        EXPECT_EQ(written(image.get(), kUTTypeJPEG, quality(asked).get()),
                  bareJpeg(pixels, components, percent))
            << what;
    }
}

TEST(JpegWriter, LaysOpacityOverTheBackground) {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Layout layout = {8, 32, kCGImageAlphaPremultipliedLast};
    Bytes bytes = randomBytes(rowBytes(layout) * kHeight);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = std::min(bytes[i], bytes[i | 3]);
    const CGFloat red[] = {1, 0, 0, 1};
    const auto color = cf::adopt(CGColorCreate(rgb.get(), red));
    const std::uint8_t backgrounds[][3] = {{255, 255, 255}, {255, 0, 0}};
    for (const bool isRed : {false, true}) {
        Bytes pixels;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            if (i % 4 != 3)
                pixels.push_back(std::uint8_t(
                    bytes[i] + (backgrounds[isRed][i % 4] * (255 - bytes[i | 3]) * 2 + 255) / 510));
        const auto told = quality(0.75);
        if (isRed)
            CFDictionarySetValue(told.get(), kCGImageDestinationBackgroundColor, color.get());
        EXPECT_EQ(written(makeImage(layout, bytes, rgb.get()).get(), kUTTypeJPEG, told.get()),
                  bareJpeg(pixels, 3, 75))
            << isRed;
    }
}

TEST(JpegWriter, SplitsALargeProfileAndSaysResolutionAndOrientation) {
    // A printing profile, too large for one marker.
    const auto url = cf::adopt(CFURLCreateWithFileSystemPath(
        nullptr, CFSTR("/usr/share/color/icc/ghostscript/default_cmyk.icc"), kCFURLPOSIXPathStyle,
        false));
    const auto provider = cf::adopt(CGDataProviderCreateWithURL(url.get()));
    const auto profile = cf::adopt(CGDataProviderCopyData(provider.get()));
    const Space space = cf::adopt(CGColorSpaceCreateWithICCData(profile.get()));
    ASSERT_TRUE(space);
    const Layout layout = {8, 32};
    const Bytes bytes = randomBytes(rowBytes(layout) * kHeight);
    const auto told = properties();
    CFDictionarySetValue(told.get(), kCGImagePropertyOrientation,
                         number(kCFNumberIntType, 8).get());
    const Bytes file =
        written(makeImage(layout, bytes, space.get()).get(), kUTTypeJPEG, told.get());
    ASSERT_FALSE(file.empty());

    jpeg_error_mgr errors;
    jpeg_decompress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_save_markers(&jpeg, JPEG_APP0 + 1, 0xFFFF);
    jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    JOCTET* found = nullptr;
    unsigned length = 0;
    EXPECT_TRUE(jpeg_read_icc_profile(&jpeg, &found, &length));
    EXPECT_EQ(Bytes(found, found + length),
              Bytes(CFDataGetBytePtr(profile.get()),
                    CFDataGetBytePtr(profile.get()) + CFDataGetLength(profile.get())));
    std::free(found);
    EXPECT_TRUE(jpeg.saw_Adobe_marker);
    const jpeg_marker_struct* exif = jpeg.marker_list;
    ASSERT_NE(exif, nullptr);
    EXPECT_EQ(exif->marker, JPEG_APP0 + 1);
    EXPECT_EQ(Bytes(exif->data, exif->data + 6), Bytes({'E', 'x', 'i', 'f', 0, 0}));
    EXPECT_EQ(exif->data[6 + 19], 8);
    jpeg_destroy_decompress(&jpeg);
}

} // namespace
