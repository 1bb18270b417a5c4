// Surface.cpp: rasterising into pixels, in tiles where Skia's fixed-point numbers need it.

#include "Backend/Raster/Surface.h"

#include "Backend/Raster/DirectFill.h"
#include "Core/Object/Diagnostics.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"
#include "src/core/SkDraw.h"
#include "src/core/SkScan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace cg {

namespace {

// Skia's scan converter shifts coordinates left by two bits for supersampling and keeps them in
// 16.16 fixed point, so that it reaches 2¹³ − 1 pixels.
constexpr int kLargestTile = 8191;

bool isWithinReach(const SkIRect& area) {
    return area.right() <= kLargestTile && area.bottom() <= kLargestTile;
}

// The matrix that turns y around and moves the part that the pixels show to their upper left
// corner.
SkMatrix deviceToPixels(int deviceHeight, SkIPoint origin) {
    return SkMatrix::MakeAll(1, 0, static_cast<float>(-origin.x()), 0, -1,
                             static_cast<float>(deviceHeight - origin.y()), 0, 0, 1);
}

// Whether Skia draws the stroke as a line of single pixels, fainter where it is thinner.
bool isHairline(const SkPaint& paint) {
    const float width = paint.getStrokeWidth();
    return paint.getStyle() == SkPaint::kStroke_Style && !paint.getMaskFilter() &&
           !paint.getPathEffect() && (width == 0 || (width <= 1 && paint.isAntiAlias()));
}

// Skia puts a shader under the matrix of the mark; this one stays where it is.
SkPaint underMatrix(const SkPaint& paint, const SkMatrix& matrix) {
    SkPaint result = paint;
    SkMatrix inverse;
    if (paint.getShader() && matrix.invert(&inverse))
        result.setShader(paint.getShader()->makeWithLocalMatrix(inverse));
    return result;
}

// Skia takes for opacity what opaque pixels have in its place.
template <typename Pixel>
void fillUnused(SkBitmap& bitmap, Pixel opacity) {
    for (int y = 0; y < bitmap.height(); ++y) {
        auto* const row = static_cast<Pixel*>(bitmap.getAddr(0, y));
        for (int x = 0; x < bitmap.width(); ++x)
            row[x] |= opacity;
    }
}

} // namespace

Surface::Surface(const SkPixmap& pixels, int deviceHeight, SkIPoint origin)
    : pixels_(pixels), origin_(origin), deviceToPixels_(cg::deviceToPixels(deviceHeight, origin)),
      clip_(SkIRect::MakeSize(pixels.dimensions())) {
    pixelPath_.setIsVolatile(true);
}

Surface::Surface(const SkImageInfo& info, std::unique_ptr<PixelLender> lender)
    : Surface(SkPixmap(info, nullptr, info.minRowBytes()), info.height(), {0, 0}) {
    lender_ = std::move(lender);
}

void Surface::movePixels(void* to) {
    if (lender_)
        lender_->movePixels(to);
    else
        pixels_.reset(pixels_.info(), to, pixels_.rowBytes());
}

SkBitmap Surface::copyPixels() {
    SkBitmap copy;
    if (!copy.tryAllocPixels(pixels_.info())) {
        CG_LOG_ERROR("Allocation of bitmap failed.");
        return {};
    }
    const int width = copy.width(), height = copy.height();
    const std::int64_t rowsToLend = lender_ ? lender_->mostPixels() / width : height;
    const int rows = static_cast<int>(std::clamp<std::int64_t>(rowsToLend, 1, height));
    for (int top = 0; top < height; top += rows) {
        const SkIRect part = SkIRect::MakeXYWH(0, top, width, std::min(rows, height - top));
        const auto pixels = tile(part);
        if (!pixels)
            return {};
        copy.writePixels(*pixels, 0, top);
        if (lender_)
            lender_->giveBack();
    }
    if (copy.isOpaque() && copy.bytesPerPixel() == 4)
        fillUnused(copy, std::uint32_t{0xFF} << 24);
    if (copy.isOpaque() && copy.bytesPerPixel() == 8)
        fillUnused(copy, std::uint64_t{0xFFFF} << 48);
    return copy;
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
    const SkMatrix matrix = SkMatrix::Concat(SkMatrix::Concat(deviceToPixels_, coverage.toDevice),
                                             coverage.pixelsToRect());
    if (!clip_.isEmpty())
        clip_.op(coverage.bitmap->makeShader(SkTileMode::kClamp, SkTileMode::kClamp,
                                             coverage.sampling, &matrix));
}

