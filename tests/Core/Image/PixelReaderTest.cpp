// PixelReaderTest.cpp: decode arrays, tables, masks, colours and missing bytes, in small pictures.

#include "XGColorSpace.h"
#include "XGImage.h"
#include "XGImageOrientation.h"

#include "Core/Image/CGImageRecord.h"
#include "PixelImages.h"
#include "Support/CollectedLog.h"
#include "Support/ProviderModel.h"

#include <gmock/gmock.h>
#include <lcms2.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <span>

namespace {

using test::Bytes;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Optional;

const CGColorSpaceRef kGray = XGColorSpaceGetDeviceGray();
const CGColorSpaceRef kRGB = XGColorSpaceGetDeviceRGB();

// ---- Uploaded images

std::vector<CGImageRef> finalizedUploads;

TEST(UploadedImage, IsToldOfWhenItGoes) {
    cg::setUploadedImageObserver([](CGImageRef image) { finalizedUploads.push_back(image); });
    const Bytes bytes(4);
    test::Image uploaded = test::makeImage({.width = 4, .space = kGray}, bytes);
    test::Image takenBack = test::makeImage({.width = 4, .space = kGray}, bytes);
    XGImageSetUploaded(uploaded.get(), true);
    XGImageSetUploaded(takenBack.get(), true);
    XGImageSetUploaded(takenBack.get(), false);
    const CGImageRef expected = uploaded.get();
    test::Image copy = cf::adopt(CGImageCreateCopy(uploaded.get()));
    copy = nullptr;
    takenBack = nullptr;
    EXPECT_THAT(finalizedUploads, ElementsAre()) << "a copy is not uploaded";
    uploaded = nullptr;
    EXPECT_THAT(finalizedUploads, ElementsAre(expected));
    cg::setUploadedImageObserver(nullptr);
}

// ---- Decode arrays

TEST(PixelReader, AppliesDecodeArraysAndLimitsTheirResults) {
    const struct {
        const char* what;
        std::size_t bits;
        Bytes bytes;
        std::array<CGFloat, 2> decode;
        Bytes expected;
    } cases[] = {
        {"plain", 8, {0, 51, 255}, {0, 1}, {0, 51, 255}},
        {"inverted", 8, {0, 51, 255}, {1, 0}, {255, 204, 0}},
        {"half range", 8, {0, 51, 255}, {0, 0.5f}, {0, 26, 128}},
        {"beyond both ends", 8, {0, 128, 255}, {-1, 2}, {0, 129, 255}},
        {"two bits inverted", 2, {0b00011100}, {1, 0}, {255, 170, 0}},
        {"not a number", 8, {0, 51, 255}, {NAN, NAN}, {0, 0, 0}},
    };
    for (const auto& [what, bits, bytes, decode, expected] : cases) {
        const auto image = test::makeImage({.width = 3,
                                            .bits = bits,
                                            .bitsPerPixel = bits,
                                            .space = kGray,
                                            .decode = decode.data()},
                                           bytes);
        EXPECT_THAT(test::readPixels<std::uint8_t>(image.get(), 1, false, false),
                    Optional(ElementsAreArray(expected)))
            << what;
    }
}

TEST(PixelReader, LooksIndicesUpAndTakesTheLastColorForThoseBeyond) {
    const Bytes table = {255, 0, 0, 0, 255, 0, 10, 20, 30};
    const auto space = cf::adopt(CGColorSpaceCreateIndexed(kRGB, 2, table.data()));
    const CGFloat reversed[] = {3, 0};
    const Bytes bytes = {0b00011011};
    test::ImageWords words = {.width = 4, .bits = 2, .bitsPerPixel = 2, .space = space.get()};
    EXPECT_THAT(
        test::readPixels<std::uint8_t>(test::makeImage(words, bytes).get(), 3, false, false),
        Optional(ElementsAre(255, 0, 0, 0, 255, 0, 10, 20, 30, 10, 20, 30)));
    words.decode = reversed;
    EXPECT_THAT(
        test::readPixels<std::uint8_t>(test::makeImage(words, bytes).get(), 3, false, false),
        Optional(ElementsAre(10, 20, 30, 10, 20, 30, 0, 255, 0, 255, 0, 0)));
}

// ---- Masks

TEST(PixelReader, HidesMaskingColorsBySamplesBeforeDecoding) {
    const Bytes bytes = {10, 20, 30, 11, 20, 30, 10, 20, 31};
    const CGFloat decode[] = {1, 0, 1, 0, 1, 0};
    const CGFloat ranges[] = {10, 10, 0, 255, 25, 30};
    const auto image =
        test::makeImage({.width = 3, .bitsPerPixel = 24, .space = kRGB, .decode = decode}, bytes);
    const auto masked = cf::adopt(CGImageCreateWithMaskingColors(image.get(), ranges));
    EXPECT_THAT(test::readPixels<std::uint8_t>(masked.get(), 4, true, true),
                Optional(ElementsAre(0, 0, 0, 0, 244, 235, 225, 255, 245, 235, 224, 255)));
}

TEST(PixelReader, LetsImageMasksBlockAndGrayImagesPass) {
    const Bytes color = {200, 100, 50, 200, 100, 50};
    const auto image = test::makeImage({.width = 2, .bitsPerPixel = 24, .space = kRGB}, color);
    const Bytes bits = {0b01000000}, grays = {255, 51};
    const CGFloat inverted[] = {1, 0};
    const struct {
        const char* what;
        test::Image mask;
        std::array<int, 2> alphas;
    } cases[] = {
        {"image mask", test::makeMask(2, 1, 1, bits), {255, 0}},
        {"image mask decoded the other way", test::makeMask(2, 1, 1, bits, inverted), {0, 255}},
        {"gray image", test::makeImage({.width = 2, .space = kGray}, grays), {255, 51}},
        {"opacity alone",
         test::makeImage({.width = 2, .info = kCGImageAlphaOnly}, grays),
         {255, 51}},
    };
    for (const auto& [what, mask, alphas] : cases) {
        const auto masked = cf::adopt(CGImageCreateWithMask(image.get(), mask.get()));
        const auto pixels = test::readPixels<std::uint8_t>(masked.get(), 4, true, true);
        ASSERT_TRUE(pixels) << what;
        for (std::size_t x = 0; x < 2; ++x) {
            EXPECT_EQ((*pixels)[4 * x], (200 * alphas[x] + 127) / 255) << what;
            EXPECT_EQ((*pixels)[4 * x + 3], alphas[x]) << what;
        }
        // The baked copy holds the same, and is made once.
        const CGImageRef baked = _CGImageGetMaskedImage(masked.get());
        EXPECT_EQ(test::readPixels<std::uint8_t>(baked, 4, true, true), pixels) << what;
        EXPECT_EQ(_CGImageGetMaskedImage(masked.get()), baked) << what;
        EXPECT_TRUE(CGImageIsMaskBaked(masked.get())) << what;
    }
    EXPECT_EQ(_CGImageGetMaskedImage(image.get()), image.get());
}

// ---- Colours

Bytes fileBytes(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

TEST(PixelReader, ConvertsColorsAsLittleCMSDoes) {
    const struct {
        const char* path;
        cmsUInt32Number type;
        std::size_t colors;
    } cases[] = {
        {"/usr/share/color/icc/colord/AdobeRGB1998.icc", TYPE_RGB_8, 3},
        {"/usr/share/color/icc/Gray.icc", TYPE_GRAY_8, 1},
        {"/usr/share/color/icc/colord/SWOP2006_Coated3v2.icc", TYPE_CMYK_8, 4},
        {"/usr/share/color/icc/ghostscript/default_cmyk.icc", TYPE_CMYK_8, 4},
    };
    const Bytes sRGBBytes = fileBytes("/usr/share/color/icc/ghostscript/srgb.icc");
    ASSERT_FALSE(sRGBBytes.empty());
    const auto spaceOf = [](const Bytes& bytes) {
        const auto data =
            cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
        return cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
    };
    const auto sRGB = spaceOf(sRGBBytes);
    int tried = 0;
    for (const auto& [path, type, colors] : cases) {
        const Bytes profile = fileBytes(path);
        if (profile.empty())
            continue;
        ++tried;
        const auto space = spaceOf(profile);
        std::mt19937 random(1);
        Bytes bytes(1000 * colors);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        const auto image = test::makeImage(
            {.width = 1000, .bitsPerPixel = 8 * colors, .space = space.get()}, bytes);
        const auto ours = test::readPixels<std::uint8_t>(image.get(), 3, false, false, sRGB.get());

        const auto from =
            cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
        const auto to =
            cmsOpenProfileFromMem(sRGBBytes.data(), static_cast<cmsUInt32Number>(sRGBBytes.size()));
        const auto transform = cmsCreateTransform(from, type, to, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
        Bytes theirs(3000);
        cmsDoTransform(transform, bytes.data(), theirs.data(), 1000);
        cmsDeleteTransform(transform);
        cmsCloseProfile(from);
        cmsCloseProfile(to);
        ASSERT_TRUE(ours) << path;
        for (std::size_t i = 0; i < theirs.size(); ++i)
            ASSERT_NEAR((*ours)[i], theirs[i], 1) << path << " component " << i;
    }
    EXPECT_GE(tried, 2);
}

TEST(PixelReader, ReadsLabAsLittleCMSDoes) {
    const CGFloat white[] = {0.9642f, 1, 0.8249f}, black[] = {0, 0, 0};
    const CGFloat range[] = {-100, 100, -80, 120};
    const auto space = cf::adopt(CGColorSpaceCreateLab(white, black, range));
    std::mt19937 random(3);
    Bytes bytes(300 * 3);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    const auto image =
        test::makeImage({.width = 300, .bitsPerPixel = 24, .space = space.get()}, bytes);
    const auto ours = test::readPixels<std::uint8_t>(image.get(), 3, false, false, kRGB);
    ASSERT_TRUE(ours);

    const auto from = cmsCreateLab4Profile(nullptr);
    const auto to = cmsCreate_sRGBProfile();
    const auto transform =
        cmsCreateTransform(from, TYPE_Lab_DBL, to, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const cmsCIELab lab = {bytes[i] / 2.55, -100 + bytes[i + 1] / 1.275,
                               -80 + bytes[i + 2] / 1.275};
        std::uint8_t theirs[3];
        cmsDoTransform(transform, &lab, theirs, 1);
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_NEAR((*ours)[i + c], theirs[c], 1)
                << lab.L << ' ' << lab.a << ' ' << lab.b << " component " << c;
    }
    cmsDeleteTransform(transform);
    cmsCloseProfile(from);
    cmsCloseProfile(to);
}

TEST(PixelReader, TakesFiveAndSixBits) {
    const Bytes bytes = {0xF8, 0x1F, 0x07, 0xE0, 0x84, 0x10};
    const auto image = test::makeImage({.width = 3,
                                        .bits = 5,
                                        .bitsPerPixel = 16,
                                        .space = kRGB,
                                        .info = kCGImagePixelFormatRGB565},
                                       bytes);
    EXPECT_THAT(test::readPixels<std::uint8_t>(image.get(), 3, false, false),
                Optional(ElementsAre(255, 0, 255, 0, 255, 0, 132, 130, 132)));
}

TEST(PixelReader, RefusesPatternColorsWhenConvertingToRGB) {
    const auto pattern = cf::adopt(CGColorSpaceCreatePattern(kRGB));
    const Bytes bytes(3);
    const auto image = test::makeImage({.bitsPerPixel = 24, .space = pattern.get()}, bytes);
    CollectedLog log;
    EXPECT_EQ(cf::adopt(XGImageCreateCopyByConvertingToRGB(image.get())).get(), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("3 XGImageCreateCopyByConvertingToRGB: Cannot convert "
                                         "image with colorspace 6 to RGB"));
}

TEST(PixelReader, ConvertsGrayToRGBAndLeavesRGBAlone) {
    const Bytes bytes = {7, 200, 9};
    const auto gray = test::makeImage({.width = 2, .space = kGray}, bytes);
    const auto rgb = cf::adopt(XGImageCreateCopyByConvertingToRGB(gray.get()));
    EXPECT_THAT(test::readPixels<std::uint8_t>(rgb.get(), 3, false, false),
                Optional(ElementsAre(7, 7, 7, 200, 200, 200)));
    EXPECT_EQ(cf::adopt(XGImageCreateCopyByConvertingToRGB(rgb.get())).get(), rgb.get());
}

// ---- Missing bytes

struct Source {
    Bytes bytes;
    bool canBeLocked = true;

    static const void* lock(void* info) {
        auto* const source = static_cast<Source*>(info);
        return source->canBeLocked ? source->bytes.data() : nullptr;
    }
    static std::size_t read(void* info, void* buffer, off_t position, std::size_t count) {
        const auto& bytes = static_cast<Source*>(info)->bytes;
        const auto start = std::min(static_cast<std::size_t>(position), bytes.size());
        count = std::min(count, bytes.size() - start);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(start), count,
                    static_cast<std::uint8_t*>(buffer));
        return count;
    }
};

TEST(PixelReader, ReadsNothingBeyondTheProvidersEnd) {
    constexpr std::size_t kRow = 5, kHeight = 3, kNeeded = 2 * kRow + 3;
    for (const bool canBeLocked : {true, false})
        for (std::size_t size = 0; size <= kNeeded; ++size) {
            // Exactly as much memory, so that a sanitizer sees a byte too many.
            Source source = {Bytes(size, 77), canBeLocked};
            source.bytes.shrink_to_fit();
            const CGDataProviderDirectCallbacks callbacks = {.getBytePointer = Source::lock,
                                                             .getBytesAtPosition = Source::read};
            const auto provider = cf::adopt(
                CGDataProviderCreateDirect(&source, static_cast<off_t>(size), &callbacks));
            const auto image = cf::adopt(
                XGImageCreateDeferred(3, kHeight, 8, 8, kRow, kGray, kCGImageAlphaNone,
                                      provider.get(), nullptr, false, kCGRenderingIntentDefault));
            CollectedLog log;
            const auto pixels = test::readPixels<std::uint8_t>(image.get(), 1, false, false);
            EXPECT_EQ(pixels.has_value(), size == kNeeded) << size;
            if (size == kNeeded)
                EXPECT_THAT(*pixels, testing::Each(77));
            else
                EXPECT_THAT(log.lines(),
                            ElementsAre(testing::StartsWith("3 _ImageDataProviderRead: Failed")));
        }
}

// Rows in any order: a stream has to go back for them.
TEST(PixelReader, ReadsRowsOfStreamsAsThoseOfMemory) {
    constexpr std::size_t kRow = 13 * 3, kHeight = 7;
    Bytes bytes(kRow * kHeight);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 89 % 251);
    const test::ImageWords words = {
        .width = 13, .height = kHeight, .bits = 8, .bitsPerPixel = 24, .space = kRGB};
    const XGPixelRequest request = {.bitsPerComponent = 8};
    for (const auto kind : test::kSourceKinds) {
        test::ByteSource source = {.bytes = bytes};
        const auto image = test::makeImage(words, test::makeProvider(kind, source));
        const auto part =
            cf::adopt(CGImageCreateWithImageInRect(image.get(), CGRectMake(2, 1, 9, 5)));
        for (const std::size_t row : {4u, 0u, 6u, 1u, 1u}) {
            Bytes read(kRow), cropped(9 * 3);
            ASSERT_TRUE(XGImageReadPixels(image.get(), &request, row, 1, read.data(), kRow));
            EXPECT_TRUE(std::ranges::equal(read, std::span(bytes).subspan(row * kRow, kRow)))
                << "kind " << int(kind) << ", row " << row;
            if (row > 4)
                continue;
            ASSERT_TRUE(
                XGImageReadPixels(part.get(), &request, row, 1, cropped.data(), cropped.size()));
            EXPECT_TRUE(std::ranges::equal(
                cropped, std::span(bytes).subspan((row + 1) * kRow + 6, cropped.size())))
                << "kind " << int(kind) << ", row " << row << " of the crop";
        }
    }
}

TEST(PixelReader, RefusesSizesThatCannotBeCounted) {
    const Bytes bytes(64);
    const std::size_t most = SIZE_MAX;
    for (const test::ImageWords& words :
         {test::ImageWords{.width = most, .height = 2, .bytesPerRow = 1, .space = kGray},
          test::ImageWords{.width = 1, .height = most, .bytesPerRow = most / 2, .space = kGray},
          test::ImageWords{.width = 4, .height = most, .bytesPerRow = 4, .space = kGray},
          test::ImageWords{.bitsPerPixel = most, .bytesPerRow = 4, .space = kGray}}) {
        const auto image = test::makeImage(words, bytes);
        const XGPixelRequest request = {.bitsPerComponent = 8};
        std::uint8_t pixel = 0;
        EXPECT_FALSE(XGImageReadPixels(image.get(), &request, words.height - 1, 1, &pixel, most));
    }
}

// ---- Orientation

TEST(ImageOrientation, TurnsPixelsAsItsTransformTurnsPlaces) {
    const Bytes bytes = {1, 2, 3, 4, 5, 6}; // Three columns, two rows.
    const auto image = test::makeImage({.width = 3, .height = 2, .space = kGray}, bytes);
    const struct {
        XGImageOrientation orientation;
        std::array<int, 6> upright;
    } cases[] = {
        {kXGImageOrientationUp, {1, 2, 3, 4, 5, 6}},
        {kXGImageOrientationUpMirrored, {3, 2, 1, 6, 5, 4}},
        {kXGImageOrientationDown, {6, 5, 4, 3, 2, 1}},
        {kXGImageOrientationDownMirrored, {4, 5, 6, 1, 2, 3}},
        {kXGImageOrientationLeftMirrored, {1, 4, 2, 5, 3, 6}},
        {kXGImageOrientationRight, {4, 1, 5, 2, 6, 3}},
        {kXGImageOrientationRightMirrored, {6, 3, 5, 2, 4, 1}},
        {kXGImageOrientationLeft, {3, 6, 2, 5, 1, 4}},
    };
    for (const auto& [orientation, upright] : cases) {
        const auto copy =
            cf::adopt(XGImageCopyWithScaleAndRotation(image.get(), 1, 1, orientation));
        const auto pixels = test::readPixels<std::uint8_t>(copy.get(), 3, false, false);
        ASSERT_TRUE(pixels);
        const std::size_t width = CGImageGetWidth(copy.get());
        EXPECT_EQ(width, orientation < kXGImageOrientationLeftMirrored ? 3u : 2u);
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_EQ((*pixels)[3 * i], upright[i]) << orientation << " at " << i;
        // The centre of the first stored pixel, y up, comes to where its value 1 is seen.
        const CGPoint first = CGPointApplyAffineTransform(
            CGPointMake(0.5f, 1.5f), XGImageGetOrientationTransform(orientation, CGSizeMake(3, 2)));
        const auto height = static_cast<CGFloat>(6 / width);
        const auto place = static_cast<std::size_t>(first.x - 0.5f) +
                           static_cast<std::size_t>(height - first.y - 0.5f) * width;
        ASSERT_LT(place, 6u) << orientation;
        EXPECT_EQ(upright[place], 1) << orientation;
    }
}

TEST(ImageOrientation, AveragesAreasAndInterpolatesLinearly) {
    const Bytes bytes = {0, 100, 200, 40};
    const auto image = test::makeImage({.width = 2, .height = 2, .space = kGray}, bytes);
    const auto scaled = [&](CGFloat x, CGFloat y, CGRect clip) {
        const auto copy = cf::adopt(XGImageCopyWithScaleRotationAndClipRect(
            image.get(), x, y, kXGImageOrientationUp, clip));
        const auto pixels = test::readPixels<std::uint8_t>(copy.get(), 3, false, false);
        std::vector<int> grays;
        for (std::size_t i = 0; pixels && i < pixels->size(); i += 3)
            grays.push_back((*pixels)[i]);
        return grays;
    };
    EXPECT_THAT(scaled(0.5f, 0.5f, CGRectInfinite), ElementsAre(85));
    EXPECT_THAT(scaled(0.5f, 1, CGRectInfinite), ElementsAre(50, 120));
    EXPECT_THAT(scaled(2, 1, CGRectInfinite), ElementsAre(0, 25, 75, 100, 200, 160, 80, 40));
    EXPECT_THAT(scaled(2, 1, CGRectMake(1, 1, 2, 9)), ElementsAre(160, 80));
    EXPECT_THAT(scaled(2, 1, CGRectMake(9, 1, 2, 9)), ElementsAre());
    EXPECT_THAT(scaled(NAN, 1, CGRectInfinite), ElementsAre());
    EXPECT_THAT(scaled(1e30f, 1, CGRectInfinite), ElementsAre());
}

TEST(ImageOrientation, KeepsDepthsAndMasks) {
    const auto mirrored = [](const test::Image& image) {
        return cf::adopt(
            XGImageCopyWithScaleAndRotation(image.get(), 1, 1, kXGImageOrientationUpMirrored));
    };
    const Bytes words = {0x01, 0x02, 0xF0, 0xF1};
    const auto deep = mirrored(
        test::makeImage({.width = 2, .bits = 16, .bitsPerPixel = 16, .space = kGray}, words));
    EXPECT_THAT(test::readPixels<std::uint16_t>(deep.get(), 3, false, false),
                Optional(ElementsAre(0xF0F1, 0xF0F1, 0xF0F1, 0x0102, 0x0102, 0x0102)));

    const Bytes samples = {10, 200};
    const CGFloat inverted[] = {1, 0};
    const auto mask = mirrored(test::makeMask(2, 1, 8, samples));
    EXPECT_TRUE(XGImageWasCreatedAsMask(mask.get()));
    EXPECT_THAT(test::readPixels<std::uint8_t>(mask.get(), 1, false, false),
                Optional(ElementsAre(200, 10)));
    EXPECT_THAT(test::readPixels<std::uint8_t>(
                    mirrored(test::makeMask(2, 1, 8, samples, inverted)).get(), 1, false, false),
                Optional(ElementsAre(55, 245)));
}

} // namespace
