// Geometry.cpp: transform lists, view boxes, and doubles on their way into the drawing interface.

#include "Geometry.h"

#include "Scanner.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <numbers>

namespace svg {

namespace {

// matrix() has the most of all.
constexpr std::size_t kMostArguments = 6;

struct Arguments {
    std::array<double, kMostArguments> values = {};
    std::size_t count = 0;

    double operator[](std::size_t index) const { return values[index]; }
};

CGAffineTransform makeTransform(double a, double b, double c, double d, double tx, double ty) {
    return CGAffineTransformMake(toCoordinate(a), toCoordinate(b), toCoordinate(c), toCoordinate(d),
                                 toCoordinate(tx), toCoordinate(ty));
}

double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

CGAffineTransform rotation(const Arguments& a) {
    const double sine = std::sin(radians(a[0]));
    const double cosine = std::cos(radians(a[0]));
    // About (x, y): move it to the origin, turn, move it back.
    const double x = a[1], y = a[2];
    return makeTransform(cosine, sine, -sine, cosine, x - cosine * x + sine * y,
                         y - sine * x - cosine * y);
}

// One function of a transform list; nothing for an unknown name or a wrong number of arguments.
std::optional<CGAffineTransform> makeFunction(std::string_view name, const Arguments& a) {
    const auto has = [&](std::size_t least, std::size_t most) {
        return a.count == least || a.count == most;
    };
    if (name == "matrix" && has(6, 6))
        return makeTransform(a[0], a[1], a[2], a[3], a[4], a[5]);
    if (name == "translate" && has(1, 2))
        return makeTransform(1, 0, 0, 1, a[0], a[1]);
    if (name == "scale" && has(1, 2))
        return makeTransform(a[0], 0, 0, a.count == 1 ? a[0] : a[1], 0, 0);
    if (name == "rotate" && has(1, 3))
        return rotation(a);
    if (name == "skewX" && has(1, 1))
        return makeTransform(1, 0, std::tan(radians(a[0])), 1, 0, 0);
    if (name == "skewY" && has(1, 1))
        return makeTransform(1, std::tan(radians(a[0])), 0, 1, 0, 0);
    return std::nullopt;
}

// Numbers with white space or single commas between them, to the end of the text.
std::optional<Arguments> parseArguments(std::string_view text) {
    Scanner scanner(trimmed(text));
    Arguments arguments;
    while (!scanner.atEnd()) {
        const auto value = scanner.number();
        if (!value || arguments.count == kMostArguments)
            return std::nullopt;
        arguments.values[arguments.count++] = *value;
        scanner.skipSeparator();
    }
    return arguments;
}

std::optional<CGAffineTransform> scanFunction(Scanner& scanner) {
    const std::string_view name = scanner.name();
    scanner.skipSpace();
    if (!scanner.accept('('))
        return std::nullopt;
    const auto text = scanner.until(')');
    const auto arguments = text ? parseArguments(*text) : std::nullopt;
    return arguments ? makeFunction(name, *arguments) : std::nullopt;
}

// The three words for a side, as the share of free space before the picture.
std::optional<double> parseAlignment(std::string_view text) {
    return text == "Min"   ? std::optional(0.0)
           : text == "Mid" ? std::optional(0.5)
           : text == "Max" ? std::optional(1.0)
                           : std::nullopt;
}

} // namespace

CGFloat toCoordinate(double value) {
    return CGFloat(std::clamp(value, double(-FLT_MAX), double(FLT_MAX)));
}

CGPoint toPoint(double x, double y) {
    return CGPointMake(toCoordinate(x), toCoordinate(y));
}

CGRect toRect(double x, double y, double width, double height) {
    return CGRectMake(toCoordinate(x), toCoordinate(y), toCoordinate(width), toCoordinate(height));
}

std::optional<CGAffineTransform> parseTransform(std::string_view text) {
    Scanner scanner(trimmed(text));
    CGAffineTransform result = CGAffineTransformIdentity;
    if (scanner.rest() == "none")
        return result;
    while (!scanner.atEnd()) {
        const auto next = scanFunction(scanner);
        if (!next)
            return std::nullopt;
        result = CGAffineTransformConcat(*next, result);
        scanner.skipSeparator();
    }
    return result;
}

std::optional<ViewBox> parseViewBox(std::string_view text) {
    const auto numbers = parseArguments(text);
    if (!numbers || numbers->count != 4)
        return std::nullopt;
    const ViewBox box = {(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
    return box.width > 0 && box.height > 0 ? std::optional(box) : std::nullopt;
}

AspectRatio parseAspectRatio(std::string_view text) {
    Scanner scanner(trimmed(text));
    std::string_view align = scanner.name();
    if (align == "none")
        return {.fit = AspectRatio::Fit::Stretch};
    if (align.size() != 8 || align[0] != 'x' || align[4] != 'Y')
        return {};
    const auto alignX = parseAlignment(align.substr(1, 3));
    const auto alignY = parseAlignment(align.substr(5, 3));
    if (!alignX || !alignY)
        return {};
    scanner.skipSpace();
    const bool slices = scanner.name() == "slice";
    return {slices ? AspectRatio::Fit::Slice : AspectRatio::Fit::Meet, *alignX, *alignY};
}

CGAffineTransform fitViewBox(const ViewBox& box, AspectRatio ratio, double width, double height) {
    double scaleX = width / box.width;
    double scaleY = height / box.height;
    if (ratio.fit == AspectRatio::Fit::Meet)
        scaleX = scaleY = std::min(scaleX, scaleY);
    else if (ratio.fit == AspectRatio::Fit::Slice)
        scaleX = scaleY = std::max(scaleX, scaleY);
    return makeTransform(scaleX, 0, 0, scaleY,
                         (width - box.width * scaleX) * ratio.alignX - box.x * scaleX,
                         (height - box.height * scaleY) * ratio.alignY - box.y * scaleY);
}

} // namespace svg
