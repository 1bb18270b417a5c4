// CGImageSourceTest.cpp: what sources tell, when they decode, and what their images share.

#include "XGDataProvider.h"
#include "XGImage.h"

#include "Sources.h"
#include "Support/CollectedLog.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstring>
// clang-format off: it leaves the inclusion of the C library to its users.
#include <jpeglib.h>
// clang-format on

namespace {

using namespace test;

// ---- When pixels are decoded.

// A provider that counts how often its bytes are asked for.
struct CountedFile {
    Bytes bytes;
    int locks = 0;

    cf::Ref<CGDataProviderRef> provider() {
        const CGDataProviderDirectCallbacks callbacks = {
            .getBytePointer = [](void* info) -> const void* {
                auto& file = *static_cast<CountedFile*>(info);
                ++file.locks;
                return file.bytes.data();
            },
        };
        return cf::adopt(CGDataProviderCreateDirect(this, off_t(bytes.size()), &callbacks));
    }
    int locksSince(int before) const { return locks - before; }
};

Image imageFrom(CGImageSourceRef source, CFDictionaryRef options = nullptr) {
    return cf::adopt(CGImageSourceCreateImageAtIndex(source, 0, options));
}
const void* lock(const Image& image) {
    return XGDataProviderLockData(CGImageGetDataProvider(image.get()));
}
void unlock(const Image& image) {
    XGDataProviderUnlockData(CGImageGetDataProvider(image.get()));
}
void purge(const Image& image) {
    XGDataProviderPurge(CGImageGetDataProvider(image.get()));
}

struct CountedSource {
    explicit CountedSource(Bytes bytes = makePng({}))
        : file{std::move(bytes)},
          source(cf::adopt(CGImageSourceCreateWithDataProvider(file.provider().get(), nullptr))) {}
    CountedFile file;
    Source source;
};

TEST(ImageSource, DecodesWhenPixelsAreFirstLockedAndOnce) {
    CountedSource counted;
    EXPECT_EQ(counted.file.locks, 0);
    const Image image = imageFrom(counted.source.get());
    const int forHeader = counted.file.locks;
    EXPECT_GT(forHeader, 0);
    const void* const pixels = lock(image);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(counted.file.locksSince(forHeader), 1);
    unlock(image);
    EXPECT_EQ(lock(image), pixels);
    unlock(image);
    EXPECT_EQ(counted.file.locksSince(forHeader), 1);
}

TEST(ImageSource, SharesOnePictureAmongItsImages) {
    CountedSource counted;
    const Image a = imageFrom(counted.source.get());
    {
        const Image b = imageFrom(counted.source.get());
        const int before = counted.file.locks;
        EXPECT_EQ(lock(a), lock(b));
        EXPECT_EQ(counted.file.locksSince(before), 1);
        purge(a); // Locked by the other, too.
        unlock(a);
        purge(a);
        EXPECT_EQ(lock(a), lock(b));
        EXPECT_EQ(counted.file.locksSince(before), 1);
        for (int i = 0; i < 2; ++i)
            unlock(b);
        unlock(a);
    }
    counted.source = nullptr; // The images live on.
    EXPECT_NE(lock(a), nullptr);
    unlock(a);
}

TEST(ImageSource, DecodesAgainAfterAPurge) {
    CountedSource counted;
    const Image image = imageFrom(counted.source.get());
    const Bytes pixels = pixelsOf(image.get());
    const int before = counted.file.locks;
    purge(image);
    EXPECT_EQ(counted.file.locksSince(before), 0);
    EXPECT_EQ(pixelsOf(image.get()), pixels);
    EXPECT_EQ(counted.file.locksSince(before), 1);
}

TEST(ImageSource, KeepsPixelsAsTheOptionsSay) {
    CountedSource counted;
    const Image forgetful =
        imageFrom(counted.source.get(), optionOf(kCGImageSourceShouldCache, kCFBooleanFalse).get());
    int before = counted.file.locks;
    EXPECT_EQ(pixelsOf(forgetful.get()), pixelsOf(forgetful.get()));
    EXPECT_EQ(counted.file.locksSince(before), 2);
    before = counted.file.locks;
    const Image eager = imageFrom(
        counted.source.get(), optionOf(kCGImageSourceShouldCacheImmediately, kCFBooleanTrue).get());
    EXPECT_EQ(counted.file.locksSince(before), 1);
    EXPECT_FALSE(pixelsOf(eager.get()).empty());
    EXPECT_EQ(counted.file.locksSince(before), 1);
}

// ---- Where bytes come from.

struct Stream {
    Bytes bytes;
    std::size_t position = 0;

