// CGBitmapContextTest.cpp: which bitmaps are accepted, whose memory they use, and what that costs.

#include "XGBitmapContext.h"
#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"
#include "Support/Picture.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

using test::kBGRA;
using test::makeContext;

namespace {

enum class Space { None, Gray, RGB, CMYK, Lab, Indexed, IndexedLab };

cf::Ref<CGColorSpaceRef> makeSpace(Space space) {
    const CGFloat white[] = {1, 1, 1};
    const unsigned char table[6] = {};
    switch (space) {
    case Space::None:
        return nullptr;
    case Space::Gray:
        return cf::adopt(CGColorSpaceCreateDeviceGray());
    case Space::RGB:
        return cf::adopt(CGColorSpaceCreateDeviceRGB());
    case Space::CMYK:
        return cf::adopt(CGColorSpaceCreateDeviceCMYK());
    case Space::Lab:
        return cf::adopt(CGColorSpaceCreateLab(white, nullptr, nullptr));
    case Space::Indexed:
        return cf::adopt(CGColorSpaceCreateIndexed(makeSpace(Space::RGB).get(), 1, table));
    case Space::IndexedLab:
        return cf::adopt(CGColorSpaceCreateIndexed(makeSpace(Space::Lab).get(), 1, table));
    }
    return nullptr;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    return text;
}

constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();

} // namespace

TEST(BitmapContext, RefusesWhatItCannotDrawIntoAndSaysWhy) {
    const struct {
        const char* what;
        std::size_t width, height, bitsPerComponent, bytesPerRow;
        Space space;
        CGBitmapInfo info;
        const char* logged; // NULL: nothing is.
    } cases[] = {
        {"no width", 0, 4, 8, 0, Space::RGB, kBGRA, nullptr},
        {"no height", 4, 0, 8, 0, Space::RGB, kBGRA, nullptr},
        {"no bits", 4, 4, 0, 0, Space::RGB, kBGRA, nullptr},
        {"alpha last", 4, 4, 8, 0, Space::RGB, kCGImageAlphaLast,
         "_CGBitmapContextCreateInternal: Unsupported alpha format: kCGImageAlphaLast"},
        {"alpha first", 4, 4, 8, 0, Space::RGB, kCGImageAlphaFirst,
         "_CGBitmapContextCreateInternal: Unsupported alpha format: kCGImageAlphaFirst"},
        {"alpha unknown", 4, 4, 8, 0, Space::RGB, 8, nullptr},
        {"row a byte short", 4, 4, 8, 15, Space::RGB, kBGRA,
         "invalid arguments (bytesPerRow=15, bitsPerPixel=32, width=4)"},
        {"row overflows", kHuge / 8, 4, 8, 0, Space::RGB, kBGRA, "invalid arguments"},
        {"size overflows", 4, kHuge / 8, 8, 0, Space::RGB, kBGRA, "Unable to validate"},
        {"too wide to address", std::size_t{1} << 31, 1, 8, 0, Space::RGB, kBGRA,
         "Unable to validate"},
        {"unknown byte order", 4, 4, 8, 0, Space::RGB, kCGImageAlphaPremultipliedFirst | 0x5000u,
         "Cannot get configuration for bitmap info with endianness flag 5000"},
        {"40 bits", 4, 4, 10, 0, Space::RGB, kCGImageAlphaPremultipliedLast,
         "Unable to support 40 bits per pixels for RGB formats"},
        {"no space and no alpha", 4, 4, 8, 0, Space::None, kCGImageAlphaNone,
         "Cannot get configuration with bpp: 0, bpc: 8"},
        {"Lab", 4, 4, 8, 0, Space::Lab, kCGImageAlphaNone, "Colorspace 3 not supported."},
        {"48 bits", 4, 4, 16, 0, Space::RGB, kCGImageAlphaNone,
         "Unable to support 48 bits per pixels for RGB formats"},
        {"half floats", 4, 4, 16, 0, Space::RGB,
         kCGImageAlphaPremultipliedLast | kCGBitmapFloatComponents,
         "bitmapInfo: 0x101, bitsPerPixel: 64, bitsPerComponent: 16, isFromMask: no"},
        {"gray of 16 bits", 4, 4, 16, 0, Space::Gray, kCGImageAlphaNone, "Unknown color type"},
        {"gray in another order", 4, 4, 8, 0, Space::Gray,
         kCGImageAlphaNone | kCGImagePixelFormatRGB565,
         "Cannot support non-RGB/CMYK/GA colorspace with permute configurations at the moment"},
        {"inks with alpha", 4, 4, 8, 0, Space::CMYK, kCGImageAlphaPremultipliedLast,
         "Unable to support alpha format 1 for CMYK formats"},
        {"inks of 16 bits", 4, 4, 16, 0, Space::CMYK, kCGImageAlphaNone,
         "Unable to support 64 bits per pixels for CMYK formats"},
        {"indices of 4 bits", 4, 4, 4, 0, Space::Indexed, kCGImageAlphaNone,
         "Invalid colortable index size."},
        {"table of Lab", 4, 4, 8, 0, Space::IndexedLab, kCGImageAlphaNone,
         "Colorspace 3 not supported."},
        {"more than there is memory", kHuge >> 38, kHuge >> 38, 8, 0, Space::RGB, kBGRA,
         "Failed to allocate pixels (67108863X67108863+32-bit)."},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        const CollectedLog log;
        const auto context =
            cf::adopt(CGBitmapContextCreate(nullptr, row.width, row.height, row.bitsPerComponent,
                                            row.bytesPerRow, makeSpace(row.space).get(), row.info));
        EXPECT_FALSE(context);
        if (row.logged)
            EXPECT_THAT(joined(log.lines()), testing::HasSubstr(row.logged));
        else
            EXPECT_THAT(log.lines(), testing::IsEmpty());
    }
}