// ---- Marks

template <typename Draw>
void Surface::drawTile(const SkPixmap& pixels, SkIPoint corner, const SkMatrix& matrix,
                       Draw&& draw) {
    const int left = corner.x(), top = corner.y();
    const SkMatrix move = SkMatrix::Translate(static_cast<float>(-left), static_cast<float>(-top));
    SkRasterClip clip;
    clip_.translate(-left, -top, &clip);
    clip.op(SkIRect::MakeSize(pixels.dimensions()), SkClipOp::kIntersect);
    if (const auto mask = clip_.clipShader())
        clip.op(mask->makeWithLocalMatrix(move));
    const SkMatrix moved = SkMatrix::Concat(move, matrix);
    SkDraw target;
    target.fDst = pixels;
    target.fCTM = &moved;
    target.fRC = &clip;
    draw(target);
}

std::optional<SkPixmap> Surface::tile(const SkIRect& area) {
    if (lender_)
        return lender_->borrow(area);
    SkPixmap part;
    return pixels_.extractSubset(&part, area) ? std::optional(part) : std::nullopt;
}

template <typename Draw>
void Surface::drawInTiles(const Mark& mark, Draw&& draw) {
    const SkIRect area = touched(mark);
    const int columns = std::min(area.width(), kLargestTile);
    if (columns <= 0)
        return;
    const std::int64_t rowsToLend =
        lender_ ? std::max<std::int64_t>(lender_->mostPixels() / columns, 1) : kLargestTile;
    const int rows = static_cast<int>(std::min<std::int64_t>(rowsToLend, kLargestTile));
    for (int top = area.top(); top < area.bottom(); top += rows) {
        for (int left = area.left(); left < area.right(); left += columns) {
            SkIRect part = SkIRect::MakeXYWH(left, top, columns, rows);
            const auto pixels = part.intersect(area) ? tile(part) : std::nullopt;
            if (!pixels)
                continue;
            drawTile(*pixels, part.topLeft(), mark.matrix, draw);
            if (lender_)
                lender_->giveBack();
        }
    }
}

// The pixels that a mark may change.
SkIRect Surface::touched(const Mark& mark) const {
    SkIRect area = clip_.getBounds();
    if (!mark.bounds || !mark.paint.canComputeFastBounds())
        return area;
    SkRect storage;
    const SkRect covered =
        mark.matrix.mapRect(mark.paint.computeFastBounds(*mark.bounds, &storage));
    // Hairlines and soft edges reach a pixel further; one more for what rounding adds.
    if (covered.isFinite() && !area.intersect(covered.roundOut().makeOutset(2, 2)))
        return SkIRect::MakeEmpty();
    return area;
}

template <typename Draw>
void Surface::draw(const Mark& mark, Draw&& draw) {
    const SkIRect area = clip_.getBounds();
    if (lender_ || !isWithinReach(area)) {
        drawInTiles(mark, draw);
        return;
    }
    SkDraw whole;
    whole.fDst = pixels_;
    whole.fCTM = &mark.matrix;
    whole.fRC = &clip_;
    draw(whole);
}

// A stroke is outlined before it is turned around, so that caps and joins start as given.
void Surface::strokePath(const SkPath& devicePath, const SkPaint& paint, const SkMatrix& matrix) {
    // Lines up to a pixel wide are hairlines to Skia, whose corners are faint; frames are not.
    SkRect frame;
    bool isClosed = false;
    if (devicePath.isRect(&frame, &isClosed) && isClosed)
        draw({matrix, paint, &frame}, [&](const SkDraw& target) { target.drawRect(frame, paint); });
    else
        draw({matrix, paint, &devicePath.getBounds()},
             [&](const SkDraw& target) { target.drawPath(devicePath, paint, nullptr, false); });
}

