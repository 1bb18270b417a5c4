// GlyphRun.cpp: finding glyphs in Skia's cache and drawing them, beneath a canvas.

#include "Backend/Raster/GlyphRun.h"

#include "include/core/SkBitmap.h"
#include "include/core/SkPath.h"
#include "include/core/SkSamplingOptions.h"
#include "src/core/SkGlyph.h"
#include "src/core/SkMask.h"
#include "src/core/SkScalerContext.h"
#include "src/core/SkStrikeSpec.h"

#include <algorithm>
#include <tuple>

namespace cg {

namespace {

// What a canvas over pixels without a colour space asks for.
constexpr auto kGamma = SkScalerContextFlags::kFakeGammaAndBoostContrast;

// A picture in the cache is no larger than this, in pixels of the font's size.
constexpr float kLargestPicture = 512;

bool isFinite(SkPoint point) {
    return SkIsFinite(point.x(), point.y());
}

// The strike's mutex is held while glyphs are looked up or made.
class StrikeLock {
public:
    explicit StrikeLock(SkStrike& strike) : strike_(strike) { strike_.lock(); }
    ~StrikeLock() { strike_.unlock(); }
    StrikeLock(const StrikeLock&) = delete;
    StrikeLock& operator=(const StrikeLock&) = delete;

private:
    SkStrike& strike_;
};

} // namespace

// ---- The last run's masks

bool StrikeMemo::isOf(const GlyphStyle& style, const SkPaint& paint) const {
    return color_ == paint.getColor() && font_ == style.font && toPixels_ == style.glyphsToPixels &&
           geometry_ == style.props.pixelGeometry();
}

sk_sp<SkStrike> StrikeMemo::find(const GlyphStyle& style, const SkPaint& paint) {
    // A shader has a lightness of its own.
    if (usesLeft_ > 0 && !paint.getShader() && isOf(style, paint)) {
        --usesLeft_;
        return strike_;
    }
    constexpr int kMostUses = 64;
    strike_ = SkStrikeSpec::MakeMask(style.font, paint, style.props, kGamma, style.glyphsToPixels)
                  .findOrCreateStrike();
    usesLeft_ = paint.getShader() ? 0 : kMostUses;
    font_ = style.font;
    toPixels_ = style.glyphsToPixels;
    geometry_ = style.props.pixelGeometry();
    color_ = paint.getColor();
    return strike_;
}

GlyphRun::GlyphRun(const GlyphStyle& style, const SkPaint& paint, StrikeMemo& memo)
    : style_(style), memo_(memo), paint_(paint),
      isLarge_(SkStrikeSpec::ShouldDrawAsPath(paint, style.font, style.glyphsToPixels)) {}

// ---- Finding

void GlyphRun::place(std::span<const CGGlyph> glyphs, std::span<const CGPoint> positions) {
    masks_.count = outlines_.count = pictures_.count = 0;
    Left left;
    if (isLarge_) {
        for (std::size_t index = 0; index < glyphs.size(); ++index) {
            const SkPoint origin = style_.positionsToPixels.mapPoint(
                SkPoint::Make(positions[index].x, positions[index].y));
            if (isFinite(origin))
                left.add(glyphs[index], origin);
        }
    } else {
        findMasks(glyphs, positions, left);
    }
    if (left.count > 0)
        findOutlines(left);
    if (left.count > 0)
        findPictures(left);
}

void GlyphRun::findMasks(std::span<const CGGlyph> glyphs, std::span<const CGPoint> positions,
                         Left& left) {
    if (!maskStrike_)
        maskStrike_ = memo_.find(style_, paint_);
    // Positions are rounded down to a fraction of a pixel, so that half of one is added before.
    const SkGlyphPositionRoundingSpec& rounding = maskStrike_->roundingSpec();
    SkMatrix toPixels = style_.positionsToPixels;
    toPixels.postTranslate(rounding.halfAxisSampleFreq.x(), rounding.halfAxisSampleFreq.y());

    const StrikeLock lock(*maskStrike_);
    for (std::size_t index = 0; index < glyphs.size(); ++index) {
        const SkPoint at = toPixels.mapPoint(SkPoint::Make(positions[index].x, positions[index].y));
        if (!isFinite(at))
            continue;
        const SkPackedGlyphID id(glyphs[index], at, rounding.ignorePositionFieldMask);
        const SkGlyphDigest digest = maskStrike_->digestFor(skglyph::kDirectMaskCPU, id);
        const skglyph::GlyphAction action = digest.actionFor(skglyph::kDirectMaskCPU);
        if (action == skglyph::GlyphAction::kAccept)
            masks_.add(maskStrike_->glyph(digest),
                       {SkScalarFloorToScalar(at.x()), SkScalarFloorToScalar(at.y())});
        else if (action == skglyph::GlyphAction::kReject)
            left.add(glyphs[index], at - rounding.halfAxisSampleFreq);
    }
}

void GlyphRun::findOutlines(Left& left) {
    if (!outlineStrike_) {
        auto [unscaled, scale] = SkStrikeSpec::MakePath(style_.font, paint_, style_.props, kGamma);
        outlineStrike_ = unscaled.findOrCreateStrike();
        outlineScale_ = scale;
    }
    const StrikeLock lock(*outlineStrike_);
    const std::size_t count = left.count;
    left.count = 0;
    for (std::size_t index = 0; index < count; ++index) {
        const SkPackedGlyphID id(left.glyphs[index]);
        const SkGlyphDigest digest = outlineStrike_->digestFor(skglyph::kPath, id);
        const skglyph::GlyphAction action = digest.actionFor(skglyph::kPath);
        if (action == skglyph::GlyphAction::kAccept)
            outlines_.add(outlineStrike_->glyph(digest), left.origins[index]);
        else if (action == skglyph::GlyphAction::kReject)
            left.add(left.glyphs[index], left.origins[index]);
    }
}

void GlyphRun::findPictures(const Left& left) {
    if (!pictureStrike_) {
        const float enlarge = kLargestPicture / style_.font.getSize();
        SkFont font = style_.font;
        font.setEdging(SkFont::Edging::kAntiAlias); // Coverage that can be enlarged.
        pictureStrike_ = SkStrikeSpec::MakeMask(font, paint_, style_.props, kGamma,
                                                SkMatrix::Scale(enlarge, enlarge))
                             .findOrCreateStrike();
        pictureScale_ = 1 / enlarge;
    }
    const StrikeLock lock(*pictureStrike_);
    for (std::size_t index = 0; index < left.count; ++index) {
        const SkPackedGlyphID id(left.glyphs[index]);
        const SkGlyphDigest digest = pictureStrike_->digestFor(skglyph::kDirectMaskCPU, id);
        if (digest.actionFor(skglyph::kDirectMaskCPU) == skglyph::GlyphAction::kAccept)
            pictures_.add(pictureStrike_->glyph(digest), left.origins[index]);
    }
}

// ---- Placing

SkMatrix GlyphRun::outlineToPixels(SkPoint origin) const {
    SkMatrix matrix = style_.glyphsToPixels;
    matrix.preScale(outlineScale_, outlineScale_);
    return matrix.postTranslate(origin.x(), origin.y());
}

SkMatrix GlyphRun::pictureToPixels(const SkGlyph& picture, SkPoint origin) const {
    SkMatrix matrix = style_.glyphsToPixels;
    matrix.preScale(pictureScale_, pictureScale_);
    matrix.preTranslate(picture.rect().left(), picture.rect().top());
    return matrix.postTranslate(origin.x(), origin.y());
}

SkRect GlyphRun::bounds() const {
    SkRect all = SkRect::MakeEmpty();
    for (std::size_t index = 0; index < masks_.count; ++index)
        all.join(masks_.glyphs[index]->rect().makeOffset(masks_.origins[index]));
    for (std::size_t index = 0; index < outlines_.count; ++index)
        all.join(outlineToPixels(outlines_.origins[index])
                     .mapRect(outlines_.glyphs[index]->path()->getBounds()));
    for (std::size_t index = 0; index < pictures_.count; ++index) {
        const SkGlyph& picture = *pictures_.glyphs[index];
        all.join(pictureToPixels(picture, pictures_.origins[index])
                     .mapRect(SkRect::Make(picture.iRect().size())));
    }
    return all;
}

// ---- Drawing

void GlyphRun::draw(const SkDraw& target, const SkPaint& paint) const {
    if (outlines_.count > 0)
        drawOutlines(target, paint);
    if (masks_.count > 0)
        drawMasks(target, paint);
    if (pictures_.count > 0)
        drawPictures(target, paint);
}

void GlyphRun::drawMasks(const SkDraw& target, const SkPaint& paint) const {
    const SkVector move = {target.fCTM->getTranslateX(), target.fCTM->getTranslateY()};
    auto* const glyphs = const_cast<const SkGlyph**>(masks_.glyphs.data());
    auto* origins = const_cast<SkPoint*>(masks_.origins.data());
    std::array<SkPoint, kMostGlyphs> moved;
    if (!move.isZero()) {
        std::transform(origins, origins + masks_.count, moved.begin(),
                       [&](SkPoint origin) { return origin + move; });
        origins = moved.data();
    }
    target.paintMasks(SkZip<const SkGlyph*, SkPoint>(masks_.count, glyphs, origins), paint);
}

void GlyphRun::drawOutlines(const SkDraw& target, const SkPaint& paint) const {
    SkPaint fill = paint;
    fill.setAntiAlias(style_.font.getEdging() != SkFont::Edging::kAlias);
    SkPath outline;
    outline.setIsVolatile(true);
    for (std::size_t index = 0; index < outlines_.count; ++index) {
        outlines_.glyphs[index]->path()->transform(outlineToPixels(outlines_.origins[index]),
                                                   &outline);
        if (outline.isFinite())
            target.drawPath(outline, fill, nullptr, false);
    }
}

void GlyphRun::drawPictures(const SkDraw& target, const SkPaint& paint) const {
    for (std::size_t index = 0; index < pictures_.count; ++index) {
        const SkGlyph& glyph = *pictures_.glyphs[index];
        const SkMask mask = glyph.mask();
        const SkMatrix matrix = pictureToPixels(glyph, pictures_.origins[index]);
        const bool hasColors = mask.fFormat == SkMask::kARGB32_Format;
        if ((!hasColors && mask.fFormat != SkMask::kA8_Format) || !matrix.isFinite())
            continue;
        const SkISize size = mask.fBounds.size();
        SkBitmap bitmap;
        if (!bitmap.installPixels(hasColors ? SkImageInfo::MakeN32Premul(size)
                                            : SkImageInfo::MakeA8(size),
                                  const_cast<std::uint8_t*>(mask.fImage), mask.fRowBytes))
            continue;
        bitmap.setImmutable();
        target.drawBitmap(bitmap, matrix, nullptr, SkSamplingOptions(SkFilterMode::kLinear), paint);
    }
}

} // namespace cg
