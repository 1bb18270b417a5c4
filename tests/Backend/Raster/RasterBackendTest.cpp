// RasterBackendTest.cpp: marks in bitmap contexts, beside bare Skia and worked out by hand.

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Picture.h"
#include "Support/SkiaPeer.h"
#include "include/core/SkPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using test::makeContext;
using test::Picture;
using test::samePixels;
using test::SkiaPeer;

namespace {

constexpr int kSize = 96;

// A shape with lines, curves of both kinds, an overlap with itself and a second contour.
const float kShape[][2] = {{8.3f, 10.7f},  {80.2f, 20.1f}, {20.6f, 75.5f}, {90.4f, 88.8f},
                           {40.5f, 5.25f}, {12.f, 60.f},   {70.f, 70.f}};

void addShape(CGContextRef context) {
    const auto& p = kShape;
    CGContextMoveToPoint(context, p[0][0], p[0][1]);
    CGContextAddLineToPoint(context, p[1][0], p[1][1]);
    CGContextAddCurveToPoint(context, p[2][0], p[2][1], p[3][0], p[3][1], p[4][0], p[4][1]);
    CGContextAddQuadCurveToPoint(context, p[5][0], p[5][1], p[6][0], p[6][1]);
    CGContextClosePath(context);
    CGContextAddRect(context, CGRectMake(30, 30, 25.5f, 20.25f));
}

SkPath shape() {
    const auto& p = kShape;
    SkPath path;
    path.moveTo(p[0][0], p[0][1]);
    path.lineTo(p[1][0], p[1][1]);
    path.cubicTo(p[2][0], p[2][1], p[3][0], p[3][1], p[4][0], p[4][1]);
    path.quadTo(p[5][0], p[5][1], p[6][0], p[6][1]);
    path.close();
    path.addRect(SkRect::MakeXYWH(30, 30, 25.5f, 20.25f));
    return path;
}

SkPaint paintOf(SkColor color) {
    SkPaint paint;
    paint.setAntiAlias(true);
    paint.setColor(color);
    return paint;
}

SkPaint strokeOf(SkColor color, float width) {
    SkPaint paint = paintOf(color);
    paint.setStyle(SkPaint::kStroke_Style);
    paint.setStrokeWidth(width);
    paint.setStrokeMiter(4); // The graphics state's initial limit.
    return paint;
}

struct Comparison {
    const char* what;
    std::function<void(CGContextRef)> ours;
    std::function<void(SkCanvas&)> bare;
};

void expectSame(const Comparison& comparison) {
    const auto context = makeContext(kSize, kSize);
    ASSERT_TRUE(context);
    SkiaPeer peer(kSize, kSize);
    comparison.ours(context.get());
    comparison.bare(peer.canvas());
    EXPECT_TRUE(samePixels(context.get(), peer)) << comparison.what;
}

constexpr SkColor kHalfBlue = SkColorSetARGB(128, 51, 102, 204);

void setHalfBlue(CGContextRef context) {
    CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.8f, 128 / 255.f);
    CGContextSetRGBStrokeColor(context, 0.2f, 0.4f, 0.8f, 128 / 255.f);
}

} // namespace

