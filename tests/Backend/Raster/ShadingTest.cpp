// ShadingTest.cpp: gradients and shadings in a bitmap's pixels, beside bare Skia and beside the
// geometry that they are defined by.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGContext.h>

#include "Support/Bitmaps.h"
#include "Support/SkiaPeer.h"
#include "include/core/SkColorSpace.h"
#include "include/core/SkPath.h"
#include "include/effects/SkGradientShader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <vector>

namespace {

using test::Context;
using Gradient = cf::Ref<CGGradientRef>;

constexpr int kSide = 64;
constexpr CGGradientDrawingOptions kBothEnds = CGGradientDrawingOptions{
    kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation};

struct Stops {
    std::vector<SkColor4f> colors;
    std::vector<float> locations;
};

const Stops kTwo = {{{1, 0, 0, 1}, {0, 0, 1, 0.25f}}, {0, 1}};
const Stops kHard = {{{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 0.5f}, {1, 1, 0, 1}},
                     {0, 0.4f, 0.4f, 1}};
const Stops kFive = {{{1, 1, 1, 1}, {0, 0, 0, 1}, {0.5f, 0.2f, 0, 0}, {0, 1, 1, 1}, {1, 0, 1, 1}},
                     {0, 0.1f, 0.5f, 0.6f, 1}};

Gradient makeGradient(const Stops& stops) {
    std::vector<CGFloat> components;
    for (const SkColor4f& color : stops.colors)
        components.insert(components.end(), {color.fR, color.fG, color.fB, color.fA});
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return cf::adopt(CGGradientCreateWithColorComponents(
        space.get(), components.data(), stops.locations.data(), stops.colors.size()));
}

// ---- Beside bare Skia

struct Case {
    const char* what;
    const Stops& stops;
    bool isRadial;
    bool extends;
};

constexpr CGPoint kStart = {10.25f, 8}, kEnd = {50, 40.5f};
constexpr CGPoint kClip[] = {{2.5f, 1}, {63, 20.25f}, {21, 61}};
constexpr CGFloat kStartRadius = 3, kEndRadius = 60;

void drawOurs(CGContextRef context, const Case& test) {
    CGContextSetRGBFillColor(context, 0.5f, 0.7f, 0.2f, 1);
    CGContextFillRect(context, {{0, 0}, {kSide, 24}});
    CGContextAddLines(context, kClip, std::size(kClip));
    CGContextClip(context);
    CGContextRotateCTM(context, 0.25f);
    CGContextScaleCTM(context, 1, 0.75f);
    const Gradient gradient = makeGradient(test.stops);
    const auto options = test.extends ? kBothEnds : CGGradientDrawingOptions{};
    if (test.isRadial)
        CGContextDrawRadialGradient(context, gradient.get(), kStart, kStartRadius, kEnd, kEndRadius,
                                    options);
    else
        CGContextDrawLinearGradient(context, gradient.get(), kStart, kEnd, options);
}

void drawBare(SkCanvas& canvas, const Case& test) {
    const SkPoint ends[] = {{kStart.x, kStart.y}, {kEnd.x, kEnd.y}};
    const int count = static_cast<int>(test.stops.colors.size());
    const SkTileMode tile = test.extends ? SkTileMode::kClamp : SkTileMode::kDecal;
    SkPaint paint;
    paint.setColor4f({0.5f, 0.7f, 0.2f, 1});
    canvas.drawRect(SkRect::MakeWH(kSide, 24), paint);
    SkPath clip;
    clip.moveTo(kClip[0].x, kClip[0].y)
        .lineTo(kClip[1].x, kClip[1].y)
        .lineTo(kClip[2].x, kClip[2].y);
    canvas.clipPath(clip, true);
    SkMatrix matrix;
    matrix.setSinCos(std::sin(0.25f), std::cos(0.25f));
    matrix.preScale(1, 0.75f);
    canvas.concat(matrix);
    paint.setShader(test.isRadial
                        ? SkGradientShader::MakeTwoPointConical(
                              ends[0], kStartRadius, ends[1], kEndRadius, test.stops.colors.data(),
                              nullptr, test.stops.locations.data(), count, tile)
                        : SkGradientShader::MakeLinear(ends, test.stops.colors.data(), nullptr,
                                                       test.stops.locations.data(), count, tile));
    canvas.drawPaint(paint);
}

TEST(ShadingPixels, OfGradientsAreBareSkias) {
    const Case cases[] = {
        {"two stops", kTwo, false, true},   {"a hard edge", kHard, false, true},
        {"five stops", kFive, false, true}, {"not extended", kFive, false, false},
        {"radial", kFive, true, true},      {"radial, not extended", kTwo, true, false},
    };
    for (const Case& test : cases) {
        const Context context = test::makeContext(kSide, kSide);
        test::SkiaPeer peer(kSide, kSide);
        drawOurs(context.get(), test);
        drawBare(peer.canvas(), test);
        EXPECT_TRUE(test::samePixels(context.get(), peer)) << test.what;
    }
}

TEST(ShadingPixels, OfConicGradientsAreBareSkias) {
    for (const CGFloat angle : {0.f, 0.7f, -20.f}) {
        const Context context = test::makeContext(kSide, kSide);
        CGContextScaleCTM(context.get(), 1, 0.75f);
        CGContextSetAlpha(context.get(), 0.6f);
        CGContextDrawConicGradient(context.get(), makeGradient(kHard).get(), {30, 41}, angle);

        test::SkiaPeer peer(kSide, kSide);
        SkMatrix turn;
        turn.setSinCos(std::sin(angle), std::cos(angle), 30, 41);
        SkPaint paint;
        paint.setAlpha(153);
        paint.setShader(SkGradientShader::MakeSweep(30, 41, kHard.colors.data(), nullptr,
                                                    kHard.locations.data(), 4, 0, &turn));
        peer.canvas().scale(1, 0.75f);
        peer.canvas().drawPaint(paint);
        EXPECT_TRUE(test::samePixels(context.get(), peer)) << angle;
    }
}

TEST(ShadingPixels, OfConicGradientsTurnCounterClockwise) {
    const Context context = test::makeContext(2, 2);
    const Stops quarters = {{{1, 0, 0, 1},
                             {1, 0, 0, 1},
                             {0, 1, 0, 1},
                             {0, 1, 0, 1},
                             {0, 0, 1, 1},
                             {0, 0, 1, 1},
                             {1, 1, 1, 1},
                             {1, 1, 1, 1}},
                            {0, 0.25f, 0.25f, 0.5f, 0.5f, 0.75f, 0.75f, 1}};
    CGContextDrawConicGradient(context.get(), makeGradient(quarters).get(), {1, 1}, 1.5707964f);
    const auto* const pixels = static_cast<std::uint32_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_EQ((std::vector<std::uint32_t>(pixels, pixels + 4)),
              (std::vector<std::uint32_t>{0xFFFF0000, 0xFFFFFFFF, 0xFF00FF00, 0xFF0000FF}));
    CGContextDrawConicGradient(context.get(), makeGradient(quarters).get(), {NAN, 1}, 0);
    CGContextDrawConicGradient(context.get(), makeGradient(quarters).get(), {1, 1}, INFINITY);
    EXPECT_EQ(pixels[0], 0xFFFF0000) << "numbers that are not finite paint nothing";
}

// ---- Beside the definition

using Channels = std::array<int, 4>; // Premultiplied blue, green, red, alpha.

Channels pixelAt(CGContextRef context, int x, int y) {
    const auto* const pixel = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context)) +
                              static_cast<std::size_t>(y) * CGBitmapContextGetBytesPerRow(context) +
                              static_cast<std::size_t>(x) * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

