// XGCommandQueueTest.cpp: what queues take, and how they come back from flat buffers.

#include "XGCommandQueue.h"

#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGPattern.h>

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <numeric>
#include <vector>

namespace {

using Queue = cf::Ref<XGCommandQueueRef>;

constexpr CGRect kCanvas = {{0, 0}, {40, 30}};

cf::Ref<CGColorSpaceRef> rgb() {
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}

CGColorRef makeColor(float red, float green, float blue, float alpha) {
    const CGFloat components[] = {red, green, blue, alpha};
    return CGColorCreate(rgb().get(), components);
}

Queue makeQueue() {
    return cf::adopt(XGCommandQueueCreate(40, 30, 8, 32, rgb().get(),
                                          kCGImageAlphaPremultipliedFirst |
                                              kCGBitmapByteOrder32Little | 0x40000000));
}

XGCommand* makeCommand(XGCommandKind kind, CGRect bounds, CGColorRef color, uint32_t items = 0) {
    auto* const command =
        static_cast<XGCommand*>(std::calloc(1, sizeof(XGCommand) + 16 * std::size_t{items}));
    command->kind = kind;
    command->bounds = bounds;
    command->color = color;
    command->itemCount = items;
    return command;
}

XGCommand* fillRect(CGRect rect, float alpha, CGBlendMode mode = kCGBlendModeNormal) {
    XGCommand* const command =
        makeCommand(kXGCommandFillRects, rect, makeColor(0.5f, 0.25f, 1, alpha), 1);
    command->blendMode = mode;
    *XGCommandGetRects(command) = rect;
    return command;
}

// The block stays the caller's when a queue refuses it.
void freeRefused(XGCommand* command) {
    CGColorRelease(command->color);
    CGPathRelease(command->path);
    CGImageRelease(command->image);
    std::free(command);
}

bool add(const Queue& queue, XGCommand* command) {
    const bool isTaken = XGCommandQueueAddCommand(queue.get(), command);
    if (!isTaken)
        freeRefused(command);
    return isTaken;
}

cf::Ref<CGImageRef> makeImage() {
    alignas(4) static const uint8_t pixel[4] = {10, 20, 30, 255};
    const auto provider = cf::adopt(CGDataProviderCreateWithData(nullptr, pixel, 4, nullptr));
    auto image =
        cf::adopt(CGImageCreate(1, 1, 8, 32, 4, rgb().get(), kCGImageAlphaNoneSkipLast,
                                provider.get(), nullptr, false, kCGRenderingIntentDefault));
    XGImageSetSourceDataProvider(image.get(), provider.get());
    return image;
}

class Option {
public:
    Option(const char* name, bool value) : name_(name), before_(!value) {
        makeQueue(); // Registers the options.
        EXPECT_TRUE(HostOptionSetBoolean(name, value));
    }
    ~Option() { HostOptionSetBoolean(name_, before_); }
    Option(const Option&) = delete;
    Option& operator=(const Option&) = delete;

private:
    const char* name_;
    bool before_;
};

// ---- Adding

TEST(CommandQueue, KeepsWhatItWasMadeFor) {
    const Queue queue = makeQueue();
    EXPECT_TRUE(CGSizeEqualToSize(XGCommandQueueGetSize(queue.get()), kCanvas.size));
    EXPECT_EQ(XGCommandQueueGetCommandCount(queue.get()), 0);
    EXPECT_FALSE(XGCommandQueueNeedsBlend(queue.get()));
    EXPECT_EQ(XGCommandQueueGetCommandAtIndex(queue.get(), 0), nullptr);
    const Option off("NIMBRA_GPU_DRAWING", false);
    EXPECT_FALSE(makeQueue());
}

TEST(CommandQueue, RewritesWhatItTakes) {
    const Queue queue = makeQueue();
    ASSERT_TRUE(add(queue, fillRect({{9, 8}, {-5, -4}}, 0.5f, kCGBlendModeCopy)));
    const XGCommand* const first = XGCommandQueueGetCommandAtIndex(queue.get(), 0);
    EXPECT_TRUE(CGRectEqualToRect(first->bounds, {{4, 4}, {5, 4}})) << "standardised";
    EXPECT_EQ(first->blendMode, kCGBlendModeNormal) << "a copy onto nothing";
    EXPECT_EQ(first->isPartial, 1);
    EXPECT_FALSE(add(queue, fillRect(kCanvas, 0.5f, kCGBlendModeCopy))) << "translucent copy";
    EXPECT_TRUE(add(queue, fillRect({{1, 1}, {2, 2}}, 1, kCGBlendModeCopy))) << "opaque copy";
    EXPECT_TRUE(add(queue, fillRect({{1, 1}, {0, 2}}, 1))) << "empty, and gone";
    EXPECT_EQ(XGCommandQueueGetCommandCount(queue.get()), 2);
    EXPECT_FALSE(XGCommandQueueNeedsBlend(queue.get()));
    EXPECT_TRUE(add(queue, fillRect({{1, 1}, {2, 2}}, 1, kCGBlendModeMultiply)));
    EXPECT_TRUE(XGCommandQueueNeedsBlend(queue.get()));
}

TEST(CommandQueue, ConvertsColoursToTheCanvas) {
    const Queue queue = makeQueue();
    const CGFloat gray[] = {0.5f, 0.75f};
    const auto space = cf::adopt(CGColorSpaceCreateDeviceGray());
    ASSERT_TRUE(add(queue, makeCommand(kXGCommandFillCircle, {{1, 1}, {4, 4}},
                                       CGColorCreate(space.get(), gray))));
    const CGColorRef color = XGCommandQueueGetCommandAtIndex(queue.get(), 0)->color;
    ASSERT_EQ(CGColorGetNumberOfComponents(color), 4u);
    const CGFloat expected[] = {0.5f, 0.5f, 0.5f, 0.75f};
    EXPECT_EQ(std::memcmp(CGColorGetComponents(color), expected, sizeof expected), 0);
}

TEST(CommandQueue, RefusesPatterns) {
    const CGPatternCallbacks callbacks = {0, [](void*, CGContextRef) {}, nullptr};
    const auto pattern =
        cf::adopt(CGPatternCreate(nullptr, kCanvas, CGAffineTransformIdentity, 40, 30,
                                  kCGPatternTilingNoDistortion, false, &callbacks));
    const auto space = cf::adopt(CGColorSpaceCreatePattern(rgb().get()));
    const CGFloat green[] = {0, 1, 0, 1};
    const Queue queue = makeQueue();
    EXPECT_FALSE(
        add(queue, makeCommand(kXGCommandFillCircle, {{1, 1}, {4, 4}},
                               CGColorCreateWithPattern(space.get(), pattern.get(), green))));
    EXPECT_EQ(XGCommandQueueGetCommandCount(queue.get()), 0);
}

TEST(CommandQueue, ForgetsWhatAFullFillHides) {
    const struct {
        const char* what;
        CGRect rect;
        float alpha;
        CGBlendMode mode;
        CFIndex expected;
    } cases[] = {
        {"opaque", kCanvas, 1, kCGBlendModeNormal, 1},
        {"opaque copy", kCanvas, 1, kCGBlendModeCopy, 1},
        {"translucent", kCanvas, 0.99f, kCGBlendModeNormal, 3},
        {"multiplied", kCanvas, 1, kCGBlendModeMultiply, 3},
        {"smaller", {{0, 0}, {40, 29}}, 1, kCGBlendModeNormal, 3},
        {"larger than the canvas", {{-1, 0}, {41, 30}}, 1, kCGBlendModeNormal, 3},
    };
    for (const auto& [what, rect, alpha, mode, expected] : cases) {
        const Queue queue = makeQueue();
        add(queue, fillRect({{1, 1}, {2, 2}}, 1));
        XGCommand* const image = makeCommand(kXGCommandDrawImage, {{0, 0}, {9, 9}}, nullptr);
        image->image = makeImage().release();
        add(queue, image);
        EXPECT_EQ(XGCommandQueueGetImageCount(queue.get()), 1u);
        ASSERT_TRUE(add(queue, fillRect(rect, alpha, mode))) << what;
        EXPECT_EQ(XGCommandQueueGetCommandCount(queue.get()), expected) << what;
        EXPECT_EQ(XGCommandQueueGetImageCount(queue.get()), expected == 1 ? 0u : 1u) << what;
        EXPECT_EQ(XGCommandQueueGetBackgroundFillCommand(queue.get()) != nullptr, expected == 1);
    }
}

TEST(CommandQueue, RefusesKindsThatAreOffAndMoreThanItHolds) {
    const Queue queue = makeQueue();
    EXPECT_FALSE(add(queue, makeCommand(kXGCommandDrawSprites, kCanvas, nullptr))) << "no atlas";
    {
        const Option off("NIMBRA_GPU_CIRCLE", false);
        EXPECT_FALSE(add(queue, makeCommand(kXGCommandFillCircle, kCanvas, nullptr)));
    }
    EXPECT_TRUE(add(queue, makeCommand(kXGCommandFillCircle, kCanvas, nullptr)));
    for (int i = 1; i < 10000; ++i)
        ASSERT_TRUE(add(queue, fillRect({{1, 1}, {2, 2}}, 1)));
    CollectedLog log;
    EXPECT_FALSE(add(queue, fillRect({{1, 1}, {2, 2}}, 1)));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find("Rejecting fill rects command, exceeded max command count."),
              std::string::npos);
}