TEST(BitmapContext, DescribesTheFormatThatWasAskedFor) {
    const struct {
        const char* what;
        Space space;
        CGBitmapInfo info;
        std::size_t bitsPerPixel;
    } cases[] = {
        {"BGRA", Space::RGB, kBGRA, 32},
        {"BGRX", Space::RGB, kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little, 32},
        {"RGBA", Space::RGB, kCGImageAlphaPremultipliedLast, 32},
        {"RGBX, order named", Space::RGB, kCGImageAlphaNoneSkipLast | kCGBitmapByteOrder32Big, 32},
        {"gray", Space::Gray, kCGImageAlphaNone, 8},
        {"alpha of a gray space", Space::Gray, kCGImageAlphaOnly, 8},
        {"alpha", Space::None, kCGImageAlphaOnly, 8},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        const auto space = makeSpace(row.space);
        // The private bit for recorded commands is not the caller's to set.
        const auto context = cf::adopt(
            CGBitmapContextCreate(nullptr, 5, 3, 8, 0, space.get(), row.info | 0x40000000));
        ASSERT_TRUE(context);
        const CGContextRef c = context.get();
        CGContextSetAllowsAcceleration(c, false);
        EXPECT_EQ(CGContextGetType(c), unsigned{kXGContextKindBitmap});
        EXPECT_EQ(CGBitmapContextGetWidth(c), 5u);
        EXPECT_EQ(CGBitmapContextGetHeight(c), 3u);
        EXPECT_EQ(CGBitmapContextGetBitsPerComponent(c), 8u);
        EXPECT_EQ(CGBitmapContextGetBitsPerPixel(c), row.bitsPerPixel);
        EXPECT_EQ(CGBitmapContextGetBytesPerRow(c), 5 * row.bitsPerPixel / 8);
        EXPECT_EQ(CGBitmapContextGetColorSpace(c), space.get());
        EXPECT_EQ(CGBitmapContextGetBitmapInfo(c), row.info);
        EXPECT_EQ(CGBitmapContextGetAlphaInfo(c), row.info & kCGBitmapAlphaInfoMask);
        EXPECT_TRUE(CGRectEqualToRect(CGContextGetClipBoundingBox(c), CGRectMake(0, 0, 5, 3)));
        const auto* const pixels = static_cast<const std::uint8_t*>(CGBitmapContextGetData(c));
        EXPECT_TRUE(std::all_of(pixels, pixels + 15 * row.bitsPerPixel / 8,
                                [](std::uint8_t byte) { return byte == 0; }));
    }
}

