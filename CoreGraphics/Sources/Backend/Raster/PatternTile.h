// PatternTile.h: pixels that repeat without seams, from a pattern's cell.
#pragma once

#include "Backend/Raster/PatternGrid.h"
#include "include/core/SkBitmap.h"

namespace cg {

// What is repeated along one axis: pixels, and how many cells begin in them.
struct TileAxis {
    int length = 1;
    int cells = 1;
    bool repeats = true; // Else the pixels show one cell alone.
};

// The fewest cells whose periods make up a whole number of pixels, or nearly.
TileAxis tileAxis(const GridAxis& axis);

// Puts together what cells, and those that reach over from elsewhere, show in a tile. `cell` itself
// where that is the same. Empty, after an error in the log, when memory runs out.
SkBitmap makeTile(const SkBitmap& cell, const GridAxis& x, const TileAxis& tileX, const GridAxis& y,
                  const TileAxis& tileY);

} // namespace cg
