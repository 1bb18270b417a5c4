// DrawingOperations.cpp: the operations of the drawing tables.

#include "Support/DrawingOperations.h"

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkBlurTypes.h"
#include "include/core/SkFont.h"
#include "include/core/SkFontMgr.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkImage.h"
#include "include/core/SkMaskFilter.h"
#include "include/core/SkPath.h"
#include "include/core/SkPathEffect.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"
#include "include/effects/SkDashPathEffect.h"
#include "include/effects/SkGradientShader.h"
#include "include/ports/SkFontMgr_empty.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace test {

namespace {

// ---- Text

constexpr char kFontFile[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr CGGlyph kGlyphs[] = {36, 74, 54, 87, 170};
constexpr CGPoint kOrigins[] = {{2.3f, 12.6f}, {14, 14.1f}, {22.9f, 11}, {34.6f, 18}, {5, 25.3f}};

void showText(CGContextRef c, CGFloat size) {
    static const auto font = [] {
        const auto provider = cf::adopt(CGDataProviderCreateWithFilename(kFontFile));
        return cf::adopt(CGFontCreateWithDataProvider(provider.get()));
    }();
    CGContextSetFont(c, font.get());
    CGContextSetFontSize(c, size);
    CGContextShowGlyphsAtPositions(c, kGlyphs, kOrigins, std::size(kGlyphs));
}

void showText(SkCanvas& canvas, SkPaint paint, float size) {
    static SkTypeface* const typeface =
        SkFontMgr_New_Custom_Empty()->makeFromFile(kFontFile).release();
    SkFont font(sk_ref_sp(typeface), size);
    font.setHinting(SkFontHinting::kNone);
    font.setLinearMetrics(true);
    font.setSubpixel(true);
    std::array<SkPoint, std::size(kOrigins)> origins;
    for (std::size_t index = 0; index < origins.size(); ++index)
        origins[index] = {kOrigins[index].x, -kOrigins[index].y}; // The font's y counts downwards.
    canvas.scale(1, -1);
    canvas.drawGlyphs(kGlyphs, origins, {0, 0}, font, paint);
}

// ---- Paths

void addShape(CGContextRef c) {
    CGContextMoveToPoint(c, 4.3f, 5.7f);
    CGContextAddLineToPoint(c, 40.2f, 10.1f);
    CGContextAddCurveToPoint(c, 10.6f, 33.5f, 45.4f, 38.8f, 20.5f, 2.25f);
    CGContextAddQuadCurveToPoint(c, 6, 25, 35, 30);
    CGContextClosePath(c);
    CGContextAddRect(c, CGRectMake(15, 12, 12.5f, 8.25f));
}

SkPath shape(SkPathFillType rule = SkPathFillType::kWinding) {
    SkPath path;
    path.moveTo(4.3f, 5.7f).lineTo(40.2f, 10.1f);
    path.cubicTo(10.6f, 33.5f, 45.4f, 38.8f, 20.5f, 2.25f).quadTo(6, 25, 35, 30).close();
    path.addRect(SkRect::MakeXYWH(15, 12, 12.5f, 8.25f));
    path.setFillType(rule);
    return path;
}

void strokeShape(CGContextRef c, CGFloat width, CGLineCap cap, CGLineJoin join) {
    CGContextSetLineWidth(c, width);
    CGContextSetLineCap(c, cap);
    CGContextSetLineJoin(c, join);
    CGContextMoveToPoint(c, 2.5f, 30);
    CGContextAddLineToPoint(c, 12, 4.5f);
    CGContextAddLineToPoint(c, 20, 33);
    CGContextAddCurveToPoint(c, 28, 0, 36, 60, 44, 8);
    CGContextStrokePath(c);
}

void strokeShape(SkCanvas& canvas, SkPaint paint, float width, SkPaint::Cap cap,
                 SkPaint::Join join) {
    paint.setStyle(SkPaint::kStroke_Style);
    paint.setStrokeWidth(width);
    paint.setStrokeCap(cap);
    paint.setStrokeJoin(join);
    paint.setStrokeMiter(4); // A new state's limit.
    SkPath path;
    path.moveTo(2.5f, 30).lineTo(12, 4.5f).lineTo(20, 33).cubicTo(28, 0, 36, 60, 44, 8);
    canvas.drawPath(path, paint);
}

// ---- Images of 16 × 12 pixels: premultiplied RGBA, or gray where the bitmap is gray, or coverage

constexpr int kImageWidth = 16, kImageHeight = 12;

template <std::size_t kBytesPerPixel>
const auto& imageBytes() {
    static const auto bytes = [] {
        std::array<std::uint8_t, kImageWidth * kImageHeight * kBytesPerPixel> made;
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<std::uint8_t>(
                kBytesPerPixel == 4 && i % 4 == 3 ? 128 + i * 89 % 128 : i * 41 % 128);
        return made;
    }();
    return bytes;
}

void drawImage(CGContextRef c, CGInterpolationQuality quality, CGRect rect) {
    const CGColorSpaceRef space = CGBitmapContextGetColorSpace(c);
    const bool isGray = CGBitmapContextGetAlphaInfo(c) != kCGImageAlphaOnly &&
                        CGColorSpaceGetModel(space) == kCGColorSpaceModelMonochrome;
    const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const void* const bytes =
        isGray ? imageBytes<1>().data() : static_cast<const void*>(imageBytes<4>().data());
    const std::size_t row = kImageWidth * (isGray ? 1u : 4u);
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, bytes, row * kImageHeight, nullptr));
    const auto image = cf::adopt(CGImageCreate(
        kImageWidth, kImageHeight, 8, isGray ? 8 : 32, row, isGray ? space : rgb.get(),
        isGray ? kCGImageAlphaNone : kCGImageAlphaPremultipliedLast, provider.get(), nullptr, true,
        kCGRenderingIntentDefault));
    CGContextSetInterpolationQuality(c, quality);
    CGContextDrawImage(c, rect, image.get());
}

