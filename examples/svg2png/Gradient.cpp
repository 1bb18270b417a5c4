// Gradient.cpp: linear and radial gradients over whatever is clipped to.

#include "Gradient.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace svg {

namespace {

// More turns than that are narrower than what pixels show.
constexpr double kMostTurns = 1000;

void drawPadded(CGContextRef context, const Gradient& gradient, CGColorSpaceRef space) {
    std::vector<CGFloat> components, locations;
    for (const auto& [offset, color] : gradient.stops) {
        components.insert(components.end(), {CGFloat(color.red), CGFloat(color.green),
                                             CGFloat(color.blue), CGFloat(color.alpha)});
        locations.push_back(CGFloat(offset));
    }
    const GradientRef colors(CGGradientCreateWithColorComponents(
        space, components.data(), locations.data(), locations.size()));
    const auto options = CGGradientDrawingOptions(kCGGradientDrawsBeforeStartLocation |
                                                  kCGGradientDrawsAfterEndLocation);
    if (gradient.isRadial)
        CGContextDrawRadialGradient(context, colors.get(), gradient.start, gradient.startRadius,
                                    gradient.end, gradient.endRadius, options);
    else
        CGContextDrawLinearGradient(context, colors.get(), gradient.start, gradient.end, options);
}

// ---- Gradients that go on in turns

// The place between 0 and 1 that a place beyond them looks like.
double folded(Spread spread, double place) {
    if (spread == Spread::Repeat)
        return place - std::floor(place);
    const double intoTurn = place - 2 * std::floor(place / 2);
    return std::min(intoTurn, 2 - intoTurn);
}

Color colorAt(const Gradient& gradient, double place) {
    const auto& stops = gradient.stops;
    const double offset = folded(gradient.spread, place);
    const auto after = std::find_if(stops.begin(), stops.end(),
                                    [&](const GradientStop& stop) { return offset < stop.offset; });
    if (after == stops.begin())
        return stops.front().color;
    if (after == stops.end())
        return stops.back().color;
    const GradientStop& before = *std::prev(after);
    const double t = (offset - before.offset) / (after->offset - before.offset);
    const auto mix = [t](double from, double to) { return from + t * (to - from); };
    return {mix(before.color.red, after->color.red), mix(before.color.green, after->color.green),
            mix(before.color.blue, after->color.blue), mix(before.color.alpha, after->color.alpha)};
}

void evaluate(void* info, const CGFloat* in, CGFloat* out) {
    const Color color = colorAt(*static_cast<const Gradient*>(info), *in);
    out[0] = CGFloat(color.red);
    out[1] = CGFloat(color.green);
    out[2] = CGFloat(color.blue);
    out[3] = CGFloat(color.alpha);
}

// The places along a gradient that a drawing reaches: 0 is at the start, 1 at the end.
struct Reach {
    double first = 0;
    double last = 1;
};

Reach reachOfLine(const Gradient& gradient, const std::vector<CGPoint>& corners) {
    const double dx = gradient.end.x - gradient.start.x, dy = gradient.end.y - gradient.start.y;
    Reach reach;
    for (const CGPoint corner : corners) {
        const double place =
            ((corner.x - gradient.start.x) * dx + (corner.y - gradient.start.y) * dy) /
            (dx * dx + dy * dy);
        reach.first = std::min(reach.first, place);
        reach.last = std::max(reach.last, place);
    }
    return {std::max(reach.first, -kMostTurns), std::min(reach.last, kMostTurns)};
}

// Where circles grow: inwards to where they are a point, outwards until they hold all corners.
// Cones of circles side by side have no such end.
Reach reachOfCircles(const Gradient& gradient, const std::vector<CGPoint>& corners) {
    const double growth = double(gradient.endRadius) - gradient.startRadius;
    const double way =
        std::hypot(gradient.end.x - gradient.start.x, gradient.end.y - gradient.start.y);
    double farthest = 0;
    for (const CGPoint corner : corners)
        farthest = std::max<double>(
            farthest, std::hypot(corner.x - gradient.start.x, corner.y - gradient.start.y));
    const double inner = growth > 0 ? -gradient.startRadius / growth : -kMostTurns;
    const double outer = growth > way ? (farthest - gradient.startRadius) / (growth - way)
                         : growth < 0 ? gradient.startRadius / -growth
                                      : kMostTurns;
    return {std::max(inner, -kMostTurns), std::clamp(outer, 1., kMostTurns)};
}

// Where a gradient's circles, or the ends of its line, are at a place.
CGPoint centerAt(const Gradient& gradient, double place) {
    return {CGFloat(gradient.start.x + place * (gradient.end.x - gradient.start.x)),
            CGFloat(gradient.start.y + place * (gradient.end.y - gradient.start.y))};
}
CGFloat radiusAt(const Gradient& gradient, double place) {
    return std::max(CGFloat(0), CGFloat(gradient.startRadius +
                                        place * (gradient.endRadius - gradient.startRadius)));
}

void drawInTurns(CGContextRef context, const Gradient& gradient, CGColorSpaceRef space) {
    const CGRect box = CGContextGetClipBoundingBox(context);
    const CGFloat right = CGRectGetMaxX(box), top = CGRectGetMaxY(box);
    const std::vector<CGPoint> corners = {
        box.origin, {right, box.origin.y}, {box.origin.x, top}, {right, top}};
    const auto [first, last] =
        gradient.isRadial ? reachOfCircles(gradient, corners) : reachOfLine(gradient, corners);
    const CGFloat domain[] = {CGFloat(first), CGFloat(last)};
    const CGFunctionCallbacks callbacks = {0, evaluate, nullptr};
    const FunctionRef function(
        CGFunctionCreate(const_cast<Gradient*>(&gradient), 1, domain, 4, nullptr, &callbacks));
    const CGPoint start = centerAt(gradient, first), end = centerAt(gradient, last);
    const ShadingRef shading(
        gradient.isRadial
            ? CGShadingCreateRadial(space, start, radiusAt(gradient, first), end,
                                    radiusAt(gradient, last), function.get(), true, true)
            : CGShadingCreateAxial(space, start, end, function.get(), true, true));
    CGContextDrawShading(context, shading.get());
}

} // namespace

void drawGradient(CGContextRef context, const Gradient& gradient) {
    const SavedState saved(context);
    CGContextConcatCTM(context, gradient.toUserSpace);
    const ColorSpace space(CGColorSpaceCreateDeviceRGB());
    if (gradient.spread == Spread::Pad)
        drawPadded(context, gradient, space.get());
    else
        drawInTurns(context, gradient, space.get());
}

} // namespace svg