TEST(RasterBackend, FillsAndStrokesAsBareSkiaDoesUnderTransforms) {
    const Comparison comparisons[] = {
        {"round stroke under a uniform scale",
         [](CGContextRef c) {
             CGContextScaleCTM(c, 0.5f, 0.5f);
             CGContextSetLineWidth(c, 6);
             CGContextSetLineCap(c, kCGLineCapRound);
             CGContextSetLineJoin(c, kCGLineJoinRound);
             addShape(c);
             CGContextStrokePath(c);
         },
         [](SkCanvas& canvas) {
             SkPaint paint = strokeOf(SK_ColorBLACK, 3);
             paint.setStrokeCap(SkPaint::kRound_Cap);
             paint.setStrokeJoin(SkPaint::kRound_Join);
             canvas.drawPath(shape().makeTransform(SkMatrix::Scale(0.5f, 0.5f)), paint);
         }},
        {"rectangle of one line width, as a rectangle rather than as four hairlines",
         [](CGContextRef c) { CGContextStrokeRect(c, CGRectMake(10.5f, 20.5f, 30, 40.25f)); },
         [](SkCanvas& canvas) {
             canvas.drawRect(SkRect::MakeXYWH(10.5f, 20.5f, 30, 40.25f),
                             strokeOf(SK_ColorBLACK, 1));
         }},
        {"opaque rectangles, partly outside",
         [](CGContextRef c) {
             CGContextSetRGBFillColor(c, 1, 0, 0, 1);
             CGContextFillRect(c, CGRectMake(-10, 90, 40, 30));
             CGContextFillRect(c, CGRectMake(-1e9f, 10, 2e9f, 3));
         },
         [](SkCanvas& canvas) {
             canvas.drawRect(SkRect::MakeXYWH(-10, 90, 40, 30), paintOf(SK_ColorRED));
             canvas.drawRect(SkRect::MakeXYWH(0, 10, kSize, 3), paintOf(SK_ColorRED));
         }},
        {"rotated rectangle",
         [](CGContextRef c) {
             CGContextTranslateCTM(c, 48, 48);
             CGContextRotateCTM(c, 0.5f);
             CGContextFillRect(c, CGRectMake(-20, -30, 40, 60));
         },
         [](SkCanvas& canvas) {
             const float s = std::sin(0.5f), k = std::cos(0.5f);
             const SkMatrix turn = SkMatrix::MakeAll(k, -s, 48, s, k, 48, 0, 0, 1);
             canvas.drawPath(SkPath::Rect(SkRect::MakeXYWH(-20, -30, 40, 60)).makeTransform(turn),
                             paintOf(SK_ColorBLACK));
         }},
    };
    for (const Comparison& comparison : comparisons)
        expectSame(comparison);
}

// Rectangles and hairlines have short ways of their own, by colour, edges and clip.
TEST(RasterBackend, FillsRectanglesAndDrawsHairlinesAsBareSkiaDoes) {
    constexpr CGRect kRects[] = {{{3, 4}, {20, 30}},
                                 {{40.3f, 5.6f}, {30.5f, 20.1f}},
                                 {{-5.5f, 70}, {200, 9.25f}},
                                 {{60.2f, 50}, {0.3f, 15}}};
    for (const SkColor color : {SK_ColorBLACK, SK_ColorRED, kHalfBlue})
        for (const bool isSmooth : {true, false})
            for (const bool isClipped : {true, false})
                expectSame({isSmooth ? "smooth" : "sharp",
                            [=](CGContextRef c) {
                                const SkColor4f components = SkColor4f::FromColor(color);
                                CGContextSetShouldAntialias(c, isSmooth);
                                CGContextSetRGBFillColor(c, components.fR, components.fG,
                                                         components.fB, components.fA);
                                CGContextSetRGBStrokeColor(c, components.fR, components.fG,
                                                           components.fB, components.fA);
                                if (isClipped) {
                                    addShape(c);
                                    CGContextClip(c);
                                }
                                CGContextFillRects(c, kRects, std::size(kRects));
                                for (const CGFloat width : {0.4f, 1.f}) {
                                    CGContextSetLineWidth(c, width);
                                    addShape(c);
                                    CGContextStrokePath(c);
                                }
                            },
                            [=](SkCanvas& canvas) {
                                SkPaint paint = paintOf(color);
                                paint.setAntiAlias(isSmooth);
                                if (isClipped)
                                    canvas.clipPath(shape(), isSmooth);
                                for (const CGRect& rect : kRects)
                                    canvas.drawRect(SkRect::MakeXYWH(rect.origin.x, rect.origin.y,
                                                                     rect.size.width,
                                                                     rect.size.height),
                                                    paint);
                                for (const float width : {0.4f, 1.f}) {
                                    SkPaint stroke = strokeOf(color, width);
                                    stroke.setAntiAlias(isSmooth);
                                    canvas.drawPath(shape(), stroke);
                                }
                            }});
}