TEST(CommandQueue, ShowsItsDrawingInOtherColours) {
    const Queue queue = makeQueue();
    const Option on("NIMBRA_GPU_DRAWING_DEBUG", true);
    add(queue, fillRect({{1, 1}, {2, 2}}, 1));
    add(queue, makeCommand(kXGCommandFillCircle, {{1, 1}, {2, 2}}, nullptr));
    const float expected[2][4] = {{1, 0.95f, 0.9f, 0.9f}, {1, 0.65f, 0, 0.9f}};
    for (CFIndex i = 0; i < 2; ++i) {
        float c[4];
        _CGColorGetRGBA(XGCommandQueueGetCommandAtIndex(queue.get(), i)->color, &c[0], &c[1], &c[2],
                        &c[3]);
        EXPECT_EQ(std::memcmp(c, expected[i], sizeof c), 0) << i;
    }
}

// ---- Flat buffers

Queue drawing() {
    Queue queue = makeQueue();
    add(queue, fillRect(kCanvas, 1));
    XGCommand* const two =
        makeCommand(kXGCommandFillRects, {{2, 3}, {20, 10}}, makeColor(1, 0, 0, 0.5f), 2);
    XGCommandGetRects(two)[0] = {{2, 3}, {5, 5}};
    XGCommandGetRects(two)[1] = {{12, 3}, {10, 10}};
    add(queue, two);
    add(queue, makeCommand(kXGCommandFillCircle, {{20, 10}, {16, 16}}, makeColor(0, 1, 0, 1)));
    XGCommand* const stroke =
        makeCommand(kXGCommandStrokePath, {{0, 0}, {30, 30}}, makeColor(0, 0, 1, 1));
    const CGMutablePathRef path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 5, 25);
    CGPathAddCurveToPoint(path, nullptr, 10, 0, 20, 40, 35, 5);
    stroke->path = path;
    stroke->blendMode = kCGBlendModeMultiply;
    stroke->parameters.stroke.width = 3;
    stroke->parameters.stroke.cap = kCGLineCapRound;
    stroke->parameters.stroke.join = kCGLineJoinBevel;
    stroke->parameters.stroke.miterLimit = 4;
    add(queue, stroke);
    XGCommand* const fill =
        makeCommand(kXGCommandFillPath, {{0, 0}, {12, 12}}, makeColor(0, 0, 0, 1));
    fill->path = CGPathCreateMutable();
    CGPathAddRect(const_cast<CGMutablePathRef>(fill->path), nullptr, {{1, 1}, {11, 11}});
    add(queue, fill);
    return queue;
}

