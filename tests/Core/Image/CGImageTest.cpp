// CGImageTest.cpp: which images can be made, and what copies of them keep.

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFString.h>

#include "Images.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"

#include <gmock/gmock.h>

#include <array>
#include <optional>
#include <set>
#include <string>

namespace {

using namespace test;

constexpr auto kNone = kCGImageAlphaNone;

Space indexed() {
    const std::uint8_t table[] = {0, 0, 0, 255, 255, 255};
    return cf::adopt(CGColorSpaceCreateIndexed(rgb().get(), 1, table));
}

Space cmyk() {
    return cf::adopt(CGColorSpaceCreateDeviceCMYK());
}

TEST(Image, IsMadeOfLegalLayoutsOnly) {
    const std::optional<CGBitmapInfo> refused;
    constexpr CGBitmapInfo kFloat = kCGBitmapFloatComponents;
    const struct {
        const char* what;
        std::size_t width, height, bitsPerComponent, bitsPerPixel;
        Space space;
        CGBitmapInfo info;
        std::optional<CGBitmapInfo> kept;
    } cases[] = {
        {"RGB", 2, 2, 8, 24, rgb(), kNone, kNone},
        {"RGB with a spare byte", 2, 2, 8, 32, rgb(), kNone, kCGImageAlphaNoneSkipLast},
        {"16-bit RGB of 5 bits", 2, 2, 5, 16, rgb(), 0x1000, 0x1000 | kCGImageAlphaNoneSkipLast},
        {"RGBA in 24 bits", 2, 2, 8, 24, rgb(), kCGImageAlphaPremultipliedLast, refused},
        {"RGBA with a spare byte", 2, 2, 8, 40, rgb(), kCGImageAlphaLast, refused},
        {"skipped with a spare byte", 2, 2, 8, 40, rgb(), kCGImageAlphaNoneSkipFirst,
         kCGImageAlphaNoneSkipFirst},
        {"skipped in too few bits", 2, 2, 8, 24, rgb(), kCGImageAlphaNoneSkipFirst, refused},
        {"CMYK and opacity", 2, 2, 16, 80, cmyk(), kCGImageAlphaLast, kCGImageAlphaLast},
        {"indexed, one bit", 2, 2, 1, 1, indexed(), kNone, kNone},
        {"opacity in a gray space", 2, 2, 8, 8, gray(), kCGImageAlphaOnly, kCGImageAlphaOnly},
        {"opacity alone with a spare bit", 2, 2, 7, 8, gray(), kCGImageAlphaOnly, refused},
        {"opacity without a space", 2, 2, 8, 8, nullptr, kCGImageAlphaOnly, kCGImageAlphaOnly},
        {"no space", 2, 2, 8, 8, nullptr, kNone, kNone},
        {"no space but an opacity", 2, 2, 8, 16, nullptr, kCGImageAlphaLast, refused},
        {"gray float", 2, 2, 32, 32, gray(), kFloat, kFloat},
        {"RGBA float", 2, 2, 32, 128, rgb(), kFloat | kCGImageAlphaLast, refused},
        {"gray half float", 2, 2, 16, 16, gray(), kFloat, refused},
        {"gray of 32 bits", 2, 2, 32, 32, gray(), kNone, kNone},
        {"gray of 33 bits", 2, 2, 33, 64, gray(), kNone, refused},
        {"components beyond counting", 2, 2, SIZE_MAX, SIZE_MAX, rgb(), kNone, refused},
        {"no width", 0, 2, 8, 24, rgb(), kNone, refused},
        {"no height", 2, 0, 8, 24, rgb(), kNone, refused},
        {"a private bit", 2, 2, 8, 8, gray(), kXGImageRigid, kXGImageRigid},
        {"huge", SIZE_MAX, SIZE_MAX, 8, 24, rgb(), kNone, kNone},
    };
    const Provider provider = providerOf(patternBytes(64));
    for (const auto& [what, width, height, component, pixel, space, info, kept] : cases) {
        const Image image = imageOf(width, height, component, pixel, 12, space, info, provider);
        ASSERT_EQ(bool(image), kept.has_value()) << what;
        if (kept) {
            EXPECT_EQ(CGImageGetBitmapInfo(image.get()), *kept) << what;
            const Image copy = cf::adopt(CGImageCreateCopy(image.get()));
            EXPECT_TRUE(XGImageEqualToImage(image.get(), copy.get())) << what;
        }
    }
    EXPECT_FALSE(imageOf(2, 2, 8, 24, 6, rgb(), kNone, nullptr));
}

TEST(Image, MaskTakesWholeBytesOfCertainDepths) {
    const struct {
        const char* what;
        std::size_t width, bitsPerComponent, bitsPerPixel, bytesPerRow;
        bool isMade;
    } cases[] = {
        {"one bit", 10, 1, 1, 2, true},
        {"one bit, padded rows", 10, 1, 1, 4, false},
        {"two bits", 10, 2, 2, 3, true},
        {"four bits", 10, 4, 4, 5, true},
        {"eight bits", 10, 8, 8, 10, true},
        {"sixteen bits", 10, 16, 16, 20, false},
        {"three bits", 8, 3, 3, 3, false},
        {"a byte for each bit", 10, 1, 8, 10, true},
        {"no width", 0, 1, 1, 0, false},
        {"too few bytes", 10, 1, 1, 1, false},
        {"rows that overflow", SIZE_MAX / 2, 8, 8, (SIZE_MAX / 2 * 8 + 7) / 8, false},
    };
    const Provider provider = providerOf(patternBytes(100));
    const CGFloat decode[] = {1, 0};
    for (const auto& [what, width, component, pixel, row, isMade] : cases) {
        const Image mask = cf::adopt(
            CGImageMaskCreate(width, 10, component, pixel, row, provider.get(), decode, false));
        ASSERT_EQ(bool(mask), isMade) << what;
        EXPECT_EQ(CGImageIsMask(mask.get()), isMade) << what;
        if (isMade)
            EXPECT_THAT(std::vector<CGFloat>(CGImageGetDecode(mask.get()),
                                             CGImageGetDecode(mask.get()) + 2),
                        testing::ElementsAre(1, 0));
    }
}

void countRelease(void* info, const void*, size_t) {
    ++*static_cast<int*>(info);
}

TEST(Image, LeavesTheProviderToTheCallerWhetherItIsMadeOrNot) {
    alignas(4) const std::uint8_t bytes[16] = {};
    int releases = 0;
    Provider provider =
        cf::adopt(CGDataProviderCreateWithData(&releases, bytes, sizeof bytes, countRelease));
    EXPECT_FALSE(imageOf(2, 2, 8, 16, 4, rgb(), kNone, provider));
    EXPECT_EQ(releases, 0);
    Image image = imageOf(2, 2, 8, 32, 8, rgb(), kNone, provider);
    provider = nullptr;
    EXPECT_EQ(releases, 0);
    image = nullptr;
    EXPECT_EQ(releases, 1);
}

TEST(Image, IsMadeOfBytesAtOddAddressesWithAnError) {
    alignas(4) static const std::uint8_t bytes[17] = {};
    const Provider provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, bytes + 1, 16, nullptr));
    const CollectedLog log;
    const auto create = [&](auto function) {
        return cf::adopt(function(2, 2, 8, 32, 8, rgb().get(), kNone, provider.get(), nullptr,
                                  false, kCGRenderingIntentDefault));
    };
    EXPECT_TRUE(create(CGImageCreate));
    EXPECT_THAT(log.lines(), testing::ElementsAre(testing::StartsWith(
                                 "3 CGImageCreate: CGImageCreate requires 4 byte-aligned data")));
    EXPECT_TRUE(create(XGImageCreateDeferred));
    EXPECT_EQ(log.lines().size(), 1u);
}