    static std::size_t read(void* info, void* out, std::size_t count) {
        auto& stream = *static_cast<Stream*>(info);
        const std::size_t n = std::min(count, stream.bytes.size() - stream.position);
        std::memcpy(out, stream.bytes.data() + stream.position, n);
        stream.position += n;
        return n;
    }
    static void rewind(void* info) { static_cast<Stream*>(info)->position = 0; }
};

TEST(ImageSource, ReadsStreamsToTheirEnd) {
    const Bytes file = makePng({.width = 300, .height = 200, .depth = 16});
    const Bytes expected = pixelsOf(imageOf(file).get());
    for (const bool canRewind : {false, true}) {
        Stream stream{file};
        const CGDataProviderSequentialCallbacks callbacks = {
            .getBytes = Stream::read, .rewind = canRewind ? Stream::rewind : nullptr};
        const auto provider = cf::adopt(CGDataProviderCreateSequential(&stream, &callbacks));
        const Source source =
            cf::adopt(CGImageSourceCreateWithDataProvider(provider.get(), nullptr));
        const Image image = imageFrom(source.get());
        ASSERT_TRUE(image);
        EXPECT_EQ(pixelsOf(image.get()), expected);
        EXPECT_EQ(XGImageGetSourceDataProvider(image.get()), provider.get());
    }
}

TEST(ImageSource, KeepsDataThatItsOwnerChangesLater) {
    const Bytes file = makePng({});
    const auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    CFDataAppendBytes(data.get(), file.data(), CFIndex(file.size()));
    const Source source = cf::adopt(CGImageSourceCreateWithData(data.get(), nullptr));
    CFDataSetLength(data.get(), 0);
    EXPECT_EQ(pixelsOf(imageFrom(source.get()).get()), pixelsOf(imageOf(file).get()));
}

TEST(ImageSource, FollowsAFileThatArrivesInPieces) {
    const struct {
        const char* what;
        Bytes file;
        CFStringRef type;
    } cases[] = {
        {"PNG", makePng({}), CFSTR("public.png")},
        {"JPEG", makeJpeg({.height = 200}), CFSTR("public.jpeg")},
        {"JPEG 2000", makeJpeg2000({}), CFSTR("public.jpeg-2000")},
    };
    for (const auto& each : cases) {
        const auto& [what, file, type] = each;
        const Source source = cf::adopt(
            CGImageSourceCreateIncremental(optionOf(kCGImageSourceTypeIdentifierHint, type).get()));
        EXPECT_EQ(CGImageSourceGetStatus(source.get()), kCGImageStatusReadingHeader) << what;
        const auto update = [&](std::size_t size, bool final) {
            const Bytes part(each.file.begin(), each.file.begin() + std::ptrdiff_t(size));
            CGImageSourceUpdateData(source.get(), dataOf(part).get(), final);
            const CFStringRef found = CGImageSourceGetType(source.get());
            EXPECT_TRUE(found && CFEqual(found, each.type)) << each.what << size;
        };
        update(5, false);
        EXPECT_EQ(CGImageSourceGetStatus(source.get()), kCGImageStatusReadingHeader) << what;
        EXPECT_EQ(CGImageSourceGetCount(source.get()), 0u) << what;
        update(file.size() * 3 / 4, false);
        EXPECT_EQ(CGImageSourceGetStatusAtIndex(source.get(), 0), kCGImageStatusIncomplete) << what;
        const Image partial = imageFrom(source.get());
        EXPECT_TRUE(partial) << what;
        update(file.size(), true);
        EXPECT_EQ(CGImageSourceGetStatus(source.get()), kCGImageStatusComplete) << what;
        const Bytes whole = pixelsOf(imageFrom(source.get()).get());
        EXPECT_EQ(whole, pixelsOf(imageOf(file).get())) << what;
        EXPECT_NE(pixelsOf(partial.get()), whole) << what;
    }
}

TEST(ImageSource, TellsWhatIsWrongWithAFile) {
    const Bytes png = makePng({});
    Bytes broken = png;
    broken[20] = 0; // The height, so that the header's checksum is wrong.
    broken[22] = 77;
    const struct {
        const char* what;
        Bytes file;
        CGImageSourceStatus status;
        bool hasImage;
    } cases[] = {
        {"a whole file", png, kCGImageStatusComplete, true},
        {"no file", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}, kCGImageStatusUnknownType, false},
        {"the signature alone", {png.begin(), png.begin() + 8}, kCGImageStatusUnexpectedEOF, false},
        {"half a file", {png.begin(), png.end() - 40}, kCGImageStatusUnexpectedEOF, true},
        {"a damaged header", broken, kCGImageStatusInvalidData, false},
    };
    for (const auto& [what, file, status, hasImage] : cases) {
        const Source source = sourceOf(file);
        EXPECT_EQ(CGImageSourceGetStatus(source.get()), status) << what;
        EXPECT_EQ(CGImageSourceGetCount(source.get()), hasImage ? 1u : 0u) << what;
        EXPECT_EQ(bool(imageFrom(source.get())), hasImage) << what;
    }
}