void Surface::drawPath(const SkPath& devicePath, const SkPaint& paint, SkVector offset) {
    if (clip_.isEmpty() || !devicePath.isFinite() || paint.nothingToDraw())
        return;
    SkMatrix matrix = deviceToPixels_;
    matrix.postTranslate(offset.x(), offset.y());
    const bool isFill = paint.getStyle() == SkPaint::kFill_Style;
    if (!isFill && (!isHairline(paint) || devicePath.isRect(nullptr))) {
        if (paint.getShader())
            strokePath(devicePath, underMatrix(paint, matrix), matrix);
        else
            strokePath(devicePath, paint, matrix);
        return;
    }
    devicePath.transform(matrix, &pixelPath_);
    draw({SkMatrix::I(), paint, &pixelPath_.getBounds()},
         [&](const SkDraw& target) { target.drawPath(pixelPath_, paint, nullptr, false); });
}

// What a lender's pixels can take in their own format.
bool Surface::lenderFills(const SkRect& pixelRect, const SkPaint& paint) {
    if (!lender_ || !clip_.isRect() || clip_.clipShader() || !isPlainFill(paint) ||
        paint.getAlpha() != 0xFF || !isWhole(pixelRect))
        return false;
    SkIRect area = pixelRect.roundOut();
    if (area.intersect(clip_.getBounds()))
        lender_->fill(area, paint.getColor());
    return true;
}

void Surface::drawRect(const SkRect& deviceRect, const SkPaint& paint) {
    if (clip_.isEmpty() || !deviceRect.isFinite() || paint.nothingToDraw())
        return;
    SkRect pixelRect;
    deviceToPixels_.mapRectScaleTranslate(&pixelRect, deviceRect);
    if (lender_
            ? lenderFills(pixelRect, paint)
            : isWithinReach(clip_.getBounds()) && fillDirectly(pixels_, clip_, pixelRect, paint))
        return;
    draw({SkMatrix::I(), paint, &pixelRect},
         [&](const SkDraw& target) { target.drawRect(pixelRect, paint); });
}

void Surface::drawImage(const PlacedImage& image, const SkPaint& paint) {
    const SkMatrix matrix = SkMatrix::Concat(deviceToPixels_, image.toDevice);
    if (clip_.isEmpty() || image.rect.isEmpty() || !image.rect.isFinite() || !matrix.isFinite() ||
        paint.nothingToDraw())
        return;
    const SkMatrix pixelsToRect = image.pixelsToRect();
    SkBitmap own;
    if (image.repeat == Repeat::Once) {
        if (!image.bitmap && !own.installPixels(image.pixels))
            return;
        const SkBitmap& bitmap = image.bitmap ? *image.bitmap : own;
        const SkPaint colors = underMatrix(paint, SkMatrix::Concat(matrix, pixelsToRect));
        draw({matrix, colors, &image.rect}, [&](const SkDraw& target) {
            target.drawBitmap(bitmap, pixelsToRect, &image.rect, image.sampling, colors);
        });
        return;
    }
    if (!own.installPixels(image.pixels))
        return;
    own.setImmutable(); // A shader would copy what may change.
    SkPaint tiles = underMatrix(paint, matrix);
    auto shader =
        own.makeShader(SkTileMode::kRepeat, SkTileMode::kRepeat, image.sampling, &pixelsToRect);
    if (tiles.getShader())
        shader = SkShaders::Blend(SkBlendMode::kDstIn, tiles.refShader(), std::move(shader));
    tiles.setShader(std::move(shader));
    draw({matrix, tiles}, [&](const SkDraw& target) { target.drawPaint(tiles); });
}

