// CGContextLayer.cpp: drawing layers, and transparency layers.

#include <CoreGraphics/CGLayer.h>

#include "Core/Context/CGContextRecord.h"

// ---- Layers

void CGContextDrawLayerInRect(CGContextRef context, CGRect rect, CGLayerRef layer) {
    if (!context || !layer)
        return;
    cg::prepare(*context);
    const auto draw = context->callbacks.drawLayer;
    if (!draw)
        return;
    const XGGStateRef state = context->state.get();
    if (XGGStateHasShadow(state))
        draw(state, context->allowsFlags | kXGContextShadowPass, rect, layer, context->info);
    draw(state, context->allowsFlags, rect, layer, context->info);
}

void CGContextDrawLayerAtPoint(CGContextRef context, CGPoint point, CGLayerRef layer) {
    CGContextDrawLayerInRect(context, {point, CGLayerGetSize(layer)}, layer);
}

// ---- Transparency layers

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