void drawMask(CGContextRef c, CGRect rect) {
    const auto provider = cf::adopt(CGDataProviderCreateWithData(nullptr, imageBytes<1>().data(),
                                                                 imageBytes<1>().size(), nullptr));
    const auto mask = cf::adopt(CGImageMaskCreate(kImageWidth, kImageHeight, 8, 8, kImageWidth,
                                                  provider.get(), nullptr, true));
    CGContextDrawImage(c, rect, mask.get());
}

// Rows from the top.
void drawPixels(SkCanvas& canvas, const SkPaint& paint, const SkPixmap& pixels, SkRect rect,
                SkSamplingOptions sampling) {
    canvas.translate(0, rect.top() + rect.bottom());
    canvas.scale(1, -1);
    canvas.drawImageRect(SkImages::RasterFromPixmapCopy(pixels), rect, sampling, &paint);
}

thread_local bool bareImagesAreGray = false;

void drawImage(SkCanvas& canvas, SkPaint paint, SkRect rect, SkSamplingOptions sampling = {}) {
    const bool isGray = bareImagesAreGray;
    const auto info = SkImageInfo::Make(kImageWidth, kImageHeight,
                                        isGray ? kGray_8_SkColorType : kRGBA_8888_SkColorType,
                                        isGray ? kOpaque_SkAlphaType : kPremul_SkAlphaType);
    const void* const bytes =
        isGray ? imageBytes<1>().data() : static_cast<const void*>(imageBytes<4>().data());
    paint.setAlpha(static_cast<U8CPU>(std::lround(255 * kTableAlpha)));
    drawPixels(canvas, paint, SkPixmap(info, bytes, info.minRowBytes()), rect, sampling);
}

