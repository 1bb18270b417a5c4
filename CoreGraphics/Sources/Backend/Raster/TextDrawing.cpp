// TextDrawing.cpp: the raster backend's runs of glyphs.

#include "Backend/Raster/ImageShadow.h"
#include "Backend/Raster/RasterBackend.h"
#include "Backend/Raster/SkiaConversions.h"
#include "Backend/Raster/Typefaces.h"
#include "Core/State/XGGStateRecord.h"

#include <cmath>
#include <utility>

namespace cg {

namespace {

SkFont::Edging edging(XGGStateRef state, uint32_t flags) {
    if (antialiasing(state, flags) == Antialias::No)
        return SkFont::Edging::kAlias;
    const bool isSmooth =
        (flags & kXGContextAllowsFontSmoothing) && XGGStateShouldSmoothFonts(state);
    return isSmooth ? SkFont::Edging::kSubpixelAntiAlias : SkFont::Edging::kAntiAlias;
}

// Outlines as the font has them: nothing is moved to whole pixels but, where fractions are not
// wanted, the glyphs' origins. Quantised positions have fractions along the line alone, so that
// fewer images of a glyph are needed.
SkFont fontOf(XGGStateRef state, uint32_t flags, sk_sp<SkTypeface> typeface) {
    SkFont font(std::move(typeface), XGGStateGetFontSize(state));
    font.setEdging(edging(state, flags));
    font.setHinting(SkFontHinting::kNone);
    font.setLinearMetrics(true);
    font.setSubpixel((flags & kXGContextAllowsFontSubpixelPositioning) &&
                     XGGStateShouldSubpixelPositionFonts(state));
    font.setBaselineSnap((flags & kXGContextAllowsFontSubpixelQuantization) &&
                         XGGStateShouldSubpixelQuantizeFonts(state));
    return font;
}

bool hasSize(XGGStateRef state) {
    const CGFloat size = XGGStateGetFontSize(state);
    return std::isfinite(size) && size > 0;
}

} // namespace

// Positions are in user space; the state's text matrix says how glyphs lie there.
void RasterBackend::drawSprites(XGGStateRef state, uint32_t flags, CGFontRef font,
                                const CGGlyph* glyphs, const CGPoint* positions, size_t count) {
    if (!glyphs || !positions || count == 0 || !hasSize(state))
        return;
    auto typeface = typefaceOf(font);
    const SkPaint* const paint = typeface ? fillPaint(state, flags) : nullptr;
    if (!paint)
        return;
    const bool inDeviceSpace = flags & kXGContextGeometryInDeviceSpace;
    const SkMatrix toDevice = inDeviceSpace ? SkMatrix::I() : toSkia(*XGGStateGetTextCTM(state));
    // Glyphs have y downwards.
    const SkMatrix glyphsToUser =
        SkMatrix::Concat(toSkia(state->values.textMatrix), SkMatrix::Scale(1, -1));
    const PlacedGlyphs run = {.font = fontOf(state, flags, std::move(typeface)),
                              .glyphsToDevice = SkMatrix::Concat(toDevice, glyphsToUser),
                              .positionsToDevice = toDevice,
                              .glyphs = {glyphs, count},
                              .positions = {positions, count}};
    Surface& target = surfaceUnderClip(state, flags);
    if (flags & kXGContextShadowPass)
        drawGlyphsShadow(target, deviceHeight(), run, *paint, shadowOf(state, *paint));
    else
        target.drawGlyphs(run, *paint);
}

} // namespace cg
