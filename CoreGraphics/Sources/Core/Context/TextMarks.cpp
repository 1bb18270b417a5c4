// TextMarks.cpp: filling and stroking runs of glyphs, and clipping to them.

#include "Core/Context/TextMarks.h"

#include "XGFont.h"
#include <FontManager/FMFontGlyphs.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/DeviceStroke.h"
#include "Core/Context/Recording.h"

#include <cmath>
#include <utility>

namespace cg {

// ---- Clips

bool TextClip::continues(XGGStateRef state) const {
    return outlines_ && XGClippingEqualToClipping(XGGStateGetClipping(state), after_.get());
}

void TextClip::begin(XGGStateRef state) {
    before_ = cf::adopt(XGClippingCreateCopy(XGGStateGetClipping(state)));
    after_ = nullptr;
    outlines_ = cf::adopt(CGPathCreateMutable());
}

void TextClip::lift(XGGStateRef state) const {
    XGGStateSetClipping(state, cf::adopt(XGClippingCreateCopy(before_.get())).get());
}

void TextClip::add(XGGStateRef state, CGPathRef outlines) {
    CGPathAddPath(outlines_.get(), nullptr, outlines);
    lift(state);
    if (CGPathIsEmpty(outlines_.get()))
        XGGStateClipToRect(state, CGRectZero);
    else
        XGGStateClipToPath(state, outlines_.get(), false);
    after_ = cf::adopt(XGClippingCreateCopy(XGGStateGetClipping(state)));
}

namespace {

// ---- Outlines

// Font units to device space, but for the glyph's place.
CGAffineTransform unitsToDevice(XGGStateRef state) {
    const int unitsPerEm = CGFontGetUnitsPerEm(XGGStateGetFont(state));
    const CGFloat scale =
        unitsPerEm > 0 ? XGGStateGetFontSize(state) / static_cast<CGFloat>(unitsPerEm) : 0;
    const CGAffineTransform toUser =
        CGAffineTransformConcat(CGAffineTransformMakeScale(scale, scale), state->values.textMatrix);
    CGAffineTransform toDevice = CGAffineTransformConcat(toUser, *XGGStateGetTextCTM(state));
    toDevice.tx = toDevice.ty = 0;
    return toDevice;
}

cf::Ref<CGMutablePathRef> outlinesOf(XGGStateRef state, const ShownGlyphs& shown) {
    auto outlines = cf::adopt(CGPathCreateMutable());
    const FMFontRef font = XGFontGetFMFont(XGGStateGetFont(state));
    CGAffineTransform matrix = unitsToDevice(state);
    for (size_t index = 0; outlines && index < shown.count; ++index) {
        const CGPoint at =
            CGPointApplyAffineTransform(shown.positions[index], *XGGStateGetTextCTM(state));
        const auto outline = cf::adopt(FMFontCopyPathForGlyph(font, shown.glyphs[index]));
        if (!std::isfinite(at.x) || !std::isfinite(at.y) || !outline)
            continue;
        matrix.tx = at.x;
        matrix.ty = at.y;
        CGPathAddPath(outlines.get(), &matrix, outline.get());
    }
    return outlines;
}

// ---- Marks

void drawPass(CGContext& context, const ShownGlyphs& shown, const DeviceStroke& stroke,
              uint32_t passFlags) {
    const XGGStateRef state = context.state.get();
    const uint32_t allowed =
        ~(disablesFontAntialiasing() ? uint32_t{kXGContextAllowsAntialiasing} : 0u);
    if (fillsText(XGGStateGetTextDrawingMode(state)) && context.callbacks.drawSprites) {
        const auto font = cf::retain(XGGStateGetFont(state));
        context.callbacks.drawSprites(state, (context.allowsFlags & allowed) | passFlags,
                                      font.get(), shown.glyphs, shown.positions, shown.count,
                                      context.info);
    }
    if (stroke.path)
        drawStroke(context, stroke, passFlags);
}

void drawMarks(CGContext& context, const ShownGlyphs& shown, CGPathRef outlines) {
    if (context.queue && !strokesText(XGGStateGetTextDrawingMode(context.state.get())) &&
        recordSprites(context, shown))
        return;
    prepare(context);
    const XGGStateRef state = context.state.get();
    DeviceStroke stroke;
    if (strokesText(XGGStateGetTextDrawingMode(state)) && outlines && !CGPathIsEmpty(outlines))
        stroke = deviceStroke(state, outlines);
    if (XGGStateHasShadow(state))
        drawPass(context, shown, stroke, kXGContextShadowPass);
    drawPass(context, shown, stroke, 0);
}

CGAffineTransform linearPart(CGAffineTransform matrix) {
    matrix.tx = matrix.ty = 0;
    return matrix;
}

bool hasSize(XGGStateRef state) {
    const CGFloat size = XGGStateGetFontSize(state);
    return std::isfinite(size) && size > 0;
}

} // namespace

void showGlyphs(CGContext& context, const ShownGlyphs& shown) {
    const XGGStateRef state = context.state.get();
    const CGTextDrawingMode mode = XGGStateGetTextDrawingMode(state);
    const bool marks = fillsText(mode) || strokesText(mode);
    if (shown.count == 0 || !XGGStateGetFont(state) || !hasSize(state) ||
        !(marks || clipsText(mode)))
        return;
    state->values.textMatrix = linearPart(context.textMatrix);
    cf::Ref<CGMutablePathRef> outlines;
    if (strokesText(mode) || clipsText(mode))
        outlines = outlinesOf(state, shown);
    if (!clipsText(mode)) {
        drawMarks(context, shown, outlines.get());
        return;
    }
    // Taken out of the context: marks end the clip of its runs.
    TextClip clip = std::move(context.textClip);
    if (clip.continues(state))
        clip.lift(state);
    else
        clip.begin(state);
    if (marks)
        drawMarks(context, shown, outlines.get());
    clip.add(context.state.get(), outlines.get());
    context.textClip = std::move(clip);
}

} // namespace cg
