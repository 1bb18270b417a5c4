// StyleWords.h: what the name of a style says of weight and width.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace fm {

struct StyleHints {
    std::optional<std::int32_t> weight; // As in FMFontMetrics.
    int width = 0;                      // Below 0 narrow, above 0 wide.
};

// Looks for known words anywhere within the first 100 characters. NULL says nothing.
StyleHints hintsOfStyle(const char* styleName);

// A weight class of the OS/2 table, 1 to 1000, on the scale of FMFontMetrics; nothing for 0, which
// stands for no class. Classes between the round hundreds are those of the nearest.
std::optional<std::int32_t> weightOfClass(std::uint16_t weightClass);

} // namespace fm