// Samples of an image mask say how much is kept out.
void drawMask(SkCanvas& canvas, const SkPaint& paint, SkRect rect) {
    std::array<std::uint8_t, kImageWidth* kImageHeight> coverage = imageBytes<1>();
    for (std::uint8_t& sample : coverage)
        sample = static_cast<std::uint8_t>(255 - sample);
    const auto info = SkImageInfo::MakeA8(kImageWidth, kImageHeight);
    drawPixels(canvas, paint, SkPixmap(info, coverage.data(), kImageWidth), rect,
               SkSamplingOptions(SkFilterMode::kLinear));
}

constexpr CGRect kOwnSize = {{11, 9}, {kImageWidth, kImageHeight}};
// No pixel's centre falls on the border of two of the image.
constexpr CGRect kEnlarged = {{3.4f, 2.1f}, {40.3f, 33.7f}}, kReduced = {{20, 15}, {7, 5}};

SkRect bareRect(const CGRect& rect) {
    return SkRect::MakeXYWH(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

// ---- Gradients

constexpr CGFloat kStops[] = {0, 0.25f, 0.5f, 1};
constexpr CGFloat kStopColors[][4] = {
    {1, 0, 0, 1}, {0, 1, 0.5f, 0.75f}, {0, 0, 1, 0}, {1, 1, 0, 0.5f}};
constexpr CGPoint kStart = {18.25f, 16}, kEnd = {24, 20.5f};
constexpr CGFloat kStartRadius = 2, kEndRadius = 17;

template <typename Draw>
void drawGradient(CGContextRef c, Draw draw) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto gradient =
        cf::adopt(CGGradientCreateWithColorComponents(space.get(), *kStopColors, kStops, 4));
    CGContextRotateCTM(c, 0.125f);
    draw(gradient.get());
}

void drawGradient(SkCanvas& canvas, SkPaint paint, bool isRadial) {
    SkColor4f colors[4];
    for (std::size_t i = 0; i < 4; ++i)
        colors[i] = {kStopColors[i][0], kStopColors[i][1], kStopColors[i][2], kStopColors[i][3]};
    const SkPoint ends[] = {{kStart.x, kStart.y}, {kEnd.x, kEnd.y}};
    paint.setAlpha(static_cast<U8CPU>(std::lround(255 * kTableAlpha)));
    paint.setShader(
        isRadial
            ? SkGradientShader::MakeTwoPointConical(ends[0], kStartRadius, ends[1], kEndRadius,
                                                    colors, nullptr, kStops, 4, SkTileMode::kDecal)
            : SkGradientShader::MakeLinear(ends, colors, nullptr, kStops, 4, SkTileMode::kClamp));
    SkMatrix turn;
    turn.setSinCos(std::sin(0.125f), std::cos(0.125f));
    canvas.concat(turn);
    canvas.drawPaint(paint);
}

void drawConic(CGContextRef c) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto gradient =
        cf::adopt(CGGradientCreateWithColorComponents(space.get(), *kStopColors, kStops, 4));
    CGContextDrawConicGradient(c, gradient.get(), kStart, 0);
}

void drawConic(SkCanvas& canvas, SkPaint paint) {
    SkColor4f colors[4];
    for (std::size_t i = 0; i < 4; ++i)
        colors[i] = {kStopColors[i][0], kStopColors[i][1], kStopColors[i][2], kStopColors[i][3]};
    paint.setAlpha(static_cast<U8CPU>(std::lround(255 * kTableAlpha)));
    paint.setShader(SkGradientShader::MakeSweep(kStart.x, kStart.y, colors, nullptr, kStops, 4));
    canvas.drawPaint(paint);
}

// ---- Patterns: three by two pixels of a colour in a cell of five by four, from (2, 1) on