// The largest parameter whose circle runs through a point, of those that are painted.
std::optional<double> parameterAt(double x, double y, CGPoint start, double startRadius,
                                  CGPoint end, double endRadius, bool before, bool after) {
    const double dx = end.x - start.x, dy = end.y - start.y, dr = endRadius - startRadius;
    const double px = x - start.x, py = y - start.y;
    const double a = dx * dx + dy * dy - dr * dr;
    const double b = px * dx + py * dy + startRadius * dr;
    const double c = px * px + py * py - startRadius * startRadius;
    std::vector<double> roots;
    if (std::abs(a) < 1e-9) {
        roots = {c / (2 * b)};
    } else if (b * b >= a * c) {
        const double root = std::sqrt(b * b - a * c);
        roots = {(b + root) / a, (b - root) / a};
    }
    std::optional<double> best;
    for (const double t : roots)
        if (startRadius + t * dr >= 0 && (before || t >= 0) && (after || t <= 1) &&
            (!best || t > *best))
            best = t;
    return best;
}

struct Circles {
    const char* what;
    CGPoint start;
    CGFloat startRadius;
    CGPoint end;
    CGFloat endRadius;
};

TEST(ShadingPixels, OfTwoCirclesInEveryRelation) {
    const Circles circles[] = {
        {"one centre", {32, 32}, 5, {32, 32}, 25},
        {"one centre, shrinking", {32, 32}, 25, {32, 32}, 0},
        {"one inside the other", {25, 32}, 4, {32, 32}, 25},
        {"from a point", {25, 32}, 0, {32, 32}, 25},
        {"touching from inside", {12, 32}, 5, {32, 32}, 25},
        {"overlapping", {20, 32}, 12, {36, 30}, 18},
        {"apart, growing", {14, 30}, 4, {44, 34}, 14},
        {"apart, shrinking", {16, 30}, 14, {50, 34}, 3},
        {"apart, equal", {16, 30}, 9, {48, 34}, 9},
        {"to a point outside", {16, 30}, 12, {50, 34}, 0},
    };
    const Stops grayRamp = {{{0, 0, 0, 1}, {1, 1, 1, 1}}, {0, 1}};
    const Gradient gradient = makeGradient(grayRamp);
    for (const auto& test : circles) {
        for (uint32_t options = 0; options < 4; ++options) {
            const Context context = test::makeContext(kSide, kSide);
            CGContextDrawRadialGradient(context.get(), gradient.get(), test.start, test.startRadius,
                                        test.end, test.endRadius,
                                        CGGradientDrawingOptions(options));
            int wrong = 0;
            for (int y = 0; y < kSide; ++y) {
                for (int x = 0; x < kSide; ++x) {
                    const auto t =
                        parameterAt(x + 0.5, kSide - y - 0.5, test.start, test.startRadius,
                                    test.end, test.endRadius, options & 1, options & 2);
                    const Channels pixel = pixelAt(context.get(), x, y);
                    const int expected =
                        t ? static_cast<int>(std::lround(std::clamp(*t, 0., 1.) * 255)) : -1;
                    const int drawn = pixel[3] == 255 ? pixel[0] : -1;
                    wrong += std::abs(expected - drawn) > 1 || pixel[3] % 255 != 0;
                }
            }
            // Where a pixel's centre lies on an outline, rounding decides.
            EXPECT_LE(wrong, 3) << test.what << ", options " << options;
        }
    }
}

