// PatternCells.h: what a pattern's callback draws, in pixels.
#pragma once

#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGPattern.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkSize.h"

#include <span>

namespace cg {

// A pattern colour and the colour space of the bitmap that it is for.
struct PatternInk {
    CGPatternRef pattern = nullptr;
    CGColorRef color = nullptr;
    CGColorSpaceRef destination = nullptr;
};

enum class ClipToBounds { No, Yes };

// Premultiplied pixels into which the pattern has drawn one cell for each of the matrices, which
// map pattern space to rows and columns; the cells of an uncoloured pattern are in the colour's
// components, opaque. Cells are cut off at the pattern's bounds if asked for, else at those of the
// bitmap alone. Empty, after an error in the log, when memory runs out, and for a pattern that is
// just being drawn by this thread: it would never end.
SkBitmap drawCells(const PatternInk& ink, SkISize size, std::span<const SkMatrix> cells,
                   ClipToBounds clip);

} // namespace cg
