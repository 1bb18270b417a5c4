// CGImageCropTest.cpp: parts of images, against a model that picks bytes by hand.

#include "Images.h"
#include "Support/CollectedLog.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace test;

struct Crop {
    std::size_t x, y, width, height;
};

// The bytes that hold the pixels of `crop`, row after row.
Bytes model(const Bytes& bytes, std::size_t bitsPerPixel, std::size_t bytesPerRow, Crop crop) {
    Bytes part;
    for (std::size_t y = crop.y; y < crop.y + crop.height; ++y)
        for (std::size_t bit = crop.x * bitsPerPixel; bit < (crop.x + crop.width) * bitsPerPixel;
             bit += 8)
            part.push_back(bytes[y * bytesPerRow + bit / 8]);
    return part;
}

// The same of an image: as many bytes as its pixels take, from each row of its provider.
Bytes rowsOf(const Image& image) {
    const Bytes all = bytesOf(image);
    const std::size_t used =
        (CGImageGetWidth(image.get()) * CGImageGetBitsPerPixel(image.get()) + 7) / 8;
    Bytes rows;
    for (std::size_t y = 0; y < CGImageGetHeight(image.get()); ++y) {
        const std::size_t start = y * CGImageGetBytesPerRow(image.get());
        EXPECT_LE(start + used, all.size());
        rows.insert(rows.end(), all.begin() + std::ptrdiff_t(start),
                    all.begin() + std::ptrdiff_t(start + used));
    }
    return rows;
}

TEST(ImageCrop, HoldsThePixelsWithinForEveryDepth) {
    constexpr Crop crops[] = {{0, 0, 16, 1}, {8, 2, 5, 3}, {8, 5, 8, 1}, {0, 1, 1, 5}};
    const struct {
        std::size_t bitsPerComponent, bitsPerPixel;
        Space space;
    } layouts[] = {{1, 1, gray()}, {2, 2, gray()}, {4, 4, gray()},  {8, 8, gray()},
                   {5, 16, rgb()}, {8, 24, rgb()}, {16, 48, rgb()}, {32, 96, rgb()}};
    for (const auto& [component, pixel, space] : layouts) {
        const std::size_t rowBytes = 2 * pixel + 3; // 16 pixels and some bytes more.
        const Bytes bytes = patternBytes(rowBytes * 6);
        const Image image = imageOf(16, 6, component, pixel, rowBytes, space, 0, providerOf(bytes));
        for (const Crop& crop : crops) {
            const Image part = cf::adopt(CGImageCreateWithImageInRect(
                image.get(), CGRectMake(CGFloat(crop.x), CGFloat(crop.y), CGFloat(crop.width),
                                        CGFloat(crop.height))));
            ASSERT_TRUE(part) << pixel;
            EXPECT_EQ(rowsOf(part), model(bytes, pixel, rowBytes, crop)) << pixel;
            EXPECT_EQ(CGImageGetBitmapInfo(part.get()), CGImageGetBitmapInfo(image.get()));
        }
    }
}

TEST(ImageCrop, OfACropIsACropOfTheWhole) {
    const Bytes bytes = patternBytes(100);
    const Image image = imageOf(10, 10, 8, 8, 10, gray(), 0, providerOf(bytes));
    const Image outer =
        cf::adopt(CGImageCreateWithImageInRect(image.get(), CGRectMake(2, 3, 6, 6)));
    const Image inner =
        cf::adopt(CGImageCreateWithImageInRect(outer.get(), CGRectMake(1, 2, 3, 3)));
    EXPECT_EQ(rowsOf(inner), model(bytes, 8, 10, {3, 5, 3, 3}));
}

TEST(ImageCrop, RoundsOutwardsAndStaysWithinTheImage) {
    constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
    const Bytes bytes = patternBytes(100);
    const Image image = imageOf(10, 10, 8, 8, 10, gray(), 0, providerOf(bytes));
    const struct {
        const char* what;
        CGRect rect;
        Crop crop; // Without width: none.
    } cases[] = {
        {"fractions", {{1.5f, 2.5f}, {2, 2}}, {1, 2, 3, 3}},
        {"over the edges", {{-5, 8}, {7, 7}}, {0, 8, 2, 2}},
        {"negative size", {{6, 6}, {-2, -3}}, {4, 3, 2, 3}},
        {"no width", {{3, 3}, {0, 4}}, {}},
        {"outside", {{10, 0}, {5, 5}}, {}},
        {"null", CGRectNull, {}},
        {"not a number", {{NAN, 0}, {5, 5}}, {}},
        {"all of it", {{0, 0}, {10, 10}}, {0, 0, 10, 10}},
        {"more than all", {{-1e9f, -1e9f}, {4e9f, 4e9f}}, {0, 0, 10, 10}},
        {"infinite", CGRectInfinite, {0, 0, 10, 10}},
        {"infinite size", {{0, 0}, {kInfinity, kInfinity}}, {0, 0, 10, 10}},
    };
    for (const auto& [what, rect, crop] : cases) {
        const Image part = cf::adopt(CGImageCreateWithImageInRect(image.get(), rect));
        ASSERT_EQ(bool(part), crop.width > 0) << what;
        EXPECT_EQ(part == image, crop.width == 10) << what;
        if (part)
            EXPECT_EQ(rowsOf(part), model(bytes, 8, 10, crop)) << what;
    }
}

TEST(ImageCrop, OfAMaskIsAMaskAndStartsOnAWholeByte) {
    const CGFloat decode[] = {1, 0};
    const Image mask = cf::adopt(
        CGImageMaskCreate(20, 2, 1, 1, 3, providerOf(patternBytes(6)).get(), decode, true));
    const Image part = cf::adopt(CGImageCreateWithImageInRect(mask.get(), CGRectMake(8, 1, 3, 1)));
    EXPECT_TRUE(XGImageWasCreatedAsMask(part.get()));
    EXPECT_EQ(CGImageGetBytesPerRow(part.get()), 3u);
    EXPECT_EQ(CGImageGetDecode(part.get())[0], 1);
    const CollectedLog log;
    EXPECT_FALSE(cf::adopt(CGImageCreateWithImageInRect(mask.get(), CGRectMake(3, 0, 8, 1))));
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("3 CGImageCreateWithImageInRect: Attempt to crop an image "
                                     "with rect that does not fall on a pixel byte boundary. "
                                     "left: 3. bpp: 1"));
}

TEST(ImageCrop, OfSizesThatOverflowIsRefused) {
    const Provider provider = providerOf(patternBytes(16));
    const Image tall = imageOf(4, SIZE_MAX, 8, 8, SIZE_MAX / 2, gray(), 0, provider);
    const Image deep = imageOf(SIZE_MAX, 1, 8, SIZE_MAX - 7, 4, gray(), 0, provider);
    EXPECT_FALSE(cf::adopt(CGImageCreateWithImageInRect(tall.get(), CGRectMake(0, 9, 4, 4))));
    EXPECT_FALSE(cf::adopt(CGImageCreateWithImageInRect(deep.get(), CGRectMake(8, 0, 4, 1))));
}

} // namespace
