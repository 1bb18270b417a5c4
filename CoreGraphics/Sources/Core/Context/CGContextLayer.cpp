// CGContextLayer.cpp: transparency layers.

#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"

// The destination composites the layer with the state from before; inside, drawing starts over.
void CGContextBeginTransparencyLayer(CGContextRef context, CFDictionaryRef) {
    if (!context)
        return;
    cg::prepare(*context);
    if (context->callbacks.beginTransparencyLayer)
        context->callbacks.beginTransparencyLayer(context->state.get(), context->allowsFlags,
                                                  context->info);
    CGContextSaveGState(context);
    const XGGStateRef state = context->state.get();
    XGGStateSetShadow(state, nullptr, 0, 0, 0);
    XGGStateSetAlpha(state, 1);
    XGGStateSetBlendMode(state, kCGBlendModeNormal);
}

void CGContextBeginTransparencyLayerWithRect(CGContextRef context, CGRect,
                                             CFDictionaryRef auxiliaryInfo) {
    CGContextBeginTransparencyLayer(context, auxiliaryInfo);
}

void CGContextEndTransparencyLayer(CGContextRef context) {
    if (!context)
        return;
    CGContextRestoreGState(context);
    cg::prepare(*context);
    if (context->callbacks.endTransparencyLayer)
        context->callbacks.endTransparencyLayer(context->state.get(), context->allowsFlags,
                                                context->info);
}