TEST(BitmapContext, CallerMemoryKeepsItsContentsAndIsGivenBackOnce) {
    struct Release {
        int count = 0;
        void* data = nullptr;
    } released;
    const auto release = [](void* info, void* data) {
        ++static_cast<Release*>(info)->count;
        static_cast<Release*>(info)->data = data;
    };
    std::uint32_t pixels[2][4] = {{0xFF112233, 1, 2, 3}, {4, 5, 6, 7}};
    auto context = cf::adopt(CGBitmapContextCreateWithData(
        pixels, 3, 2, 8, sizeof pixels[0], makeSpace(Space::RGB).get(), kBGRA, release, &released));
    ASSERT_TRUE(context);
    EXPECT_EQ(CGBitmapContextGetData(context.get()), pixels);
    CGContextFillRect(context.get(), CGRectMake(2, 0, 1, 1));
    EXPECT_EQ(pixels[0][0], 0xFF112233u);
    EXPECT_EQ(pixels[1][2], 0xFF000000u);
    EXPECT_EQ(pixels[1][3], 7u); // Behind the row.
    EXPECT_EQ(released.count, 0);
    context = nullptr;
    EXPECT_EQ(released.count, 1);
    EXPECT_EQ(released.data, pixels);

    EXPECT_FALSE(cf::adopt(CGBitmapContextCreateWithData(
        pixels, 3, 2, 8, 1, makeSpace(Space::RGB).get(), kBGRA, release, &released)));
    EXPECT_EQ(released.count, 1);
}

TEST(BitmapContext, TakesPixelsFromTheCallersAllocator) {
    struct Memory {
        std::uint8_t bytes[64] = {};
        std::size_t asked = 0;
        int released = 0;
        bool refuses = false;
    } memory;
    const auto allocate = [](void* info, std::size_t size) -> void* {
        auto& memory = *static_cast<Memory*>(info);
        memory.asked = size;
        return memory.refuses ? nullptr : memory.bytes;
    };
    const auto release = [](void* info, void*) { ++static_cast<Memory*>(info)->released; };
    const auto create = [&] {
        return cf::adopt(_CGBitmapContextCreateWithDataAllocator(
            nullptr, 4, 4, 8, 0, makeSpace(Space::RGB).get(), kBGRA, allocate, release, &memory));
    };
    {
        const auto context = create();
        ASSERT_TRUE(context);
        EXPECT_EQ(memory.asked, 64u);
        EXPECT_EQ(CGBitmapContextGetData(context.get()), memory.bytes);
    }
    EXPECT_EQ(memory.released, 1);
    memory.refuses = true;
    const CollectedLog log;
    EXPECT_FALSE(create());
    EXPECT_THAT(joined(log.lines()), testing::HasSubstr("Failed to allocate pixels (4X4+32-bit)."));
    EXPECT_EQ(memory.released, 1);
}

TEST(BitmapContext, GettersAnswerNothingForOtherContexts) {
    const XGContextCallbacks none = {};
    const auto other = cf::adopt(XGContextCreate(77, &none, nullptr, 0));
    // Calls itself a bitmap context, but has not the fields of one.
    const auto impostor = cf::adopt(XGContextCreate(kXGContextKindBitmap, &none, nullptr, 0));
    ASSERT_TRUE(other && impostor);
    for (const CGContextRef context : {CGContextRef{nullptr}, other.get(), impostor.get()}) {
        EXPECT_EQ(CGBitmapContextGetData(context), nullptr);
        EXPECT_EQ(CGBitmapContextGetWidth(context), 0u);
        EXPECT_EQ(CGBitmapContextGetHeight(context), 0u);
        EXPECT_EQ(CGBitmapContextGetBitsPerComponent(context), 0u);
        EXPECT_EQ(CGBitmapContextGetBitsPerPixel(context), 0u);
        EXPECT_EQ(CGBitmapContextGetBytesPerRow(context), 0u);
        EXPECT_EQ(CGBitmapContextGetColorSpace(context), nullptr);
        EXPECT_EQ(CGBitmapContextGetBitmapInfo(context), 0u);
        EXPECT_EQ(CGBitmapContextGetAlphaInfo(context), kCGImageAlphaNone);
        XGBitmapContextAddFlags(context, 1);
    }
    const auto bitmap = makeContext(1, 1);
    XGBitmapContextAddFlags(bitmap.get(), 0x10000000);
    EXPECT_EQ(CGBitmapContextGetBitmapInfo(bitmap.get()), kBGRA | 0x10000000);
}