std::vector<uint8_t> serialised(const Queue& queue) {
    size_t size = 0, written = 0;
    EXPECT_TRUE(XGCommandQueueSerialize(queue.get(), nullptr, &size));
    std::vector<uint8_t> bytes(size, 0xEE);
    EXPECT_TRUE(XGCommandQueueSerialize(queue.get(), bytes.data(), &written));
    EXPECT_EQ(written, size);
    return bytes;
}

uint32_t word(const std::vector<uint8_t>& bytes, std::size_t at) {
    uint32_t value;
    std::memcpy(&value, &bytes.at(at + 3) - 3, 4);
    return value;
}

float number(const std::vector<uint8_t>& bytes, std::size_t at) {
    float value;
    std::memcpy(&value, &bytes.at(at + 3) - 3, 4);
    return value;
}

// By the table in docs/command-queue.md.
TEST(CommandQueue, IsWrittenAsDocumented) {
    const std::vector<uint8_t> bytes = serialised(drawing());
    EXPECT_EQ(word(bytes, 4), bytes.size());
    EXPECT_EQ(word(bytes, 16), 0u) << "images";
    EXPECT_EQ(word(bytes, 32), 40u);
    EXPECT_EQ(word(bytes, 36), 30u);
    EXPECT_EQ(word(bytes, 40), 8u);
    EXPECT_EQ(word(bytes, 44), 32u);
    EXPECT_EQ(word(bytes, 52),
              uint32_t{kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little});
    EXPECT_EQ(word(bytes, 60), 5u) << "commands";
    EXPECT_EQ(word(bytes, 64), static_cast<uint32_t>(getpid()));

    const std::size_t second = 68 + 68 + 16 + 16; // A header; a record, an item and a colour.
    EXPECT_EQ(word(bytes, 68 + 20) & 0xFF, 0u) << "the canvas is not partial";
    EXPECT_EQ(word(bytes, second), 0u) << "kind";
    EXPECT_EQ(number(bytes, second + 4), 2);
    EXPECT_EQ(number(bytes, second + 16), 10);
    EXPECT_EQ(word(bytes, second + 20) & 0xFF, 1u) << "partial";
    EXPECT_NE(word(bytes, second + 32), 0u) << "has a colour";
    EXPECT_EQ(word(bytes, second + 36), 0u) << "has no image";
    EXPECT_EQ(word(bytes, second + 40), 0u) << "has no path";
    EXPECT_EQ(word(bytes, second + 60), 2u) << "items";
    EXPECT_EQ(number(bytes, second + 68 + 16), 12) << "the second item's x";
    EXPECT_EQ(number(bytes, second + 68 + 32), 1) << "red";
    EXPECT_EQ(number(bytes, second + 68 + 44), 0.5f) << "alpha";

    const std::size_t fourth = second + 68 + 32 + 16 + 68 + 16;
    EXPECT_EQ(word(bytes, fourth), 4u) << "kind";
    EXPECT_EQ(word(bytes, fourth + 24), uint32_t{kCGBlendModeMultiply});
    EXPECT_EQ(number(bytes, fourth + 44), 3) << "width";
    EXPECT_EQ(word(bytes, fourth + 48), uint32_t{kCGLineCapRound});
    EXPECT_EQ(word(bytes, fourth + 52), uint32_t{kCGLineJoinBevel});
    EXPECT_EQ(number(bytes, fourth + 56), 4) << "miter limit";
}

