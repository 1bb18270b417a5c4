// Surface.cpp: rasterising into pixels, in tiles where Skia's fixed-point numbers need it.

#include "Backend/Raster/Surface.h"

#include "include/core/SkBitmap.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"
#include "src/core/SkDraw.h"
#include "src/core/SkMemset.h"
#include "src/core/SkScan.h"

#include <cmath>

namespace cg {

namespace {

// Skia's scan converter shifts coordinates left by two bits for supersampling and keeps them in
// 16.16 fixed point, so that it reaches 2¹³ − 1 pixels.
constexpr int kLargestTile = 8191;

// The matrix that turns y around and moves the part that the pixels show to their upper left
// corner.
SkMatrix deviceToPixels(int deviceHeight, SkIPoint origin) {
    return SkMatrix::MakeAll(1, 0, static_cast<float>(-origin.x()), 0, -1,
                             static_cast<float>(deviceHeight - origin.y()), 0, 0, 1);
}

bool isWhole(const SkRect& rect) {
    const auto isWholeNumber = [](float value) { return value == std::floor(value); };
    return isWholeNumber(rect.left()) && isWholeNumber(rect.top()) && isWholeNumber(rect.right()) &&
           isWholeNumber(rect.bottom());
}

// Whether the paint replaces what lies beneath with one opaque colour.
bool isOpaqueFill(const SkPaint& paint) {
    return paint.isSrcOver() && paint.getAlpha() == 0xFF && !paint.getShader() &&
           !paint.getColorFilter() && !paint.getMaskFilter() &&
           paint.getStyle() == SkPaint::kFill_Style;
}

} // namespace

Surface::Surface(const SkPixmap& pixels, int deviceHeight, SkIPoint origin)
    : pixels_(pixels), origin_(origin), deviceToPixels_(cg::deviceToPixels(deviceHeight, origin)),
      clip_(SkIRect::MakeSize(pixels.dimensions())) {
    pixelPath_.setIsVolatile(true);
}

// ---- Clip

void Surface::resetClip() {
    if (clip_.clipShader())
        clip_ = SkRasterClip(); // Nothing else lets go of a mask.
    clip_.setRect(bounds());
}
void Surface::clipOut() {
    clip_.setEmpty();
}

// Antialiased clips are kept as runs whose coordinates have the scan converter's range.
bool Surface::clipsSmoothly(Antialias wanted) const {
    return wanted == Antialias::Yes && !SkScan::PathRequiresTiling(bounds());
}

void Surface::clipRect(const SkRect& deviceRect, Antialias antialias) {
    clip_.op(deviceRect, deviceToPixels_, SkClipOp::kIntersect, clipsSmoothly(antialias));
}

void Surface::clipPath(const SkPath& devicePath, Antialias antialias) {
    SkRect rect;
    if (devicePath.isRect(&rect))
        clipRect(rect, antialias);
    else
        clip_.op(devicePath, deviceToPixels_, SkClipOp::kIntersect, clipsSmoothly(antialias));
}

void Surface::clipMask(const PlacedImage& coverage) {
    const SkPixmap& pixels = coverage.pixels;
    SkBitmap copy;
    if (clip_.isEmpty() || !copy.tryAllocPixels(pixels.info()) || !copy.writePixels(pixels, 0, 0)) {
        clipOut();
        return;
    }
    copy.setImmutable();
    const SkMatrix matrix = SkMatrix::Concat(SkMatrix::Concat(deviceToPixels_, coverage.toDevice),
                                             coverage.pixelsToRect());
    clip_.op(copy.makeShader(SkTileMode::kClamp, SkTileMode::kClamp, coverage.sampling, &matrix));
}

// ---- Marks

template <typename Draw>
void Surface::drawInTiles(const SkMatrix& matrix, Draw&& draw) {
    const SkIRect area = clip_.getBounds();
    for (int top = area.top(); top < area.bottom(); top += kLargestTile) {
        for (int left = area.left(); left < area.right(); left += kLargestTile) {
            SkDraw tile;
            if (!pixels_.extractSubset(&tile.fDst,
                                       SkIRect::MakeXYWH(left, top, kLargestTile, kLargestTile)))
                continue;
            SkRasterClip clip;
            clip_.translate(-left, -top, &clip);
            clip.op(SkIRect::MakeSize(tile.fDst.dimensions()), SkClipOp::kIntersect);
            if (const auto mask = clip_.clipShader())
                clip.op(mask->makeWithLocalMatrix(
                    SkMatrix::Translate(static_cast<float>(-left), static_cast<float>(-top))));
            SkMatrix moved = matrix;
            moved.postTranslate(static_cast<float>(-left), static_cast<float>(-top));
            tile.fCTM = &moved;
            tile.fRC = &clip;
            draw(tile);
        }
    }
}

template <typename Draw>
void Surface::draw(const SkMatrix& matrix, Draw&& draw) {
    const SkIRect area = clip_.getBounds();
    if (area.right() > kLargestTile || area.bottom() > kLargestTile) {
        drawInTiles(matrix, draw);
        return;
    }
    SkDraw whole;
    whole.fDst = pixels_;
    whole.fCTM = &matrix;
    whole.fRC = &clip_;
    draw(whole);
}

void Surface::drawPath(const SkPath& devicePath, const SkPaint& paint, SkVector offset) {
    if (clip_.isEmpty() || !devicePath.isFinite() || paint.nothingToDraw())
        return;
    SkMatrix matrix = deviceToPixels_;
    matrix.postTranslate(offset.x(), offset.y());
    const bool isFill = paint.getStyle() == SkPaint::kFill_Style;
    if (!isFill) {
        // Lines up to a pixel wide are hairlines to Skia, whose corners are faint; frames are not.
        SkRect frame;
        bool isClosed = false;
        if (devicePath.isRect(&frame, &isClosed) && isClosed) {
            draw(matrix, [&](const SkDraw& target) { target.drawRect(frame, paint); });
            return;
        }
        // A stroke is outlined before it is turned around, so that caps and joins start as given.
        draw(matrix,
             [&](const SkDraw& target) { target.drawPath(devicePath, paint, nullptr, false); });
        return;
    }
    devicePath.transform(matrix, &pixelPath_);
    draw(SkMatrix::I(),
         [&](const SkDraw& target) { target.drawPath(pixelPath_, paint, nullptr, false); });
}

// Whole pixels of one opaque colour under a rectangular clip need no blitter.
bool Surface::fillOpaquePixels(const SkRect& pixelRect, const SkPaint& paint) {
    if (!clip_.isRect() || clip_.clipShader() || pixels_.colorType() != kN32_SkColorType ||
        !isOpaqueFill(paint) || !isWhole(pixelRect))
        return false;
    SkIRect area = pixelRect.roundOut();
    if (area.intersect(clip_.getBounds()))
        SkOpts::rect_memset32(pixels_.writable_addr32(area.left(), area.top()),
                              SkPreMultiplyColor(paint.getColor()), area.width(),
                              pixels_.rowBytes(), area.height());
    return true;
}

void Surface::drawRect(const SkRect& deviceRect, const SkPaint& paint) {
    if (clip_.isEmpty() || !deviceRect.isFinite() || paint.nothingToDraw())
        return;
    SkRect pixelRect;
    deviceToPixels_.mapRectScaleTranslate(&pixelRect, deviceRect);
    if (fillOpaquePixels(pixelRect, paint))
        return;
    draw(SkMatrix::I(), [&](const SkDraw& target) { target.drawRect(pixelRect, paint); });
}

void Surface::drawImage(const PlacedImage& image, const SkPaint& paint) {
    const SkMatrix matrix = SkMatrix::Concat(deviceToPixels_, image.toDevice);
    SkBitmap bitmap;
    if (clip_.isEmpty() || image.rect.isEmpty() || !image.rect.isFinite() || !matrix.isFinite() ||
        paint.nothingToDraw() || !bitmap.installPixels(image.pixels))
        return;
    const SkMatrix pixelsToRect = image.pixelsToRect();
    if (image.repeat == Repeat::Once) {
        draw(matrix, [&](const SkDraw& target) {
            target.drawBitmap(bitmap, pixelsToRect, &image.rect, image.sampling, paint);
        });
        return;
    }
    bitmap.setImmutable(); // A shader would copy what may change.
    SkPaint tiles = paint;
    tiles.setShader(
        bitmap.makeShader(SkTileMode::kRepeat, SkTileMode::kRepeat, image.sampling, &pixelsToRect));
    draw(matrix, [&](const SkDraw& target) { target.drawPaint(tiles); });
}

void Surface::drawMask(const SkMask& mask, const SkPaint& paint) {
    if (clip_.isEmpty())
        return;
    draw(SkMatrix::I(), [&](const SkDraw& target) {
        const SkIPoint at = {SkScalarRoundToInt(target.fCTM->getTranslateX()),
                             SkScalarRoundToInt(target.fCTM->getTranslateY())};
        const SkMask moved(mask.fImage, mask.fBounds.makeOffset(at), mask.fRowBytes, mask.fFormat);
        target.drawDevMask(moved, paint, nullptr);
    });
}

void Surface::drawPixels(const SkPixmap& source, SkIPoint at, const SkPaint& paint) {
    SkBitmap bitmap;
    if (clip_.isEmpty() || !bitmap.installPixels(source))
        return;
    draw(SkMatrix::Translate(static_cast<float>(at.x()), static_cast<float>(at.y())),
         [&](const SkDraw& target) {
             target.drawBitmap(bitmap, SkMatrix::I(), nullptr, SkSamplingOptions(), paint);
         });
}

} // namespace cg