void Surface::drawMask(const SkMask& mask, const SkPaint& paint) {
    if (clip_.isEmpty())
        return;
    const SkRect bounds = SkRect::Make(mask.fBounds);
    draw({SkMatrix::I(), paint, &bounds}, [&](const SkDraw& target) {
        const SkIPoint at = {SkScalarRoundToInt(target.fCTM->getTranslateX()),
                             SkScalarRoundToInt(target.fCTM->getTranslateY())};
        const SkMask moved(mask.fImage, mask.fBounds.makeOffset(at), mask.fRowBytes, mask.fFormat);
        target.drawDevMask(moved, paint, nullptr);
    });
}

// ---- Glyphs

// Stripes of colour can be told apart where nothing will show through the pixels, and by Skia in
// its own format.
GlyphStyle Surface::styleOf(const PlacedGlyphs& glyphs, const SkPaint& paint,
                            SkVector offset) const {
    const bool hasStripes =
        pixels_.colorType() == kN32_SkColorType && pixels_.info().isOpaque() && paint.isSrcOver();
    GlyphStyle style = {
        .font = glyphs.font,
        .glyphsToPixels = SkMatrix::Concat(deviceToPixels_, glyphs.glyphsToDevice),
        .positionsToPixels = SkMatrix::Concat(deviceToPixels_, glyphs.positionsToDevice),
        .props = SkSurfaceProps(0, hasStripes ? kRGB_H_SkPixelGeometry : kUnknown_SkPixelGeometry)};
    style.glyphsToPixels.setTranslateX(0).setTranslateY(0);
    style.positionsToPixels.postTranslate(offset.x(), offset.y());
    return style;
}

void Surface::drawGlyphs(const PlacedGlyphs& glyphs, const SkPaint& paint, SkVector offset) {
    const GlyphStyle style = styleOf(glyphs, paint, offset);
    if (clip_.isEmpty() || paint.nothingToDraw() || !style.glyphsToPixels.isFinite() ||
        !style.positionsToPixels.isFinite())
        return;
    const bool isInParts = lender_ || !isWithinReach(clip_.getBounds());
    GlyphRun run(style, paint, strikeMemo_);
    for (std::size_t first = 0; first < glyphs.glyphs.size(); first += GlyphRun::kMostGlyphs) {
        const std::size_t count = std::min(GlyphRun::kMostGlyphs, glyphs.glyphs.size() - first);
        run.place(glyphs.glyphs.subspan(first, count), glyphs.positions.subspan(first, count));
        if (run.isEmpty())
            continue;
        const SkRect bounds = isInParts ? run.bounds() : SkRect::MakeEmpty();
        draw({SkMatrix::I(), paint, isInParts ? &bounds : nullptr},
             [&](const SkDraw& target) { run.draw(target, paint); });
    }
}

SkRect Surface::boundsOf(const PlacedGlyphs& glyphs, const SkPaint& paint) {
    const GlyphStyle style = styleOf(glyphs, paint, {0, 0});
    SkRect bounds = SkRect::MakeEmpty();
    if (!style.glyphsToPixels.isFinite() || !style.positionsToPixels.isFinite())
        return bounds;
    GlyphRun run(style, paint, strikeMemo_);
    for (std::size_t first = 0; first < glyphs.glyphs.size(); first += GlyphRun::kMostGlyphs) {
        const std::size_t count = std::min(GlyphRun::kMostGlyphs, glyphs.glyphs.size() - first);
        run.place(glyphs.glyphs.subspan(first, count), glyphs.positions.subspan(first, count));
        bounds.join(run.bounds());
    }
    return bounds;
}

void Surface::drawPixels(const SkPixmap& source, SkIPoint at, const SkPaint& paint) {
    SkBitmap bitmap;
    if (clip_.isEmpty() || !bitmap.installPixels(source))
        return;
    const SkRect bounds = SkRect::Make(source.dimensions());
    draw({SkMatrix::Translate(static_cast<float>(at.x()), static_cast<float>(at.y())), paint,
          &bounds},
         [&](const SkDraw& target) {
             target.drawBitmap(bitmap, SkMatrix::I(), nullptr, SkSamplingOptions(), paint);
         });
}

} // namespace cg