// A header is easily made; the memory for its pixels is not.
TEST(ImageSource, RefusesPicturesOutOfProportion) {
    CollectedLog log;
    const Bytes png = makePng({.width = 1, .height = 100000, .depth = 1, .colorType = 0});
    ASSERT_TRUE(imageOf(png));
    Bytes jpeg = makeJpeg({.components = 1, .sampling = 1});
    const std::uint8_t frame[] = {0xFF, 0xC0};
    const auto at = std::search(jpeg.begin(), jpeg.end(), std::begin(frame), std::end(frame));
    for (std::ptrdiff_t i = 5; i < 9; ++i) // Height and width.
        at[i] = 0xF0;
    EXPECT_FALSE(imageOf(jpeg));
    Bytes jpeg2000 = makeJpeg2000({.hasBoxes = false});
    jpeg2000[8] = jpeg2000[12] = 0x01; // 16777239 pixels by 16777233.
    EXPECT_FALSE(imageOf(jpeg2000));
}

// ---- What is told.

template <typename Number>
Number numberAt(CFDictionaryRef properties, CFStringRef key, CFNumberType type) {
    Number number = -1;
    const CFTypeRef value = properties ? CFDictionaryGetValue(properties, key) : nullptr;
    if (value)
        CFNumberGetValue(static_cast<CFNumberRef>(value), type, &number);
    return number;
}
int integerAt(CFDictionaryRef properties, CFStringRef key) {
    return numberAt<int>(properties, key, kCFNumberIntType);
}
double realAt(CFDictionaryRef properties, CFStringRef key) {
    return numberAt<double>(properties, key, kCFNumberFloat64Type);
}
CFDictionaryRef dictionaryAt(const Dictionary& properties, CFStringRef key) {
    return static_cast<CFDictionaryRef>(CFDictionaryGetValue(properties.get(), key));
}
Dictionary propertiesOf(const Bytes& file) {
    return cf::adopt(CGImageSourceCopyPropertiesAtIndex(sourceOf(file).get(), 0, nullptr));
}