void setPattern(CGContextRef c) {
    constexpr CGPatternCallbacks callbacks = {0,
                                              [](void*, CGContextRef cell) {
                                                  CGContextSetRGBFillColor(cell, 1, 0, 0.2f, 1);
                                                  CGContextFillRect(cell, CGRectMake(0, 0, 3, 2));
                                              },
                                              nullptr};
    const auto pattern =
        cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 5, 4), {1, 0, 0, 1, 2, 1}, 5, 4,
                                  kCGPatternTilingNoDistortion, 1, &callbacks));
    const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    constexpr CGFloat alpha = 128 / 255.f;
    const auto color = cf::adopt(CGColorCreateWithPattern(space.get(), pattern.get(), &alpha));
    CGContextSetFillColorWithColor(c, color.get());
    CGContextSetStrokeColorWithColor(c, color.get());
}

SkPaint patterned(SkPaint paint) {
    SkBitmap cell;
    cell.allocN32Pixels(5, 4);
    cell.eraseColor(SK_ColorTRANSPARENT);
    cell.erase(SkColorSetRGB(255, 0, 51), SkIRect::MakeXYWH(0, 2, 3, 2));
    const SkMatrix upright = SkMatrix::MakeAll(1, 0, 2, 0, -1, 5, 0, 0, 1);
    paint.setShader(cell.makeShader(SkTileMode::kRepeat, SkTileMode::kRepeat, {}, &upright));
    return paint;
}

// ---- Layers: the upper left of the bitmap, put elsewhere

constexpr CGRect kLayerRect = {{21, 6}, {13, 11}};

void drawLayer(CGContextRef c) {
    const auto layer = cf::adopt(CGLayerCreateWithContext(c, kLayerRect.size, nullptr));
    CGContextDrawLayerAtPoint(c, kLayerRect.origin, layer.get());
}

void drawLayer(SkCanvas& canvas, SkPaint paint) {
    SkPixmap all, part;
    if (canvas.peekPixels(&all) && all.extractSubset(&part, SkIRect::MakeWH(13, 11))) {
        if (all.colorType() != kAlpha_8_SkColorType)
            paint.setAlpha(static_cast<U8CPU>(std::lround(255 * kTableAlpha)));
        drawPixels(canvas, paint, part, bareRect(kLayerRect), {});
    }
}

// ---- The table

