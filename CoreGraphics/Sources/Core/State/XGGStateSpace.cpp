// XGGStateSpace.cpp: a graphics state's transforms and its clip.

#include "XGGState.h"
#include "XGGeometry.h"

#include "Core/State/XGGStateRecord.h"

#include <cmath>

namespace {

// Brings what follows from the CTM and the scales up to date.
void updateTransforms(cg::StateValues& values) {
    const CGFloat x = values.xScale / values.deviceScale;
    const CGFloat y = std::fabs(values.yScale) / values.deviceScale;
    // Most contexts have no scales, and transforms change often.
    values.combinedCTM =
        x == 1 && y == 1 ? values.ctm
                         : CGAffineTransformConcat(values.ctm, CGAffineTransformMakeScale(x, y));
    if (!(values.flags & cg::kHasTextCTM))
        return;
    values.textCTM = values.ctm;
    values.textCTM.ty += values.textOffset;
}

} // namespace

const CGAffineTransform* XGGStateGetCTM(XGGStateRef state) {
    return state ? &state->values.ctm : nullptr;
}

void XGGStateSetCTM(XGGStateRef state, CGAffineTransform transform) {
    if (!state)
        return;
    state->values.ctm = transform;
    updateTransforms(state->values);
}

const CGAffineTransform* XGGStateGetCombinedCTM(XGGStateRef state) {
    return state ? &state->values.combinedCTM : nullptr;
}

const CGAffineTransform* XGGStateGetTextCTM(XGGStateRef state) {
    if (!state)
        return nullptr;
    const cg::StateValues& values = state->values;
    return values.flags & cg::kHasTextCTM ? &values.textCTM : &values.combinedCTM;
}

void XGGStateSetScales(XGGStateRef state, size_t pixelWidth, size_t pixelHeight, bool flipped,
                       CGFloat xScale, CGFloat yScale, CGFloat deviceScale) {
    if (!state)
        return;
    cg::StateValues& values = state->values;
    const CGFloat excessWidth = static_cast<CGFloat>(pixelWidth) * (1 - deviceScale / xScale);
    const CGFloat excessHeight = static_cast<CGFloat>(pixelHeight) * (1 - deviceScale / yScale);
    if (std::fabs(excessWidth) < 1 && std::fabs(excessHeight) < 1) {
        values.flags |= cg::kHasTextCTM;
        values.textOffset = excessHeight;
    }
    values.deviceScale = deviceScale;
    values.xScale = xScale;
    values.yScale = flipped ? -yScale : yScale;
    updateTransforms(values);
}

// ---- Clip

XGClippingRef XGGStateGetClipping(XGGStateRef state) {
    return state ? state->clipping.get() : nullptr;
}

void XGGStateSetClipping(XGGStateRef state, XGClippingRef clipping) {
    if (!state)
        return;
    state->clipping = cf::retain(clipping);
    state->values.flags |= cg::kClipChanged;
}

void XGGStateClipToRect(XGGStateRef state, CGRect rect) {
    if (!state)
        return;
    const CGRect deviceRect = CGRectApplyAffineTransform(rect, state->values.combinedCTM);
    if (state->clipping)
        XGClippingIntersectWithRect(state->clipping.get(), deviceRect);
    else
        state->clipping = cf::adopt(XGClippingCreateWithRect(deviceRect));
    state->values.flags |= cg::kClipChanged;
}

void XGGStateClipToPath(XGGStateRef state, CGPathRef path, bool evenOdd) {
    if (!state || CGPathIsEmpty(path))
        return;
    if (state->clipping)
        XGClippingIntersectWithPath(state->clipping.get(), path, evenOdd);
    else
        state->clipping = cf::adopt(XGClippingCreateWithPath(path, evenOdd));
    state->values.flags |= cg::kClipChanged;
}

void XGGStateClipToMask(XGGStateRef state, CGRect rect, CGImageRef mask) {
    if (!state || !mask)
        return;
    const CGAffineTransform& ctm = state->values.combinedCTM;
    if (state->clipping)
        XGClippingIntersectWithMask(state->clipping.get(), ctm, rect, mask);
    else
        state->clipping = cf::adopt(XGClippingCreateWithMask(ctm, rect, mask));
    state->values.flags |= cg::kClipChanged;
}

CGRect XGGStateGetClipBoundingBox(XGGStateRef state) {
    if (!state || !state->clipping)
        return CGRectZero;
    return XGRectApplyInverseAffineTransform(XGClippingGetBoundingBox(state->clipping.get()),
                                             state->values.combinedCTM);
}