// TIFF data of an orientation, a maker, 72 pixels a centimetre, an exposure of 1/125 s and
// EXIF 2.3, the first directory at 8, the second at 74, numbers from 104 on.
Bytes exifData(std::uint8_t orientation) {
    return {'M',  'M',  0, 42, 0, 0, 0, 8,                              //
            0,    5,                                                    //
            0x01, 0x0F, 0, 2,  0, 0, 0, 4,  'M', 'e',         '!', 0,   //
            0x01, 0x12, 0, 3,  0, 0, 0, 1,  0,   orientation, 0,   0,   //
            0x01, 0x1A, 0, 5,  0, 0, 0, 1,  0,   0,           0,   104, //
            0x01, 0x28, 0, 3,  0, 0, 0, 1,  0,   3,           0,   0,   //
            0x87, 0x69, 0, 4,  0, 0, 0, 1,  0,   0,           0,   74,  //
            0,    0,    0, 0,                                           //
            0,    2,                                                    //
            0x82, 0x9A, 0, 5,  0, 0, 0, 1,  0,   0,           0,   112, //
            0x90, 0x00, 0, 7,  0, 0, 0, 4,  '0', '2',         '3', '0', //
            0,    0,    0, 0,                                           //
            0,    0,    0, 72, 0, 0, 0, 1,                              //
            0,    0,    0, 1,  0, 0, 0, 125};
}

void addExif(void* jpeg, const Bytes& tiff) {
    Bytes marker = {'E', 'x', 'i', 'f', 0, 0};
    marker.insert(marker.end(), tiff.begin(), tiff.end());
    jpeg_write_marker(static_cast<j_compress_ptr>(jpeg), JPEG_APP0 + 1, marker.data(),
                      unsigned(marker.size()));
}

TEST(ImageSource, TellsTheBasicsOfEveryFormat) {
    const struct {
        const char* what;
        Bytes file;
        CFStringRef model;
        int depth;
        bool isIndexed, hasAlpha;
        int width;
    } cases[] = {
        {"gray PNG", makePng({.depth = 2, .colorType = 0}), kCGImagePropertyColorModelGray, 2,
         false, false, 19},
        {"palette", makePng({.colorType = 3}), kCGImagePropertyColorModelRGB, 8, true, false, 19},
        {"RGBA", makePng({.depth = 16, .colorType = 6}), kCGImagePropertyColorModelRGB, 16, false,
         true, 19},
        {"JPEG", makeJpeg({}), kCGImagePropertyColorModelRGB, 8, false, false, 35},
        {"inks", makeJpeg({.components = 4}), kCGImagePropertyColorModelCMYK, 8, false, false, 35},
        {"JPEG 2000", makeJpeg2000({.depth = 12}), kCGImagePropertyColorModelRGB, 12, false, false,
         23},
    };
    for (const auto& [what, file, model, depth, isIndexed, hasAlpha, width] : cases) {
        const Dictionary properties = propertiesOf(file);
        ASSERT_TRUE(properties) << what;
        const auto value = [&](CFStringRef key) {
            return CFDictionaryGetValue(properties.get(), key);
        };
        EXPECT_TRUE(CFEqual(value(kCGImagePropertyColorModel), model)) << what;
        EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyDepth), depth) << what;
        EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyPixelWidth), width) << what;
        EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyOrientation), 1) << what;
        EXPECT_EQ(value(kCGImagePropertyIsIndexed) == kCFBooleanTrue, isIndexed) << what;
        EXPECT_EQ(value(kCGImagePropertyHasAlpha) == kCFBooleanTrue, hasAlpha) << what;
        const Dictionary ofFile =
            cf::adopt(CGImageSourceCopyProperties(sourceOf(file).get(), nullptr));
        EXPECT_EQ(integerAt(ofFile.get(), kCGImagePropertyFileSize), int(file.size())) << what;
    }
}

TEST(ImageSource, TellsWhatJpegAndExifSay) {
    const Dictionary properties = propertiesOf(makeJpeg({
        .isProgressive = true,
        .addMarkers = [](void* jpeg) { addExif(jpeg, exifData(6)); },
    }));
    EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyOrientation), 6);
    // JFIF gives a mere ratio, EXIF 72 pixels a centimetre.
    EXPECT_NEAR(realAt(properties.get(), kCGImagePropertyDPIWidth), 72 * 2.54, 1e-9);
    const CFDictionaryRef jfif = dictionaryAt(properties, kCGImagePropertyJFIFDictionary);
    EXPECT_EQ(integerAt(jfif, kCGImagePropertyJFIFDensityUnit), 0);
    EXPECT_EQ(CFDictionaryGetValue(jfif, kCGImagePropertyJFIFIsProgressive), kCFBooleanTrue);
    const CFDictionaryRef tiff = dictionaryAt(properties, kCGImagePropertyTIFFDictionary);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(tiff, kCGImagePropertyTIFFMake), CFSTR("Me!")));
    const CFDictionaryRef exif = dictionaryAt(properties, kCGImagePropertyExifDictionary);
    EXPECT_DOUBLE_EQ(realAt(exif, kCGImagePropertyExifExposureTime), 1.0 / 125);
    const auto version =
        static_cast<CFArrayRef>(CFDictionaryGetValue(exif, kCGImagePropertyExifExifVersion));
    EXPECT_EQ(CFArrayGetCount(version), 2);
}

