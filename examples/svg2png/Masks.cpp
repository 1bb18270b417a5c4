// Masks.cpp: limits drawing to what the masks of a document let through.

#include "Masks.h"

#include "Renderer.h"

#include <cstdint>

namespace svg {

namespace {

// The share of light that a colour stands for, by the weights of the standard's luminanceToAlpha.
std::uint8_t luminance(const std::uint8_t* bgra) {
    constexpr double kRed = 0.2125, kGreen = 0.7154, kBlue = 0.0721;
    return std::uint8_t(kRed * bgra[2] + kGreen * bgra[1] + kBlue * bgra[0] + 0.5);
}

// Turns premultiplied pixels into black ones that are as opaque as they let through. What is
// premultiplied is dark where it is transparent, as a mask has it.
void keepCoverage(CGContextRef bitmap, bool byLuminance) {
    auto* const pixels = static_cast<std::uint8_t*>(CGBitmapContextGetData(bitmap));
    const std::size_t rowBytes = CGBitmapContextGetBytesPerRow(bitmap);
    for (std::size_t y = 0; y < CGBitmapContextGetHeight(bitmap); ++y) {
        std::uint8_t* pixel = pixels + y * rowBytes;
        for (std::size_t x = 0; x < CGBitmapContextGetWidth(bitmap); ++x, pixel += 4) {
            const std::uint8_t coverage = byLuminance ? luminance(pixel) : pixel[3];
            pixel[0] = pixel[1] = pixel[2] = 0;
            pixel[3] = coverage;
        }
    }
}

// The part of user space outside of which nothing is let through.
CGRect regionOf(const Occurrence& mask, CGRect box) {
    if (unitsOf(mask.element, "maskUnits", Units::BoundingBox) == Units::UserSpace)
        return regionIn(mask, mask.viewport);
    return CGRectApplyAffineTransform(regionIn(mask, {1, 1}), boxToUserSpace(box));
}

// A picture of the context's size and place that is opaque where the mask lets everything through.
// NULL for a mask in parts of a box that has no area, and without memory.
Image coverageOf(Scene& scene, CGContextRef context, const Occurrence& masked, Element element) {
    const Occurrence mask = occurFor(scene, masked, element);
    const bool isContentInBox =
        unitsOf(element, "maskContentUnits", Units::UserSpace) == Units::BoundingBox;
    const bool needsBox =
        isContentInBox || unitsOf(element, "maskUnits", Units::BoundingBox) == Units::BoundingBox;
    const CGRect box = needsBox ? boundsOf(scene, masked) : CGRectZero;
    const std::size_t width = CGBitmapContextGetWidth(context);
    const std::size_t height = CGBitmapContextGetHeight(context);
    const Context bitmap =
        spend(scene, costOfBitmap(width, height)) ? makeBitmap(width, height) : nullptr;
    if (!bitmap || (needsBox && CGRectIsEmpty(box)))
        return nullptr;
    CGContextConcatCTM(bitmap.get(), CGContextGetCTM(context));
    CGContextClipToRect(bitmap.get(), regionOf(mask, box));
    if (isContentInBox)
        CGContextConcatCTM(bitmap.get(), boxToUserSpace(box));
    const PatternSpace space(scene, CGAffineTransformIdentity);
    Renderer renderer(scene, bitmap.get());
    for (const Occurrence& child : interiorOf(scene, mask).children)
        renderer.draw(child);
    CGContextFlush(bitmap.get());
    keepCoverage(bitmap.get(), mask.style.masksByLuminance);
    return Image(CGBitmapContextCreateImage(bitmap.get()));
}

} // namespace

// What a mask that is masked itself leaves is worked out by calling this again for the mask.
void drawMasked(Scene& scene, CGContextRef context, const Occurrence& masked,
                const std::function<void()>& draw) {
    const Element element = scene.document.find(masked.style.maskId);
    if (!element.is("mask"))
        return draw();
    const InUse use(scene, element);
    if (!use)
        return draw();
    const Image coverage = coverageOf(scene, context, masked, element);
    if (!coverage)
        return;
    const SavedState saved(context);
    const TransparencyLayer layer(context);
    draw();
    CGContextConcatCTM(context, CGAffineTransformInvert(CGContextGetCTM(context)));
    CGContextSetBlendMode(context, kCGBlendModeDestinationIn);
    CGContextDrawImage(context,
                       CGRectMake(0, 0, CGFloat(CGImageGetWidth(coverage.get())),
                                  CGFloat(CGImageGetHeight(coverage.get()))),
                       coverage.get());
}

} // namespace svg
