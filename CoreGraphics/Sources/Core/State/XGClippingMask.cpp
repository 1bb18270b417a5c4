// XGClippingMask.cpp: the mask of a clipping, and how two of them become one.

#include "XGClipping.h"
#include "XGImage.h"
#include <CoreGraphics/CGBitmapContext.h>

#include "Core/State/XGClippingRecord.h"

#include <utility>

namespace {

using Context = cf::Ref<CGContextRef>;
using Image = cf::Ref<CGImageRef>;

struct PlacedMask {
    CGImageRef image;
    CGRect rect;
    CGAffineTransform matrix;
};

bool isOpaque(CGImageRef mask) {
    return XGImageAlphaInfoIsOpaque(CGImageGetAlphaInfo(mask));
}

bool isGray(CGImageRef mask) {
    return CGColorSpaceGetModel(CGImageGetColorSpace(mask)) == kCGColorSpaceModelMonochrome;
}

Context makeContext(void* pixels, CGRect box, CGImageAlphaInfo alpha) {
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    // The clip's box is inside a bitmap's, but for contexts without one: those refuse here.
    constexpr CGFloat kMostPixels = 1 << 16;
    if (!(box.size.width <= kMostPixels && box.size.height <= kMostPixels))
        return nullptr;
    const auto width = static_cast<std::size_t>(box.size.width);
    const auto height = static_cast<std::size_t>(box.size.height);
    Context context =
        cf::adopt(CGBitmapContextCreate(pixels, width, height, 8, width, gray.get(), alpha));
    CGContextSetAllowsAcceleration(context.get(), false); // Its pixels are what is wanted.
    return context;
}

// Draws a mask with the bitmap's lower left corner at the box's.
void draw(CGContextRef context, CGRect box, const PlacedMask& mask) {
    CGContextSaveGState(context);
    CGContextTranslateCTM(context, -box.origin.x, -box.origin.y);
    CGContextConcatCTM(context, mask.matrix);
    CGContextDrawImage(context, mask.rect, mask.image);
    CGContextRestoreGState(context);
}

// The coverage of `mask` over `box`, 255 where paint goes through, and that of `other` where it is
// less; empty when memory runs out. An image mask paints white on black what it lets through; a
// picture's own gray is coverage, or its opacity if it has any.
Image render(CGRect box, const PlacedMask& mask, const PlacedMask* other) {
    const bool byOpacity = !isOpaque(mask.image);
    const Context drawn =
        makeContext(nullptr, box, byOpacity ? kCGImageAlphaOnly : kCGImageAlphaNone);
    CGContextSetGrayFillColor(drawn.get(), 1, 1);
    draw(drawn.get(), box, mask);
    // The bytes of opacity, read as gray.
    const Context coverage = byOpacity && drawn ? makeContext(CGBitmapContextGetData(drawn.get()),
                                                              box, kCGImageAlphaNone)
                                                : drawn;
    if (other) {
        CGContextSetBlendMode(coverage.get(), kCGBlendModeDarken);
        draw(coverage.get(), box, *other);
    }
    return cf::adopt(CGBitmapContextCreateImage(coverage.get()));
}

// Whether the mask must be drawn anew to be gray that lies along the device's axes over `box`.
bool needsRendering(const XGClipping& clipping, CGRect box) {
    const CGImageRef mask = clipping.mask.get();
    return XGImageWasCreatedAsMask(mask) || !isOpaque(mask) || !isGray(mask) ||
           XGImageGetMask(mask) || !CGRectContainsRect(box, clipping.maskRect) ||
           !CGAffineTransformIsIdentity(clipping.maskMatrix);
}

} // namespace

XGClippingRef XGClippingCreateWithMask(CGAffineTransform matrix, CGRect rect, CGImageRef mask) {
    if (!mask)
        return nullptr;
    const XGClippingRef clipping =
        XGClippingCreateWithRect(CGRectApplyAffineTransform(rect, matrix));
    if (!clipping || XGClippingIsEmpty(clipping))
        return clipping;
    clipping->mask = cf::retain(mask);
    clipping->maskRect = rect;
    clipping->maskMatrix = matrix;
    return clipping;
}

void XGClippingIntersectWithMask(XGClippingRef clipping, CGAffineTransform matrix, CGRect rect,
                                 CGImageRef mask) {
    if (!clipping || !mask)
        return;
    XGClippingBake(clipping); // What it has is coverage then.
    XGClippingIntersectWithRect(clipping, CGRectApplyAffineTransform(rect, matrix));
    if (XGClippingIsEmpty(clipping))
        return;
    const CGRect box = CGRectIntegral(clipping->rect);
    const PlacedMask old = {clipping->mask.get(), clipping->maskRect, clipping->maskMatrix};
    clipping->mask = render(box, {mask, rect, matrix}, old.image ? &old : nullptr);
    clipping->maskRect = box;
    clipping->maskMatrix = CGAffineTransformIdentity;
    if (!clipping->mask)
        clipping->clipAll();
}

void XGClippingBake(XGClippingRef clipping) {
    if (!clipping || XGClippingIsEmpty(clipping) || !clipping->mask)
        return;
    const CGRect box = CGRectIntegral(clipping->rect);
    if (!needsRendering(*clipping, box))
        return;
    const Image mask = std::exchange(clipping->mask, nullptr);
    XGClippingIntersectWithMask(clipping, clipping->maskMatrix, clipping->maskRect, mask.get());
}

CGImageRef XGClippingGetMask(XGClippingRef clipping) {
    return clipping ? clipping->mask.get() : nullptr;
}

CGRect XGClippingGetMaskRect(XGClippingRef clipping) {
    return clipping && clipping->mask ? clipping->maskRect : CGRectNull;
}

CGAffineTransform XGClippingGetMaskMatrix(XGClippingRef clipping) {
    return clipping && clipping->mask ? clipping->maskMatrix : CGAffineTransformIdentity;
}
