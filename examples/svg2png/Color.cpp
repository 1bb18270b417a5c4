// Color.cpp: colours as CSS writes them.

#include "Color.h"

#include "ColorNames.h"
#include "Scanner.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace svg {

namespace {

Color fromBytes(unsigned red, unsigned green, unsigned blue, unsigned alpha = 255) {
    return {red / 255.0, green / 255.0, blue / 255.0, alpha / 255.0};
}

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return unsigned(c - '0');
    if (c >= 'a' && c <= 'f')
        return unsigned(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return unsigned(c - 'A' + 10);
    return std::nullopt;
}

// Three or four digits stand for doubled ones: #f80 is #ff8800.
std::optional<Color> parseHex(std::string_view digits) {
    if (digits.size() != 3 && digits.size() != 4 && digits.size() != 6 && digits.size() != 8)
        return std::nullopt;
    const std::size_t width = digits.size() < 6 ? 1 : 2;
    std::array<unsigned, 4> bytes = {0, 0, 0, 255};
    for (std::size_t i = 0; i * width < digits.size(); ++i) {
        const auto high = hexDigit(digits[i * width]);
        const auto low = hexDigit(digits[i * width + width - 1]);
        if (!high || !low)
            return std::nullopt;
        bytes[i] = *high * 16 + *low;
    }
    return fromBytes(bytes[0], bytes[1], bytes[2], bytes[3]);
}

// Names are matched in any case. The list is searched from the start: few documents name many.
std::optional<Color> findNamed(std::string_view name) {
    if (equalsIgnoringCase(name, "transparent"))
        return Color{0, 0, 0, 0};
    for (const NamedColor& named : kNamedColors)
        if (equalsIgnoringCase(name, named.name))
            return fromBytes(named.rgb >> 16, (named.rgb >> 8) & 0xFF, named.rgb & 0xFF);
    return std::nullopt;
}

// The arguments of a colour function, each with whether it was a percentage.
struct Argument {
    double value = 0;
    bool isPercentage = false;

    // As a part of 1, when `whole` is the plain number that stands for it.
    double part(double whole) const {
        return std::clamp(value / (isPercentage ? 100 : whole), 0.0, 1.0);
    }
};

struct Arguments {
    std::array<Argument, 4> items = {Argument{}, Argument{}, Argument{}, Argument{1, false}};
    std::size_t count = 0;
};

// Both forms of CSS: "1, 2, 3, 0.5" and "1 2 3 / 0.5".
std::optional<Arguments> parseArguments(std::string_view text) {
    Scanner scanner(trimmed(text));
    Arguments arguments;
    while (!scanner.atEnd()) {
        const auto value = scanner.number();
        if (!value || arguments.count == 4)
            return std::nullopt;
        const bool isPercentage = scanner.accept('%');
        if (!isPercentage)
            scanner.name(); // The "deg" of a hue.
        arguments.items[arguments.count++] = {*value, isPercentage};
        scanner.skipSeparator();
        if (scanner.accept('/'))
            scanner.skipSpace();
    }
    if (arguments.count < 3)
        return std::nullopt;
    return arguments;
}

// Hue in degrees, saturation and lightness as parts, by the formula of CSS Color 4, section 7.1.
Color fromHsl(double hue, double saturation, double lightness, double alpha) {
    const double chroma = saturation * std::min(lightness, 1 - lightness);
    const auto channel = [&](double n) {
        double k = std::fmod(n + hue / 30, 12);
        k = k < 0 ? k + 12 : k;
        return lightness - chroma * std::clamp(std::min(k - 3, 9 - k), -1.0, 1.0);
    };
    return {channel(0), channel(8), channel(4), alpha};
}

// What is out of range is brought back into it.
std::optional<Color> parseFunction(std::string_view name, std::string_view text) {
    const auto arguments = parseArguments(text);
    if (!arguments)
        return std::nullopt;
    const auto& [a, b, c, alpha] = arguments->items;
    if (equalsIgnoringCase(name, "rgb") || equalsIgnoringCase(name, "rgba"))
        return Color{a.part(255), b.part(255), c.part(255), alpha.part(1)};
    if (equalsIgnoringCase(name, "hsl") || equalsIgnoringCase(name, "hsla"))
        return fromHsl(a.value, b.part(100), c.part(100), alpha.part(1));
    return std::nullopt;
}

} // namespace

std::optional<Color> parseColor(std::string_view text) {
    Scanner scanner(trimmed(text));
    if (scanner.accept('#'))
        return parseHex(scanner.name());
    const std::string_view name = scanner.name();
    if (!scanner.accept('('))
        return findNamed(name);
    const auto arguments = scanner.until(')');
    return arguments ? parseFunction(name, *arguments) : std::nullopt;
}

} // namespace svg
