// PatternGrid.h: where the cells of a pattern lie among pixels.
#pragma once

#include <CoreGraphics/CGPattern.h>

#include "include/core/SkMatrix.h"

#include <cstdint>
#include <optional>

namespace cg {

// Consecutive cells; none when `last` is before `first`.
struct CellRange {
    std::int64_t first = 0;
    std::int64_t last = -1;

    std::int64_t count() const { return last < first ? 0 : last - first + 1; }
};

// The cells along one axis of a grid, in its pixels.
struct GridAxis {
    double period = 1;       // From cell to cell, 1 or more; infinite where only cell 0 is.
    int length = 1;          // Of what a cell shows, which other cells may overlap.
    bool isAscending = true; // Whether cells with greater numbers were meant to be drawn later.

    // Cells begin at whole pixels, however their period lies between them.
    std::int64_t position(std::int64_t cell) const;
    // Those that show something between two places.
    CellRange touching(double low, double high) const;
};

// A space of pixels, rows downwards, in which cells repeat along the axes. Cell 0 begins at its
// origin.
//
// Where the matrix leaves axes along axes, the grid's pixels are those of the surface: cells are
// drawn as they will be seen, and moved by whole pixels. Elsewhere cells are drawn upright at the
// surface's resolution and turned with the grid.
struct PatternGrid {
    SkMatrix patternToGrid; // Of cell 0.
    SkMatrix gridToPixels;
    bool isAligned = false; // gridToPixels moves by whole pixels alone.
    GridAxis x, y;
};

// Nothing for patterns without an inside, under a matrix without an inverse, or of numbers that are
// not finite.
//
// How steps meet pixels is the pattern's choice, after ISO 32000-1, 8.7.3.1: undistorted cells keep
// their size, and their distances are rounded each; others are stretched by less than a pixel, so
// that their distance is a whole number of pixels. Cells that meet are always stretched to whole
// pixels. A step of 0 or that is not a number is that of
// cells side by side; the sign of a step makes no difference.
std::optional<PatternGrid> gridOf(CGPatternRef pattern, const SkMatrix& patternToPixels);

} // namespace cg
