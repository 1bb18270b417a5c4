// CGLayerTest.cpp: layers as objects, what they start with, and how they are drawn.

#include "XGBitmapContext.h"
#include <CoreGraphics/CGLayer.h>

#include "Support/Bitmaps.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

namespace {

using test::makeContext;
using Layer = cf::Ref<CGLayerRef>;

Layer makeLayer(CGContextRef context, CGFloat width, CGFloat height) {
    return cf::adopt(CGLayerCreateWithContext(context, CGSizeMake(width, height), nullptr));
}

// An alpha-only bitmap whose bytes count up from 1.
test::Context countingContext(std::size_t width, std::size_t height) {
    const auto context = cf::adopt(
        CGBitmapContextCreate(nullptr, width, height, 8, width + 3, nullptr, kCGImageAlphaOnly));
    auto* const bytes = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
    for (std::size_t y = 0; y < height; ++y)
        std::iota(bytes + y * (width + 3), bytes + y * (width + 3) + width,
                  static_cast<std::uint8_t>(y * width + 1));
    return context;
}

// Its rows, a letter a pixel: 'a' is 1, '.' is 0.
std::vector<std::string> letters(CGContextRef context) {
    const auto* const bytes = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context));
    std::vector<std::string> rows;
    for (std::size_t y = 0; y < CGBitmapContextGetHeight(context); ++y) {
        std::string row;
        for (std::size_t x = 0; x < CGBitmapContextGetWidth(context); ++x) {
            const std::uint8_t value = bytes[y * CGBitmapContextGetBytesPerRow(context) + x];
            row += value == 0 ? '.' : static_cast<char>('a' + value - 1);
        }
        rows.push_back(row);
    }
    return rows;
}

TEST(Layer, StartsWithTheUpperLeftOfItsContext) {
    const auto context = countingContext(3, 2);
    const struct {
        const char* what;
        CGSize size;
        std::vector<std::string> rows;
    } cases[] = {
        {"the same size", {3, 2}, {"abc", "def"}},
        {"larger", {5, 3}, {"abc..", "def..", "....."}},
        {"smaller", {2, 1}, {"ab"}},
        {"wider and lower", {4, 1}, {"abc."}},
        {"with fractions", {2.9f, 1.9f}, {"ab"}},
    };
    for (const auto& [what, size, rows] : cases) {
        const Layer layer = makeLayer(context.get(), size.width, size.height);
        EXPECT_EQ(letters(CGLayerGetContext(layer.get())), rows) << what;
        EXPECT_TRUE(CGSizeEqualToSize(CGLayerGetSize(layer.get()), size)) << what;
    }
}

TEST(Layer, IsMadeUpLikeItsContext) {
    const test::Context context = makeContext(4, 4, test::kRGBA);
    XGBitmapContextAddFlags(context.get(), 0x10000000);
    const Layer layer = makeLayer(context.get(), 7, 2);
    const CGContextRef drawn = CGLayerGetContext(layer.get());
    EXPECT_EQ(CGBitmapContextGetBytesPerRow(drawn), 28u);
    EXPECT_EQ(CGBitmapContextGetBitmapInfo(drawn), CGBitmapContextGetBitmapInfo(context.get()));
    EXPECT_EQ(CGBitmapContextGetColorSpace(drawn), CGBitmapContextGetColorSpace(context.get()));
}

TEST(Layer, NeedsPixelsAndASize) {
    const test::Context context = makeContext(4, 4);
    test::RecordingBackend other;
    const struct {
        const char* what;
        CGContextRef context;
        CGSize size;
    } cases[] = {
        {"no context", nullptr, {4, 4}},
        {"a context without pixels", other.context(), {4, 4}},
        {"no size", context.get(), {0, 0}},
        {"no width", context.get(), {0, 4}},
        {"less than a pixel", context.get(), {0.5f, 4}},
        {"a negative size", context.get(), {-4, -4}},
        {"not numbers", context.get(), {NAN, NAN}},
        {"more than there is memory for", context.get(), {1e9f, 1e9f}},
        {"infinite", context.get(), {INFINITY, INFINITY}},
    };
    for (const auto& [what, reference, size] : cases)
        EXPECT_FALSE(makeLayer(reference, size.width, size.height)) << what;
}

TEST(Layer, EqualsOnlyItself) {
    const test::Context context = makeContext(4, 4);
    const Layer layer = makeLayer(context.get(), 4, 4), other = makeLayer(context.get(), 4, 4);
    EXPECT_EQ(CFGetTypeID(layer.get()), CGLayerGetTypeID());
    EXPECT_TRUE(CFEqual(layer.get(), layer.get()));
    EXPECT_FALSE(CFEqual(layer.get(), other.get())) << "its context is another";
}

TEST(Layer, IsDrawnAfterItsShadow) {
    const test::Context context = makeContext(4, 4);
    const Layer layer = makeLayer(context.get(), 3, 2);
    test::RecordingBackend backend;
    using Calls = std::vector<std::string>;

    CGContextDrawLayerAtPoint(backend.context(), {5, 6}, layer.get());
    EXPECT_EQ(backend.takeCalls(), (Calls{"prepare", "layer at 5 6 3 2"}));
    CGContextSetShadow(backend.context(), {1, 1}, 2);
    CGContextDrawLayerInRect(backend.context(), CGRectMake(0, 1, 8, 9), layer.get());
    EXPECT_EQ(backend.takeCalls(),
              (Calls{"prepare", "shadow layer at 0 1 8 9", "layer at 0 1 8 9"}));
    CGContextDrawLayerInRect(backend.context(), CGRectMake(0, 1, 8, 9), nullptr);
    EXPECT_TRUE(backend.takeCalls().empty());
}

} // namespace