// ---- Masked images

struct MaskingParts {
    Provider provider = providerOf(patternBytes(400));
    Image picture = imageOf(4, 4, 8, 24, 12, rgb(), kNone, provider);
    Image mask = cf::adopt(CGImageMaskCreate(4, 4, 8, 8, 4, provider.get(), nullptr, false));
    Image largerMask = cf::adopt(CGImageMaskCreate(8, 4, 8, 8, 8, provider.get(), nullptr, false));
    Image grayMask = imageOf(4, 4, 8, 8, 4, gray(), kNone, provider);
    Image spacelessMask = imageOf(4, 4, 8, 8, 4, nullptr, kCGImageAlphaOnly, provider);
    Image masked = cf::adopt(CGImageCreateWithMask(picture.get(), mask.get()));
    std::array<CGFloat, 6> colors = {1, 2, 3, 4, 5, 6};
    Image keyed = cf::adopt(CGImageCreateWithMaskingColors(picture.get(), colors.data()));
};

TEST(MaskedImage, IsMadeOfAPictureAndAMaskOfItsSize) {
    const MaskingParts parts;
    const struct {
        const char* what;
        Image image, mask;
        bool isMade;
    } cases[] = {
        {"image mask", parts.picture, parts.mask, true},
        {"gray", parts.picture, parts.grayMask, true},
        {"no space", parts.picture, parts.spacelessMask, true},
        {"masked picture as a mask", parts.grayMask, parts.mask, true},
        {"colour as a mask", parts.picture, parts.picture, false},
        {"other size", parts.picture, parts.largerMask, false},
        {"masked already", parts.masked, parts.mask, false},
        {"with masking colours", parts.keyed, parts.mask, false},
        {"mask of a mask", parts.mask, parts.grayMask, false},
        {"no mask", parts.picture, nullptr, false},
    };
    for (const auto& [what, image, mask, isMade] : cases) {
        const Image masked = cf::adopt(CGImageCreateWithMask(image.get(), mask.get()));
        ASSERT_EQ(bool(masked), isMade) << what;
        EXPECT_EQ(XGImageGetMask(masked.get()), isMade ? mask.get() : nullptr) << what;
        EXPECT_FALSE(CGImageIsMaskBaked(masked.get())) << what;
    }
    for (const Image& image : {parts.masked, parts.keyed, parts.mask})
        EXPECT_FALSE(cf::adopt(CGImageCreateWithMaskingColors(image.get(), parts.colors.data())));
    EXPECT_FALSE(cf::adopt(CGImageCreateWithMaskingColors(parts.picture.get(), nullptr)));
}

