// Paint.cpp: fills and strokes one outline.

#include "Paint.h"

#include "PaintServer.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <variant>

namespace svg {

namespace {

// Indexed by our own enumerations, which follow the standard's order.
constexpr CGLineCap kLineCaps[] = {kCGLineCapButt, kCGLineCapRound, kCGLineCapSquare};
constexpr CGLineJoin kLineJoins[] = {kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel};

// The colour to paint with, or nothing.
std::optional<Color> visibleColor(const PaintSource& source, double opacity) {
    const Color* const color = std::get_if<Color>(&source);
    if (!color || !(color->alpha * opacity > 0))
        return std::nullopt;
    Color thinned = *color;
    thinned.alpha *= opacity;
    return thinned;
}

void setFillColor(CGContextRef context, const Color& color) {
    CGContextSetRGBFillColor(context, CGFloat(color.red), CGFloat(color.green), CGFloat(color.blue),
                             CGFloat(color.alpha));
}

// Paints inside the current path.
void drawInsidePath(CGContextRef context, const Gradient& gradient, FillRule rule, double opacity) {
    if (CGContextIsPathEmpty(context))
        return; // Would not clip at all.
    if (rule == FillRule::EvenOdd)
        CGContextEOClip(context);
    else
        CGContextClip(context);
    CGContextSetAlpha(context, CGFloat(opacity));
    drawGradient(context, gradient);
}

// Adding the path consumes nothing: painting does, and the next one adds it again.
void fill(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef path,
          double opacity) {
    const Style& style = shape.style;
    const double fillOpacity = style.fillOpacity * opacity;
    const PaintSource source = paintSourceOf(scene, shape, style.fill, path);
    if (const auto* const gradient = std::get_if<Gradient>(&source)) {
        const SavedState saved(context);
        CGContextAddPath(context, path);
        drawInsidePath(context, *gradient, style.fillRule, fillOpacity);
        return;
    }
    const auto* const tile = std::get_if<PatternTile>(&source);
    const auto color = visibleColor(source, fillOpacity);
    if (tile)
        setPattern(context, *tile, PaintedPart::Fill, fillOpacity);
    else if (color)
        setFillColor(context, *color);
    if (tile || color) {
        CGContextAddPath(context, path);
        if (style.fillRule == FillRule::EvenOdd)
            CGContextEOFillPath(context);
        else
            CGContextFillPath(context);
    }
}

// Lengths in user units; an odd number of them is repeated once. None for a solid line.
std::vector<CGFloat> dashesOf(const Occurrence& shape) {
    std::vector<CGFloat> lengths;
    double sum = 0;
    for (const Length& dash : shape.style.dashes) {
        const double length = dash.resolve(Axis::Diagonal, shape.viewport, shape.style.emSize());
        lengths.push_back(toCoordinate(length));
        sum += length;
    }
    if (!(sum > 0))
        return {};
    if (lengths.size() % 2 == 1) {
        const std::vector<CGFloat> once = lengths;
        lengths.insert(lengths.end(), once.begin(), once.end());
    }
    return lengths;
}

// Every line attribute is set anew for each stroke, so that none is left over from the last.
void setLine(CGContextRef context, const Occurrence& shape, double width) {
    const Style& style = shape.style;
    CGContextSetLineWidth(context, toCoordinate(width));
    CGContextSetLineCap(context, kLineCaps[std::size_t(style.lineCap)]);
    CGContextSetLineJoin(context, kLineJoins[std::size_t(style.lineJoin)]);
    CGContextSetMiterLimit(context, toCoordinate(style.miterLimit));
    const std::vector<CGFloat> dashes = dashesOf(shape);
    const double phase = style.dashOffset.resolve(Axis::Diagonal, shape.viewport, style.emSize());
    CGContextSetLineDash(context, toCoordinate(phase), dashes.data(), dashes.size());
}

void stroke(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef path,
            double opacity) {
    const Style& style = shape.style;
    const double strokeOpacity = style.strokeOpacity * opacity;
    const double width = style.strokeWidth.resolve(Axis::Diagonal, shape.viewport, style.emSize());
    const PaintSource source =
        width > 0 ? paintSourceOf(scene, shape, style.stroke, path) : PaintSource();
    const auto* const gradient = std::get_if<Gradient>(&source);
    const auto* const tile = std::get_if<PatternTile>(&source);
    const auto color = visibleColor(source, strokeOpacity);
    if (!gradient && !tile && !color)
        return;
    setLine(context, shape, width);
    if (tile)
        setPattern(context, *tile, PaintedPart::Stroke, strokeOpacity);
    else if (color)
        CGContextSetRGBStrokeColor(context, CGFloat(color->red), CGFloat(color->green),
                                   CGFloat(color->blue), CGFloat(color->alpha));
    CGContextAddPath(context, path);
    // A path is mapped when it is added, the pen when the stroke is drawn: with the identity in
    // between the pen keeps its width in pixels.
    const SavedState saved(context);
    const CGAffineTransform userSpace = CGContextGetCTM(context);
    if (style.hasFixedStrokeWidth)
        CGContextConcatCTM(context, CGAffineTransformInvert(userSpace));
    if (!gradient)
        return CGContextStrokePath(context);
    CGContextReplacePathWithStrokedPath(context);
    if (style.hasFixedStrokeWidth)
        CGContextConcatCTM(context, userSpace);
    drawInsidePath(context, *gradient, FillRule::NonZero, strokeOpacity);
}

// ---- Glyphs

void fillGlyphs(Scene& scene, CGContextRef context, const Occurrence& span, CGPathRef box,
                const std::function<void()>& show) {
    const double opacity = span.style.fillOpacity;
    const PaintSource source = paintSourceOf(scene, span, span.style.fill, box);
    if (const auto* const gradient = std::get_if<Gradient>(&source)) {
        const SavedState saved(context);
        CGContextSetTextDrawingMode(context, kCGTextClip);
        show();
        CGContextSetAlpha(context, CGFloat(opacity));
        drawGradient(context, *gradient);
        return;
    }
    const auto* const tile = std::get_if<PatternTile>(&source);
    const auto color = visibleColor(source, opacity);
    if (tile)
        setPattern(context, *tile, PaintedPart::Fill, opacity);
    else if (color)
        setFillColor(context, *color);
    else
        return;
    CGContextSetTextDrawingMode(context, kCGTextFill);
    show();
}

void strokeGlyphs(Scene& scene, CGContextRef context, const Occurrence& span, CGPathRef box,
                  const std::function<void()>& show) {
    const Style& style = span.style;
    const double width = style.strokeWidth.resolve(Axis::Diagonal, span.viewport, style.emSize());
    const PaintSource source =
        width > 0 ? paintSourceOf(scene, span, style.stroke, box) : PaintSource();
    const auto* const tile = std::get_if<PatternTile>(&source);
    const auto color = visibleColor(source, style.strokeOpacity);
    if (std::get_if<Gradient>(&source))
        scene.report.warn("gradients along the outlines of text are left out");
    if (tile)
        setPattern(context, *tile, PaintedPart::Stroke, style.strokeOpacity);
    else if (color)
        CGContextSetRGBStrokeColor(context, CGFloat(color->red), CGFloat(color->green),
                                   CGFloat(color->blue), CGFloat(color->alpha));
    else
        return;
    setLine(context, span, width);
    CGContextSetTextDrawingMode(context, kCGTextStroke);
    show();
}

} // namespace

void paintGlyphs(Scene& scene, CGContextRef context, const Occurrence& span, CGPathRef box,
                 const std::function<void()>& show) {
    if (span.style.paintOrder == PaintOrder::StrokeFirst)
        strokeGlyphs(scene, context, span, box, show);
    fillGlyphs(scene, context, span, box, show);
    if (span.style.paintOrder == PaintOrder::FillFirst)
        strokeGlyphs(scene, context, span, box, show);
}

void paintShape(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef path,
                double opacity) {
    if (shape.style.paintOrder == PaintOrder::StrokeFirst)
        stroke(scene, context, shape, path, opacity);
    fill(scene, context, shape, path, opacity);
    if (shape.style.paintOrder == PaintOrder::FillFirst)
        stroke(scene, context, shape, path, opacity);
}

bool paintsOnce(const Style& style) {
    return style.fill.kind == Paint::Kind::None || style.stroke.kind == Paint::Kind::None ||
           style.strokeWidth.value == 0;
}

} // namespace svg