const DrawingOperation kOperations[] = {
    {"rectangle",
     [](CGContextRef c) { CGContextFillRect(c, CGRectMake(5.25f, 6.5f, 30.125f, 20)); },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.drawRect(SkRect::MakeXYWH(5.25f, 6.5f, 30.125f, 20), paint);
     }},
    {"opaque rectangle of whole pixels",
     [](CGContextRef c) {
         CGContextSetAlpha(c, 1);
         CGContextSetRGBFillColor(c, 1, 0.6f, 0.2f, 1);
         CGContextFillRect(c, CGRectMake(5, 30, 60, 7));
     },
     [](SkCanvas& canvas, SkPaint paint) {
         paint.setColor(SkColorSetRGB(255, 153, 51));
         canvas.drawRect(SkRect::MakeXYWH(5, 30, 60, 7), paint);
     }},
    {"path",
     [](CGContextRef c) {
         addShape(c);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) { canvas.drawPath(shape(), paint); }},
    {"path by the even-odd rule",
     [](CGContextRef c) {
         addShape(c);
         CGContextEOFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.drawPath(shape(SkPathFillType::kEvenOdd), paint);
     }},
    {"path without antialiasing",
     [](CGContextRef c) {
         CGContextSetShouldAntialias(c, false);
         addShape(c);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         paint.setAntiAlias(false);
         canvas.drawPath(shape(), paint);
     }},
    {"stroke with butt caps and miters",
     [](CGContextRef c) { strokeShape(c, 4.5f, kCGLineCapButt, kCGLineJoinMiter); },
     [](SkCanvas& canvas, SkPaint paint) {
         strokeShape(canvas, paint, 4.5f, SkPaint::kButt_Cap, SkPaint::kMiter_Join);
     }},
    {"round stroke",
     [](CGContextRef c) { strokeShape(c, 4.5f, kCGLineCapRound, kCGLineJoinRound); },
     [](SkCanvas& canvas, SkPaint paint) {
         strokeShape(canvas, paint, 4.5f, SkPaint::kRound_Cap, SkPaint::kRound_Join);
     }},
    {"stroke with square caps and bevels",
     [](CGContextRef c) { strokeShape(c, 3, kCGLineCapSquare, kCGLineJoinBevel); },
     [](SkCanvas& canvas, SkPaint paint) {
         strokeShape(canvas, paint, 3, SkPaint::kSquare_Cap, SkPaint::kBevel_Join);
     }},
    {"stroke of half a pixel",
     [](CGContextRef c) { strokeShape(c, 0.5f, kCGLineCapButt, kCGLineJoinMiter); },
     [](SkCanvas& canvas, SkPaint paint) {
         strokeShape(canvas, paint, 0.5f, SkPaint::kButt_Cap, SkPaint::kMiter_Join);
     }},
    {"dashed stroke",
     [](CGContextRef c) {
         const CGFloat lengths[] = {5, 2.5f};
         CGContextSetLineDash(c, 1.5f, lengths, 2);
         strokeShape(c, 2, kCGLineCapRound, kCGLineJoinMiter);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         const SkScalar lengths[] = {5, 2.5f};
         paint.setPathEffect(SkDashPathEffect::Make(lengths, 1.5f));
         strokeShape(canvas, paint, 2, SkPaint::kRound_Cap, SkPaint::kMiter_Join);
     }},
    {"image of its own size",
     [](CGContextRef c) { drawImage(c, kCGInterpolationDefault, kOwnSize); },
     [](SkCanvas& canvas, SkPaint paint) { drawImage(canvas, paint, bareRect(kOwnSize)); }},
    {"enlarged image, nearest",
     [](CGContextRef c) { drawImage(c, kCGInterpolationNone, kEnlarged); },
     [](SkCanvas& canvas, SkPaint paint) { drawImage(canvas, paint, bareRect(kEnlarged)); }},
    {"enlarged image, low quality",
     [](CGContextRef c) { drawImage(c, kCGInterpolationLow, kEnlarged); },
     [](SkCanvas& canvas, SkPaint paint) {
         drawImage(canvas, paint, bareRect(kEnlarged), SkSamplingOptions(SkFilterMode::kLinear));
     }},
    {"enlarged image, high quality",
     [](CGContextRef c) { drawImage(c, kCGInterpolationHigh, kEnlarged); },
     [](SkCanvas& canvas, SkPaint paint) {
         drawImage(canvas, paint, bareRect(kEnlarged),
                   SkSamplingOptions(SkCubicResampler::CatmullRom()));
     }},
    {"reduced image, medium quality",
     [](CGContextRef c) { drawImage(c, kCGInterpolationMedium, kReduced); },
     [](SkCanvas& canvas, SkPaint paint) {
         drawImage(canvas, paint, bareRect(kReduced),
                   SkSamplingOptions(SkFilterMode::kLinear, SkMipmapMode::kNearest));
     }},
    {"reduced image, high quality",
     [](CGContextRef c) { drawImage(c, kCGInterpolationHigh, kReduced); },
     [](SkCanvas& canvas, SkPaint paint) {
         drawImage(canvas, paint, bareRect(kReduced),
                   SkSamplingOptions(SkFilterMode::kLinear, SkMipmapMode::kLinear));
     }},
    {"rotated image",
     [](CGContextRef c) {
         CGContextConcatCTM(c, {1.2f, 0.9f, -0.9f, 1.2f, 16, -6});
         drawImage(c, kCGInterpolationLow, kOwnSize);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.concat(SkMatrix::MakeAll(1.2f, -0.9f, 16, 0.9f, 1.2f, -6, 0, 0, 1));
         drawImage(canvas, paint, bareRect(kOwnSize), SkSamplingOptions(SkFilterMode::kLinear));
     }},
    {"image mask", [](CGContextRef c) { drawMask(c, kEnlarged); },
     [](SkCanvas& canvas, SkPaint paint) { drawMask(canvas, paint, bareRect(kEnlarged)); }},
    {"linear gradient",
     [](CGContextRef c) {
         drawGradient(c, [c](CGGradientRef gradient) {
             CGContextDrawLinearGradient(
                 c, gradient, kStart, kEnd,
                 CGGradientDrawingOptions{kCGGradientDrawsBeforeStartLocation |
                                          kCGGradientDrawsAfterEndLocation});
         });
     },
     [](SkCanvas& canvas, SkPaint paint) { drawGradient(canvas, paint, false); }},
    {"radial gradient that does not extend",
     [](CGContextRef c) {
         drawGradient(c, [c](CGGradientRef gradient) {
             CGContextDrawRadialGradient(c, gradient, kStart, kStartRadius, kEnd, kEndRadius,
                                         CGGradientDrawingOptions{});
         });
     },
     [](SkCanvas& canvas, SkPaint paint) { drawGradient(canvas, paint, true); }},
    {"conic gradient", drawConic, drawConic},
    {"path in a pattern",
     [](CGContextRef c) {
         setPattern(c);
         addShape(c);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) { canvas.drawPath(shape(), patterned(paint)); }},
    {"stroke in a pattern",
     [](CGContextRef c) {
         setPattern(c);
         strokeShape(c, 6, kCGLineCapRound, kCGLineJoinMiter);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         strokeShape(canvas, patterned(paint), 6, SkPaint::kRound_Cap, SkPaint::kMiter_Join);
     }},
    {"layer", drawLayer, drawLayer},
    {"clip to a rectangle",
     [](CGContextRef c) {
         CGContextClipToRect(c, CGRectMake(10.5f, 7.25f, 20, 25.5f));
         addShape(c);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.clipRect(SkRect::MakeXYWH(10.5f, 7.25f, 20, 25.5f), true);
         canvas.drawPath(shape(), paint);
     }},
    {"clip to a path",
     [](CGContextRef c) {
         addShape(c);
         CGContextEOClip(c);
         CGContextFillRect(c, CGRectMake(3, 3.5f, 40, 30));
     },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.clipPath(shape(SkPathFillType::kEvenOdd), true);
         canvas.drawRect(SkRect::MakeXYWH(3, 3.5f, 40, 30), paint);
     }},
    {"text", [](CGContextRef c) { showText(c, 16.5f); },
     [](SkCanvas& canvas, SkPaint paint) { showText(canvas, paint, 16.5f); }},
    {"text clipped smoothly on a slope",
     [](CGContextRef c) {
         addShape(c);
         CGContextClip(c);
         CGContextConcatCTM(c, {1, 0.25f, -0.5f, 1, 4, -3});
         showText(c, 24);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         canvas.clipPath(shape(), true);
         canvas.concat(SkMatrix::MakeAll(1, -0.5f, 4, 0.25f, 1, -3, 0, 0, 1));
         showText(canvas, paint, 24);
     }},
    {"path with a shadow",
     [](CGContextRef c) {
         const auto color = cf::adopt(CGColorCreateGenericRGB(0, 0.2f, 0, 0.8f));
         CGContextSetShadowWithColor(c, CGSizeMake(3, -2), 5, color.get());
         addShape(c);
         CGContextFillPath(c);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         SkPaint shadow = paint;
         const U8CPU alpha = static_cast<U8CPU>(std::lround(paint.getAlpha() * 0.8));
         shadow.setColor(SkColorSetARGB(alpha, 0, 51, 0));
         shadow.setMaskFilter(SkMaskFilter::MakeBlur(kNormal_SkBlurStyle, 2.5f, false));
         canvas.drawPath(shape().makeTransform(SkMatrix::Translate(3, -2)), shadow);
         canvas.drawPath(shape(), paint);
     },
     2},
    {"transparency group",
     [](CGContextRef c) {
         CGContextBeginTransparencyLayer(c, nullptr);
         addShape(c);
         CGContextFillPath(c);
         CGContextSetRGBFillColor(c, 1, 0, 0, 1);
         CGContextFillRect(c, CGRectMake(20, 10, 20.5f, 20));
         CGContextEndTransparencyLayer(c);
     },
     [](SkCanvas& canvas, SkPaint paint) {
         SkBitmap pixels;
         pixels.allocN32Pixels(kTableWidth, kTableHeight);
         pixels.eraseColor(SK_ColorTRANSPARENT);
         SkCanvas group(pixels);
         group.concat(canvas.getLocalToDevice());
         SkPaint inside;
         inside.setAntiAlias(true);
         inside.setColor(kTableColor);
         group.drawPath(shape(), inside);
         inside.setColor(SK_ColorRED);
         group.drawRect(SkRect::MakeXYWH(20, 10, 20.5f, 20), inside);
         paint.setAlpha(static_cast<U8CPU>(std::lround(255 * kTableAlpha)));
         canvas.resetMatrix();
         canvas.drawImage(pixels.asImage(), 0, 0, {}, &paint);
     }},
};

