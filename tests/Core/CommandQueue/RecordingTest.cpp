// RecordingTest.cpp: bitmap contexts that record draw what those with pixels draw.

#include "XGBitmapContext.h"
#include "XGCommandQueue.h"
#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/RandomDrawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using test::Context;
using test::RandomDrawing;
using Bytes = std::vector<std::uint8_t>;
using Image = cf::Ref<CGImageRef>;

constexpr std::size_t kWidth = 64, kHeight = 48;

struct Format {
    const char* what;
    const char* space; // "" is the device's RGB, NULL its gray.
    std::size_t bitsPerComponent;
    CGBitmapInfo info;
    std::size_t bytesPerPixel;
    // Of the pixel's last byte: the bits that belong to some component.
    std::uint8_t meaningful = 0xFF;
};

constexpr Format kFormats[] = {
    {"BGRA", "", 8, test::kBGRA, 4},
    {"RGBA", "", 8, kCGImageAlphaPremultipliedLast, 4},
    {"BGRX", "", 8, kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder32Little, 4},
    {"ARGB", "", 8, kCGImageAlphaPremultipliedFirst, 4},
    {"24 bits", "", 8, kCGImageAlphaNone, 3},
    {"64 bits", "", 16, kCGImageAlphaPremultipliedLast, 8},
    {"555", "", 5, kCGImageAlphaNoneSkipFirst | kCGBitmapByteOrder16Little, 2, 0x7F},
    {"gray", nullptr, 8, kCGImageAlphaNone, 1},
    {"gray and alpha", nullptr, 8, kCGImageAlphaPremultipliedLast, 2},
    {"BGRA of a profile", "calibrated", 8, test::kBGRA, 4},
};

cf::Ref<CGColorSpaceRef> spaceOf(const Format& format) {
    if (!format.space)
        return cf::adopt(CGColorSpaceCreateDeviceGray());
    constexpr CGFloat white[] = {0.9505f, 1, 1.089f}, gamma[] = {1.8f, 1.8f, 1.8f};
    if (*format.space)
        return cf::adopt(CGColorSpaceCreateCalibratedRGB(white, nullptr, gamma, nullptr));
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}

Context makeContext(const Format& format, void* memory) {
    return cf::adopt(CGBitmapContextCreate(memory, kWidth, kHeight, format.bitsPerComponent,
                                           kWidth * format.bytesPerPixel, spaceOf(format).get(),
                                           format.info));
}

std::size_t sizeOf(const Format& format) {
    return kWidth * kHeight * format.bytesPerPixel;
}

// Without the bits that belong to no component.
Bytes meaningful(const std::uint8_t* first, const Format& format) {
    Bytes bytes(first, first + sizeOf(format));
    for (std::size_t i = format.bytesPerPixel - 1; i < bytes.size(); i += format.bytesPerPixel)
        bytes[i] &= format.meaningful;
    return bytes;
}

Bytes drawnInPixels(const Format& format, const RandomDrawing& program) {
    Bytes bytes(sizeOf(format));
    drawAtRandom(makeContext(format, bytes.data()).get(), program);
    return meaningful(bytes.data(), format);
}

Bytes pixelsOf(CGContextRef context, const Format& format) {
    return meaningful(static_cast<const std::uint8_t*>(CGBitmapContextGetData(context)), format);
}

Bytes pixelsOf(CGDataProviderRef provider, const Format& format) {
    const auto data = cf::adopt(CGDataProviderCopyData(provider));
    EXPECT_EQ(CFDataGetLength(data.get()), static_cast<CFIndex>(sizeOf(format)));
    return meaningful(CFDataGetBytePtr(data.get()), format);
}

Bytes pixelsOf(CGImageRef image) {
    return pixelsOf(CGImageGetDataProvider(image), kFormats[0]);
}

