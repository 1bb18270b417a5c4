// Length.h: a number with its unit, and what it comes to in user units.
#pragma once

#include "Scanner.h"

#include <optional>
#include <string_view>

namespace svg {

enum class Unit { None, Percent, Em, Ex, Pixel, Point, Pica, Millimetre, Centimetre, Inch };

// What a percentage is a part of: the viewport's width, its height, or its normalised diagonal.
enum class Axis { X, Y, Diagonal };

// The size of the coordinate system that percentages refer to, in user units.
struct Viewport {
    double width = 0;
    double height = 0;

    double extent(Axis axis) const;
};

struct Length {
    double value = 0;
    Unit unit = Unit::None;

    // In user units, at 96 to the inch.
    double resolve(Axis axis, const Viewport& viewport, double fontSize) const;
};

// A length at the scanner; nothing for a bad number or an unknown unit.
std::optional<Length> scanLength(Scanner& scanner);
// A text that is one length and nothing else.
std::optional<Length> parseLength(std::string_view text);

} // namespace svg
