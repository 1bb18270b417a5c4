// FilterEffects.cpp: what the primitives of a filter come to.

#include "FilterEffects.h"

#include "Scanner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>

namespace svg {

namespace {

using Kind = FilterLayer::Kind;
using Layers = std::vector<FilterLayer>;
using Result = std::optional<Layers>;

double numberOf(Element element, const char* attribute, double otherwise) {
    const auto text = element.attribute(attribute);
    Scanner scanner(text ? *text : std::string_view());
    return scanner.number().value_or(otherwise);
}

// The deviation of a blur that is the same both ways.
std::optional<double> deviationOf(Element element, double otherwise) {
    const auto text = element.attribute("stdDeviation");
    if (!text)
        return otherwise;
    Scanner scanner(*text);
    const auto x = scanner.nextNumber();
    const auto y = x ? scanner.nextNumber() : std::nullopt;
    return x && *x >= 0 && (!y || *y == *x) ? x : std::nullopt;
}

Layers over(Layers below, const Layers& above) {
    below.insert(below.end(), above.begin(), above.end());
    return below;
}

// Applies `change` to a picture of one colour, the only kind whose colours can be changed here.
template <typename Change>
Result recoloured(Layers layers, const Change& change) {
    if (layers.size() != 1 || layers[0].kind != Kind::Silhouette)
        return std::nullopt;
    change(layers[0].color);
    return layers;
}

class FilterReader {
public:
    FilterReader(const Scene& scene, const Occurrence& filter, const std::optional<Color>& only)
        : scene_(scene), filter_(filter), only_(only) {}

    Result read() {
        for (Element child = filter_.element.firstChild(); child; child = child.nextSibling()) {
            const Result result = readPrimitive(child);
            if (!result)
                return std::nullopt;
            last_ = *result;
            if (const auto name = child.attribute("result"))
                named_[*name] = last_;
        }
        return last_;
    }

private:
    Result readPrimitive(Element element) {
        const struct {
            std::string_view name;
            Result (FilterReader::*read)(Element);
        } rows[] = {
            {"feBlend", &FilterReader::readBlend},
            {"feColorMatrix", &FilterReader::readColorMatrix},
            {"feComponentTransfer", &FilterReader::readTransfer},
            {"feComposite", &FilterReader::readComposite},
            {"feDropShadow", &FilterReader::readDropShadow},
            {"feFlood", &FilterReader::readFlood},
            {"feGaussianBlur", &FilterReader::readBlur},
            {"feMerge", &FilterReader::readMerge},
            {"feOffset", &FilterReader::readOffset},
        };
        for (const auto& [name, read] : rows)
            if (element.is(name))
                return (this->*read)(element);
        return std::nullopt;
    }

    // What stands for nothing said is the result before, or the element itself.
    Result input(Element element, const char* attribute = "in") const {
        const std::string name = element.attribute(attribute).value_or(std::string());
        if (name == "SourceGraphic")
            return kSource;
        if (name == "SourceAlpha")
            return Layers{{.kind = Kind::Silhouette}};
        const auto found = named_.find(name);
        if (found != named_.end())
            return found->second;
        return name.empty() ? Result(last_) : std::nullopt;
    }

    static Layers moved(Layers layers, double x, double y) {
        for (FilterLayer& layer : layers) {
            layer.offsetX += x;
            layer.offsetY += y;
        }
        return layers;
    }

    Result blurred(Result layers, double deviation) const {
        if (!layers || deviation == 0)
            return layers;
        for (FilterLayer& layer : *layers) {
            if (layer.kind == Kind::Element && !only_)
                return std::nullopt;
            if (layer.kind == Kind::Element) {
                layer.kind = Kind::Silhouette;
                layer.color = {only_->red, only_->green, only_->blue, 1};
            }
            layer.deviation = std::hypot(layer.deviation, deviation);
        }
        return layers;
    }

    Color floodOf(Element element) const {
        const Style style = occurIn(scene_, filter_, element, {}).style;
        Color color = style.resolve(style.floodColor);
        color.alpha *= style.floodOpacity;
        return color;
    }

    // ---- One function for each primitive.

    Result readBlur(Element element) {
        const auto deviation = deviationOf(element, 0);
        return deviation ? blurred(input(element), *deviation) : std::nullopt;
    }

