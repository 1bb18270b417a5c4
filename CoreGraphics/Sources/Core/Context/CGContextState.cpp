// CGContextState.cpp: saving and restoring the graphics state, and the settings that it keeps.

#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/State/XGGStateRecord.h"

#include <cmath>
#include <utility>

using cg::stateOf;

// ---- The stack

void CGContextSaveGState(CGContextRef context) {
    if (!context)
        return;
    auto copy =
        context->failedSaves == 0 ? context->spareStates.copyOf(context->state.get()) : nullptr;
    if (!copy) {
        if (context->failedSaves++ == 0)
            CG_LOG_ERROR("no memory to save the graphics state");
        return;
    }
    copy.get()->below = std::move(context->state);
    context->state = std::move(copy);
}

void CGContextRestoreGState(CGContextRef context) {
    if (!context)
        return;
    if (context->failedSaves > 0) {
        --context->failedSaves;
        return;
    }
    XGGState& current = *context->state.get();
    if (!current.below) {
        CG_LOG_ERROR("no graphics state was saved");
        return;
    }
    // A destination that keeps the clip rasterised has the one of the state that goes, or of one
    // that went earlier, with no mark since.
    const bool clipDiffers = (current.values.flags & cg::kClipChanged) != 0;
    auto dropped = std::exchange(context->state, std::move(current.below));
    context->spareStates.add(std::move(dropped));
    if (clipDiffers)
        context->state.get()->values.flags |= cg::kShouldRasterizeClipRegion;
}

// ---- Lines

void CGContextSetLineWidth(CGContextRef context, CGFloat width) {
    if (std::isfinite(width) && width >= 0)
        XGGStateSetLineWidth(stateOf(context), width);
}

void CGContextSetLineCap(CGContextRef context, CGLineCap cap) {
    XGGStateSetLineCap(stateOf(context), cap);
}

void CGContextSetLineJoin(CGContextRef context, CGLineJoin join) {
    XGGStateSetLineJoin(stateOf(context), join);
}

void CGContextSetMiterLimit(CGContextRef context, CGFloat limit) {
    XGGStateSetMiterLimit(stateOf(context), limit);
}

void CGContextSetLineDash(CGContextRef context, CGFloat phase, const CGFloat* lengths,
                          size_t count) {
    XGGStateSetLineDash(stateOf(context), lengths, count, phase);
}

void CGContextSetFlatness(CGContextRef context, CGFloat flatness) {
    if (std::isfinite(flatness) && flatness >= 0)
        XGGStateSetFlatness(stateOf(context), flatness);
}

CGFloat CGContextGetLineWidth(CGContextRef context) {
    return XGGStateGetLineWidth(stateOf(context));
}

CGLineCap CGContextGetLineCap(CGContextRef context) {
    return XGGStateGetLineCap(stateOf(context));
}

CGLineJoin CGContextGetLineJoin(CGContextRef context) {
    return XGGStateGetLineJoin(stateOf(context));
}

CGFloat CGContextGetMiterLimit(CGContextRef context) {
    return XGGStateGetMiterLimit(stateOf(context));
}

size_t CGContextGetLineDashCount(CGContextRef context) {
    return XGLineDashGetCount(XGGStateGetLineDash(stateOf(context)));
}

// ---- Compositing and quality

void CGContextSetAlpha(CGContextRef context, CGFloat alpha) {
    XGGStateSetAlpha(stateOf(context), alpha);
}

void CGContextSetBlendMode(CGContextRef context, CGBlendMode mode) {
    XGGStateSetBlendMode(stateOf(context), mode);
}

void CGContextSetRenderingIntent(CGContextRef context, CGColorRenderingIntent intent) {
    XGGStateSetRenderingIntent(stateOf(context), intent);
}

void CGContextSetInterpolationQuality(CGContextRef context, CGInterpolationQuality quality) {
    XGGStateSetInterpolationQuality(stateOf(context), quality);
}

CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef context) {
    return XGGStateGetInterpolationQuality(stateOf(context));
}

void CGContextSetCompositeOperation(CGContextRef context, int32_t operation) {
    XGGStateSetCompositeOperation(stateOf(context), operation);
}

int32_t CGContextGetCompositeOperation(CGContextRef context) {
    return XGGStateGetCompositeOperation(stateOf(context));
}

void CGContextSetPatternPhase(CGContextRef context, CGSize phase) {
    XGGStateSetPatternPhase(stateOf(context), phase);
}

void CGContextSetShouldAntialias(CGContextRef context, bool should) {
    XGGStateSetShouldAntialias(stateOf(context), should);
}

bool CGContextGetShouldAntialias(CGContextRef context) {
    return XGGStateShouldAntialias(stateOf(context));
}

void CGContextSetShouldSmoothFonts(CGContextRef context, bool should) {
    XGGStateSetShouldSmoothFonts(stateOf(context), should);
}

bool CGContextGetShouldSmoothFonts(CGContextRef context) {
    return XGGStateShouldSmoothFonts(stateOf(context));
}

void CGContextSetShouldSubpixelPositionFonts(CGContextRef context, bool should) {
    XGGStateSetShouldSubpixelPositionFonts(stateOf(context), should);
}

void CGContextSetShouldSubpixelQuantizeFonts(CGContextRef context, bool should) {
    XGGStateSetShouldSubpixelQuantizeFonts(stateOf(context), should);
}

void CGContextSetFontAntialiasingStyle(CGContextRef context, int32_t style) {
    XGGStateSetFontAntialiasingStyle(stateOf(context), style);
}

int32_t CGContextGetFontAntialiasingStyle(CGContextRef context) {
    return XGGStateGetFontAntialiasingStyle(stateOf(context));
}

void CGContextSetFontSmoothingStyle(CGContextRef context, int32_t style) {
    if (context)
        stateOf(context)->values.fontSmoothingStyle = style;
}

int32_t CGContextGetFontSmoothingStyle(CGContextRef context) {
    return context ? stateOf(context)->values.fontSmoothingStyle : 0;
}

void CGContextSetFontRenderingMode(CGContextRef context, int32_t mode) {
    if (context)
        stateOf(context)->values.fontRenderingMode = mode;
}

int32_t CGContextGetFontRenderingMode(CGContextRef context) {
    return context ? stateOf(context)->values.fontRenderingMode : 0;
}

void CGContextSetSmoothness(CGContextRef context, CGFloat smoothness) {
    if (context && std::isfinite(smoothness) && smoothness >= 0)
        stateOf(context)->values.smoothness = smoothness;
}

CGFloat CGContextGetSmoothness(CGContextRef context) {
    return context ? stateOf(context)->values.smoothness : 0;
}

// ---- What the context allows, whatever its states ask for

namespace {

void setAllows(CGContextRef context, uint32_t flag, bool allows) {
    if (!context)
        return;
    context->allowsFlags &= ~flag;
    context->allowsFlags |= allows ? flag : 0;
}

} // namespace

void CGContextSetAllowsAntialiasing(CGContextRef context, bool allows) {
    setAllows(context, kXGContextAllowsAntialiasing, allows);
}

void CGContextSetAllowsFontSmoothing(CGContextRef context, bool allows) {
    setAllows(context, kXGContextAllowsFontSmoothing, allows);
}

void CGContextSetAllowsFontSubpixelPositioning(CGContextRef context, bool allows) {
    setAllows(context, kXGContextAllowsFontSubpixelPositioning, allows);
}

void CGContextSetAllowsFontSubpixelQuantization(CGContextRef context, bool allows) {
    setAllows(context, kXGContextAllowsFontSubpixelQuantization, allows);
}
