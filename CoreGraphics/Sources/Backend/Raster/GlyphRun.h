// GlyphRun.h: glyphs of one font, made ready to be put onto pixels.
#pragma once

#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGGeometry.h>

#include "include/core/SkFont.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkPaint.h"
#include "include/core/SkPoint.h"
#include "include/core/SkRect.h"
#include "include/core/SkRefCnt.h"
#include "include/core/SkSurfaceProps.h"
#include "src/core/SkDraw.h"
#include "src/core/SkStrike.h"

#include <array>
#include <cstddef>
#include <span>

class SkGlyph;

namespace cg {

// What glyphs look like, and how they lie on columns and rows.
struct GlyphStyle {
    SkFont font;
    SkMatrix glyphsToPixels;    // Linear, from the font's space at its size, y downwards.
    SkMatrix positionsToPixels; // Where their origins go.
    SkSurfaceProps props;       // Which stripes of colour a pixel consists of, where that matters.
};

// The cache's entry for the masks of the last run: the next one mostly looks alike, and need not be
// looked up under the lock that all threads share.
class StrikeMemo {
public:
    sk_sp<SkStrike> find(const GlyphStyle& style, const SkPaint& paint);

private:
    bool isOf(const GlyphStyle& style, const SkPaint& paint) const;

    sk_sp<SkStrike> strike_;
    int usesLeft_ = 0; // The cache must see now and then that it is in use.
    SkFont font_;
    SkMatrix toPixels_;
    SkPixelGeometry geometry_ = kUnknown_SkPixelGeometry;
    SkColor color_ = 0;
};

// Up to a few hundred glyphs, which need no memory but that of Skia's glyph cache. Small ones are
// masks, large ones outlines, and large pictures are enlarged: what a canvas would draw.
class GlyphRun {
public:
    static constexpr std::size_t kMostGlyphs = 256;

    // Style and memo outlive the run. The paint's colour matters: light text is drawn bolder.
    GlyphRun(const GlyphStyle& style, const SkPaint& paint, StrikeMemo& memo);
    GlyphRun(const GlyphRun&) = delete;
    GlyphRun& operator=(const GlyphRun&) = delete;

    // Puts these in the place of those before, no more than kMostGlyphs. What has no ink and what
    // is at no finite place is left out.
    void place(std::span<const CGGlyph> glyphs, std::span<const CGPoint> positions);

    bool isEmpty() const { return masks_.count + outlines_.count + pictures_.count == 0; }
    SkRect bounds() const; // In columns and rows.
    // `target` moves columns and rows by whole numbers, at most.
    void draw(const SkDraw& target, const SkPaint& paint) const;

private:
    struct Placed {
        std::array<const SkGlyph*, kMostGlyphs> glyphs;
        std::array<SkPoint, kMostGlyphs> origins;
        std::size_t count = 0;

        void add(const SkGlyph* glyph, SkPoint origin) {
            glyphs[count] = glyph;
            origins[count++] = origin;
        }
    };
    // What another way of drawing must be found for.
    struct Left {
        std::array<CGGlyph, kMostGlyphs> glyphs;
        std::array<SkPoint, kMostGlyphs> origins;
        std::size_t count = 0;

        void add(CGGlyph glyph, SkPoint origin) {
            glyphs[count] = glyph;
            origins[count++] = origin;
        }
    };
    void findMasks(std::span<const CGGlyph> glyphs, std::span<const CGPoint> positions, Left& left);
    void findOutlines(Left& left);
    void findPictures(const Left& left);
    SkMatrix outlineToPixels(SkPoint origin) const;
    SkMatrix pictureToPixels(const SkGlyph& picture, SkPoint origin) const;
    void drawMasks(const SkDraw& target, const SkPaint& paint) const;
    void drawOutlines(const SkDraw& target, const SkPaint& paint) const;
    void drawPictures(const SkDraw& target, const SkPaint& paint) const;

    const GlyphStyle& style_;
    StrikeMemo& memo_;
    SkPaint paint_;
    bool isLarge_ = false;
    // Strikes keep what is cached of a font at a size; glyphs live as long as theirs does.
    sk_sp<SkStrike> maskStrike_, outlineStrike_, pictureStrike_;
    float outlineScale_ = 1, pictureScale_ = 1; // From the strike's size to the font's.
    Placed masks_, outlines_, pictures_;
};

} // namespace cg