TEST(BitmapContext, CostsLittleBeyondItsPixels) {
    constexpr std::ptrdiff_t kMost = 4096;
    const auto drawSome = [](CGContextRef context) {
        CGContextSetRGBFillColor(context, 1, 0, 0, 0.5f);
        CGContextClipToRect(context, CGRectMake(3, 3, 50, 50));
        CGContextFillRect(context, CGRectMake(2.5f, 2.5f, 30, 30));
    };
    drawSome(makeContext(64, 64).get()); // Makes what is made only once.
    const test::AllocationMeter meter;
    const auto context = makeContext(64, 64);
    EXPECT_LE(meter.liveBytes(), 64 * 64 * 4 + kMost);
    drawSome(context.get());
    EXPECT_LE(meter.liveBytes(), 64 * 64 * 4 + kMost);
}

TEST(BitmapContext, IsWholeOrNothingWhenMemoryRunsOut) {
    makeContext(16, 16); // Skia ends the process where it cannot make what it makes only once.
    bool isWhole = true;
    const test::FailureSweep sweep = test::failEachAllocation([&isWhole] {
        const auto context = makeContext(16, 16);
        const CGRect clip = CGContextGetClipBoundingBox(context.get());
        // One that could not have its pixels yet records, and has them later.
        isWhole = isWhole && (!context || ((CGBitmapContextHasCommandQueue(context.get()) ||
                                            CGBitmapContextGetData(context.get())) &&
                                           CGRectEqualToRect(clip, CGRectMake(0, 0, 16, 16))));
    });
    EXPECT_GT(sweep.failures, 3u);
    EXPECT_EQ(sweep.leakedBytes, 0);
    EXPECT_TRUE(isWhole);
}

// ---- Native buffers

TEST(BitmapContext, LocksANativeBufferForEachMarkAndStopsWhenItIsReleased) {
    struct Buffer {
        XGNativeBuffer record = {};
        std::uint32_t pixels[2][4] = {};
        int locks = 0, unlocks = 0;
    };
    for (const CGBitmapInfo info :
         {kBGRA, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Big}) {
        SCOPED_TRACE(info);
        Buffer buffer;
        // There only while it is locked; the record stands first.
        buffer.record = {.width = 3, .height = 2, .bytesPerRow = sizeof buffer.pixels[0]};
        buffer.record.lock = [](XGNativeBuffer* record) {
            auto* const buffer = reinterpret_cast<Buffer*>(record);
            record->data = buffer->pixels;
            ++buffer->locks;
        };
        buffer.record.unlock = [](XGNativeBuffer* record) {
            record->data = nullptr;
            ++reinterpret_cast<Buffer*>(record)->unlocks;
        };
        const auto context = cf::adopt(XGBitmapContextCreateWithNativeBuffer(
            &buffer.record, 8, makeSpace(Space::RGB).get(), info));
        ASSERT_TRUE(context);
        CGContextSetGrayFillColor(context.get(), 1, 1);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
        CGContextFillEllipseInRect(context.get(), CGRectMake(1, -1, 4, 4));
        EXPECT_EQ(buffer.pixels[1][0], 0xFFFFFFFFu);
        EXPECT_EQ(buffer.pixels[1][2], 0xFFFFFFFFu);
        EXPECT_EQ(buffer.pixels[0][0], 0u);
        EXPECT_EQ(buffer.pixels[1][3], 0u) << "behind the row";
        EXPECT_TRUE(cf::adopt(CGBitmapContextCreateImage(context.get())));
        EXPECT_TRUE(cf::adopt(XGBitmapContextCreateClone(context.get())));
        EXPECT_EQ(buffer.locks, 5);
        EXPECT_EQ(buffer.unlocks, 5);

        buffer.record.lock = nullptr;
        const CollectedLog log;
        CGContextFillRect(context.get(), CGRectMake(0, 0, 3, 2));
        EXPECT_EQ(buffer.pixels[0][0], 0u);
        EXPECT_THAT(joined(log.lines()), testing::HasSubstr("Drawing into bitmap context after "
                                                            "releasing the native buffer."));
        EXPECT_FALSE(cf::adopt(CGBitmapContextCreateImage(context.get())));
        EXPECT_FALSE(cf::adopt(XGBitmapContextCreateClone(context.get())));
        EXPECT_FALSE(cf::adopt(XGBitmapContextCreateWithNativeBuffer(
            &buffer.record, 8, makeSpace(Space::RGB).get(), info)));
    }
}

