// DirectFill.h: rectangles of one colour, put down by the shortest way.
#pragma once

#include "include/core/SkPaint.h"
#include "include/core/SkPixmap.h"
#include "include/core/SkRect.h"
#include "src/core/SkRasterClip.h"

namespace cg {

// Whether the paint is one colour over what lies beneath, and fills.
bool isPlainFill(const SkPaint& paint);

// The rectangle's pixels, if it consists of whole ones.
bool isWhole(const SkRect& rect);

// Fills the rectangle as Skia would, to the bit, without what it takes to choose a blitter. False,
// with nothing drawn, for what is not a plain fill of pixels of its fast layout. `clip` lies within
// the range of Skia's fixed-point numbers.
bool fillDirectly(const SkPixmap& pixels, const SkRasterClip& clip, const SkRect& rect,
                  const SkPaint& paint);

} // namespace cg
