// PatternTile.cpp: drawings repeated as a paint.

#include "PatternTile.h"

#include "Renderer.h"

#include <memory>

namespace svg {

namespace {

void drawTile(void* info, CGContextRef context) {
    const auto& tile = *static_cast<const PatternTile*>(info);
    const InUse use(*tile.scene, tile.content.element);
    if (!use)
        return;
    const PatternSpace space(*tile.scene, CGContextGetCTM(context));
    CGContextConcatCTM(context, tile.contentToTile);
    Renderer renderer(*tile.scene, context);
    for (const Occurrence& child : interiorOf(*tile.scene, tile.content).children)
        renderer.draw(child);
}

void freeTile(void* info) {
    delete static_cast<PatternTile*>(info);
}

} // namespace

void setPattern(CGContextRef context, const PatternTile& tile, PaintedPart part, double opacity) {
    constexpr CGPatternCallbacks kCallbacks = {0, drawTile, freeTile};
    constexpr int kIsColored = 1;
    auto info = std::make_unique<PatternTile>(tile);
    // Patterns lie in the space that the drawing began with, whatever the user space is by now.
    const auto userSpace = CGAffineTransformConcat(
        CGContextGetCTM(context), CGAffineTransformInvert(tile.scene->patternSpace));
    const auto matrix = CGAffineTransformConcat(tile.toUserSpace, userSpace);
    // Without distortion tiles keep their distance on the whole, as no rounding adds up.
    const PatternRef pattern(CGPatternCreate(
        info.get(), tile.bounds, matrix, tile.bounds.size.width, tile.bounds.size.height,
        kCGPatternTilingNoDistortion, kIsColored, &kCallbacks));
    if (!pattern)
        return;
    (void)info.release(); // The pattern's from here on.
    const ColorSpace space(CGColorSpaceCreatePattern(nullptr));
    const auto alpha = CGFloat(opacity);
    if (part == PaintedPart::Fill) {
        CGContextSetFillColorSpace(context, space.get());
        CGContextSetFillPattern(context, pattern.get(), &alpha);
    } else {
        CGContextSetStrokeColorSpace(context, space.get());
        CGContextSetStrokePattern(context, pattern.get(), &alpha);
    }
}

} // namespace svg
