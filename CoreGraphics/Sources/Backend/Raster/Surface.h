// Surface.h: pixels, and the clip and transform through which marks reach them.
#pragma once

#include "Backend/Raster/GlyphRun.h"
#include "Backend/Raster/PixelLender.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkPaint.h"
#include "include/core/SkPath.h"
#include "include/core/SkPixmap.h"
#include "include/core/SkSamplingOptions.h"
#include "src/core/SkMask.h"
#include "src/core/SkRasterClip.h"

#include <memory>

namespace cg {

enum class Antialias { No, Yes };

enum class Repeat { Once, Tiled };

// Pixels and where they are to be seen: they fill `rect`, first row at its smallest y, in a space
// that `toDevice` maps to device space. Tiled, copies of the rectangle fill all of the plane.
struct PlacedImage {
    SkPixmap pixels;
    SkRect rect = SkRect::MakeEmpty();
    SkMatrix toDevice;
    SkSamplingOptions sampling;
    Repeat repeat = Repeat::Once;
    const SkBitmap* bitmap = nullptr; // The same pixels, where somebody keeps them as a bitmap.

    // The image's columns and rows to `rect`.
    SkMatrix pixelsToRect() const {
        return SkMatrix::RectToRect(SkRect::Make(pixels.dimensions()), rect);
    }
};

// Glyphs and where they go, in spaces whose way to device space is given: the font's own at its
// size, y downwards, and that of the positions.
struct PlacedGlyphs {
    SkFont font;
    SkMatrix glyphsToDevice; // Linear.
    SkMatrix positionsToDevice;
    std::span<const CGGlyph> glyphs;
    std::span<const CGPoint> positions; // As many.
};

// Draws with Skia's rasteriser directly. A canvas in front of it would cost more than the pixels of
// a small shape, and five kilobytes; what it adds, a stack of transforms and clips, the graphics
// state has already. The pixels that result are a canvas's, to the bit.
//
// Guarantees: nothing outside the pixmap is written, whatever the geometry; geometry that is not
// finite draws nothing.
class Surface {
public:
    // Over `pixels`, which outlive it, unclipped. Device space is y up from the lower left corner
    // of an area `deviceHeight` high, of which the pixels show the part from `origin` (in rows and
    // columns from its upper left corner) on.
    Surface(const SkPixmap& pixels, int deviceHeight, SkIPoint origin);
    // Over pixels that `lender` has; `info` is their layout when they are lent.
    Surface(const SkImageInfo& info, std::unique_ptr<PixelLender> lender);

    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    // Without an address where pixels are lent.
    const SkPixmap& pixels() const { return pixels_; }
    // The same pixels lie elsewhere.
    void movePixels(void* to);
    SkIPoint origin() const { return origin_; }
    // What the pixels are now, for pictures of them; opaque where they have no opacity. Empty, with
    // the reason in the log, when they cannot be had.
    SkBitmap copyPixels();
    // Device space to the pixels' rows and columns.
    const SkMatrix& deviceToPixels() const { return deviceToPixels_; }
    const SkRasterClip& clip() const { return clip_; }
    SkIRect bounds() const { return SkIRect::MakeSize(pixels_.dimensions()); }

    void resetClip();
    void clipOut();
    void clipRect(const SkRect& deviceRect, Antialias antialias);
    // Coverage in a layout of 8 bits; its bitmap is there, and what the clip keeps.
    void clipMask(const PlacedImage& coverage);
    void clipPath(const SkPath& devicePath, Antialias antialias);

    // The shader of a paint is over columns and rows, however the marks below are transformed.

    // `devicePath` under the paint's style; `offset` moves its marks, in pixels.
    void drawPath(const SkPath& devicePath, const SkPaint& paint, SkVector offset = {0, 0});
    void drawRect(const SkRect& deviceRect, const SkPaint& paint);
    // The colour that marks are drawn in next, before it became a paint's.
    void noteColor(CGColorRef color, const SkPaint& paint) {
        if (lender_)
            lender_->noteColor(color, paint.getColor());
    }
    // Pixels of coverage alone take the paint's colour.
    void drawImage(const PlacedImage& image, const SkPaint& paint);
    // The paint's colour through a mask over rows and columns of these pixels, which the paint's
    // mask filter may change before.
    void drawMask(const SkMask& mask, const SkPaint& paint);
    // The paint's colour through glyphs, moved by `offset` pixels; pictures keep their own colours.
    void drawGlyphs(const PlacedGlyphs& glyphs, const SkPaint& paint, SkVector offset = {0, 0});
    // The columns and rows that those cover.
    SkRect boundsOf(const PlacedGlyphs& glyphs, const SkPaint& paint);
    // Puts other pixels' upper left corner at a column and row of these.
    void drawPixels(const SkPixmap& source, SkIPoint at, const SkPaint& paint);

private:
    // What a mark is: the space that it is drawn in, and what it covers there.
    struct Mark {
        SkMatrix matrix;
        const SkPaint& paint;
        const SkRect* bounds = nullptr; // Without the paint's effects. NULL: everywhere.
    };
    void strokePath(const SkPath& devicePath, const SkPaint& paint, const SkMatrix& matrix);
    template <typename Draw>
    void draw(const Mark& mark, Draw&& draw);
    template <typename Draw>
    void drawInTiles(const Mark& mark, Draw&& draw);
    template <typename Draw>
    void drawTile(const SkPixmap& pixels, SkIPoint corner, const SkMatrix& matrix, Draw&& draw);
    std::optional<SkPixmap> tile(const SkIRect& area);
    SkIRect touched(const Mark& mark) const;
    bool lenderFills(const SkRect& pixelRect, const SkPaint& paint);
    bool clipsSmoothly(Antialias wanted) const;
    GlyphStyle styleOf(const PlacedGlyphs& glyphs, const SkPaint& paint, SkVector offset) const;

    SkPixmap pixels_;
    std::unique_ptr<PixelLender> lender_; // NULL where the pixels are at hand.
    SkIPoint origin_;
    SkMatrix deviceToPixels_;
    SkRasterClip clip_;
    StrikeMemo strikeMemo_;
    SkPath pixelPath_; // Scratch: keeps its memory from one path to the next.
};

} // namespace cg