    Result readOffset(Element element) {
        const Result layers = input(element);
        if (!layers)
            return std::nullopt;
        return moved(*layers, numberOf(element, "dx", 0), numberOf(element, "dy", 0));
    }

    Result readFlood(Element element) {
        return Layers{{.kind = Kind::Flood, .color = floodOf(element)}};
    }

    Result readMerge(Element element) {
        Layers layers;
        for (Element node = element.firstChild(); node; node = node.nextSibling()) {
            const Result below = node.is("feMergeNode") ? input(node) : Layers();
            if (!below)
                return std::nullopt;
            layers = over(std::move(layers), *below);
        }
        return layers;
    }

    Result readBlend(Element element) {
        const Result above = input(element), below = input(element, "in2");
        const std::string mode = element.attribute("mode").value_or("normal");
        return above && below && mode == "normal" ? Result(over(*below, *above)) : std::nullopt;
    }

    // "in" gives a silhouette another colour.
    Result readComposite(Element element) {
        const Result first = input(element), second = input(element, "in2");
        const std::string how = element.attribute("operator").value_or("over");
        if (!first || !second)
            return std::nullopt;
        if (how == "over")
            return over(*second, *first);
        if (how != "in" || first->size() != 1 || first->front().kind != Kind::Flood)
            return std::nullopt;
        return recoloured(*second, [&](Color& color) {
            const double alpha = color.alpha;
            color = first->front().color;
            color.alpha *= alpha;
        });
    }

    // A matrix that makes one colour of one colour, and no opacity where there was none.
    Result readColorMatrix(Element element) {
        const Result layers = input(element);
        const std::string text = element.attribute("values").value_or(std::string());
        Scanner scanner(text);
        std::array<double, 20> m{};
        for (double& value : m) {
            const auto number = scanner.nextNumber();
            if (!number)
                return std::nullopt;
            value = *number;
        }
        const bool isMatrix = element.attribute("type").value_or("matrix") == "matrix";
        const bool readsAlphaAlone = m[15] == 0 && m[16] == 0 && m[17] == 0 && m[19] == 0;
        const bool ignoresAlpha = m[3] == 0 && m[8] == 0 && m[13] == 0;
        if (!layers || !isMatrix || !readsAlphaAlone || !ignoresAlpha)
            return std::nullopt;
        return recoloured(*layers, [&](Color& color) {
            const auto row = [&, from = color](std::size_t i) {
                return std::clamp(m[i] * from.red + m[i + 1] * from.green + m[i + 2] * from.blue +
                                      m[i + 4],
                                  0.0, 1.0);
            };
            color = {row(0), row(5), row(10), std::clamp(color.alpha * m[18], 0.0, 1.0)};
        });
    }

    // A slope of the opacity alone.
    Result readTransfer(Element element) {
        const Result layers = input(element);
        const Element alpha = element.firstChild();
        const bool isSlope = alpha && alpha.is("feFuncA") && !alpha.nextSibling() &&
                             alpha.attribute("type") == "linear" &&
                             numberOf(alpha, "intercept", 0) == 0;
        if (!layers || !isSlope)
            return std::nullopt;
        return recoloured(*layers, [&](Color& color) {
            color.alpha = std::clamp(color.alpha * numberOf(alpha, "slope", 1), 0.0, 1.0);
        });
    }

    Result readDropShadow(Element element) {
        const Result layers = input(element);
        const auto deviation = deviationOf(element, 2);
        if (!layers || layers->size() != 1 || !deviation)
            return std::nullopt;
        FilterLayer shadow = layers->front();
        shadow.kind = Kind::Silhouette;
        shadow.color = floodOf(element);
        const Result below = blurred(
            moved({shadow}, numberOf(element, "dx", 2), numberOf(element, "dy", 2)), *deviation);
        return below ? Result(over(*below, *layers)) : std::nullopt;
    }

    inline static const Layers kSource = {FilterLayer()};

    const Scene& scene_;
    const Occurrence& filter_;
    const std::optional<Color>& only_;
    Layers last_ = kSource;
    std::map<std::string, Layers> named_;
};

} // namespace

Result readFilter(const Scene& scene, const Occurrence& filter, const std::optional<Color>& only) {
    return FilterReader(scene, filter, only).read();
}

} // namespace svg