// A shading across the bitmap's columns, opaque, by a function of the column from 0 to 64.
Context drawColumns(CGFunctionEvaluateCallback evaluate, int columns = kSide) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGFunctionCallbacks callbacks = {.evaluate = evaluate};
    const CGFloat domain[] = {0, static_cast<CGFloat>(columns)};
    const auto function = cf::adopt(CGFunctionCreate(nullptr, 1, domain, 4, nullptr, &callbacks));
    const auto shading = cf::adopt(CGShadingCreateAxial(
        space.get(), {0, 0}, {static_cast<CGFloat>(columns), 0}, function.get(), 0, 0));
    Context context = test::makeContext(static_cast<std::size_t>(columns), 2);
    CGContextDrawShading(context.get(), shading.get());
    return context;
}

TEST(ShadingPixels, FollowTheFunction) {
    const struct {
        const char* what;
        CGFunctionEvaluateCallback evaluate;
    } cases[] = {
        {"a line",
         [](void*, const CGFloat* in, CGFloat* out) {
             std::fill_n(out, 3, *in / kSide);
             out[3] = 1;
         }},
        {"a curve",
         [](void*, const CGFloat* in, CGFloat* out) {
             std::fill_n(out, 3, 0.5f + 0.5f * std::sin(*in * *in / 300));
             out[3] = 1;
         }},
        {"a jump between columns",
         [](void*, const CGFloat* in, CGFloat* out) {
             std::fill_n(out, 3, *in < 21 ? 0.2f : 0.8f);
             out[3] = 1;
         }},
        {"not finite for a while",
         [](void*, const CGFloat* in, CGFloat* out) {
             std::fill_n(out, 3, *in < 32 ? std::numeric_limits<CGFloat>::quiet_NaN() : CGFloat(1));
             out[3] = 1;
         }},
    };
    for (const auto& [what, evaluate] : cases) {
        const Context context = drawColumns(evaluate);
        for (int x = 0; x < kSide; ++x) {
            const CGFloat in = static_cast<CGFloat>(x) + 0.5f;
            CGFloat out[4] = {};
            evaluate(nullptr, &in, out);
            const int expected = out[0] > 0 ? static_cast<int>(std::lround(out[0] * 255)) : 0;
            EXPECT_NEAR(pixelAt(context.get(), x, 1)[2], expected, 1) << what << " at " << x;
            EXPECT_EQ(pixelAt(context.get(), x, 1)[3], 255) << what << " at " << x;
        }
    }
}