constexpr SkBlendMode kModes[] = {
    SkBlendMode::kSrcOver,    SkBlendMode::kMultiply,   SkBlendMode::kScreen,
    SkBlendMode::kOverlay,    SkBlendMode::kDarken,     SkBlendMode::kLighten,
    SkBlendMode::kColorDodge, SkBlendMode::kColorBurn,  SkBlendMode::kSoftLight,
    SkBlendMode::kHardLight,  SkBlendMode::kDifference, SkBlendMode::kExclusion,
    SkBlendMode::kHue,        SkBlendMode::kSaturation, SkBlendMode::kColor,
    SkBlendMode::kLuminosity, SkBlendMode::kClear,      SkBlendMode::kSrc,
    SkBlendMode::kSrcIn,      SkBlendMode::kSrcOut,     SkBlendMode::kSrcATop,
    SkBlendMode::kDstOver,    SkBlendMode::kDstIn,      SkBlendMode::kDstOut,
    SkBlendMode::kDstATop,    SkBlendMode::kXor,        SkBlendMode::kDarken,
    SkBlendMode::kLighten,    SkBlendMode::kSrcOver, // One past the last.
};

} // namespace

std::span<const DrawingOperation> drawingOperations() {
    return kOperations;
}

std::span<const SkBlendMode> tableBlendModes() {
    return kModes;
}

void drawOurs(const DrawingOperation& operation, CGContextRef context, std::size_t mode) {
    CGContextSetRGBFillColor(context, 0.2f, 0.4f, 0.8f, 128 / 255.f);
    CGContextSetRGBStrokeColor(context, 0.2f, 0.4f, 0.8f, 128 / 255.f);
    CGContextSetAlpha(context, kTableAlpha);
    CGContextSetBlendMode(context, static_cast<CGBlendMode>(mode));
    operation.ours(context);
}

void drawBare(const DrawingOperation& operation, const SkBitmap& bitmap, std::size_t mode,
              bool isGray) {
    bareImagesAreGray = isGray;
    SkGraphics::Init();
    SkCanvas canvas(bitmap);
    canvas.translate(0, static_cast<float>(bitmap.height()));
    canvas.scale(1, -1);
    SkPaint paint;
    paint.setAntiAlias(true);
    paint.setColor(SkColorSetA(
        kTableColor, static_cast<U8CPU>(std::lround(kTableAlpha * SkColorGetA(kTableColor)))));
    paint.setBlendMode(kModes[mode]);
    operation.bare(canvas, paint);
}

} // namespace test