int largestDifference(const Bytes& a, const Bytes& b) {
    int largest = a.size() == b.size() ? 0 : 256;
    for (std::size_t i = 0; largest < 256 && i < a.size(); ++i)
        largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

class Option {
public:
    Option(const char* name, bool value) : name_(name), before_(!value) {
        if (name_)
            EXPECT_TRUE(HostOptionSetBoolean(name_, value));
    }
    ~Option() {
        if (name_)
            HostOptionSetBoolean(name_, before_);
    }
    Option(const Option&) = delete;
    Option& operator=(const Option&) = delete;

private:
    const char* name_;
    bool before_;
};

// ---- Equal pictures

TEST(Recording, DrawsWhatPixelsDraw) {
    int recorded = 0;
    for (const Format& format : kFormats) {
        for (std::uint32_t seed = 0; seed < 300; ++seed) {
            const RandomDrawing program = {.seed = seed,
                                           .steps = 4 + static_cast<int>(seed % 45),
                                           .simple = seed % 3 == 0 ? 100 : 92};
            const Context context = makeContext(format, nullptr);
            ASSERT_TRUE(CGBitmapContextHasCommandQueue(context.get())) << format.what;
            drawAtRandom(context.get(), program);
            recorded += CGBitmapContextHasCommandQueue(context.get());
            ASSERT_EQ(
                largestDifference(pixelsOf(context.get(), format), drawnInPixels(format, program)),
                0)
                << format.what << ", program " << seed;
            EXPECT_FALSE(CGBitmapContextHasCommandQueue(context.get()));
        }
    }
    EXPECT_GT(recorded, 400) << "most programs were too much for commands";
}

// What images of the context show, made before it has pixels and drawn on after that.
TEST(Recording, ImagesShowWhatWasRecordedAndNothingLater) {
    const Format& format = kFormats[0];
    int lazy = 0;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const RandomDrawing first = {.seed = seed, .steps = 12, .simple = 98};
        const RandomDrawing second = {.seed = seed + 1000, .steps = 12, .simple = 98};
        const Context context = makeContext(format, nullptr);
        drawAtRandom(context.get(), first);
        const Image before = cf::adopt(CGBitmapContextCreateImage(context.get()));
        const auto queue = static_cast<XGCommandQueueRef>(XGImageGetCommandQueue(before.get()));
        EXPECT_EQ(queue != nullptr, CGBitmapContextHasCommandQueue(context.get()));
        lazy += queue != nullptr;
        CGContextSaveGState(context.get());
        drawAtRandom(context.get(), second);
        const Image after = cf::adopt(CGBitmapContextCreateImage(context.get()));

        Bytes memory(sizeOf(format));
        const Context peer = makeContext(format, memory.data());
        drawAtRandom(peer.get(), first);
        ASSERT_EQ(largestDifference(pixelsOf(before.get()), memory), 0) << seed;
        CGContextSaveGState(peer.get());
        drawAtRandom(peer.get(), second);
        ASSERT_EQ(largestDifference(pixelsOf(after.get()), memory), 0) << seed;
    }
    EXPECT_GT(lazy, 50);
}

// The queue that an image of the context stands for, if it has one.
XGCommandQueueRef queueOf(CGImageRef image) {
    return static_cast<XGCommandQueueRef>(XGImageGetCommandQueue(image));
}

// As the compositor does it: images are uploaded under their keys, and found again.
cf::Ref<XGCommandQueueRef> throughABuffer(XGCommandQueueRef queue, CGColorSpaceRef space) {
    size_t size = 0;
    if (!XGCommandQueueSerialize(queue, nullptr, &size))
        return nullptr;
    std::vector<std::uint8_t> buffer(size);
    XGCommandQueueSerialize(queue, buffer.data(), &size);
    const CFMutableArrayRef uploads = XGCommandQueueGetImagesToUpload();
    std::vector<std::uint32_t> keys;
    for (CFIndex i = 0; i < CFArrayGetCount(uploads); ++i) {
        auto* const image =
            static_cast<CGImageRef>(const_cast<void*>(CFArrayGetValueAtIndex(uploads, i)));
        keys.push_back(XGCommandQueueGetImageKey(image));
        XGCommandQueueTrackUploadedImage(keys.back(), CGImageRetain(image));
    }
    CFArrayRemoveAllValues(uploads);
    auto back = cf::adopt(XGCommandQueueCreateDeserialized(buffer.data(), space));
    for (const std::uint32_t key : keys)
        XGCommandQueueFinalizeImage(key);
    CFArrayRemoveAllValues(XGCommandQueueGetImagesToFinalize());
    return back;
}

TEST(Recording, SurvivesFlatBuffers) {
    int compared = 0;
    for (const Format& format : kFormats) {
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            const RandomDrawing program = {.seed = seed, .steps = 25, .simple = 99};
            const Context context = makeContext(format, nullptr);
            drawAtRandom(context.get(), program);
            const Image image = cf::adopt(CGBitmapContextCreateImage(context.get()));
            const XGCommandQueueRef queue = queueOf(image.get());
            const auto back = throughABuffer(queue, spaceOf(format).get());
            if (!queue)
                continue;
            ASSERT_TRUE(back) << seed;
            const auto provider = cf::adopt(XGCommandQueueCreateDataProvider(back.get()));
            ASSERT_EQ(
                largestDifference(pixelsOf(provider.get(), format), drawnInPixels(format, program)),
                0)
                << format.what << ", program " << seed;
            ++compared;
        }
    }
    EXPECT_GT(compared, 100);
}

TEST(Recording, DrawsTheSameWhateverTheOptionsSay) {
    const struct {
        const char* option;
        bool records;
    } cases[] = {{"NIMBRA_GPU_DRAWING", false},
                 {"NIMBRA_GPU_FONTS", true},
                 {"NIMBRA_GPU_CIRCLE", true},
                 {"NIMBRA_GPU_BLEND_MODES", true}};
    makeContext(kFormats[0], nullptr); // Registers them.
    for (const auto& [option, records] : cases) {
        const Option off(option, false);
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            const RandomDrawing program = {.seed = seed, .steps = 40, .simple = 97};
            const Context context = makeContext(kFormats[0], nullptr);
            EXPECT_EQ(CGBitmapContextHasCommandQueue(context.get()), records) << option;
            drawAtRandom(context.get(), program);
            ASSERT_EQ(largestDifference(pixelsOf(context.get(), kFormats[0]),
                                        drawnInPixels(kFormats[0], program)),
                      0)
                << option << ", program " << seed;
        }
    }
}

} // namespace
