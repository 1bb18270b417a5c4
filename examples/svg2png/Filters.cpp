// Filters.cpp: filters that come to shadows.

#include "Filters.h"

#include "FilterEffects.h"
#include "PaintServer.h"
#include "Renderer.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace svg {

namespace {

using Kind = FilterLayer::Kind;
using Draw = std::function<void(CGContextRef)>;

bool isSameColor(const Color& a, const Color& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

// The one colour of a paint, whatever its opacities.
std::optional<Color> onlyColorOf(const PaintSource& source) {
    if (const auto* const color = std::get_if<Color>(&source))
        return *color;
    const auto* const gradient = std::get_if<Gradient>(&source);
    if (!gradient)
        return std::nullopt;
    for (const GradientStop& stop : gradient->stops)
        if (!isSameColor(stop.color, gradient->stops.front().color))
            return std::nullopt;
    return gradient->stops.front().color;
}

// The one colour of a shape.
std::optional<Color> onlyColorOf(Scene& scene, const Occurrence& shape, CGPathRef outline) {
    if (!outline)
        return std::nullopt;
    const PaintSource fill = paintSourceOf(scene, shape, shape.style.fill, outline);
    const PaintSource stroke = paintSourceOf(scene, shape, shape.style.stroke, outline);
    if (std::holds_alternative<std::monostate>(stroke))
        return onlyColorOf(fill);
    if (std::holds_alternative<std::monostate>(fill))
        return onlyColorOf(stroke);
    const auto a = onlyColorOf(fill), b = onlyColorOf(stroke);
    return a && b && isSameColor(*a, *b) ? a : std::nullopt;
}

// Outside of it a filter shows nothing.
CGRect regionOf(Scene& scene, const Occurrence& filtered, const Occurrence& filter) {
    if (unitsOf(filter.element, "filterUnits", Units::BoundingBox) == Units::UserSpace)
        return regionIn(filter, filter.viewport);
    return CGRectApplyAffineTransform(regionIn(filter, {1, 1}),
                                      boxToUserSpace(boundsOf(scene, filtered)));
}

// How much larger areas become, along one side.
double scaleOf(const CGAffineTransform& transform) {
    return std::sqrt(
        std::abs(double(transform.a) * transform.d - double(transform.b) * transform.c));
}

// Shadows are given in the space of the bitmap, whose y runs up as that of the CTM's results does.
void setShadow(CGContextRef context, const FilterLayer& layer, CGSize away) {
    const CGAffineTransform ctm = CGContextGetCTM(context);
    const CGSize offset = CGSizeApplyAffineTransform(
        CGSizeMake(toCoordinate(layer.offsetX), toCoordinate(layer.offsetY)), ctm);
    const ColorSpace rgb(CGColorSpaceCreateDeviceRGB());
    const CGFloat components[] = {CGFloat(layer.color.red), CGFloat(layer.color.green),
                                  CGFloat(layer.color.blue), CGFloat(layer.color.alpha)};
    const ColorRef color(CGColorCreate(rgb.get(), components));
    // The interface's blur is twice the deviation.
    CGContextSetShadowWithColor(context,
                                CGSizeMake(offset.width + away.width, offset.height + away.height),
                                toCoordinate(2 * layer.deviation * scaleOf(ctm)), color.get());
}

// A shadow without what throws it: that is drawn in the lower half of a bitmap of twice the height,
// and its shadow falls into the upper half. The margin is for what lies beyond the picture but is
// blurred into it.
void drawSilhouette(Scene& scene, CGContextRef context, const FilterLayer& layer,
                    const Draw& draw) {
    constexpr double kReach = 3, kMostMargin = 256;
    const double margin = std::ceil(
        std::min(kMostMargin, kReach * layer.deviation * scaleOf(CGContextGetCTM(context))));
    const auto width = double(CGBitmapContextGetWidth(context));
    const auto height = double(CGBitmapContextGetHeight(context));
    const CGRect half = toRect(0, 0, width + 2 * margin, height + 2 * margin);
    const auto columns = std::size_t(half.size.width);
    const std::size_t rows = 2 * std::size_t(half.size.height);
    const Context bitmap =
        spend(scene, costOfBitmap(columns, rows)) ? makeBitmap(columns, rows) : nullptr;
    if (!bitmap)
        return;
    CGContextTranslateCTM(bitmap.get(), CGFloat(margin), CGFloat(margin));
    CGContextConcatCTM(bitmap.get(), CGContextGetCTM(context));
    setShadow(bitmap.get(), layer, CGSizeMake(0, half.size.height));
    {
        const TransparencyLayer thrown(bitmap.get());
        const CGAffineTransform ctm = CGContextGetCTM(bitmap.get());
        CGContextConcatCTM(bitmap.get(), CGAffineTransformInvert(ctm));
        CGContextClipToRect(bitmap.get(), half);
        CGContextConcatCTM(bitmap.get(), ctm);
        const PatternSpace space(scene, CGAffineTransformIdentity);
        draw(bitmap.get());
    }
    const Image both(CGBitmapContextCreateImage(bitmap.get()));
    // Images count their rows from the top.
    const Image shadow(
        CGImageCreateWithImageInRect(both.get(), toRect(margin, margin, width, height)));
    const SavedState saved(context);
    CGContextConcatCTM(context, CGAffineTransformInvert(CGContextGetCTM(context)));
    CGContextDrawImage(context, toRect(0, 0, width, height), shadow.get());
}

void drawWithShadow(CGContextRef context, const FilterLayer& shadow, const Draw& draw) {
    const SavedState saved(context);
    setShadow(context, shadow, CGSizeZero);
    const TransparencyLayer thrower(context);
    draw(context);
}

void drawMoved(CGContextRef context, const FilterLayer& layer, const Draw& draw) {
    const SavedState saved(context);
    CGContextTranslateCTM(context, toCoordinate(layer.offsetX), toCoordinate(layer.offsetY));
    draw(context);
}

void drawLayers(Scene& scene, CGContextRef context, const std::vector<FilterLayer>& layers,
                const Draw& draw) {
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const FilterLayer& layer = layers[i];
        const bool isUnderElement = i + 1 < layers.size() && layers[i + 1].kind == Kind::Element &&
                                    layers[i + 1].offsetX == 0 && layers[i + 1].offsetY == 0;
        if (layer.kind == Kind::Element)
            drawMoved(context, layer, draw);
        else if (isUnderElement)
            drawWithShadow(context, layer, draw), ++i;
        else
            drawSilhouette(scene, context, layer, draw);
    }
}

} // namespace

bool hasFilter(const Scene& scene, const Occurrence& occurrence) {
    return scene.document.find(occurrence.style.filterId).is("filter");
}

void drawFiltered(Scene& scene, CGContextRef context, const Occurrence& filtered, CGPathRef outline,
                  const Draw& draw) {
    if (!hasFilter(scene, filtered))
        return draw(context);
    const Occurrence filter =
        occurFor(scene, filtered, scene.document.find(filtered.style.filterId));
    const auto layers = readFilter(scene, filter, onlyColorOf(scene, filtered, outline));
    const bool isInBox =
        unitsOf(filter.element, "primitiveUnits", Units::UserSpace) == Units::BoundingBox;
    const bool hasFlood = layers && std::ranges::any_of(*layers, [](const FilterLayer& layer) {
                              return layer.kind == Kind::Flood;
                          });
    if (!layers || isInBox || hasFlood) {
        scene.report.cannotDraw("filter", "what it would change is drawn unchanged");
        return draw(context);
    }
    const SavedState saved(context);
    CGContextClipToRect(context, regionOf(scene, filtered, filter));
    drawLayers(scene, context, *layers, draw);
}

} // namespace svg
