// PaletteSearch.cpp: all entries compared, for colours that were not looked for just before.

#include "PaletteSearch.h"

#include "XGColorSpace.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/RowTransform.h"

#include <limits>

namespace cg {

std::optional<PaletteSearch> PaletteSearch::of(CGColorSpaceRef indexed) {
    const auto* const table = std::get_if<ColorTable>(&indexed->calibration);
    const auto toRGB = RowTransform::between(
        indexed->baseSpace.get(), {}, XGColorSpaceGetDeviceRGB(), {}, kCGRenderingIntentDefault);
    if (!table || table->count == 0 || table->count > kMostEntries || !toRGB)
        return std::nullopt;
    PaletteSearch search;
    search.count_ = table->count;
    toRGB.get()->apply(table->bytes.data(), search.table_.data(), table->count);
    return search;
}

std::uint8_t PaletteSearch::nearest(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const std::uint32_t color = std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue;
    Found& found = found_[color * 2654435761u >> 24];
    if (found.color == color)
        return found.index;
    int least = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < count_; ++i) {
        const int dr = table_[3 * i] - red;
        const int dg = table_[3 * i + 1] - green;
        const int db = table_[3 * i + 2] - blue;
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < least) {
            least = distance;
            found = {color, static_cast<std::uint8_t>(i)};
        }
    }
    return found.index;
}

} // namespace cg
