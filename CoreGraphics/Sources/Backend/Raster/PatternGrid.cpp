// PatternGrid.cpp: steps and bounds of a pattern in pixels.

#include "Backend/Raster/PatternGrid.h"

#include "XGPattern.h"

#include "Backend/Raster/SkiaConversions.h"
#include "Core/Object/Saturate.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

// Less of a pixel than any coverage shows.
constexpr double kTolerance = 1e-3;

// Periods beyond every surface are as good as none to stretch cells for.
constexpr double kLargestWholePeriod = 1 << 20;

double distanceOf(CGFloat step, double length) {
    const double distance = std::fabs(static_cast<double>(step));
    return distance > 0 ? distance : length;
}

struct FittedAxis {
    double scale; // Pixels per unit of the pattern.
    GridAxis axis;
};

enum class Distort { No, Yes };

FittedAxis fit(double scale, double step, double length, Distort distort) {
    double period = step * scale;
    const double whole = std::max(1.0, std::round(period));
    if (period < kLargestWholePeriod &&
        (distort == Distort::Yes || std::fabs(period - whole) < kTolerance)) {
        period = whole;
        scale = whole / step;
    } else if (period < kLargestWholePeriod && std::fabs(length - step) <= kTolerance * step) {
        // Side by side, edges that cover half a pixel would show as lines between the cells.
        scale = std::ceil(period) / step;
    }
    GridAxis axis;
    axis.period = std::max(period, 1.0);
    axis.length = std::max(1, saturate<int>(std::ceil(length * scale - kTolerance)));
    return {scale, axis};
}

// Turns by right angles leave traces of sines and cosines.
SkMatrix withoutTraces(const SkMatrix& matrix) {
    SkMatrix clean = matrix;
    float largest = 0;
    constexpr int kLinear[] = {SkMatrix::kMScaleX, SkMatrix::kMSkewX, SkMatrix::kMSkewY,
                               SkMatrix::kMScaleY};
    for (const int index : kLinear)
        largest = std::max(largest, std::fabs(matrix[index]));
    for (const int index : kLinear) {
        if (std::fabs(matrix[index]) <= largest * 1e-6f)
            clean.set(index, 0);
    }
    return clean;
}

struct Cell {
    SkRect bounds;
    double xStep, yStep;
};

// The grid whose pixels are the surface's.
PatternGrid alignedGrid(const Cell& cell, SkMatrix matrix, Distort distort) {
    const bool isSwapped = matrix.getScaleX() == 0;
    // Which entry of each row of the matrix is not 0, and what it stretches.
    const int xEntry = isSwapped ? SkMatrix::kMSkewX : SkMatrix::kMScaleX;
    const int yEntry = isSwapped ? SkMatrix::kMSkewY : SkMatrix::kMScaleY;
    const double widthOnX = isSwapped ? cell.bounds.height() : cell.bounds.width();
    const double heightOnY = isSwapped ? cell.bounds.width() : cell.bounds.height();
    const FittedAxis x =
        fit(std::fabs(matrix[xEntry]), isSwapped ? cell.yStep : cell.xStep, widthOnX, distort);
    const FittedAxis y =
        fit(std::fabs(matrix[yEntry]), isSwapped ? cell.xStep : cell.yStep, heightOnY, distort);

    const SkRect shown = matrix.mapRect(cell.bounds);
    PatternGrid grid = {.isAligned = true, .x = x.axis, .y = y.axis};
    grid.x.isAscending = matrix[xEntry] > 0;
    grid.y.isAscending = matrix[yEntry] > 0;
    grid.gridToPixels =
        SkMatrix::Translate(std::floor(shown.left() + 0.5f), std::floor(shown.top() + 0.5f));
    matrix.set(xEntry, std::copysign(static_cast<float>(x.scale), matrix[xEntry]));
    matrix.set(yEntry, std::copysign(static_cast<float>(y.scale), matrix[yEntry]));
    // Stretched about the cell's corner, which has been rounded to a pixel.
    const SkRect moved = matrix.mapRect(cell.bounds);
    matrix.postTranslate(-moved.left(), -moved.top());
    grid.patternToGrid = matrix;
    return grid;
}

// A grid along the pattern's own axes, its y turned around. Whole pixels to a period make tiles
// meet; what that stretches, the way to the surface takes back.
std::optional<PatternGrid> turnedGrid(const Cell& cell, const SkMatrix& matrix) {
    const FittedAxis x = fit(std::hypot(matrix.getScaleX(), matrix.getSkewY()), cell.xStep,
                             cell.bounds.width(), Distort::Yes);
    const FittedAxis y = fit(std::hypot(matrix.getSkewX(), matrix.getScaleY()), cell.yStep,
                             cell.bounds.height(), Distort::Yes);
    const auto xScale = static_cast<float>(x.scale), yScale = static_cast<float>(y.scale);
    PatternGrid grid = {.x = x.axis, .y = y.axis};
    grid.y.isAscending = false;
    grid.patternToGrid = SkMatrix::MakeAll(xScale, 0, -cell.bounds.left() * xScale, 0, -yScale,
                                           cell.bounds.bottom() * yScale, 0, 0, 1);
    SkMatrix gridToPattern;
    if (!grid.patternToGrid.isFinite() || !grid.patternToGrid.invert(&gridToPattern))
        return std::nullopt;
    grid.gridToPixels = SkMatrix::Concat(matrix, gridToPattern);
    return grid;
}

} // namespace

std::int64_t GridAxis::position(std::int64_t cell) const {
    return cell == 0 ? 0 : saturate<std::int64_t>(std::round(static_cast<double>(cell) * period));
}

CellRange GridAxis::touching(double low, double high) const {
    if (std::isinf(period))
        return low < length && high > 0 ? CellRange{0, 0} : CellRange{};
    // Rounding may move a cell by half a pixel.
    return {saturate<std::int64_t>(std::floor((low - length - 0.5) / period) + 1),
            saturate<std::int64_t>(std::ceil((high + 0.5) / period) - 1)};
}

std::optional<PatternGrid> gridOf(CGPatternRef pattern, const SkMatrix& patternToPixels) {
    const SkRect bounds = toSkia(XGPatternGetBounds(pattern));
    const SkMatrix matrix = withoutTraces(patternToPixels);
    SkMatrix inverse;
    if (bounds.isEmpty() || !bounds.isFinite() || !matrix.isFinite() || !matrix.invert(&inverse))
        return std::nullopt;
    const CGSize step = XGPatternGetStepSize(pattern);
    const Cell cell = {bounds, distanceOf(step.width, bounds.width()),
                       distanceOf(step.height, bounds.height())};
    if (!matrix.rectStaysRect())
        return turnedGrid(cell, matrix);
    const bool keepsSize = XGPatternGetTiling(pattern) == kCGPatternTilingNoDistortion;
    PatternGrid grid = alignedGrid(cell, matrix, keepsSize ? Distort::No : Distort::Yes);
    if (!grid.patternToGrid.isFinite() || !grid.gridToPixels.isFinite())
        return std::nullopt;
    return grid;
}

} // namespace cg