TEST(MaskedImage, CopyHasNoMaskAndNoNotes) {
    const MaskingParts parts;
    for (const Image& image : {parts.masked, parts.keyed}) {
        XGImageSetSizeInPoints(image.get(), CGSizeMake(3, 4));
        CGImageAddFlags(image.get(), kXGImageUncacheable);
        const Image copy = cf::adopt(CGImageCreateCopy(image.get()));
        EXPECT_TRUE(XGImageEqualToImage(copy.get(), parts.picture.get()));
        EXPECT_TRUE(CGImageIsMaskBaked(copy.get()));
        EXPECT_TRUE(XGImageIsUncacheable(copy.get()));
        EXPECT_TRUE(CGSizeEqualToSize(XGImageGetSizeInPoints(copy.get()), CGSizeZero));
    }
    EXPECT_TRUE(XGImageWasCreatedAsMask(cf::adopt(CGImageCreateCopy(parts.mask.get())).get()));
}

TEST(Image, CopyTakesASpaceOfAsManyComponents) {
    const MaskingParts parts;
    const Space generic = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const auto copy = [](const Image& image, const Space& space) {
        return cf::adopt(CGImageCreateCopyWithColorSpace(image.get(), space.get()));
    };
    EXPECT_EQ(CGImageGetColorSpace(copy(parts.picture, generic).get()), generic.get());
    EXPECT_FALSE(copy(parts.picture, gray()));
    EXPECT_FALSE(copy(parts.picture, nullptr));
    EXPECT_FALSE(copy(parts.mask, gray()));
}

TEST(Image, CopiesMasksAndCropsAllocateNoPixels) {
    constexpr std::size_t kSide = 512;
    const Provider provider = providerOf(patternBytes(kSide * kSide * 4));
    const Image image = imageOf(kSide, kSide, 8, 32, kSide * 4, rgb(), kNone, provider);
    const Image mask = imageOf(kSide, kSide, 8, 8, kSide, gray(), kNone, provider);
    const std::array<CGFloat, 6> colors{};
    constexpr CGRect rect = {{1, 1}, {500, 500}};
    const AllocationMeter meter;
    const Image made[] = {
        cf::adopt(CGImageCreateCopy(image.get())),
        cf::adopt(CGImageCreateWithMask(image.get(), mask.get())),
        cf::adopt(CGImageCreateWithMaskingColors(image.get(), colors.data())),
        cf::adopt(CGImageCreateWithImageInRect(image.get(), rect)),
    };
    EXPECT_LE(meter.liveBytes(), 4096);
    EXPECT_THAT(made, testing::Each(testing::Truly([](const Image& one) { return bool(one); })));
}