std::vector<uint8_t> picture(const Queue& queue) {
    const auto provider = cf::adopt(XGCommandQueueCreateDataProvider(queue.get()));
    const auto data = cf::adopt(CGDataProviderCopyData(provider.get()));
    const UInt8* const bytes = CFDataGetBytePtr(data.get());
    return {bytes, bytes + CFDataGetLength(data.get())};
}

TEST(CommandQueue, ComesBackAsItWas) {
    const Queue queue = drawing();
    const std::vector<uint8_t> bytes = serialised(queue);
    const Queue back = cf::adopt(XGCommandQueueCreateDeserialized(bytes.data(), rgb().get()));
    ASSERT_TRUE(back);
    EXPECT_EQ(serialised(back), bytes);
    EXPECT_EQ(picture(back), picture(queue));
    EXPECT_FALSE(add(back, fillRect(kCanvas, 1))) << "closed by the picture";
}

TEST(CommandQueue, DrawsItsCommandsInOrder) {
    const std::vector<uint8_t> drawn = picture(drawing());
    std::vector<uint8_t> pixels(40 * 30 * 4);
    const auto context = cf::adopt(
        CGBitmapContextCreate(pixels.data(), 40, 30, 8, 160, rgb().get(),
                              kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little));
    const CGContextRef c = context.get();
    CGContextSetRGBFillColor(c, 0.5f, 0.25f, 1, 1);
    CGContextFillRect(c, kCanvas);
    CGContextSetRGBFillColor(c, 1, 0, 0, 0.5f);
    CGContextFillRect(c, {{2, 3}, {5, 5}});
    CGContextFillRect(c, {{12, 3}, {10, 10}});
    CGContextSetRGBFillColor(c, 0, 1, 0, 1);
    CGContextFillEllipseInRect(c, {{20, 10}, {16, 16}});
    CGContextSaveGState(c);
    CGContextSetBlendMode(c, kCGBlendModeMultiply);
    CGContextSetRGBStrokeColor(c, 0, 0, 1, 1);
    CGContextSetLineWidth(c, 3);
    CGContextSetLineCap(c, kCGLineCapRound);
    CGContextSetLineJoin(c, kCGLineJoinBevel);
    CGContextMoveToPoint(c, 5, 25);
    CGContextAddCurveToPoint(c, 10, 0, 20, 40, 35, 5);
    CGContextStrokePath(c);
    CGContextRestoreGState(c);
    CGContextSetRGBFillColor(c, 0, 0, 0, 1);
    CGContextFillRect(c, {{1, 1}, {11, 11}});
    EXPECT_EQ(drawn, pixels);
}

