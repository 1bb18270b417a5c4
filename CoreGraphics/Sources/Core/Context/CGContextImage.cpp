// CGContextImage.cpp: drawing images.

#include "XGContext.h"
#include "XGImagePixels.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/Recording.h"

namespace {

void drawImage(CGContextRef context, CGRect rect, CGImageRef image, cg::Passes passes,
               uint32_t passFlags) {
    if (!context || !image)
        return;
    const CGImageRef masked = _CGImageGetMaskedImage(image);
    const bool isOnce = passes == cg::Passes::ShadowAndMark && passFlags == 0;
    if (context->queue && masked && isOnce && cg::recordImage(*context, rect, masked))
        return;
    cg::prepare(*context);
    const auto draw = context->callbacks.drawImage;
    if (!draw || !masked || CGRectIsEmpty(rect))
        return;
    const XGGStateRef state = context->state.get();
    const uint32_t flags = context->allowsFlags | passFlags;
    if (XGGStateHasShadow(state))
        draw(state, flags | kXGContextShadowPass, rect, masked, context->info);
    if (passes == cg::Passes::ShadowAndMark)
        draw(state, flags, rect, masked, context->info);
}

} // namespace

void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, cg::Passes::ShadowAndMark, 0);
}

void CGContextDrawTiledImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, cg::Passes::ShadowAndMark, kXGContextTiledImage);
}

void XGContextDrawShadowImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, cg::Passes::ShadowAlone, 0);
}
