// CGContextImage.cpp: drawing images.

#include "XGContext.h"
#include "XGImagePixels.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"

namespace {

enum class Passes { ShadowAndImage, ShadowAlone };

void drawImage(CGContextRef context, CGRect rect, CGImageRef image, Passes passes,
               uint32_t passFlags) {
    if (!context || !image)
        return;
    cg::prepare(*context);
    const auto draw = context->callbacks.drawImage;
    const CGImageRef masked = _CGImageGetMaskedImage(image);
    if (!draw || !masked || CGRectIsEmpty(rect))
        return;
    const XGGStateRef state = context->state.get();
    const uint32_t flags = context->allowsFlags | passFlags;
    if (XGGStateHasShadow(state))
        draw(state, flags | kXGContextShadowPass, rect, masked, context->info);
    if (passes == Passes::ShadowAndImage)
        draw(state, flags, rect, masked, context->info);
}

} // namespace

void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, Passes::ShadowAndImage, 0);
}

void CGContextDrawTiledImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, Passes::ShadowAndImage, kXGContextTiledImage);
}

void XGContextDrawShadowImage(CGContextRef context, CGRect rect, CGImageRef image) {
    drawImage(context, rect, image, Passes::ShadowAlone, 0);
}
