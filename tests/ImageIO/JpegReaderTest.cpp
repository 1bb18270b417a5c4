// JpegReaderTest.cpp: JPEG pixels, held against libjpeg's own reading.

#include "Sources.h"
#include "Support/BareCodecs.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

Bytes decodedByLibjpeg(const Bytes& file) {
    Bytes pixels;
    decodeJpeg(
        file,
        [](jpeg_decompress_struct& jpeg) {
            if (jpeg.num_components == 4)
                jpeg.out_color_space = JCS_CMYK;
        },
        [&](std::size_t size) {
            pixels.resize(size);
            return pixels.data();
        });
    return pixels;
}

// Red, green, blue of pixels that are stored blue first and padded.
Bytes withoutPadding(const Bytes& pixels) {
    Bytes result;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        result.insert(result.end(), {pixels[i + 2], pixels[i + 1], pixels[i]});
    return result;
}

TEST(JpegReader, GivesTheValuesOfLibjpeg) {
    const struct {
        const char* what;
        JpegFile file;
    } cases[] = {
        {"gray", {.components = 1, .sampling = 1}},
        {"colour, halved both ways", {}},
        {"colour, in full", {.sampling = 1}},
        {"colour, progressive", {.isProgressive = true}},
        {"colour, restarting", {.restartRows = 1}},
        {"colour, stored as RGB", {.sampling = 1, .storesColorsDirectly = true}},
        {"four inks", {.components = 4, .sampling = 1, .storesColorsDirectly = true}},
        {"four inks with differences", {.components = 4, .hasAdobeMarker = true}},
        {"one pixel", {.width = 1, .height = 1}},
        {"many rows", {.width = 33, .height = 200, .isProgressive = true}},
    };
    for (const auto& [what, description] : cases) {
        const Bytes file = makeJpeg(description);
        const Image image = imageOf(file);
        ASSERT_TRUE(image) << what;
        const Bytes pixels = pixelsOf(image.get());
        EXPECT_EQ(description.components == 3 ? withoutPadding(pixels) : pixels,
                  decodedByLibjpeg(file))
            << what;
    }
}

TEST(JpegReader, InvertsInksThatAdobeWrote) {
    for (const bool isAdobe : {false, true}) {
        const Image image = imageOf(makeJpeg({.components = 4,
                                              .sampling = 1,
                                              .storesColorsDirectly = true,
                                              .hasAdobeMarker = isAdobe}));
        const CGFloat* const decode = CGImageGetDecode(image.get());
        EXPECT_EQ(decode != nullptr, isAdobe);
        for (int i = 0; decode && i < 8; ++i)
            EXPECT_EQ(decode[i], i % 2 ? 0 : 1) << i;
        const CGColorSpaceRef space = CGImageGetColorSpace(image.get());
        EXPECT_EQ(CGColorSpaceGetModel(space), kCGColorSpaceModelCMYK);
    }
}

// The profile is cut into markers of less than 64 KiB, which may be out of order.
TEST(JpegReader, PutsTheProfileTogether) {
    const auto sRGB = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const auto profile = cf::adopt(CGColorSpaceCopyICCData(sRGB.get()));
    if (!profile)
        GTEST_SKIP() << "there is no sRGB profile";
    const UInt8* const bytes = CFDataGetBytePtr(profile.get());
    const auto half = std::size_t(CFDataGetLength(profile.get())) / 2;
    const auto size = std::size_t(CFDataGetLength(profile.get()));
    const Bytes file = makeJpeg({.addMarkers = [&](void* jpeg) {
        for (const int part : {2, 1}) {
            const std::size_t start = part == 1 ? 0 : half, end = part == 1 ? half : size;
            Bytes marker = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 0, 2};
            marker[12] = std::uint8_t(part);
            marker.insert(marker.end(), bytes + start, bytes + end);
            jpeg_write_marker(static_cast<j_compress_ptr>(jpeg), JPEG_APP0 + 2, marker.data(),
                              unsigned(marker.size()));
        }
    }});
    const Image image = imageOf(file);
    const auto found = cf::adopt(CGColorSpaceCopyICCData(CGImageGetColorSpace(image.get())));
    ASSERT_TRUE(found);
    EXPECT_TRUE(CFEqual(found.get(), profile.get()));
}

} // namespace
