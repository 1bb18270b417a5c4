// MetricsOverride.h: measures that take the place of a font's own.
#pragma once

#include <FontManager/FMBase.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace fm {

class MetricsOverride {
public:
    enum class Outcome { Set, UnknownName, BadValue };

    // Takes a measure by its name and value as they stand in a configuration. A value that is no
    // number, or beyond what such a measure can be, changes nothing.
    Outcome set(std::string_view name, std::string_view value);
    void apply(FMFontMetrics& metrics) const;
    bool isEmpty() const;

private:
    static constexpr std::size_t kMeasureCount = 13;

    std::array<std::optional<double>, kMeasureCount> values_; // In the order of the table.
};

} // namespace fm
