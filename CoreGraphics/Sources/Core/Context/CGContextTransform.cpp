// CGContextTransform.cpp: the current transform, and values of user space in device space.

#include "XGGeometry.h"
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/State/XGGStateRecord.h"

using cg::stateOf;

// ---- The current transform

void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform) {
    if (const CGAffineTransform* const ctm = XGGStateGetCTM(stateOf(context)))
        XGGStateSetCTM(stateOf(context), CGAffineTransformConcat(transform, *ctm));
}

// What concatenating a translation comes to; the most frequent of all calls.
void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty) {
    if (!context)
        return;
    CGAffineTransform ctm = context->state.get()->values.ctm;
    ctm.tx = tx * ctm.a + ty * ctm.c + ctm.tx;
    ctm.ty = tx * ctm.b + ty * ctm.d + ctm.ty;
    XGGStateSetCTM(context->state.get(), ctm);
}

void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy) {
    if (!context)
        return;
    const CGAffineTransform& ctm = context->state.get()->values.ctm;
    XGGStateSetCTM(context->state.get(),
                   {sx * ctm.a, sx * ctm.b, sy * ctm.c, sy * ctm.d, ctm.tx, ctm.ty});
}

void CGContextRotateCTM(CGContextRef context, CGFloat angle) {
    CGContextConcatCTM(context, CGAffineTransformMakeRotation(angle));
}

void CGContextSetCTM(CGContextRef context, CGAffineTransform transform) {
    XGGStateSetCTM(stateOf(context), transform);
}

CGAffineTransform CGContextGetCTM(CGContextRef context) {
    const CGAffineTransform* const ctm = XGGStateGetCTM(stateOf(context));
    return ctm ? *ctm : CGAffineTransformIdentity;
}

CGAffineTransform CGContextGetBaseCTM(CGContextRef) {
    return CGAffineTransformIdentity;
}

// ---- User space and device space

// The rows of a bitmap count downwards, y upwards.
CGAffineTransform CGContextGetUserSpaceToDeviceSpaceTransform(CGContextRef context) {
    if (!context)
        return CGAffineTransformIdentity;
    if (context->kind != kXGContextKindBitmap)
        return *cg::combinedCTM(context);
    const auto height = static_cast<CGFloat>(CGBitmapContextGetHeight(context));
    return CGAffineTransformConcat(*cg::combinedCTM(context), {1, 0, 0, -1, 0, height});
}

CGPoint CGContextConvertPointToDeviceSpace(CGContextRef context, CGPoint point) {
    if (!context)
        return CGPointZero;
    return CGPointApplyAffineTransform(point, CGContextGetUserSpaceToDeviceSpaceTransform(context));
}

CGPoint CGContextConvertPointToUserSpace(CGContextRef context, CGPoint point) {
    if (!context)
        return CGPointZero;
    return XGPointApplyInverseAffineTransform(point,
                                              CGContextGetUserSpaceToDeviceSpaceTransform(context));
}

CGSize CGContextConvertSizeToDeviceSpace(CGContextRef context, CGSize size) {
    if (!context)
        return CGSizeZero;
    return CGSizeApplyAffineTransform(size, CGContextGetUserSpaceToDeviceSpaceTransform(context));
}

CGSize CGContextConvertSizeToUserSpace(CGContextRef context, CGSize size) {
    if (!context)
        return CGSizeZero;
    return XGSizeApplyInverseAffineTransform(size,
                                             CGContextGetUserSpaceToDeviceSpaceTransform(context));
}

CGRect CGContextConvertRectToDeviceSpace(CGContextRef context, CGRect rect) {
    if (!context)
        return rect;
    return CGRectApplyAffineTransform(rect, CGContextGetUserSpaceToDeviceSpaceTransform(context));
}

CGRect CGContextConvertRectToUserSpace(CGContextRef context, CGRect rect) {
    if (!context)
        return rect;
    return XGRectApplyInverseAffineTransform(rect,
                                             CGContextGetUserSpaceToDeviceSpaceTransform(context));
}