TEST(Image, IsWholeOrNothingWhenMemoryRunsOut) {
    const MaskingParts parts;
    const FailureSweep sweep = failEachAllocation([&parts] {
        const Image masked =
            cf::adopt(CGImageCreateWithMask(parts.picture.get(), parts.mask.get()));
        const auto part =
            cf::adopt(CGImageCreateWithImageInRect(parts.picture.get(), CGRectMake(1, 1, 2, 2)));
        XGImageEqualToImage(part.get(), masked.get());
        XGImageSetDebugSource(part.get(), CFSTR("memory test"));
        XGImageGetTraceID(part.get());
    });
    EXPECT_GE(sweep.failures, 3u);
    EXPECT_EQ(sweep.leakedBytes, 0);
}

// ---- Bits and notes

TEST(Image, PrivateBitsSayWhatItsProviderIs) {
    int info = 0;
    std::uint8_t bytes[4] = {};
    const Provider provider =
        cf::adopt(CGDataProviderCreateWithData(&info, bytes, sizeof bytes, nullptr));
    const struct {
        CGBitmapInfo bit;
        void* (*get)(CGImageRef);
    } cases[] = {{kXGImageNativeBuffer, XGImageGetNativeBuffer},
                 {kXGImageCommandQueue, XGImageGetCommandQueue},
                 {kXGImageOffscreenTarget, XGImageGetOffscreenRenderTarget}};
    for (const auto& marked : cases) {
        const Image image = imageOf(2, 2, 8, 8, 2, gray(), kNone, provider);
        CGImageAddFlags(image.get(), marked.bit);
        for (const auto& asked : cases)
            EXPECT_EQ(asked.get(image.get()), asked.bit == marked.bit ? &info : nullptr);
        const Image part =
            cf::adopt(CGImageCreateWithImageInRect(image.get(), CGRectMake(0, 0, 1, 1)));
        EXPECT_EQ(marked.get(part.get()), nullptr);
    }
    const Image image = imageOf(2, 2, 8, 8, 2, gray(), kNone, provider);
    XGImageSetUploaded(image.get(), true);
    EXPECT_TRUE(XGImageIsUploaded(image.get()));
    EXPECT_FALSE(XGImageIsUploaded(cf::adopt(CGImageCreateCopy(image.get())).get()));
    XGImageSetUploaded(image.get(), false);
    EXPECT_EQ(CGImageGetBitmapInfo(image.get()), CGBitmapInfo(kNone));
}

TEST(Image, AlphaInfosAndByteOrdersAreReadBit) {
    const char* const rows[] = {
        "opaque", "last", "first", "last", "first", "opaque skip last", "opaque skip first", ""};
    for (std::uint32_t value = 0; value < std::size(rows); ++value) {
        const auto alpha = static_cast<CGImageAlphaInfo>(value);
        const std::string row = rows[value];
        const auto says = [&row](const char* word) { return row.find(word) != row.npos; };
        EXPECT_EQ(XGImageAlphaInfoIsOpaque(alpha), says("opaque")) << value;
        EXPECT_EQ(CGImageIsAlphaFirst(alpha), says("first")) << value;
        EXPECT_EQ(CGImageIsAlphaLast(alpha), says("last")) << value;
        EXPECT_EQ(CGImageSkipAlpha(alpha), says("skip")) << value;
        EXPECT_EQ(CGImageIsAlphaPremultiplied(alpha), value == 1 || value == 2) << value;
    }
    const Provider provider = providerOf(patternBytes(64));
    const bool isLittle[] = {false, true, true, true, false}; // 16-bit big-endian is 3.
    for (CGBitmapInfo order = 0; order < std::size(isLittle); ++order) {
        const Image image = imageOf(2, 2, 16, 16, 4, gray(), order << 12, provider);
        EXPECT_EQ(XGImageIsLittleEndian(image.get()), isLittle[order]) << order;
    }
}