TEST(ImageSource, TellsWhatPngChunksSay) {
    const Dictionary properties = propertiesOf(makePng({.addChunks = [](void* p, void* i) {
        const auto png = static_cast<png_structp>(p);
        const auto info = static_cast<png_infop>(i);
        png_set_gAMA(png, info, 0.5);
        png_set_pHYs(png, info, 5000, 2500, PNG_RESOLUTION_METER);
        char key[] = "Title", value[] = "A square";
        const png_text text = {.compression = PNG_TEXT_COMPRESSION_NONE, .key = key, .text = value};
        png_set_text(png, info, &text, 1);
        Bytes exif = exifData(3);
        png_set_eXIf_1(png, info, png_uint_32(exif.size()), exif.data());
    }}));
    EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyOrientation), 3);
    EXPECT_NEAR(realAt(properties.get(), kCGImagePropertyDPIWidth), 127, 1e-9);
    EXPECT_NEAR(realAt(properties.get(), kCGImagePropertyDPIHeight), 63.5, 1e-9);
    const CFDictionaryRef png = dictionaryAt(properties, kCGImagePropertyPNGDictionary);
    EXPECT_DOUBLE_EQ(realAt(png, kCGImagePropertyPNGGamma), 0.5);
    EXPECT_EQ(integerAt(png, kCGImagePropertyPNGInterlaceType), 0);
    EXPECT_EQ(integerAt(png, kCGImagePropertyPNGXPixelsPerMeter), 5000);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(png, kCGImagePropertyPNGTitle), CFSTR("A square")));
}

// A file whose texts and EXIF data stand behind the pixels, as the format allows.
Bytes withLateChunks(const Bytes& exif) {
    return makePng(
        {.addChunks =
             [](void* p, void* i) {
                 char key[] = "Title", value[] = "Early";
                 const png_text text = {
                     .compression = PNG_TEXT_COMPRESSION_NONE, .key = key, .text = value};
                 png_set_text(static_cast<png_structp>(p), static_cast<png_infop>(i), &text, 1);
             },
         .addLateChunks =
             [&](void* p, void* i) {
                 const auto png = static_cast<png_structp>(p);
                 const auto info = static_cast<png_infop>(i);
                 char keys[][8] = {"Author", "Title"}, value[] = "Late";
                 for (char* key : keys) {
                     const png_text text = {
                         .compression = PNG_TEXT_COMPRESSION_zTXt, .key = key, .text = value};
                     png_set_text(png, info, &text, 1);
                 }
                 Bytes copy = exif;
                 png_set_eXIf_1(png, info, png_uint_32(copy.size()), copy.data());
             }});
}

TEST(ImageSource, TellsWhatPngChunksBehindThePixelsSay) {
    const Dictionary properties = propertiesOf(withLateChunks(exifData(6)));
    EXPECT_EQ(integerAt(properties.get(), kCGImagePropertyOrientation), 6);
    EXPECT_TRUE(dictionaryAt(properties, kCGImagePropertyExifDictionary));
    const CFDictionaryRef png = dictionaryAt(properties, kCGImagePropertyPNGDictionary);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(png, kCGImagePropertyPNGAuthor), CFSTR("Late")));
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(png, kCGImagePropertyPNGTitle), CFSTR("Early")));
}

