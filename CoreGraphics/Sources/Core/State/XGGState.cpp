// XGGState.cpp: making, copying and comparing graphics states.

#include "XGGState.h"

#include <Host/Host.h>

#include "Core/Geometry/NearlyEqual.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/State/BlendMode.h"
#include "Core/State/StateReuse.h"
#include "Core/State/XGGStateRecord.h"

namespace {

constexpr CFRuntimeClass kGStateClass = {
    .className = "CGGState",
    .copy = cg::copyBy<XGGStateCreateCopy>,
    .finalize = cg::finalize<XGGState>,
    .equal = cg::equalBy<XGGStateEqualToGState>,
};

} // namespace

XGGStateRef XGGStateCreate(void) {
    cg::registerBlendModeOption();
    return cg::create<XGGState>(kGStateClass);
}

XGGStateRef XGGStateCreateCopy(XGGStateRef state) {
    if (!state)
        return nullptr;
    auto copy = cf::adopt(cg::create<XGGState>(kGStateClass));
    return copy && cg::copyState(copy.get(), state) ? copy.release() : nullptr;
}

// Without its clip a copy would draw where it must not, so that such a copy has failed.
bool cg::copyState(XGGStateRef target, XGGStateRef source) {
    target->values = source->values;
    target->values.flags &= ~uint32_t{kDidModifyClipRegion};
    if (!source->clipping)
        target->clipping = nullptr;
    else if (target->clipping && CFGetRetainCount(target->clipping.get()) == 1)
        copyClipping(target->clipping.get(), source->clipping.get());
    else
        target->clipping = cf::adopt(XGClippingCreateCopy(source->clipping.get()));
    return target->clipping || !source->clipping;
}

XGGStateRef XGGStateRetain(XGGStateRef state) {
    return cg::retain(state);
}
void XGGStateRelease(XGGStateRef state) {
    cg::release(state);
}

namespace {

bool equalScales(const cg::StateValues& a, const cg::StateValues& b) {
    return cg::nearlyEqual(a.deviceScale, b.deviceScale) && cg::nearlyEqual(a.xScale, b.xScale) &&
           cg::nearlyEqual(a.yScale, b.yScale) && cg::nearlyEqual(a.textOffset, b.textOffset);
}

bool equalPaint(const cg::StateValues& a, const cg::StateValues& b) {
    return a.alpha == b.alpha && a.blendMode == b.blendMode &&
           a.interpolationQuality == b.interpolationQuality &&
           a.renderingIntent == b.renderingIntent &&
           CGColorEqualToColor(a.fillColor.get(), b.fillColor.get()) &&
           CGColorEqualToColor(a.strokeColor.get(), b.strokeColor.get()) &&
           CGColorEqualToColor(a.shadowColor.get(), b.shadowColor.get()) &&
           CGSizeEqualToSize(a.shadowOffset, b.shadowOffset) && a.shadowBlur == b.shadowBlur &&
           CGSizeEqualToSize(a.patternPhase, b.patternPhase);
}

bool equalText(const cg::StateValues& a, const cg::StateValues& b) {
    return cf::equalOrBothAbsent(a.font.get(), b.font.get()) && a.fontSize == b.fontSize &&
           a.characterSpacing == b.characterSpacing && a.textDrawingMode == b.textDrawingMode &&
           a.fontAntialiasingStyle == b.fontAntialiasingStyle &&
           a.fontSmoothingStyle == b.fontSmoothingStyle &&
           a.fontRenderingMode == b.fontRenderingMode;
}

bool equalLines(const cg::StateValues& a, const cg::StateValues& b) {
    return a.flatness == b.flatness && a.smoothness == b.smoothness &&
           a.miterLimit == b.miterLimit && a.lineCap == b.lineCap && a.lineJoin == b.lineJoin &&
           a.lineWidth == b.lineWidth && cf::equalOrBothAbsent(a.lineDash.get(), b.lineDash.get());
}

} // namespace

// What follows from other fields is not compared.
bool XGGStateEqualToGState(XGGStateRef a, XGGStateRef b) {
    if (!a || !b)
        return false;
    if (a == b)
        return true;
    const cg::StateValues& left = a->values;
    const cg::StateValues& right = b->values;
    return left.flags == right.flags && CGAffineTransformEqualToTransform(left.ctm, right.ctm) &&
           equalScales(left, right) && equalPaint(left, right) && equalText(left, right) &&
           equalLines(left, right) && left.compositeOperation == right.compositeOperation &&
           XGClippingEqualToClipping(a->clipping.get(), b->clipping.get());
}