TEST(ShadingPixels, FollowAFunctionThatRepeatsHundredsOfTimes) {
    const auto sawtooth = [](void*, const CGFloat* in, CGFloat* out) {
        std::fill_n(out, 3, std::fmod(*in, 8.f) / 8);
        out[3] = 1;
    };
    constexpr int kColumns = 4000;
    const Context context = drawColumns(sawtooth, kColumns);
    int wrong = 0;
    for (int x = 0; x < kColumns; ++x) {
        const int expected =
            static_cast<int>(std::lround(std::fmod(static_cast<float>(x) + 0.5f, 8.f) / 8 * 255));
        wrong += std::abs(pixelAt(context.get(), x, 0)[1] - expected) > 1;
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ShadingPixels, OfAGradientInInksFollowTheInks) {
    const auto inks = cf::adopt(CGColorSpaceCreateDeviceCMYK());
    const CGFloat components[] = {1, 0, 0, 0, 1, 0, 0, 1, 0, 1};
    const auto gradient =
        cf::adopt(CGGradientCreateWithColorComponents(inks.get(), components, nullptr, 2));
    const Context context = test::makeContext(kSide, 1);
    CGContextDrawLinearGradient(context.get(), gradient.get(), {0, 0}, {kSide, 0}, 0);
    const Context filled = test::makeContext(kSide, 1);
    for (int x = 0; x < kSide; ++x) {
        const CGFloat t = (static_cast<CGFloat>(x) + 0.5f) / kSide;
        CGContextSetCMYKFillColor(filled.get(), 1 - t, 0, t, 0, 1);
        CGContextFillRect(filled.get(), {{static_cast<CGFloat>(x), 0}, {1, 1}});
        for (std::size_t channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(pixelAt(context.get(), x, 0)[channel], pixelAt(filled.get(), x, 0)[channel],
                        1)
                << "column " << x;
    }
}

// ---- Geometry at its limits

TEST(ShadingPixels, OfGeometryWithoutAnExtentAreNone) {
    constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
    constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
    const Circles cases[] = {
        {"the same circle twice", {9, 9}, 4, {9, 9}, 4},
        {"two points", {9, 9}, 0, {20, 9}, 0},
        {"negative radius", {9, 9}, -4, {20, 9}, 4},
        {"not a number", {9, kNaN}, 1, {20, 9}, 4},
        {"infinite radius", {9, 9}, 1, {20, 9}, kInfinity},
    };
    const Gradient gradient = makeGradient(kTwo);
    const Context context = test::makeContext(kSide, kSide);
    for (const auto& [what, start, startRadius, end, endRadius] : cases) {
        CGContextDrawRadialGradient(context.get(), gradient.get(), start, startRadius, end,
                                    endRadius, kBothEnds);
        EXPECT_EQ(pixelAt(context.get(), 20, 20)[3], 0) << what;
    }
    CGContextDrawLinearGradient(context.get(), gradient.get(), {9, 9}, {9, 9}, kBothEnds);
    CGContextDrawLinearGradient(context.get(), gradient.get(), {kNaN, 9}, {20, 9}, kBothEnds);
    EXPECT_EQ(pixelAt(context.get(), 20, 20)[3], 0);
}

TEST(ShadingPixels, OfTinyAndHugeGeometryUnderATransformAreAsAlways) {
    const Gradient gradient = makeGradient(kFive);
    const Context plain = test::makeContext(kSide, kSide);
    CGContextDrawLinearGradient(plain.get(), gradient.get(), {8, 8}, {48, 40}, kBothEnds);
    for (const CGFloat scale : {0x1p30f, 0x1p-30f}) {
        const Context context = test::makeContext(kSide, kSide);
        CGContextScaleCTM(context.get(), scale, scale);
        CGContextDrawLinearGradient(context.get(), gradient.get(), {8 / scale, 8 / scale},
                                    {48 / scale, 40 / scale}, kBothEnds);
        for (int y = 0; y < kSide; ++y)
            EXPECT_EQ(pixelAt(context.get(), y, y), pixelAt(plain.get(), y, y)) << scale << y;
    }
}

} // namespace