TEST(CommandQueue, HandsImagesOverOnce) {
    const Queue queue = makeQueue();
    const auto image = makeImage();
    for (int i = 0; i < 2; ++i) {
        XGCommand* const command = makeCommand(kXGCommandDrawImage, {{0, 0}, {9, 9}}, nullptr);
        command->image = CGImageRetain(image.get());
        add(queue, command);
    }
    const CFMutableArrayRef uploads = XGCommandQueueGetImagesToUpload();
    const std::vector<uint8_t> bytes = serialised(queue);
    serialised(queue);
    ASSERT_EQ(CFArrayGetCount(uploads), 1);
    EXPECT_EQ(CFArrayGetValueAtIndex(uploads, 0), image.get());
    EXPECT_TRUE(XGImageIsUploaded(image.get()));
    const uint32_t key = word(bytes, 68 + 36);
    EXPECT_EQ(key, XGCommandQueueGetImageKey(image.get()));

    XGCommandQueueTrackUploadedImage(key, CGImageRetain(image.get()));
    const Queue back = cf::adopt(XGCommandQueueCreateDeserialized(bytes.data(), rgb().get()));
    EXPECT_EQ(XGCommandQueueGetImageCount(back.get()), 2u);
    EXPECT_EQ(XGCommandQueueGetCommandAtIndex(back.get(), 1)->image, image.get());
    XGCommandQueueFinalizeImage(key);
    const Queue later = cf::adopt(XGCommandQueueCreateDeserialized(bytes.data(), rgb().get()));
    EXPECT_EQ(XGCommandQueueGetCommandAtIndex(later.get(), 1)->image, nullptr);
    CFArrayRemoveAllValues(uploads);
}