// Profiles of version 2, in ASCII, and of version 4, in UTF-16.
TEST(ImageSource, TellsHowAProfileCallsItself) {
    const auto of = [](const char* path) -> std::string {
        const auto provider = cf::adopt(CGDataProviderCreateWithFilename(path));
        const auto data = cf::adopt(CGDataProviderCopyData(provider.get()));
        if (!data)
            return "no file";
        const Dictionary properties = propertiesOf(makePng({.addChunks = [&](void* p, void* i) {
            png_set_iCCP(static_cast<png_structp>(p), static_cast<png_infop>(i), "its file's name",
                         PNG_COMPRESSION_TYPE_BASE, CFDataGetBytePtr(data.get()),
                         png_uint_32(CFDataGetLength(data.get())));
        }}));
        const auto* const name = static_cast<CFStringRef>(
            CFDictionaryGetValue(properties.get(), kCGImagePropertyProfileName));
        char text[100] = "no name";
        if (name)
            CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8);
        return text;
    };
    const struct {
        const char* path;
        const char* name;
    } cases[] = {
        {"/usr/share/color/icc/ghostscript/a98.icc", "Artifex Software A98 ICC Profile "},
        {"/usr/share/color/icc/ghostscript/ps_rgb.icc", "Artifex PS RGB Profile"},
    };
    for (const auto& [path, name] : cases)
        EXPECT_EQ(of(path), name) << path;
}

// ---- Thumbnails.

// A PNG file of 4 x 2 gray pixels in a JPEG's clothes would not do: EXIF orientation comes in a
// chunk of PNG as well, which is lossless.
Bytes orientedPng(std::uint8_t orientation) {
    return makePng(
        {.width = 8, .height = 4, .colorType = 2, .addChunks = [=](void* png, void* info) {
             Bytes exif = exifData(orientation);
             png_set_eXIf_1(static_cast<png_structp>(png), static_cast<png_infop>(info),
                            png_uint_32(exif.size()), exif.data());
         }});
}

Image thumbnailOf(const Bytes& file, int mostPixels, bool turned) {
    const auto options = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    const auto limit = cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &mostPixels));
    CFDictionarySetValue(options.get(), kCGImageSourceThumbnailMaxPixelSize, limit.get());
    CFDictionarySetValue(options.get(), kCGImageSourceCreateThumbnailFromImageAlways,
                         kCFBooleanTrue);
    CFDictionarySetValue(options.get(), kCGImageSourceCreateThumbnailWithTransform,
                         turned ? kCFBooleanTrue : kCFBooleanFalse);
    return cf::adopt(CGImageSourceCreateThumbnailAtIndex(sourceOf(file).get(), 0, options.get()));
}

TEST(ImageSourceThumbnail, IsTheMeanOfThePixelsThatItCovers) {
    const Bytes file = orientedPng(1), pixels = pixelsOf(imageOf(file).get());
    const Image thumbnail = thumbnailOf(file, 4, false);
    ASSERT_EQ(CGImageGetWidth(thumbnail.get()), 4u);
    ASSERT_EQ(CGImageGetHeight(thumbnail.get()), 2u);
    const Bytes small = pixelsOf(thumbnail.get());
    for (std::size_t i = 0; i < 8; ++i) {
        const std::size_t at = i / 4 * 2 * 32 + i % 4 * 2 * 4;
        for (std::size_t c = 0; c < 3; ++c) {
            const int sum =
                pixels[at + c] + pixels[at + 4 + c] + pixels[at + 32 + c] + pixels[at + 36 + c];
            EXPECT_EQ(small[i * 4 + c], (sum + 2) / 4) << i;
        }
    }
}

