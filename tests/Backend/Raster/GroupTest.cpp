// GroupTest.cpp: transparency layers, against pictures drawn by hand.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/Picture.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

using test::makeContext;
using test::Picture;
using Bytes = std::vector<std::uint8_t>;

Bytes alphas(CGContextRef context) {
    const auto* const bytes = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context));
    Bytes result;
    for (std::size_t y = 0; y < CGBitmapContextGetHeight(context); ++y)
        for (std::size_t x = 0; x < CGBitmapContextGetWidth(context); ++x)
            result.push_back(bytes[y * CGBitmapContextGetBytesPerRow(context) + 4 * x + 3]);
    return result;
}

// A row of gray pixels that lets paint through as far as they are white.
void clipToRow(CGContextRef context, CGRect rect, const Bytes& row) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const auto data =
        cf::adopt(CFDataCreate(nullptr, row.data(), static_cast<CFIndex>(row.size())));
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    const auto mask =
        cf::adopt(CGImageCreate(row.size(), 1, 8, 8, row.size(), gray.get(), 0, provider.get(),
                                nullptr, false, kCGRenderingIntentDefault));
    CGContextClipToMask(context, rect, mask.get());
}

void drawInGroup(CGContextRef context, const std::function<void()>& draw) {
    CGContextBeginTransparencyLayer(context, nullptr);
    draw();
    CGContextEndTransparencyLayer(context);
}

TEST(Group, MeetsTheMasksAroundItOnce) {
    const CGRect whole = CGRectMake(0, 0, 4, 1);
    const Bytes outer = {255, 128, 128, 64}, inner = {200, 255, 100, 64};
    const struct {
        const char* what;
        std::function<void(CGContextRef)> clip;
        Bytes alphas;
    } cases[] = {
        {"nothing more", [](CGContextRef) {}, outer},
        {"a mask", [&](CGContextRef c) { clipToRow(c, whole, inner); }, {200, 128, 100, 64}},
        {"a rectangle",
         [](CGContextRef c) { CGContextClipToRect(c, CGRectMake(1, 0, 2, 1)); },
         {0, 128, 128, 0}},
        {"a mask in a group",
         [&](CGContextRef c) {
             CGContextBeginTransparencyLayer(c, nullptr);
             clipToRow(c, whole, inner);
         },
         {200, 128, 100, 64}},
        {"no clip at all", [](CGContextRef c) { CGContextResetClip(c); }, outer},
    };
    for (const auto& [what, clip, expected] : cases) {
        const test::Context context = makeContext(4, 1);
        clipToRow(context.get(), whole, outer);
        drawInGroup(context.get(), [&, &clip = clip] {
            clip(context.get());
            CGContextFillRect(context.get(), whole);
        });
        CollectedLog log;
        CGContextEndTransparencyLayer(context.get()); // Of the group in the group.
        const Bytes drawn = alphas(context.get());
        for (std::size_t x = 0; x < 4; ++x)
            EXPECT_NEAR(drawn[x], expected[x], 1) << what << " at " << x;
    }
}

TEST(Group, ThrowsTheShadowOfAllThatIsDrawnInIt) {
    const test::Context context = makeContext(8, 3);
    CGContextClipToRect(context.get(), CGRectMake(3, 0, 4, 3));
    CGContextSetShadow(context.get(), {3, 1}, 0);
    drawInGroup(context.get(), [&] {
        CGContextFillRect(context.get(), CGRectMake(1, 0, 3, 1));
        CGContextFillRect(context.get(), CGRectMake(0, 1, 1, 1));
        CGContextFillRect(context.get(), CGRectMake(20, 20, 1, 1));
    });
    EXPECT_EQ(Picture(context.get()), (Picture{"...+....", "....+++.", "...#...."}));

    const test::Context far = makeContext(4, 1);
    CGContextSetShadow(far.get(), {-100, 0}, 0);
    drawInGroup(far.get(), [&] { CGContextFillRect(far.get(), CGRectMake(101, 0, 2, 1)); });
    EXPECT_EQ(Picture(far.get()), (Picture{".++."}));
    CGContextSetShadow(far.get(), {-1e30f, 0}, 1e30f);
    drawInGroup(far.get(), [&] { CGContextFillRect(far.get(), CGRectMake(0, 0, 1, 1)); });
    EXPECT_EQ(alphas(far.get())[0], 255);
}

TEST(Group, IsPutDownWhereNothingWasDrawn) {
    const struct {
        CGBlendMode mode;
        Picture picture;
    } cases[] = {{kCGBlendModeNormal, {"####"}},
                 {kCGBlendModeMultiply, {"####"}},
                 {kCGBlendModeCopy, {"#..#"}},
                 {kCGBlendModeDestinationIn, {"#..#"}}};
    for (const auto& [mode, picture] : cases) {
        const test::Context context = makeContext(4, 1);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 4, 1));
        CGContextClipToRect(context.get(), CGRectMake(1, 0, 2, 1));
        CGContextSetBlendMode(context.get(), mode);
        drawInGroup(context.get(), [] {});
        EXPECT_EQ(Picture(context.get()), picture) << mode;
    }
}

TEST(Group, CompositesOnceUnderEachGroupAround) {
    const test::Context context = makeContext(3, 1);
    CGContextSetAlpha(context.get(), 0.5f);
    drawInGroup(context.get(), [&] {
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
        CGContextSetAlpha(context.get(), 0.5f);
        drawInGroup(context.get(), [&] {
            CGContextFillRect(context.get(), CGRectMake(1, 0, 1, 1));
            CGContextFillRect(context.get(), CGRectMake(1, 0, 2, 1));
        });
    });
    EXPECT_EQ(alphas(context.get()), (Bytes{128, 128, 64}));
}

// Clips that change inside do not stay behind, nor are those from before lost.
TEST(Group, LeavesTheClipAsItWas) {
    const test::Context context = makeContext(4, 3);
    const auto fillRow = [&](CGFloat y) {
        CGContextFillRect(context.get(), CGRectMake(0, y, 4, 1));
    };
    CGContextClipToRect(context.get(), CGRectMake(0, 0, 3, 3));
    CGContextSaveGState(context.get());
    drawInGroup(context.get(), [&] {
        CGContextClipToRect(context.get(), CGRectMake(0, 0, 1, 3));
        fillRow(2);
    });
    fillRow(1);
    // A restore too many, a clip, and a save in its place.
    CGContextBeginTransparencyLayer(context.get(), nullptr);
    CGContextRestoreGState(context.get());
    CGContextClipToRect(context.get(), CGRectMake(1, 0, 1, 3));
    fillRow(2);
    CGContextSaveGState(context.get());
    CGContextEndTransparencyLayer(context.get());
    fillRow(0);
    EXPECT_EQ(Picture(context.get()), (Picture{"##..", "###.", ".#.."}));
}

TEST(Group, NestsToAnyDepth) {
    constexpr int kDepth = 10000;
    CollectedLog log;
    for (const bool drawsInAll : {false, true}) {
        // What all of them would take is far more than there is.
        const test::Context context = makeContext(drawsInAll ? 16 : 2000, 1000);
        for (int i = 0; i < kDepth; ++i) {
            if (drawsInAll)
                CGContextFillRect(context.get(), CGRectMake(0, 0, 1, 1));
            CGContextBeginTransparencyLayer(context.get(), nullptr);
        }
        CGContextFillRect(context.get(), CGRectMake(2, 0, 1, 1));
        for (int i = 0; i < (drawsInAll ? kDepth : 30); ++i)
            CGContextEndTransparencyLayer(context.get());
    }
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
