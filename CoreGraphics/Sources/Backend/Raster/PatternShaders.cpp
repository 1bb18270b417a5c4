// PatternShaders.cpp: choosing how a pattern's pixels are made, and keeping them.

#include "Backend/Raster/PatternShaders.h"

#include "XGPattern.h"

#include "Backend/Raster/SkiaConversions.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Paint/PatternSerial.h"
#include "include/core/SkTileMode.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace cg {

namespace {

// Of a tile, and of a cell: 16 MiB.
constexpr std::int64_t kMostPixels = 1 << 22;

// Calls for one paint, where each cell is drawn by a call of its own.
constexpr std::int64_t kMostCells = 4096;

bool isTooLarge(std::int64_t width, std::int64_t height) {
    return width > kMostPixels || height > kMostPixels || width * height > kMostPixels;
}

bool isSame(const CGAffineTransform& a, const CGAffineTransform& b) {
    return a.tx == b.tx && a.ty == b.ty && a.a == b.a && a.b == b.b && a.c == b.c && a.d == b.d;
}

SkRect inGrid(const PatternGrid& grid, const SkIRect& clip) {
    SkMatrix pixelsToGrid;
    return grid.gridToPixels.invert(&pixelsToGrid) ? pixelsToGrid.mapRect(SkRect::Make(clip))
                                                   : SkRect::MakeEmpty();
}

// Where nothing but one cell shows, its pixels will do: a step of millions repeats nowhere.
// Returns that cell's place.
std::int64_t showOne(const GridAxis& axis, const CellRange& range, TileAxis& tile) {
    if (range.count() > 1)
        return 0;
    tile = {.length = axis.length, .repeats = false};
    return axis.position(range.first);
}

// Where a repeated tile begins: as near as possible, since floats grow coarse.
float nearOrigin(float place, const TileAxis& tile) {
    return tile.repeats ? std::fmod(place, static_cast<float>(tile.length)) : place;
}

SkMatrix linearPart(const SkMatrix& matrix) {
    return SkMatrix::MakeAll(matrix.getScaleX(), matrix.getSkewX(), 0, matrix.getSkewY(),
                             matrix.getScaleY(), 0, 0, 0, 1);
}

SkBitmap drawTile(const PatternInk& ink, const PatternGrid& grid, const TileAxis& x,
                  const TileAxis& y) {
    const SkBitmap cell =
        drawCells(ink, {grid.x.length, grid.y.length}, {&grid.patternToGrid, 1}, ClipToBounds::No);
    return cell.isNull() ? cell : makeTile(cell, grid.x, x, grid.y, y);
}

// Every cell that shows inside the clip, drawn there.
SkBitmap drawClip(const PatternInk& ink, const PatternGrid& grid, const SkIRect& clip) {
    const SkRect shown = inGrid(grid, clip);
    const CellRange columns = grid.x.touching(shown.left(), shown.right());
    const CellRange rows = grid.y.touching(shown.top(), shown.bottom());
    if (columns.count() == 0 || rows.count() == 0)
        return {};
    if (columns.count() > kMostCells || rows.count() > kMostCells / columns.count()) {
        CG_LOG_ERROR("A pattern repeats more than %d times where it is too large to be kept",
                     static_cast<int>(kMostCells));
        return {};
    }
    // Later cells over earlier ones, as in tiles.
    const auto at = [](const CellRange& range, const GridAxis& axis, std::int64_t count) {
        return axis.position(axis.isAscending ? range.first + count : range.last - count);
    };
    std::vector<SkMatrix> cells;
    for (std::int64_t row = 0; row < rows.count(); ++row) {
        for (std::int64_t column = 0; column < columns.count(); ++column) {
            SkMatrix matrix = grid.patternToGrid;
            matrix.postTranslate(static_cast<float>(at(columns, grid.x, column)),
                                 static_cast<float>(at(rows, grid.y, row)));
            matrix.postConcat(grid.gridToPixels);
            matrix.postTranslate(static_cast<float>(-clip.left()), static_cast<float>(-clip.top()));
            cells.push_back(matrix);
        }
    }
    return drawCells(ink, clip.size(), cells, ClipToBounds::Yes);
}

sk_sp<SkShader> makeShader(SkBitmap& pixels, const SkMatrix& pixelsToSurface, bool repeatsX,
                           bool repeatsY, SkFilterMode filter) {
    pixels.setImmutable(); // A shader would copy what may change.
    const auto mode = [](bool repeats) {
        return repeats ? SkTileMode::kRepeat : SkTileMode::kDecal;
    };
    return pixels.makeShader(mode(repeatsX), mode(repeatsY), SkSamplingOptions(filter),
                             &pixelsToSurface);
}

} // namespace

namespace {

// What there is room for; colour spaces of more components share a tile between similar colours.
template <std::size_t most>
std::span<const CGFloat> firstComponents(CGColorRef color, const std::array<CGFloat, most>&) {
    return {CGColorGetComponents(color), std::min(CGColorGetNumberOfComponents(color) - 1, most)};
}

} // namespace

PatternShaders::Colors::Colors(const PatternInk& ink) : pattern(serialOf(ink.pattern)) {
    if (XGPatternIsColored(ink.pattern))
        return;
    space = cf::retain(CGColorGetColorSpace(ink.color));
    std::ranges::copy(firstComponents(ink.color, components), components.begin());
}