// Each orientation by where it has the pixel that is stored first, and the one to the right of it.
TEST(ImageSourceThumbnail, StandsUprightInEveryOrientation) {
    const struct {
        std::uint8_t orientation;
        std::size_t x, y, nextX, nextY;
    } cases[] = {{1, 0, 0, 1, 0}, {2, 7, 0, 6, 0}, {3, 7, 3, 6, 3}, {4, 0, 3, 1, 3},
                 {5, 0, 0, 0, 1}, {6, 3, 0, 3, 1}, {7, 3, 7, 3, 6}, {8, 0, 7, 0, 6}};
    const Bytes stored = pixelsOf(imageOf(orientedPng(1)).get());
    for (const auto& [orientation, x, y, nextX, nextY] : cases) {
        const Image image = thumbnailOf(orientedPng(orientation), 100, true);
        const std::size_t width = CGImageGetWidth(image.get());
        ASSERT_EQ(width, orientation < 5 ? 8u : 4u) << int(orientation);
        const Bytes upright = pixelsOf(image.get());
        EXPECT_EQ(std::memcmp(&upright[(y * width + x) * 4], &stored[0], 3), 0) << int(orientation);
        EXPECT_EQ(std::memcmp(&upright[(nextY * width + nextX) * 4], &stored[4], 3), 0)
            << int(orientation);
    }
}

TEST(ImageSourceThumbnail, IsTheOneInTheFileWhereThereIsOne) {
    const Bytes small = makeJpeg({.width = 10, .height = 6});
    // A directory without entries, then one of the thumbnail's place, 38, and size.
    Bytes tiff = {'I',
                  'I',
                  42,
                  0,
                  8,
                  0,
                  0,
                  0,
                  0,
                  0,
                  14,
                  0,
                  0,
                  0, //
                  2,
                  0,
                  0x01,
                  0x02,
                  4,
                  0,
                  1,
                  0,
                  0,
                  0,
                  44,
                  0,
                  0,
                  0, //
                  0x02,
                  0x02,
                  4,
                  0,
                  1,
                  0,
                  0,
                  0,
                  std::uint8_t(small.size()),
                  std::uint8_t(small.size() >> 8),
                  0,
                  0,
                  0,
                  0,
                  0,
                  0};
    tiff.insert(tiff.end(), small.begin(), small.end());
    const Bytes file = makeJpeg({.addMarkers = [&](void* jpeg) { addExif(jpeg, tiff); }});
    const Image found =
        cf::adopt(CGImageSourceCreateThumbnailAtIndex(sourceOf(file).get(), 0, nullptr));
    EXPECT_EQ(CGImageGetWidth(found.get()), 10u);
    EXPECT_EQ(CGImageGetWidth(thumbnailOf(file, 100, false).get()), 35u);
    EXPECT_FALSE(
        cf::adopt(CGImageSourceCreateThumbnailAtIndex(sourceOf(makeJpeg({})).get(), 0, nullptr)));
}

// ---- The drawing library's own functions.

TEST(ImageSource, ServesTheDrawingLibrary) {
    const Bytes png = makePng({}), jpeg = makeJpeg({}), jpeg2000 = makeJpeg2000({});
    const auto fromPng = [](const Bytes& file, bool interpolates) {
        const auto provider = cf::adopt(CGDataProviderCreateWithCFData(dataOf(file).get()));
        return cf::adopt(CGImageCreateWithPNGDataProvider(provider.get(), nullptr, interpolates,
                                                          kCGRenderingIntentSaturation));
    };
    const auto fromJpeg = [](const Bytes& file) {
        const auto provider = cf::adopt(CGDataProviderCreateWithCFData(dataOf(file).get()));
        return cf::adopt(CGImageCreateWithJPEGDataProvider(provider.get(), nullptr, true,
                                                           kCGRenderingIntentDefault));
    };
    const Image image = fromPng(png, false);
    ASSERT_TRUE(image);
    EXPECT_TRUE(CFEqual(CGImageGetUTType(image.get()), CFSTR("public.png")));
    EXPECT_FALSE(CGImageGetShouldInterpolate(image.get()));
    EXPECT_EQ(CGImageGetRenderingIntent(image.get()), kCGRenderingIntentSaturation);
    EXPECT_EQ(pixelsOf(image.get()), pixelsOf(imageOf(png).get()));
    EXPECT_FALSE(fromPng(jpeg, true));
    EXPECT_TRUE(fromJpeg(jpeg));
    EXPECT_TRUE(fromJpeg(jpeg2000));
    EXPECT_FALSE(fromJpeg(png));
}

} // namespace
