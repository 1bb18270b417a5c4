// Length.cpp: a number with its unit, and what it comes to in user units.

#include "Length.h"

#include <cmath>
#include <iterator>

namespace svg {

namespace {

// A unit of CSS. The table is indexed by Unit.
struct UnitRow {
    std::string_view name;
    Unit unit;
    double pixels; // In one of the unit; 0 where that depends on where it stands.
};

constexpr UnitRow kUnits[] = {
    {"", Unit::None, 1},
    {"%", Unit::Percent, 0},
    {"em", Unit::Em, 0},
    {"ex", Unit::Ex, 0},
    {"px", Unit::Pixel, 1},
    {"pt", Unit::Point, 96.0 / 72},
    {"pc", Unit::Pica, 16},
    {"mm", Unit::Millimetre, 96 / 25.4},
    {"cm", Unit::Centimetre, 96 / 2.54},
    {"in", Unit::Inch, 96},
};
static_assert(std::size(kUnits) == std::size_t(Unit::Inch) + 1 &&
              kUnits[std::size_t(Unit::Inch)].unit == Unit::Inch);

} // namespace

double Viewport::extent(Axis axis) const {
    switch (axis) {
    case Axis::X:
        return width;
    case Axis::Y:
        return height;
    case Axis::Diagonal:
        break;
    }
    return std::hypot(width, height) / std::sqrt(2.0);
}

double Length::resolve(Axis axis, const Viewport& viewport, double fontSize) const {
    switch (unit) {
    case Unit::Percent:
        return value / 100 * viewport.extent(axis);
    case Unit::Em:
        return value * fontSize;
    case Unit::Ex:
        return value * fontSize / 2; // No font is at hand: half an em is what CSS falls back to.
    default:
        return value * kUnits[std::size_t(unit)].pixels;
    }
}

std::optional<Length> scanLength(Scanner& scanner) {
    const auto value = scanner.number();
    if (!value)
        return std::nullopt;
    const std::string_view name = scanner.accept('%') ? "%" : scanner.name();
    for (const UnitRow& row : kUnits)
        if (equalsIgnoringCase(name, row.name))
            return Length{*value, row.unit};
    return std::nullopt;
}

std::optional<Length> parseLength(std::string_view text) {
    Scanner scanner(trimmed(text));
    const auto length = scanLength(scanner);
    return scanner.atEnd() ? length : std::nullopt;
}

} // namespace svg