// ---- Copies of the pixels

TEST(BitmapContext, ClonesArePixelsOfTheirOwn) {
    const auto context = makeContext(2, 1);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    CGContextClipToRect(context.get(), CGRectMake(1, 0, 1, 1));
    const auto clone = cf::adopt(XGBitmapContextCreateClone(context.get()));
    ASSERT_TRUE(clone);
    CGContextSetGrayFillColor(clone.get(), 1, 1);
    CGContextFillRect(clone.get(), CGRectMake(0, 0, 1, 1));
    EXPECT_EQ(*static_cast<std::uint32_t*>(CGBitmapContextGetData(clone.get())), 0xFFFFFFFFu);
    EXPECT_EQ(*static_cast<std::uint32_t*>(CGBitmapContextGetData(context.get())), 0xFF000000u);
    EXPECT_EQ(CGBitmapContextGetBitmapInfo(clone.get()), kBGRA);
    EXPECT_EQ(CGBitmapContextGetColorSpace(clone.get()),
              CGBitmapContextGetColorSpace(context.get()));
}

TEST(BitmapContext, ImagesOfAPartBeginAtTheUpperLeft) {
    const auto context = makeContext(3, 3);
    CGContextFillRect(context.get(), CGRectMake(1, 1, 1, 2)); // Touches the upper edge.
    const auto image = cf::adopt(XGBitmapContextCreateImageWithSize(context.get(), 2, 1));
    const auto shown = makeContext(2, 1);
    CGContextDrawImage(shown.get(), CGRectMake(0, 0, 2, 1), image.get());
    EXPECT_EQ(test::Picture(shown.get()), test::Picture({".#"}));
    EXPECT_FALSE(cf::adopt(XGBitmapContextCreateImageWithSize(context.get(), 4, 1)));
    EXPECT_FALSE(cf::adopt(XGBitmapContextCreateImageWithSize(context.get(), 1, 0)));
}

TEST(BitmapContext, OpacitiesBecomeGraysWhereTheyAre) {
    const auto context =
        cf::adopt(CGBitmapContextCreate(nullptr, 2, 1, 8, 0, nullptr, kCGImageAlphaOnly));
    CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
    EXPECT_TRUE(XGBitmapContextConvertFromAlphaToGrayscale(context.get()));
    EXPECT_EQ(CGBitmapContextGetAlphaInfo(context.get()), kCGImageAlphaNone);
    EXPECT_EQ(CGColorSpaceGetModel(CGBitmapContextGetColorSpace(context.get())),
              kCGColorSpaceModelMonochrome);
    CGContextSetGrayFillColor(context.get(), 0.2f, 1);
    CGContextFillRect(context.get(), CGRectMake(1, 0, 1, 1));
    const auto* const grays =
        static_cast<const std::uint8_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_EQ(std::vector(grays, grays + 2), (std::vector<std::uint8_t>{255, 51}));
    EXPECT_FALSE(XGBitmapContextConvertFromAlphaToGrayscale(context.get()));
}

TEST(BitmapContext, DumpsAFileOfBGRAFromTheTop) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path("dump.tga");
    const auto context = makeContext(3, 2, test::kRGBA);
    CGContextSetRGBFillColor(context.get(), 1, 0.4f, 0, 0.6f);
    CGContextFillRect(context.get(), CGRectMake(1, 1, 1, 1));
    EXPECT_TRUE(XGBitmapContextDumpTGA(context.get(), path.c_str()));
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<char> expected = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 32, 40};
    expected.resize(18 + 24);
    const char pixel[] = {0, 102, char(255), char(153)};
    std::copy(std::begin(pixel), std::end(pixel), &expected[18 + 4]);
    EXPECT_EQ(bytes, expected);

    const CollectedLog log;
    EXPECT_FALSE(XGBitmapContextDumpTGA(context.get(), folder.path("none/dump.tga").c_str()));
    EXPECT_THAT(joined(log.lines()), testing::HasSubstr("Failed to write"));
}
