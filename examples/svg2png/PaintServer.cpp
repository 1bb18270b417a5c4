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

bool isPattern(Element element) {
    return element.is("pattern");
}

// A server and those of its kind that it is linked to, whose attributes and content stand in for
// what it lacks.
using Chain = std::vector<Element>;

Chain chainOf(const Document& document, Element server, bool (*isOfKind)(Element)) {
    constexpr std::size_t longestChain = 32; // Ends a ring of links.
    Chain chain;
    while (isOfKind(server) && chain.size() < longestChain) {
        chain.push_back(server);
        const auto id = server.linkedId();
        server = id ? document.find(*id) : Element();
    }
    return chain;
}

std::optional<std::string> findAttribute(const Chain& chain, const char* attribute) {
    for (const Element element : chain)
        if (auto value = element.attribute(attribute))
            return value;
    return std::nullopt;
}

// A length in user units, or in parts of the bounding box.
std::optional<double> findLength(const Chain& chain, const char* attribute, Axis axis,
                                 const Occurrence& shape, Units units) {
    const auto text = findAttribute(chain, attribute);
    const auto parsed = text ? parseLength(*text) : std::nullopt;
    if (!parsed)
        return std::nullopt;
    const Viewport whole = units == Units::BoundingBox ? Viewport{1, 1} : shape.viewport;
    return parsed->resolve(axis, whole, shape.style.emSize());
}

Units findUnits(const Chain& chain, const char* attribute, Units otherwise) {
    for (const Element element : chain)
        if (element.attribute(attribute))
            return unitsOf(element, attribute, otherwise);
    return otherwise;
}

// ---- Gradients.

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
std::vector<GradientStop> findStops(const Scene& scene, const Chain& chain) {
    const auto source = std::find_if(chain.begin(), chain.end(), hasStops);
    return source == chain.end() ? std::vector<GradientStop>() : readStops(scene, *source);
}

// The geometry that a chain of gradients describes for one shape.
class GradientReader {
public:
    GradientReader(const Chain& chain, const Occurrence& shape, CGRect box)
        : chain_(chain), shape_(shape), box_(box),
          units_(findUnits(chain, "gradientUnits", Units::BoundingBox)) {}

    // Nothing where a gradient in parts of the shape's box meets a box without an area.
    bool isUsable() const { return !isInBox() || !CGRectIsEmpty(box_); }

    void read(Gradient& gradient) const {
        gradient.isRadial = chain_.front().is("radialGradient");
        if (gradient.isRadial)
            readCircles(gradient);
        else
            readLine(gradient);
        const std::string spread = findAttribute(chain_, "spreadMethod").value_or(std::string());
        gradient.spread = spread == "reflect"  ? Spread::Reflect
                          : spread == "repeat" ? Spread::Repeat
                                               : Spread::Pad;
        const auto own =
            parseTransform(findAttribute(chain_, "gradientTransform").value_or(std::string()));
        gradient.toUserSpace = own.value_or(CGAffineTransformIdentity);
        if (isInBox())
            gradient.toUserSpace =
                CGAffineTransformConcat(gradient.toUserSpace, boxToUserSpace(box_));
    }

private:
    bool isInBox() const { return units_ == Units::BoundingBox; }
    std::optional<double> length(const char* attribute, Axis axis) const {
        return findLength(chain_, attribute, axis, shape_, units_);
    }
    double part(double share, Axis axis) const {
        return isInBox() ? share : share * shape_.viewport.extent(axis);
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

    const Chain& chain_;
    const Occurrence& shape_;
    CGRect box_;
    Units units_;
};

// Whether the gradient has no room between its start and its end.
bool isPoint(const Gradient& gradient) {
    return gradient.isRadial ? gradient.endRadius == 0
                             : CGPointEqualToPoint(gradient.start, gradient.end);
}

PaintSource readGradient(Scene& scene, const Occurrence& shape, Element server, CGPathRef outline) {
    const Chain chain = chainOf(scene.document, server, isGradient);
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

// ---- Patterns.

// The content is that of the first in the chain that has any.
Element contentOf(const Chain& chain) {
    for (const Element element : chain)
        if (element.firstChild())
            return element;
    return Element();
}

// The tile's place in user space; empty for one that is not to be painted.
CGRect tileOf(const Chain& chain, const Occurrence& shape, CGRect box) {
    const Units units = findUnits(chain, "patternUnits", Units::BoundingBox);
    const auto get = [&](const char* name, Axis axis) {
        return findLength(chain, name, axis, shape, units).value_or(0);
    };
    const CGRect tile =
        toRect(get("x", Axis::X), get("y", Axis::Y), get("width", Axis::X), get("height", Axis::Y));
    if (!(tile.size.width > 0 && tile.size.height > 0))
        return CGRectZero;
    return units == Units::BoundingBox ? CGRectApplyAffineTransform(tile, boxToUserSpace(box))
                                       : tile;
}

PaintSource readPattern(Scene& scene, const Occurrence& shape, Element server, CGPathRef outline) {
    const Chain chain = chainOf(scene.document, server, isPattern);
    const Element content = contentOf(chain);
    if (!content)
        return {};
    const CGRect box = CGPathGetPathBoundingBox(outline);
    PatternTile tile = {&scene, occurFor(scene, shape, content), tileOf(chain, shape, box),
                        CGAffineTransformIdentity, CGAffineTransformIdentity};
    if (CGRectIsEmpty(tile.bounds))
        return {};
    const auto viewBox = parseViewBox(findAttribute(chain, "viewBox").value_or(std::string()));
    if (viewBox) {
        const auto ratio = findAttribute(chain, "preserveAspectRatio");
        tile.contentToTile = fitViewBox(*viewBox, parseAspectRatio(ratio.value_or(std::string())),
                                        tile.bounds.size.width, tile.bounds.size.height);
        tile.content.viewport = {viewBox->width, viewBox->height};
    } else if (findUnits(chain, "patternContentUnits", Units::UserSpace) == Units::BoundingBox) {
        tile.contentToTile = CGAffineTransformMakeScale(box.size.width, box.size.height);
        tile.content.viewport = {1, 1};
    }
    // Tiles have their origins at their corners, as browsers have it.
    tile.contentToTile = CGAffineTransformConcat(
        tile.contentToTile,
        CGAffineTransformMakeTranslation(tile.bounds.origin.x, tile.bounds.origin.y));
    const auto own =
        parseTransform(findAttribute(chain, "patternTransform").value_or(std::string()));
    tile.toUserSpace = own.value_or(CGAffineTransformIdentity);
    return tile;
}

} // namespace

PaintSource paintSourceOf(Scene& scene, const Occurrence& shape, const Paint& paint,
                          CGPathRef outline) {
    if (paint.kind == Paint::Kind::None)
        return {};
    if (paint.kind == Paint::Kind::Color)
        return shape.style.resolve(paint.color);
    const Element server = scene.document.find(paint.serverId);
    PaintSource source;
    if (isGradient(server))
        source = readGradient(scene, shape, server, outline);
    // One that would have to be painted with itself is as good as none.
    else if (isPattern(server) && std::ranges::find(scene.inUse, server) == scene.inUse.end())
        source = readPattern(scene, shape, server, outline);
    if (std::holds_alternative<std::monostate>(source) && paint.hasFallback)
        return shape.style.resolve(paint.color);
    return source;
}

} // namespace svg
