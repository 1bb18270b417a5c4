// StyleWords.cpp: weights and widths from the names of styles and from weight classes.

#include "Font/StyleWords.h"

#include <algorithm>
#include <array>

namespace fm {

namespace {

constexpr std::size_t kMostCharacters = 100;

struct WeightWord {
    std::string_view word;
    std::int32_t weight;
};

// In the order in which they are looked for: the first that is there counts.
constexpr std::array<WeightWord, 6> kWeightWords = {{
    {"Thin", -600},
    {"Light", -400},
    {"Book", 0},
    {"Medium", 230},
    {"Bold", 400},
    {"Black", 620},
}};

// For the classes 100 to 900.
constexpr std::array<std::int32_t, 9> kWeightOfHundreds = {-800, -600, -400, 0,  230,
                                                           300,  400,  560,  620};

std::string_view searchedPart(const char* name) {
    const char* end = name;
    while (*end && static_cast<std::size_t>(end - name) < kMostCharacters)
        ++end;
    return {name, static_cast<std::size_t>(end - name)};
}

} // namespace

StyleHints hintsOfStyle(const char* styleName) {
    StyleHints hints;
    if (!styleName)
        return hints;
    const std::string_view searched = searchedPart(styleName);
    const auto isThere = [&](std::string_view word) {
        return searched.find(word) != std::string_view::npos;
    };
    for (const auto& [word, weight] : kWeightWords) {
        if (!hints.weight && isThere(word))
            hints.weight = weight;
    }
    hints.width = isThere("Condensed") ? -1 : isThere("Wide") ? 1 : 0;
    return hints;
}

std::optional<std::int32_t> weightOfClass(std::uint16_t weightClass) {
    if (weightClass == 0)
        return std::nullopt;
    // Fonts of the table's first days count from 1 to 9.
    const int perMille = weightClass < 10 ? weightClass * 100 : weightClass;
    const int hundreds = std::clamp((perMille + 50) / 100, 1, int{kWeightOfHundreds.size()});
    return kWeightOfHundreds[static_cast<std::size_t>(hundreds - 1)];
}

} // namespace fm
