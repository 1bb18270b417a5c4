// PatternTile.cpp: cells put over each other, as far as a tile shows them.

#include "Backend/Raster/PatternTile.h"

#include "Core/Object/Diagnostics.h"
#include "Core/Object/Saturate.h"
#include "src/core/SkColorPriv.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

// Puts the cell over the tile with its upper left pixel at a column and row.
void putOver(const SkBitmap& tile, const SkBitmap& cell, std::int64_t column, std::int64_t row) {
    const auto left = static_cast<int>(std::max<std::int64_t>(column, 0));
    const auto top = static_cast<int>(std::max<std::int64_t>(row, 0));
    const auto right =
        static_cast<int>(std::min<std::int64_t>(column + cell.width(), tile.width()));
    const auto bottom =
        static_cast<int>(std::min<std::int64_t>(row + cell.height(), tile.height()));
    for (int y = top; y < bottom; ++y) {
        const SkPMColor* from =
            cell.getAddr32(static_cast<int>(left - column), static_cast<int>(y - row));
        SkPMColor* to = tile.getAddr32(left, y);
        for (int x = left; x < right; ++x, ++from, ++to)
            *to = SkPMSrcOver(*from, *to);
    }
}

// Calls `put(position)` for all cells that show something in the tile, in the order of drawing.
template <typename Put>
void forEachCell(const GridAxis& axis, const TileAxis& tile, Put put) {
    if (!tile.repeats) {
        put(0);
        return;
    }
    const CellRange range = axis.touching(0, tile.length);
    for (std::int64_t index = range.first; index <= range.last; ++index) {
        const std::int64_t cell = axis.isAscending ? index : range.last - (index - range.first);
        // Cells of other tiles lie as those of this one.
        const std::int64_t count = tile.cells;
        const std::int64_t tiles = (cell >= 0 ? cell : cell - count + 1) / count;
        put(tiles * tile.length + axis.position(cell - tiles * count));
    }
}

} // namespace

TileAxis tileAxis(const GridAxis& axis) {
    constexpr int kMostCells = 16;
    constexpr double kNearlyWhole = 0.01;
    if (std::isinf(axis.period))
        return {.length = axis.length, .repeats = false};
    TileAxis best;
    double leastDrift = 1;
    for (int cells = 1; cells <= kMostCells; ++cells) {
        const double length = cells * axis.period;
        const double excess = std::fabs(length - std::round(length));
        if (excess / cells < leastDrift) {
            leastDrift = excess / cells;
            best = {.length = saturate<int>(std::round(length)), .cells = cells};
        }
        if (excess < kNearlyWhole)
            break;
    }
    return best;
}

SkBitmap makeTile(const SkBitmap& cell, const GridAxis& x, const TileAxis& tileX, const GridAxis& y,
                  const TileAxis& tileY) {
    if (tileX.cells == 1 && tileX.length == cell.width() && tileY.cells == 1 &&
        tileY.length == cell.height())
        return cell;
    SkBitmap tile;
    if (!tile.tryAllocPixelsFlags(cell.info().makeWH(tileX.length, tileY.length),
                                  SkBitmap::kZeroPixels_AllocFlag)) {
        CG_LOG_ERROR("Failed to allocate a pattern's tile of %d × %d", tileX.length, tileY.length);
        return {};
    }
    forEachCell(y, tileY, [&](std::int64_t row) {
        forEachCell(x, tileX, [&](std::int64_t column) { putOver(tile, cell, column, row); });
    });
    return tile;
}

} // namespace cg