TEST(RasterBackend, ClipsAsBareSkiaDoes) {
    const auto circle = cf::adopt(CGPathCreateWithEllipseInRect(CGRectMake(5, 5, 80, 80), nullptr));
    // Bare Skia gets the same cubics: its own circle would be made of conics.
    const auto bareCircle = [] {
        constexpr float k = 0.44808495f * 40;
        SkPath path;
        path.moveTo(85, 45);
        path.cubicTo(85, 85 - k, 85 - k, 85, 45, 85);
        path.cubicTo(5 + k, 85, 5, 85 - k, 5, 45);
        path.cubicTo(5, 5 + k, 5 + k, 5, 45, 5);
        path.cubicTo(85 - k, 5, 85, 5 + k, 85, 45);
        path.close();
        return path;
    };
    const Comparison comparisons[] = {
        {"a path that is such a rectangle: its edges count once",
         [](CGContextRef c) {
             CGContextAddRect(c, CGRectMake(20.5f, 10.25f, 40, 60.5f));
             CGContextClip(c);
             CGContextFillRect(c, CGRectMake(0, 0, kSize, kSize));
         },
         [](SkCanvas& canvas) {
             canvas.clipRect(SkRect::MakeXYWH(20.5f, 10.25f, 40, 60.5f), true);
             canvas.drawPaint(paintOf(SK_ColorBLACK));
         }},
        {"circle and shape, restored in between",
         [&circle](CGContextRef c) {
             CGContextSaveGState(c);
             CGContextAddPath(c, circle.get());
             CGContextClip(c);
             setHalfBlue(c);
             addShape(c);
             CGContextFillPath(c);
             CGContextRestoreGState(c);
             CGContextFillRect(c, CGRectMake(0, 0, 10, 10));
             addShape(c);
             CGContextEOClip(c);
             CGContextFillRect(c, CGRectMake(0, 40, kSize, 50));
         },
         [&bareCircle](SkCanvas& canvas) {
             canvas.save();
             canvas.clipPath(bareCircle(), true);
             canvas.drawPath(shape(), paintOf(kHalfBlue));
             canvas.restore();
             canvas.drawRect(SkRect::MakeWH(10, 10), paintOf(SK_ColorBLACK));
             SkPath path = shape();
             path.setFillType(SkPathFillType::kEvenOdd);
             canvas.clipPath(path, true);
             canvas.drawRect(SkRect::MakeXYWH(0, 40, kSize, 50), paintOf(SK_ColorBLACK));
         }},
        {"two circles",
         [&circle](CGContextRef c) {
             CGContextAddPath(c, circle.get());
             CGContextClip(c);
             CGContextTranslateCTM(c, 20, 8);
             CGContextAddPath(c, circle.get());
             CGContextClip(c);
             CGContextFillRect(c, CGRectMake(-100, -100, 300, 300));
         },
         [&bareCircle](SkCanvas& canvas) {
             canvas.clipPath(bareCircle(), true);
             canvas.clipPath(bareCircle().makeTransform(SkMatrix::Translate(20, 8)), true);
             canvas.drawRect(SkRect::MakeLTRB(-80, -92, 220, 208), paintOf(SK_ColorBLACK));
         }},
    };
    for (const Comparison& comparison : comparisons)
        expectSame(comparison);
}

// Two shapes that meet the same soft clip edge inside a group: the edge is the clip's alone, not
// thickened by covering it twice.
TEST(RasterBackend, AGroupMeetsItsClipOnce) {
    const auto context = makeContext(4, 1);
    CGContextClipToRect(context.get(), CGRectMake(0, 0, 2.5f, 1));
    CGContextBeginTransparencyLayer(context.get(), nullptr);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 4, 1));
    CGContextFillRect(context.get(), CGRectMake(0, 0, 4, 1));
    CGContextEndTransparencyLayer(context.get());
    const auto* const pixels =
        static_cast<const std::uint8_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_EQ(pixels[4 * 1 + 3], 255);
    EXPECT_NEAR(pixels[4 * 2 + 3], 128, 1);
    EXPECT_EQ(pixels[4 * 3 + 3], 0);
}

