// CGContextTextState.cpp: how text will be drawn, and where.

#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"

#include <cmath>

using cg::stateOf;

void CGContextSetFont(CGContextRef context, CGFontRef font) {
    XGGStateSetFont(stateOf(context), font);
}

CGFontRef CGContextGetFont(CGContextRef context) {
    return XGGStateGetFont(stateOf(context));
}

// Deliberate: unlike a line width, a size that makes no sense is not ignored but becomes 0.
void CGContextSetFontSize(CGContextRef context, CGFloat size) {
    XGGStateSetFontSize(stateOf(context), std::isfinite(size) && size >= 0 ? size : 0);
}

void CGContextSetCharacterSpacing(CGContextRef context, CGFloat spacing) {
    XGGStateSetCharacterSpacing(stateOf(context), spacing);
}

void CGContextSetTextDrawingMode(CGContextRef context, CGTextDrawingMode mode) {
    XGGStateSetTextDrawingMode(stateOf(context), mode);
}

void CGContextSetTextMatrix(CGContextRef context, CGAffineTransform transform) {
    if (context)
        context->textMatrix = transform;
}

CGAffineTransform CGContextGetTextMatrix(CGContextRef context) {
    return context ? context->textMatrix : CGAffineTransformIdentity;
}

void CGContextSetTextPosition(CGContextRef context, CGFloat x, CGFloat y) {
    if (!context)
        return;
    context->textMatrix.tx = x;
    context->textMatrix.ty = y;
}

CGPoint CGContextGetTextPosition(CGContextRef context) {
    return context ? CGPointMake(context->textMatrix.tx, context->textMatrix.ty) : CGPointZero;
}
