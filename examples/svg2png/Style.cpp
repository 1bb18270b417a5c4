// Style.cpp: the properties that decide how an element is painted, worked out for one element.

#include "Style.h"

#include "Scanner.h"

#include <algorithm>
#include <array>
#include <utility>

namespace svg {

namespace {

// The values that a property spells out, in any mix of capital and small letters.
template <typename T, std::size_t N>
using Keywords = std::array<std::pair<std::string_view, T>, N>;

template <typename T, std::size_t N>
std::optional<T> findKeyword(const Keywords<T, N>& keywords, std::string_view text) {
    for (const auto& [name, value] : keywords)
        if (equalsIgnoringCase(name, text))
            return value;
    return std::nullopt;
}

std::optional<FillRule> parseFillRule(std::string_view text) {
    constexpr Keywords<FillRule, 2> keywords = {
        {{"nonzero", FillRule::NonZero}, {"evenodd", FillRule::EvenOdd}}};
    return findKeyword(keywords, text);
}

std::optional<LineCap> parseLineCap(std::string_view text) {
    constexpr Keywords<LineCap, 3> keywords = {
        {{"butt", LineCap::Butt}, {"round", LineCap::Round}, {"square", LineCap::Square}}};
    return findKeyword(keywords, text);
}

// The joins that SVG 2 added look like miters where they do not cut anything off.
std::optional<LineJoin> parseLineJoin(std::string_view text) {
    constexpr Keywords<LineJoin, 5> keywords = {{{"miter", LineJoin::Miter},
                                                 {"miter-clip", LineJoin::Miter},
                                                 {"arcs", LineJoin::Miter},
                                                 {"round", LineJoin::Round},
                                                 {"bevel", LineJoin::Bevel}}};
    return findKeyword(keywords, text);
}

// A bare number and nothing else.
std::optional<double> parseNumber(std::string_view text) {
    Scanner scanner(text);
    const auto value = scanner.number();
    return scanner.atEnd() ? value : std::nullopt;
}

// A number or a percentage, brought between 0 and 1.
std::optional<double> parseOpacity(std::string_view text) {
    const auto length = parseLength(text);
    if (!length || (length->unit != Unit::None && length->unit != Unit::Percent))
        return std::nullopt;
    return std::clamp(length->unit == Unit::Percent ? length->value / 100 : length->value, 0.0,
                      1.0);
}

// Below 1 no join could be sharp at all: the standard calls that a mistake.
std::optional<double> parseMiterLimit(std::string_view text) {
    const auto value = parseNumber(text);
    return value && *value >= 1 ? value : std::nullopt;
}

std::optional<Length> parseStrokeWidth(std::string_view text) {
    const auto length = parseLength(text);
    return length && length->value >= 0 ? length : std::nullopt;
}

// One negative length spoils the list, and the line stays as it was.
std::optional<std::vector<Length>> parseDashes(std::string_view text) {
    std::vector<Length> dashes;
    if (text == "none")
        return dashes;
    Scanner scanner(text);
    while (!scanner.atEnd()) {
        const auto length = scanLength(scanner);
        if (!length || length->value < 0)
            return std::nullopt;
        dashes.push_back(*length);
        scanner.skipSeparator();
    }
    return dashes;
}

std::optional<ColorValue> parseColorValue(std::string_view text) {
    if (equalsIgnoringCase(text, "currentColor"))
        return ColorValue{.isCurrentColor = true};
    const auto color = parseColor(text);
    return color ? std::optional(ColorValue{false, *color}) : std::nullopt;
}

// "url(#id)", quoted or not, gives "id"; what follows it stays in the scanner.
std::optional<std::string> scanReference(Scanner& scanner) {
    if (!scanner.rest().starts_with("url("))
        return std::nullopt;
    scanner.until('(');
    const auto inside = scanner.until(')');
    if (!inside)
        return std::nullopt;
    std::string_view link = trimmed(*inside);
    if (link.size() >= 2 && (link.front() == '"' || link.front() == '\'') &&
        link.back() == link.front())
        link = trimmed(link.substr(1, link.size() - 2));
    // Links into other documents lead nowhere.
    return link.starts_with('#') ? std::string(link.substr(1)) : std::string();
}

// "none" gives the empty string.
std::optional<std::string> parseReference(std::string_view text) {
    if (text == "none")
        return std::string();
    Scanner scanner(text);
    return scanReference(scanner);
}

// "none", a colour, or a reference with a fallback behind it.
std::optional<Paint> parsePaint(std::string_view text) {
    if (text == "none")
        return Paint{};
    Scanner scanner(text);
    const auto serverId = scanReference(scanner);
    scanner.skipSpace();
    if (!serverId) {
        const auto color = parseColorValue(text);
        return color ? std::optional(Paint{Paint::Kind::Color, *color, false, {}}) : std::nullopt;
    }
    Paint paint = {Paint::Kind::Server, {}, false, *serverId};
    if (scanner.rest() == "none") {
        paint.hasFallback = true;
        paint.color.color.alpha = 0;
    } else if (const auto color = parseColorValue(scanner.rest())) {
        paint.hasFallback = true;
        paint.color = *color;
    }
    return paint;
}

std::optional<PaintOrder> parsePaintOrder(std::string_view text) {
    const auto fill = text.find("fill"), stroke = text.find("stroke");
    // What is not named comes after what is.
    return stroke < fill ? PaintOrder::StrokeFirst : PaintOrder::FillFirst;
}

// The steps of the size keywords are those of CSS Fonts 4, for a medium of 16 pixels.
std::optional<Length> parseFontSize(std::string_view text) {
    constexpr Keywords<Length, 9> keywords = {{{"xx-small", {9, Unit::Pixel}},
                                               {"x-small", {10, Unit::Pixel}},
                                               {"small", {13, Unit::Pixel}},
                                               {"medium", {16, Unit::Pixel}},
                                               {"large", {18, Unit::Pixel}},
                                               {"x-large", {24, Unit::Pixel}},
                                               {"xx-large", {32, Unit::Pixel}},
                                               {"smaller", {1 / 1.2, Unit::Em}},
                                               {"larger", {1.2, Unit::Em}}}};
    const auto keyword = findKeyword(keywords, text);
    return keyword ? keyword : parseLength(text);
}

std::optional<std::string> parseFontFamily(std::string_view text) {
    return std::string(text);
}

// "bolder" and "lighter" are steps from a weight that this does not know: from the normal one.
std::optional<int> parseFontWeight(std::string_view text) {
    constexpr Keywords<int, 4> keywords = {
        {{"normal", 400}, {"bold", 700}, {"bolder", 700}, {"lighter", 300}}};
    if (const auto keyword = findKeyword(keywords, text))
        return keyword;
    const auto number = parseNumber(text);
    return number && *number >= 1 && *number <= 1000
               ? std::optional(int(std::clamp(*number, 100.0, 900.0)))
               : std::nullopt;
}

std::optional<bool> parseFontStyle(std::string_view text) {
    return text.starts_with("italic") || text.starts_with("oblique");
}

std::optional<TextAnchor> parseTextAnchor(std::string_view text) {
    constexpr Keywords<TextAnchor, 3> keywords = {
        {{"start", TextAnchor::Start}, {"middle", TextAnchor::Middle}, {"end", TextAnchor::End}}};
    return findKeyword(keywords, text);
}

std::optional<Length> parseSpacing(std::string_view text) {
    return text == "normal" ? Length() : parseLength(text);
}

std::optional<unsigned> parseTextDecoration(std::string_view text) {
    const auto has = [&](std::string_view word, unsigned line) {
        return text.find(word) != text.npos ? line : unsigned{kNoLines};
    };
    return has("underline", kUnderline) | has("overline", kOverline) |
           has("line-through", kLineThrough);
}

std::optional<bool> parseVisibility(std::string_view text) {
    return text == "visible";
}
std::optional<bool> parseDisplay(std::string_view text) {
    return text != "none";
}
std::optional<bool> parseOverflow(std::string_view text) {
    return text != "visible" && text != "auto";
}
std::optional<bool> parseIsolation(std::string_view text) {
    return text == "isolate";
}
std::optional<bool> parseVectorEffect(std::string_view text) {
    return text == "non-scaling-stroke";
}
std::optional<bool> parseImageRendering(std::string_view text) {
    return text != "optimizeSpeed" && text != "pixelated" && text != "crisp-edges";
}
std::optional<bool> parseMaskType(std::string_view text) {
    return text != "alpha";
}
std::optional<std::string> parseBlendMode(std::string_view text) {
    return text == "normal" ? std::string() : std::string(text);
}

// How one property finds its way into a style.
struct Property {
    std::string_view name;
    void (*apply)(Style& style, std::string_view value); // A value with a mistake changes nothing.
    void (*inherit)(Style& style, const Style& parent);
    void (*reset)(Style& style);
};

// A row of the table, for a member of Style and the parser of its values.
template <auto Member, auto Parse>
constexpr Property property(std::string_view name) {
    return {name,
            [](Style& style, std::string_view value) {
                if (auto parsed = Parse(value))
                    style.*Member = std::move(*parsed);
            },
            [](Style& style, const Style& parent) { style.*Member = parent.*Member; },
            [](Style& style) { style.*Member = Style().*Member; }};
}

// "marker" stands for its three kinds.
constexpr Property kMarkers = {
    "marker",
    [](Style& style, std::string_view value) {
        if (const auto id = parseReference(value))
            style.markerStartId = style.markerMidId = style.markerEndId = *id;
    },
    [](Style& style, const Style& parent) {
        style.markerStartId = parent.markerStartId;
        style.markerMidId = parent.markerMidId;
        style.markerEndId = parent.markerEndId;
    },
    [](Style& style) { style.markerStartId = style.markerMidId = style.markerEndId = {}; }};

// "font": words of style, variant and weight, then the size, perhaps with a line height, and the
// families. What is not said is set back.
void applyFont(Style& style, std::string_view text) {
    InheritedStyle font;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text = trimmed(text.substr(word.size()));
        const auto size = parseFontSize(word.substr(0, word.find('/')));
        const auto weight = parseFontWeight(word);
        if (weight && !text.empty()) {
            font.fontWeight = *weight;
        } else if (size) {
            style.fontSize = *size;
            style.fontWeight = font.fontWeight;
            style.isItalic = font.isItalic;
            style.fontFamily = text;
            return;
        } else if (*parseFontStyle(word)) {
            font.isItalic = true;
        }
    }
}

constexpr Property kFont = {"font", applyFont,
                            [](Style& style, const Style& parent) {
                                style.fontSize = parent.fontSize;
                                style.fontWeight = parent.fontWeight;
                                style.isItalic = parent.isItalic;
                                style.fontFamily = parent.fontFamily;
                            },
                            [](Style& style) { applyFont(style, "medium sans-serif"); }};

// Sorted by name for the binary search below. Properties that are not here change nothing that this
// program draws.
constexpr std::array kProperties = {
    property<&Style::clipPathId, parseReference>("clip-path"),
    property<&Style::clipRule, parseFillRule>("clip-rule"),
    property<&Style::color, parseColor>("color"),
    property<&Style::isDisplayed, parseDisplay>("display"),
    property<&Style::fill, parsePaint>("fill"),
    property<&Style::fillOpacity, parseOpacity>("fill-opacity"),
    property<&Style::fillRule, parseFillRule>("fill-rule"),
    property<&Style::filterId, parseReference>("filter"),
    property<&Style::floodColor, parseColorValue>("flood-color"),
    property<&Style::floodOpacity, parseOpacity>("flood-opacity"),
    kFont,
    property<&Style::fontFamily, parseFontFamily>("font-family"),
    property<&Style::fontSize, parseFontSize>("font-size"),
    property<&Style::isItalic, parseFontStyle>("font-style"),
    property<&Style::fontWeight, parseFontWeight>("font-weight"),
    property<&Style::isSmoothed, parseImageRendering>("image-rendering"),
    property<&Style::isIsolated, parseIsolation>("isolation"),
    property<&Style::letterSpacing, parseSpacing>("letter-spacing"),
    kMarkers,
    property<&Style::markerEndId, parseReference>("marker-end"),
    property<&Style::markerMidId, parseReference>("marker-mid"),
    property<&Style::markerStartId, parseReference>("marker-start"),
    property<&Style::maskId, parseReference>("mask"),
    property<&Style::masksByLuminance, parseMaskType>("mask-type"),
    property<&Style::blendMode, parseBlendMode>("mix-blend-mode"),
    property<&Style::opacity, parseOpacity>("opacity"),
    property<&Style::clipsOverflow, parseOverflow>("overflow"),
    property<&Style::paintOrder, parsePaintOrder>("paint-order"),
    property<&Style::stopColor, parseColorValue>("stop-color"),
    property<&Style::stopOpacity, parseOpacity>("stop-opacity"),
    property<&Style::stroke, parsePaint>("stroke"),
    property<&Style::dashes, parseDashes>("stroke-dasharray"),
    property<&Style::dashOffset, parseLength>("stroke-dashoffset"),
    property<&Style::lineCap, parseLineCap>("stroke-linecap"),
    property<&Style::lineJoin, parseLineJoin>("stroke-linejoin"),
    property<&Style::miterLimit, parseMiterLimit>("stroke-miterlimit"),
    property<&Style::strokeOpacity, parseOpacity>("stroke-opacity"),
    property<&Style::strokeWidth, parseStrokeWidth>("stroke-width"),
    property<&Style::textAnchor, parseTextAnchor>("text-anchor"),
    property<&Style::textLines, parseTextDecoration>("text-decoration"),
    property<&Style::hasFixedStrokeWidth, parseVectorEffect>("vector-effect"),
    property<&Style::isVisible, parseVisibility>("visibility"),
};
static_assert(std::ranges::is_sorted(kProperties, {}, &Property::name));

// Sets one property by name. The keywords that every property knows come first; for color, the
// current colour can only be the parent's.
void apply(Style& style, const Style& parent, std::string_view name, std::string_view value) {
    const auto found = std::ranges::lower_bound(kProperties, name, {}, &Property::name);
    if (found == kProperties.end() || found->name != name)
        return;
    value = trimmed(value);
    if (value == "inherit")
        found->inherit(style, parent);
    else if (value == "initial")
        found->reset(style);
    else if (!(name == "color" && equalsIgnoringCase(value, "currentColor")))
        found->apply(style, value);
    else
        found->inherit(style, parent);
}

// Any attribute may be a presentation attribute: the table knows which ones are.
void applyAttributes(Style& style, const Style& parent, Element element) {
    for (const xmlAttr* attribute = element.node()->properties; attribute;
         attribute = attribute->next) {
        const auto* name = reinterpret_cast<const char*>(attribute->name);
        if (attribute->ns)
            continue;
        if (const auto value = element.attribute(name))
            apply(style, parent, name, *value);
    }
}

// Children inherit what lengths came to, not how they were written.
void resolveFontLengths(Style& style, double parentFontSize) {
    const auto resolve = [](Length& length, double fontSize) {
        if (length.unit == Unit::Em || length.unit == Unit::Ex)
            length = {length.resolve(Axis::X, {}, fontSize), Unit::Pixel};
    };
    const Viewport percentBase = {parentFontSize, parentFontSize};
    style.fontSize = {style.fontSize.resolve(Axis::X, percentBase, parentFontSize), Unit::Pixel};
    resolve(style.strokeWidth, style.emSize());
    resolve(style.dashOffset, style.emSize());
    resolve(style.letterSpacing, style.emSize());
    for (Length& dash : style.dashes)
        resolve(dash, style.emSize());
}

} // namespace

Style computeStyle(const Document& document, Element element, const Style& parent) {
    Style style;
    static_cast<InheritedStyle&>(style) = parent;

    const auto sheets = document.styleSheet().declarationsFor(element);
    const auto own = parseDeclarations(element.attribute("style").value_or(std::string()));
    applyAttributes(style, parent, element);
    for (const bool important : {false, true}) {
        for (const Declaration* declaration : sheets)
            if (declaration->isImportant == important)
                apply(style, parent, declaration->property, declaration->value);
        for (const Declaration& declaration : own)
            if (declaration.isImportant == important)
                apply(style, parent, declaration.property, declaration.value);
    }
    resolveFontLengths(style, parent.emSize());
    return style;
}

} // namespace svg
