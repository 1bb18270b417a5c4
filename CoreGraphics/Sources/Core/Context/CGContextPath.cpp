// CGContextPath.cpp: building the current path, which is kept in device space, and asking about it.

#include "XGGeometry.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/DeviceStroke.h"
#include "Core/Context/XGBackend.h"
#include "Core/Object/Diagnostics.h"

#include <utility>

using cg::combinedCTM;
using cg::currentPath;
using cg::stateOf;

// ---- Taking and giving back

CGMutablePathRef cg::currentPath(CGContextRef context) {
    if (!context)
        return nullptr;
    if (!context->path)
        context->path =
            context->sparePath ? std::move(context->sparePath) : cf::adopt(CGPathCreateMutable());
    return context->path.get();
}

cf::Ref<CGMutablePathRef> cg::takePath(CGContext& context) {
    return std::move(context.path);
}

void cg::recyclePath(CGContext& context, cf::Ref<CGMutablePathRef> path) {
    if (!path || context.sparePath || CFGetRetainCount(path.get()) != 1)
        return;
    rewindPath(path.get());
    context.sparePath = std::move(path);
}

void cg::dropPath(CGContext& context) {
    if (context.path)
        recyclePath(context, takePath(context));
}

// ---- Building

namespace {

CGPathRef pathOf(CGContextRef context) {
    return context ? context->path.get() : nullptr;
}

// The path that `function` may continue; NULL, with a warning, when there is none. A path that is
// there but empty warns of itself.
CGMutablePathRef continuedPath(CGContextRef context, const char* function) {
    if (!context)
        return nullptr;
    if (context->path)
        return context->path.get();
    if (HostLogIsEnabled(kHostLogWarning))
        cg::logMessage(kHostLogWarning, function, "no current point to go on from");
    return nullptr;
}

} // namespace

void CGContextBeginPath(CGContextRef context) {
    if (context)
        cg::dropPath(*context);
}

void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    CGPathMoveToPoint(currentPath(context), combinedCTM(context), x, y);
}

// Polygons of many points are built by this: it looks for a current point once.
void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y) {
    if (context)
        cg::addLine(context->path.get(), combinedCTM(context), x, y, __func__);
}

void CGContextAddCurveToPoint(CGContextRef context, CGFloat control1X, CGFloat control1Y,
                              CGFloat control2X, CGFloat control2Y, CGFloat x, CGFloat y) {
    CGPathAddCurveToPoint(continuedPath(context, __func__), combinedCTM(context), control1X,
                          control1Y, control2X, control2Y, x, y);
}

void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat controlX, CGFloat controlY,
                                  CGFloat x, CGFloat y) {
    CGPathAddQuadCurveToPoint(continuedPath(context, __func__), combinedCTM(context), controlX,
                              controlY, x, y);
}

void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat startAngle,
                     CGFloat endAngle, int clockwise) {
    CGPathAddArc(currentPath(context), combinedCTM(context), x, y, radius, startAngle, endAngle,
                 clockwise != 0);
}

void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2,
                            CGFloat radius) {
    CGPathAddArcToPoint(continuedPath(context, __func__), combinedCTM(context), x1, y1, x2, y2,
                        radius);
}

void CGContextAddRect(CGContextRef context, CGRect rect) {
    CGPathAddRect(currentPath(context), combinedCTM(context), rect);
}

void CGContextAddRects(CGContextRef context, const CGRect* rects, size_t count) {
    if (rects && count > 0)
        CGPathAddRects(currentPath(context), combinedCTM(context), rects, count);
}

void CGContextAddLines(CGContextRef context, const CGPoint* points, size_t count) {
    if (points && count > 0)
        CGPathAddLines(currentPath(context), combinedCTM(context), points, count);
}

void CGContextAddEllipseInRect(CGContextRef context, CGRect rect) {
    CGPathAddEllipseInRect(currentPath(context), combinedCTM(context), rect);
}

void CGContextAddPath(CGContextRef context, CGPathRef path) {
    if (path)
        CGPathAddPath(currentPath(context), combinedCTM(context), path);
}

void CGContextClosePath(CGContextRef context) {
    if (!CGPathIsEmpty(pathOf(context)))
        CGPathCloseSubpath(context->path.get());
}

void CGContextReplacePathWithStrokedPath(CGContextRef context) {
    if (CGPathIsEmpty(pathOf(context)))
        return;
    const auto outline = cg::strokedOutline(context->state.get(), context->path.get());
    cg::dropPath(*context);
    context->path = cf::adopt(CGPathCreateMutableCopy(outline.get()));
}

// ---- Asking

bool CGContextIsPathEmpty(CGContextRef context) {
    return CGPathIsEmpty(pathOf(context));
}

CGPoint CGContextGetPathCurrentPoint(CGContextRef context) {
    if (CGPathIsEmpty(pathOf(context)))
        return XGPointNull;
    return XGPointApplyInverseAffineTransform(CGPathGetCurrentPoint(pathOf(context)),
                                              *combinedCTM(context));
}

CGRect CGContextGetPathBoundingBox(CGContextRef context) {
    return CGPathGetBoundingBox(cf::adopt(CGContextCopyPath(context)).get());
}

CGPathRef CGContextCopyPath(CGContextRef context) {
    const CGPathRef path = pathOf(context);
    if (!path)
        return nullptr;
    const CGAffineTransform& ctm = *combinedCTM(context);
    if (CGAffineTransformIsIdentity(ctm))
        return CGPathCreateCopy(path);
    const auto inverse = cg::inverseOf(ctm);
    return inverse ? CGPathCreateCopyByTransformingPath(path, &*inverse) : nullptr;
}

bool CGContextPathContainsPoint(CGContextRef context, CGPoint point, CGPathDrawingMode mode) {
    const CGPathRef path = pathOf(context);
    if (CGPathIsEmpty(path))
        return false;
    const CGAffineTransform* const ctm = combinedCTM(context);
    if (cg::fills(mode) && CGPathContainsPoint(path, ctm, point, cg::isEvenOdd(mode)))
        return true;
    if (!cg::strokes(mode))
        return false;
    const auto outline = cg::strokedOutline(stateOf(context), path);
    return CGPathContainsPoint(outline.get(), ctm, point, false);
}