TEST(Image, TraceNumbersStandForDebugSources) {
    const Provider provider = providerOf(patternBytes(16));
    const auto numberOf = [&provider](const std::string& source) {
        const Image image = imageOf(2, 2, 8, 8, 2, gray(), kNone, provider);
        const auto text =
            cf::adopt(CFStringCreateWithCString(nullptr, source.c_str(), kCFStringEncodingUTF8));
        XGImageSetDebugSource(image.get(), source.empty() ? nullptr : text.get());
        const std::int32_t number = XGImageGetTraceID(image.get());
        EXPECT_EQ(XGImageGetTraceID(image.get()), number);
        return number;
    };
    const std::string longName(256, 'x');
    const std::int32_t numbers[] = {XGImageGetTraceID(nullptr), numberOf(""), numberOf("a"),
                                    numberOf("b"), numberOf(longName)};
    EXPECT_THAT(numbers, testing::Each(testing::Gt(0)));
    EXPECT_EQ(std::set<std::int32_t>(std::begin(numbers), std::end(numbers)).size(), 5u);
    EXPECT_EQ(numberOf("NoImage"), numbers[0]);
    EXPECT_EQ(numberOf("UnknownImage"), numbers[1]);
    EXPECT_EQ(numberOf("a"), numbers[2]);
    EXPECT_EQ(numberOf(longName + "y"), numbers[4]);
}

// ---- Equality

TEST(Image, EqualsTheSamePictureFromWhereverItComes) {
    const Bytes bytes = patternBytes(64);
    Bytes wide(128, 0xEE); // The same rows of 6 bytes, 16 apart.
    for (std::size_t i = 0; i < 4 * 6; ++i)
        wide[i / 6 * 16 + i % 6] = bytes[i];
    Bytes other = bytes;
    other[23] ^= 1;
    const CGFloat inverted[] = {1, 0, 1, 0, 1, 0};
    const auto picture = [&](const Bytes& own, std::size_t rowBytes = 6, CGBitmapInfo info = kNone,
                             const CGFloat* decode = nullptr, const Space& space = rgb()) {
        return imageOf(2, 4, 8, 24, rowBytes, space, info, providerOf(own), decode);
    };
    const Space lab = cf::adopt(
        CGColorSpaceCreateLab(std::array<CGFloat, 3>{0.95f, 1, 1.09f}.data(), nullptr, nullptr));
    const Image image = picture(bytes);
    const Image mask = cf::adopt(
        CGImageMaskCreate(2, 4, 8, 8, 2, CGImageGetDataProvider(image.get()), nullptr, false));
    const struct {
        const char* what;
        Image other;
        bool equal;
    } cases[] = {
        {"same object", image, true},
        {"same bytes", picture(bytes), true},
        {"same pixels in longer rows", picture(wide, 16), true},
        {"private bit", picture(bytes, 6, kXGImageUncacheable), true},
        {"last bit of the last pixel", picture(other), false},
        {"same provider in other rows",
         imageOf(2, 4, 8, 24, 7, rgb(), kNone, cf::retain(CGImageGetDataProvider(image.get()))),
         false},
        {"other byte order", picture(bytes, 6, kCGBitmapByteOrder32Big), false},
        {"decode array", picture(bytes, 6, kNone, inverted), false},
        {"other space", picture(bytes, 6, kNone, nullptr, lab), false},
        {"rows that are missing", picture(Bytes(bytes.begin(), bytes.begin() + 23)), false},
        {"with a mask", cf::adopt(CGImageCreateWithMask(image.get(), mask.get())), false},
        {"no image", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases) {
        EXPECT_EQ(XGImageEqualToImage(image.get(), other.get()), equal) << what;
        EXPECT_EQ(XGImageEqualToImage(other.get(), image.get()), equal) << what;
    }
}

TEST(Image, EqualityLeavesOutBitsBehindTheLastPixel) {
    const auto mask = [](std::uint8_t last) {
        return cf::adopt(
            CGImageMaskCreate(10, 1, 1, 1, 2, providerOf({0xA5, last}).get(), nullptr, false));
    };
    EXPECT_TRUE(XGImageEqualToImage(mask(0x80).get(), mask(0xBF).get()));
    EXPECT_FALSE(XGImageEqualToImage(mask(0x80).get(), mask(0xC0).get()));
}

} // namespace
