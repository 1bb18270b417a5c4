// PaintServer.cpp: what gradients and patterns come to as long as they are not drawn as such.

#include "PaintServer.h"

#include <algorithm>
#include <vector>

namespace svg {

namespace {

// A place along a gradient, from 0 to 1, and the colour there.
struct Stop {
    double offset = 0;
    Color color;
};

bool isGradient(Element element) {
    return element.is("linearGradient") || element.is("radialGradient");
}

bool hasStops(Element gradient) {
    for (Element child = gradient.firstChild(); child; child = child.nextSibling())
        if (child.is("stop"))
            return true;
    return false;
}

// The gradient that the stops are taken from: this one, or the first that has any on the way along
// its links.
Element findStops(const Document& document, Element gradient) {
    constexpr int longestChain = 32; // Ends a ring of links.
    for (int i = 0; i < longestChain && isGradient(gradient); ++i) {
        if (hasStops(gradient))
            return gradient;
        const auto id = gradient.linkedId();
        gradient = id ? document.find(*id) : Element();
    }
    return Element();
}

// Stops have styles of their own: class, style attribute and currentColor count.
Stop readStop(const Scene& scene, const Occurrence& gradient, Element element) {
    const Occurrence occurrence = occurIn(scene, gradient, element, {});
    const auto offset = parseLength(element.attribute("offset").value_or(std::string()));
    const double value = offset ? offset->value : 0;
    Stop stop;
    stop.offset = std::clamp(offset && offset->unit == Unit::Percent ? value / 100 : value, 0., 1.);
    stop.color = occurrence.style.resolve(occurrence.style.stopColor);
    stop.color.alpha *= occurrence.style.stopOpacity;
    return stop;
}

// Offsets never go back: one that would is moved up to the one before it.
std::vector<Stop> readStops(const Scene& scene, Element element) {
    const Occurrence gradient = occurInPlace(scene, element);
    std::vector<Stop> stops;
    for (Element child = element.firstChild(); child; child = child.nextSibling()) {
        if (!child.is("stop"))
            continue;
        Stop stop = readStop(scene, gradient, child);
        if (!stops.empty())
            stop.offset = std::max(stop.offset, stops.back().offset);
        stops.push_back(stop);
    }
    return stops;
}

// Adds a colour to a sum of premultiplied ones.
void accumulate(Color& sum, const Color& color, double weight) {
    sum.red += color.red * color.alpha * weight;
    sum.green += color.green * color.alpha * weight;
    sum.blue += color.blue * color.alpha * weight;
    sum.alpha += color.alpha * weight;
}

// How much of a gradient lies between two offsets: for a linear one that is a share of its length,
// for a radial one of its disc's area.
double share(Element gradient, double from, double to) {
    return gradient.is("radialGradient") ? to * to - from * from : to - from;
}

// The mean over the whole gradient: every stop reaches half-way to its neighbours, the outer ones
// to the ends.
Color average(Element gradient, const std::vector<Stop>& stops) {
    Color sum = {0, 0, 0, 0};
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const double from = i == 0 ? 0 : (stops[i - 1].offset + stops[i].offset) / 2;
        const double to = i + 1 == stops.size() ? 1 : (stops[i].offset + stops[i + 1].offset) / 2;
        accumulate(sum, stops[i].color, share(gradient, from, to));
    }
    if (sum.alpha > 0) {
        sum.red /= sum.alpha;
        sum.green /= sum.alpha;
        sum.blue /= sum.alpha;
    }
    return sum;
}

} // namespace

std::optional<Color> colorOfServer(Scene& scene, const Style& style, const Paint& paint) {
    const Element server = scene.document.find(paint.serverId);
    const auto fallback =
        paint.hasFallback ? std::optional(style.resolve(paint.color)) : std::nullopt;
    if (!isGradient(server) && !server.is("pattern"))
        return fallback; // Points at nothing that paints: the standard asks for just that.
    if (fallback || server.is("pattern")) {
        scene.report.cannotDraw(server.name(), fallback ? "its fallback colour is used"
                                                        : "what it would paint is left out");
        return fallback;
    }
    const Element source = findStops(scene.document, server);
    const auto stops = source ? readStops(scene, source) : std::vector<Stop>();
    if (stops.empty())
        return std::nullopt;
    if (stops.size() == 1)
        return stops.front().color; // One stop is a plain colour.
    scene.report.cannotDraw(server.name(), "the average of its colours is used");
    return average(server, stops);
}

} // namespace svg
