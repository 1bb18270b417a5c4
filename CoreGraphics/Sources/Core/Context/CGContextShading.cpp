// CGContextShading.cpp: gradients and shadings over the clip.

#include "XGGradient.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Paint/ConicShading.h"

namespace {

void draw(CGContext& context, CGShadingRef shading) {
    if (context.callbacks.drawShading)
        context.callbacks.drawShading(context.state.get(), context.allowsFlags, shading,
                                      context.info);
}

// Destinations know shadings alone: a gradient is one by its function.
template <typename Create>
void drawGradient(CGContextRef context, CGGradientRef gradient, CGGradientDrawingOptions options,
                  Create create) {
    if (!context || !gradient)
        return;
    cg::prepare(*context);
    const auto shading =
        cf::adopt(create(XGGradientGetColorSpace(gradient), XGGradientGetFunction(gradient),
                         options & kCGGradientDrawsBeforeStartLocation ? 1 : 0,
                         options & kCGGradientDrawsAfterEndLocation ? 1 : 0));
    if (shading)
        draw(*context, shading.get());
}

} // namespace

void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient, CGPoint start,
                                 CGPoint end, CGGradientDrawingOptions options) {
    drawGradient(context, gradient, options,
                 [&](CGColorSpaceRef space, CGFunctionRef function, int before, int after) {
                     return CGShadingCreateAxial(space, start, end, function, before, after);
                 });
}

void CGContextDrawRadialGradient(CGContextRef context, CGGradientRef gradient, CGPoint startCenter,
                                 CGFloat startRadius, CGPoint endCenter, CGFloat endRadius,
                                 CGGradientDrawingOptions options) {
    drawGradient(context, gradient, options,
                 [&](CGColorSpaceRef space, CGFunctionRef function, int before, int after) {
                     return CGShadingCreateRadial(space, startCenter, startRadius, endCenter,
                                                  endRadius, function, before, after);
                 });
}

void CGContextDrawConicGradient(CGContextRef context, CGGradientRef gradient, CGPoint center,
                                CGFloat angle) {
    drawGradient(context, gradient, 0,
                 [&](CGColorSpaceRef space, CGFunctionRef function, int, int) {
                     return cg::createConicShading(space, center, angle, function);
                 });
}

void CGContextDrawShading(CGContextRef context, CGShadingRef shading) {
    if (!context || !shading)
        return;
    cg::prepare(*context);
    draw(*context, shading);
}
