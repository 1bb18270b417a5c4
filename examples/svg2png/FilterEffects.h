// FilterEffects.h: what the primitives of a filter come to.
#pragma once

#include "Occurrence.h"

#include <optional>
#include <vector>

namespace svg {

// One of the pictures that a filter lays over each other.
struct FilterLayer {
    enum class Kind {
        Element,    // What the filter is applied to, as it is.
        Silhouette, // The same in one colour, and blurred.
        Flood       // That colour everywhere.
    };
    Kind kind = Kind::Element;
    Color color;
    double offsetX = 0, offsetY = 0; // In user units.
    double deviation = 0;            // The blur's, in user units.
};

// The layers from bottom to top; nothing for a filter that comes to anything else. `only` is the
// colour of all that the element paints, if it is one.
std::optional<std::vector<FilterLayer>> readFilter(const Scene& scene, const Occurrence& filter,
                                                   const std::optional<Color>& only);

} // namespace svg