bool PatternShaders::Colors::areThoseOf(const PatternInk& ink) const {
    if (pattern != serialOf(ink.pattern))
        return false;
    return XGPatternIsColored(ink.pattern) ||
           (space.get() == CGColorGetColorSpace(ink.color) &&
            std::ranges::equal(
                firstComponents(ink.color, components),
                std::span(components).first(firstComponents(ink.color, components).size())));
}

// A tile that repeats, if it may be that large; else one cell alone, if no other shows inside the
// clip; else everything that shows there.
PatternShaders::Plan PatternShaders::planFor(const PatternGrid& grid, const SkMatrix& matrix,
                                             const SkIRect& clip) {
    Plan plan = {.drawn = matrix, .x = tileAxis(grid.x), .y = tileAxis(grid.y)};
    SkVector moved = {0, 0};
    if (isTooLarge(plan.x.length, plan.y.length)) {
        plan.dependsOnClip = true;
        const SkRect shown = inGrid(grid, clip);
        moved = {static_cast<float>(
                     showOne(grid.x, grid.x.touching(shown.left(), shown.right()), plan.x)),
                 static_cast<float>(
                     showOne(grid.y, grid.y.touching(shown.top(), shown.bottom()), plan.y))};
    }
    plan.isTile =
        !isTooLarge(plan.x.length, plan.y.length) && !isTooLarge(grid.x.length, grid.y.length);
    if (!plan.isTile) {
        plan.dependsOnClip = true;
        plan.pixelsToSurface =
            SkMatrix::Translate(static_cast<float>(clip.left()), static_cast<float>(clip.top()));
        return plan;
    }
    plan.drawn = linearPart(matrix);
    if (grid.isAligned)
        plan.pixelsToSurface =
            SkMatrix::Translate(nearOrigin(grid.gridToPixels.getTranslateX() + moved.x(), plan.x),
                                nearOrigin(grid.gridToPixels.getTranslateY() + moved.y(), plan.y));
    else
        plan.pixelsToSurface = SkMatrix::Concat(grid.gridToPixels, SkMatrix::Translate(moved));
    return plan;
}

bool PatternShaders::haveSamePixels(const Plan& a, const SkIRect& clipOfA, const Plan& b,
                                    const SkIRect& clipOfB) {
    return a.isTile == b.isTile && a.drawn == b.drawn && (a.isTile || clipOfA == clipOfB) &&
           a.x.repeats == b.x.repeats && a.y.repeats == b.y.repeats;
}

sk_sp<SkShader> PatternShaders::find(const PatternInk& ink,
                                     const CGAffineTransform& patternToPixels,
                                     const SkIRect& clip) {
    const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) {
        return entry.colors.areThoseOf(ink) && isSame(entry.matrix, patternToPixels) &&
               (!entry.plan.dependsOnClip || entry.clip == clip);
    });
    if (found == entries_.end())
        return nullptr;
    if (found != entries_.begin())
        std::rotate(entries_.begin(), found, found + 1);
    return entries_.front().shader;
}

// The newest stays however large it is: the next mark is likely to ask for it.
void PatternShaders::keep(Entry entry) {
    constexpr std::size_t kMostEntries = 8;
    constexpr std::size_t kMostBytes = 4 * kMostPixels;
    entries_.insert(entries_.begin(), std::move(entry));
    std::size_t kept = 0, bytes = 0;
    while (kept < entries_.size() && kept < kMostEntries &&
           (kept == 0 || bytes + entries_[kept].pixels.computeByteSize() <= kMostBytes))
        bytes += entries_[kept++].pixels.computeByteSize();
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
}

sk_sp<SkShader> PatternShaders::make(const PatternInk& ink,
                                     const CGAffineTransform& patternToPixels,
                                     const SkIRect& clip) {
    const SkMatrix matrix = toSkia(patternToPixels);
    const auto grid = gridOf(ink.pattern, matrix);
    if (!grid || clip.isEmpty())
        return nullptr;
    const Plan plan = planFor(*grid, matrix, clip);
    SkBitmap pixels;
    // A phase, or a group's surface, moves a pattern: only the shader is made anew then.
    const auto same = std::ranges::find_if(entries_, [&](const Entry& entry) {
        return entry.colors.areThoseOf(ink) && haveSamePixels(entry.plan, entry.clip, plan, clip);
    });
    if (same != entries_.end()) {
        pixels = same->pixels;
        entries_.erase(same);
    } else {
        pixels = plan.isTile ? drawTile(ink, *grid, plan.x, plan.y) : drawClip(ink, *grid, clip);
    }
    if (pixels.isNull())
        return nullptr;
    // The tile's pixels are the surface's: the nearest is the one.
    const bool isExact = grid->isAligned || !plan.isTile;
    auto shader = makeShader(pixels, plan.pixelsToSurface, plan.isTile && plan.x.repeats,
                             plan.isTile && plan.y.repeats,
                             isExact ? SkFilterMode::kNearest : SkFilterMode::kLinear);
    if (shader)
        keep({Colors(ink), plan, pixels, shader, patternToPixels, clip});
    return shader;
}

} // namespace cg