TEST(RasterBackend, UserSpaceStartsAtTheLowerLeft) {
    const auto context = makeContext(5, 4);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
    CGContextFillRect(context.get(), CGRectMake(4, 2, 1, 2));
    EXPECT_EQ(Picture(context.get()), (Picture{"....#", //
                                               "....#", //
                                               ".....", //
                                               "##..."}));
    CGContextClearRect(context.get(), CGRectMake(1, 0, 4, 3));
    EXPECT_EQ(Picture(context.get()), (Picture{"....#", //
                                               ".....", //
                                               ".....", //
                                               "#...."}));
}

TEST(RasterBackend, LinesAtPixelCentresAreCrisp) {
    const auto context = makeContext(5, 5);
    CGContextStrokeRect(context.get(), CGRectMake(0.5f, 0.5f, 4, 4));
    EXPECT_EQ(Picture(context.get()), (Picture{"#####", //
                                               "#...#", //
                                               "#...#", //
                                               "#...#", //
                                               "#####"}));
}

TEST(RasterBackend, ZeroLengthDashesAndSubpathsDrawDots) {
    const auto context = makeContext(9, 3);
    CGContextSetLineWidth(context.get(), 1);
    CGContextSetLineCap(context.get(), kCGLineCapSquare);
    const CGFloat lengths[] = {0, 3};
    CGContextSetLineDash(context.get(), 0, lengths, 2);
    CGContextMoveToPoint(context.get(), 1.5f, 1.5f);
    CGContextAddLineToPoint(context.get(), 8, 1.5f);
    CGContextStrokePath(context.get());
    EXPECT_EQ(Picture(context.get()), (Picture{".........", //
                                               ".#..#..#.", //
                                               "........."}));
}

// Skia's scan converter ends at 8191 pixels; both sides of that line, and a clip across it.
TEST(RasterBackend, DrawsBeyondTheScanConvertersReach) {
    constexpr int width = 8400;
    const auto context = makeContext(width, 6);
    SkiaPeer peer(width, 6);
    CGContextClipToRect(context.get(), CGRectMake(1, 0, width - 2, 5));
    peer.canvas().clipRect(SkRect::MakeLTRB(1, 0, width - 1, 5));
    SkPath wedge;
    wedge.moveTo(0, 0);
    wedge.lineTo(width, 2.5f);
    wedge.lineTo(0, 6);
    wedge.close();
    peer.canvas().drawPath(wedge, paintOf(kHalfBlue));
    peer.canvas().drawRect(SkRect::MakeLTRB(8000.5f, 0, 8399, 1.5f), paintOf(kHalfBlue));
    setHalfBlue(context.get());
    CGContextMoveToPoint(context.get(), 0, 0);
    CGContextAddLineToPoint(context.get(), width, 2.5f);
    CGContextAddLineToPoint(context.get(), 0, 6);
    CGContextFillPath(context.get());
    CGContextFillRect(context.get(), CGRectMake(8000.5f, 0, 398.5f, 1.5f));
    EXPECT_TRUE(samePixels(context.get(), peer));
}

TEST(RasterBackend, GeometryThatIsNotFiniteDrawsNothing) {
    constexpr float inf = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const auto context = makeContext(4, 4);
    for (const float bad : {inf, -inf, nan, 3.4e38f, -3.4e38f}) {
        CGContextFillRect(context.get(), CGRectMake(bad, bad, bad, bad));
        CGContextFillRect(context.get(), CGRectMake(0, nan, 4, 4));
        CGContextMoveToPoint(context.get(), nan, 0);
        CGContextAddLineToPoint(context.get(), bad, 1);
        CGContextAddCurveToPoint(context.get(), 0, bad, bad, nan, 2, 2);
        CGContextDrawPath(context.get(), kCGPathFillStroke);
        CGContextStrokeRect(context.get(), CGRectMake(nan, 0, bad, 1));
    }
    EXPECT_EQ(Picture(context.get()), (Picture{"....", "....", "....", "...."}));
}
