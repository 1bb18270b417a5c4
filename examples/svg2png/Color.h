// Color.h: colours as CSS writes them.
#pragma once

#include <optional>
#include <string_view>

namespace svg {

// Components from 0 to 1, not multiplied by alpha.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const Color&) const = default;
};

// A colour by name, #rgb, #rgba, #rrggbb, #rrggbbaa, rgb(), rgba(), hsl() or hsla(); nothing for
// anything else, "currentColor" among it. What follows a colour (an ICC colour) is not looked at.
std::optional<Color> parseColor(std::string_view text);

} // namespace svg
