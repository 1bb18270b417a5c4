// CGContextClip.cpp: clipping to paths, rectangles and masks.

#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"

#include <cmath>
#include <utility>

namespace {

void clipToPath(CGContextRef context, bool evenOdd) {
    if (!context || !context->path)
        return;
    auto path = cg::takePath(*context);
    XGGStateClipToPath(context->state.get(), path.get(), evenOdd);
    cg::recyclePath(*context, std::move(path));
}

// Whether rectangles along the axes stay such.
bool keepsRects(const CGAffineTransform& transform) {
    return (transform.b == 0 && transform.c == 0) || (transform.a == 0 && transform.d == 0);
}

bool hasInside(const CGRect& rect) {
    return !CGRectIsEmpty(rect) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height);
}

} // namespace

void CGContextClip(CGContextRef context) {
    clipToPath(context, false);
}
void CGContextEOClip(CGContextRef context) {
    clipToPath(context, true);
}

void CGContextClipToRect(CGContextRef context, CGRect rect) {
    CGContextClipToRects(context, &rect, 1);
}

void CGContextClipToRects(CGContextRef context, const CGRect* rects, size_t count) {
    if (!context || !rects || count == 0)
        return;
    cg::dropPath(*context);
    const XGGStateRef state = context->state.get();
    const CGAffineTransform& ctm = *XGGStateGetCombinedCTM(state);
    // Mapped to device space it could overflow to nothing.
    if (count == 1 && CGRectIsInfinite(rects[0]))
        return;
    if (count == 1 && keepsRects(ctm)) {
        XGGStateClipToRect(state, rects[0]);
        return;
    }

    // All rectangles turn the same way: where they overlap, the winding rule covers.
    const CGMutablePathRef path = cg::currentPath(context);
    for (size_t index = 0; index < count; ++index) {
        if (hasInside(rects[index]))
            CGPathAddRect(path, &ctm, rects[index]);
    }
    if (CGPathIsEmpty(path))
        XGGStateClipToRect(state, CGRectZero);
    else
        CGContextClip(context);
}

void CGContextClipToMask(CGContextRef context, CGRect rect, CGImageRef mask) {
    if (!context || !mask)
        return;
    cg::dropPath(*context);
    XGGStateClipToMask(context->state.get(), rect, mask);
}

CGRect CGContextGetClipBoundingBox(CGContextRef context) {
    return XGGStateGetClipBoundingBox(cg::stateOf(context));
}

void CGContextResetClip(CGContextRef context) {
    if (!context)
        return;
    const XGGStateRef state = context->state.get();
    if (!context->holdsBitmap) {
        XGGStateSetClipping(state, nullptr);
        return;
    }
    const auto width = static_cast<CGFloat>(CGBitmapContextGetWidth(context));
    const auto height = static_cast<CGFloat>(CGBitmapContextGetHeight(context));
    const auto whole = cf::adopt(XGClippingCreateWithRect(CGRectMake(0, 0, width, height)));
    if (whole)
        XGGStateSetClipping(state, whole.get());
}
