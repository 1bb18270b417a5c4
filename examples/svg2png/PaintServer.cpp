// PaintServer.cpp: what the fills and strokes of a document paint with.

#include "PaintServer.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace svg {

namespace {

bool isGradient(Element element) {
    return element.is("linearGradient") || element.is("radialGradient");
}

bool hasStops(Element gradient) {
    for (Element child = gradient.firstChild(); child; child = child.nextSibling())
        if (child.is("stop"))
            return true;
    return false;
}

// A gradient and those that it is linked to, whose stops and attributes stand in for what it lacks.
std::vector<Element> chainOf(const Document& document, Element gradient) {
    constexpr std::size_t longestChain = 32; // Ends a ring of links.
    std::vector<Element> chain;
    while (isGradient(gradient) && chain.size() < longestChain) {
        chain.push_back(gradient);
        const auto id = gradient.linkedId();
        gradient = id ? document.find(*id) : Element();
    }
    return chain;
}

// Stops have styles of their own: class, style attribute and currentColor count.
GradientStop readStop(const Scene& scene, const Occurrence& gradient, Element element) {
    const Occurrence occurrence = occurIn(scene, gradient, element, {});
    const auto offset = parseLength(element.attribute("offset").value_or(std::string()));
    const double value = offset ? offset->value : 0;
    GradientStop stop;
    stop.offset = std::clamp(offset && offset->unit == Unit::Percent ? value / 100 : value, 0., 1.);
    stop.color = occurrence.style.resolve(occurrence.style.stopColor);
    stop.color.alpha *= occurrence.style.stopOpacity;
    return stop;
}

// Offsets never go back: one that would is moved up to the one before it.
std::vector<GradientStop> readStops(const Scene& scene, Element element) {
    const Occurrence gradient = occurInPlace(scene, element);
    std::vector<GradientStop> stops;
    for (Element child = element.firstChild(); child; child = child.nextSibling()) {
        if (!child.is("stop"))
            continue;
        GradientStop stop = readStop(scene, gradient, child);
        if (!stops.empty())
            stop.offset = std::max(stop.offset, stops.back().offset);
        stops.push_back(stop);
    }
    return stops;
}

// The stops of the first in the chain that has any.
std::vector<GradientStop> findStops(const Scene& scene, const std::vector<Element>& chain) {
    const auto source = std::find_if(chain.begin(), chain.end(), hasStops);
    return source == chain.end() ? std::vector<GradientStop>() : readStops(scene, *source);
}

// The geometry that a chain of gradients describes for one shape.
class GradientReader {
public:
    GradientReader(const std::vector<Element>& chain, const Occurrence& shape, CGRect box)
        : chain_(chain), shape_(shape), box_(box),
          isInBox_(find("gradientUnits") != "userSpaceOnUse") {}

    // Nothing where a gradient in parts of the shape's box meets a box without an area.
    bool isUsable() const { return !isInBox_ || !CGRectIsEmpty(box_); }

    void read(Gradient& gradient) const {
        gradient.isRadial = chain_.front().is("radialGradient");
        if (gradient.isRadial)
            readCircles(gradient);
        else
            readLine(gradient);
        const std::string spread = find("spreadMethod").value_or(std::string());
        gradient.spread = spread == "reflect"  ? Spread::Reflect
                          : spread == "repeat" ? Spread::Repeat
                                               : Spread::Pad;
        const auto own = parseTransform(find("gradientTransform").value_or(std::string()));
        gradient.toUserSpace = own.value_or(CGAffineTransformIdentity);
        if (isInBox_)
            gradient.toUserSpace =
                CGAffineTransformConcat(gradient.toUserSpace, boxToUserSpace(box_));
    }

private:
    std::optional<std::string> find(const char* attribute) const {
        for (const Element element : chain_)
            if (auto value = element.attribute(attribute))
                return value;
        return std::nullopt;
    }

    std::optional<double> length(const char* attribute, Axis axis) const {
        const auto text = find(attribute);
        const auto parsed = text ? parseLength(*text) : std::nullopt;
        if (!parsed)
            return std::nullopt;
        const Viewport whole = isInBox_ ? Viewport{1, 1} : shape_.viewport;
        return parsed->resolve(axis, whole, shape_.style.emSize());
    }
    double part(double share, Axis axis) const {
        return isInBox_ ? share : share * shape_.viewport.extent(axis);
    }

    void readLine(Gradient& gradient) const {
        gradient.start =
            toPoint(length("x1", Axis::X).value_or(0), length("y1", Axis::Y).value_or(0));
        gradient.end = toPoint(length("x2", Axis::X).value_or(part(1, Axis::X)),
                               length("y2", Axis::Y).value_or(0));
    }

    void readCircles(Gradient& gradient) const {
        const double x = length("cx", Axis::X).value_or(part(0.5, Axis::X));
        const double y = length("cy", Axis::Y).value_or(part(0.5, Axis::Y));
        gradient.start =
            toPoint(length("fx", Axis::X).value_or(x), length("fy", Axis::Y).value_or(y));
        gradient.startRadius = toCoordinate(length("fr", Axis::Diagonal).value_or(0));
        gradient.end = toPoint(x, y);
        gradient.endRadius =
            toCoordinate(length("r", Axis::Diagonal).value_or(part(0.5, Axis::Diagonal)));
    }

    const std::vector<Element>& chain_;
    const Occurrence& shape_;
    CGRect box_;
    bool isInBox_;
};

// Whether the gradient has no room between its start and its end.
bool isPoint(const Gradient& gradient) {
    return gradient.isRadial ? gradient.endRadius == 0
                             : CGPointEqualToPoint(gradient.start, gradient.end);
}

PaintSource readGradient(Scene& scene, const Occurrence& shape, Element server, CGPathRef outline) {
    const std::vector<Element> chain = chainOf(scene.document, server);
    Gradient gradient;
    gradient.stops = findStops(scene, chain);
    if (gradient.stops.empty())
        return {};
    if (gradient.stops.size() == 1)
        return gradient.stops.front().color; // One stop is a plain colour.
    const GradientReader reader(chain, shape, CGPathGetPathBoundingBox(outline));
    if (!reader.isUsable())
        return {};
    reader.read(gradient);
    if (isPoint(gradient))
        return gradient.stops.back().color; // As the standard says.
    return gradient;
}

} // namespace

PaintSource paintSourceOf(Scene& scene, const Occurrence& shape, const Paint& paint,
                          CGPathRef outline) {
    if (paint.kind == Paint::Kind::None)
        return {};
    if (paint.kind == Paint::Kind::Color)
        return shape.style.resolve(paint.color);
    const Element server = scene.document.find(paint.serverId);
    if (isGradient(server))
        return readGradient(scene, shape, server, outline);
    if (server.is("pattern"))
        scene.report.cannotDraw(server.name(), paint.hasFallback
                                                   ? "its fallback colour is used"
                                                   : "what it would paint is left out");
    return paint.hasFallback ? PaintSource(shape.style.resolve(paint.color)) : PaintSource();
}

} // namespace svg
