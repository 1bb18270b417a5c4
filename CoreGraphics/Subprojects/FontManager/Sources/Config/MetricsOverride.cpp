// MetricsOverride.cpp: the measures that a configuration may set, by name.

#include "MetricsOverride.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace fm {

namespace {

enum class Kind { Integer, Fixed, Float };

struct Measure {
    std::string_view name;
    std::size_t offset;
    Kind kind;
    double least;
    double most;
};

// An em has 16384 units at most; a measure of more than 64 of those is a slip.
constexpr double kMostUnits = 1 << 20;
constexpr double kLeastMultiple = 0.01;
constexpr double kMostMultiple = 100;

constexpr std::array kMeasures = std::to_array<Measure>({
    {"heightMultiple", offsetof(FMFontMetrics, heightMultiple), Kind::Float, kLeastMultiple,
     kMostMultiple},
    {"heightMultipleForUIKit", offsetof(FMFontMetrics, heightMultipleForUIKit), Kind::Float,
     kLeastMultiple, kMostMultiple},
    {"ascent", offsetof(FMFontMetrics, ascent), Kind::Integer, -kMostUnits, kMostUnits},
    {"descent", offsetof(FMFontMetrics, descent), Kind::Integer, -kMostUnits, kMostUnits},
    {"leading", offsetof(FMFontMetrics, leading), Kind::Integer, -kMostUnits, kMostUnits},
    {"xHeight", offsetof(FMFontMetrics, xHeight), Kind::Integer, -kMostUnits, kMostUnits},
    {"capHeight", offsetof(FMFontMetrics, capHeight), Kind::Integer, -kMostUnits, kMostUnits},
    {"stemV", offsetof(FMFontMetrics, stemV), Kind::Integer, -kMostUnits, kMostUnits},
    {"underlinePosition", offsetof(FMFontMetrics, underlinePosition), Kind::Integer, -kMostUnits,
     kMostUnits},
    {"underlineThickness", offsetof(FMFontMetrics, underlineThickness), Kind::Integer, -kMostUnits,
     kMostUnits},
    {"italicAngle", offsetof(FMFontMetrics, italicAngle), Kind::Fixed, -90, 90},
    {"weight", offsetof(FMFontMetrics, weight), Kind::Integer, -1000, 1000},
    {"unitsPerEm", offsetof(FMFontMetrics, unitsPerEm), Kind::Integer, 1, kMostUnits},
});

void store(const Measure& measure, double value, FMFontMetrics& metrics) {
    auto* const field = reinterpret_cast<std::byte*>(&metrics) + measure.offset;
    if (measure.kind == Kind::Float) {
        const auto number = static_cast<CGFloat>(value);
        std::memcpy(field, &number, sizeof number);
        return;
    }
    const double scale = measure.kind == Kind::Fixed ? 65536 : 1;
    const auto number = static_cast<std::int32_t>(std::lround(value * scale));
    std::memcpy(field, &number, sizeof number);
}

} // namespace

MetricsOverride::Outcome MetricsOverride::set(std::string_view name, std::string_view value) {
    static_assert(kMeasures.size() == kMeasureCount);
    const auto measure = std::ranges::find(kMeasures, name, &Measure::name);
    if (measure == kMeasures.end())
        return Outcome::UnknownName;
    double number = 0;
    const char* const last = value.data() + value.size();
    const auto [end, status] = std::from_chars(value.data(), last, number);
    // Written so that what is not a number fails, too.
    if (status != std::errc() || end != last ||
        !(number >= measure->least && number <= measure->most))
        return Outcome::BadValue;
    values_[static_cast<std::size_t>(measure - kMeasures.begin())] = number;
    return Outcome::Set;
}

void MetricsOverride::apply(FMFontMetrics& metrics) const {
    for (std::size_t i = 0; i < kMeasures.size(); ++i)
        if (values_[i])
            store(kMeasures[i], *values_[i], metrics);
}

bool MetricsOverride::isEmpty() const {
    return std::ranges::none_of(values_, [](const auto& value) { return value.has_value(); });
}

} // namespace fm