TEST(CommandQueue, TellsOfUploadedImagesThatAreNoMore) {
    const CFMutableArrayRef uploads = XGCommandQueueGetImagesToUpload();
    const CFMutableArrayRef ends = XGCommandQueueGetImagesToFinalize();
    CFArrayRemoveAllValues(ends);
    auto image = makeImage();
    const void* const address = image.get();
    XGImageSetUploaded(image.get(), true);
    image = nullptr;
    ASSERT_EQ(CFArrayGetCount(ends), 1);
    EXPECT_EQ(CFArrayGetValueAtIndex(ends, 0), address);
    CFArrayRemoveAllValues(ends);
    CFArrayRemoveAllValues(uploads);
}

TEST(CommandQueue, IsNotWrittenWhereAnImageHasNoSource) {
    const Queue queue = makeQueue();
    XGCommand* const command = makeCommand(kXGCommandDrawImage, {{0, 0}, {9, 9}}, nullptr);
    command->image = makeImage().release();
    XGImageSetSourceDataProvider(command->image, nullptr);
    add(queue, command);
    size_t size = 0;
    EXPECT_FALSE(XGCommandQueueSerialize(queue.get(), nullptr, &size));
    EXPECT_FALSE(XGCommandQueueSerialize(nullptr, nullptr, &size));
}

// Buffers that are cut short or garbled end in a queue or in NULL; those of unknown kinds abort.
TEST(CommandQueue, SurvivesGarbledBuffers) {
    const std::vector<uint8_t> whole = serialised(drawing());
    CollectedLog log;
    for (std::size_t length = 12; length < whole.size(); ++length) {
        std::vector<uint8_t> cut(whole.begin(),
                                 whole.begin() + static_cast<std::ptrdiff_t>(length));
        std::memcpy(&cut[4], &length, sizeof(uint64_t)); // What is left of it, told truly.
        EXPECT_FALSE(cf::adopt(XGCommandQueueCreateDeserialized(cut.data(), rgb().get())))
            << length;
    }
    // What does not say where the next part begins: the header, bounds and modes, a path's bytes.
    const std::size_t fourth = 68 + 68 + 16 + 16 + 68 + 32 + 16 + 68 + 16;
    const std::size_t path = fourth + 68 + 16 + 4;
    for (const auto& [first, last] : {std::pair{std::size_t{12}, std::size_t{60}},
                                      {std::size_t{68 + 4}, std::size_t{68 + 32}},
                                      {fourth + 44, fourth + 60},
                                      {path, path + word(whole, path - 4)}}) {
        for (std::size_t at = first; at < last; ++at) {
            std::vector<uint8_t> garbled = whole;
            garbled[at] ^= 0xA5;
            EXPECT_TRUE(cf::adopt(XGCommandQueueCreateDeserialized(garbled.data(), rgb().get())))
                << at;
        }
    }
    std::vector<uint8_t> foreign(64, 0x55);
    EXPECT_FALSE(cf::adopt(XGCommandQueueCreateDeserialized(foreign.data(), rgb().get())));
}

TEST(CommandQueue, HasNoCommandsOfUnknownKinds) {
    std::vector<uint8_t> unknown = serialised(drawing());
    unknown[68] = 6;
    EXPECT_DEATH(XGCommandQueueCreateDeserialized(unknown.data(), rgb().get()), "BUG");
}

} // namespace
