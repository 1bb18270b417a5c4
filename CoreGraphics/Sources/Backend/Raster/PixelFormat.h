// PixelFormat.h: which bitmaps the raster backend draws into, and how Skia sees their pixels.
#pragma once

#include "Core/Context/XGBackend.h"
#include "include/core/SkImageInfo.h"

#include <optional>

namespace cg {

// The layout that marks are drawn in: the bitmap's own, or another in which the part that a mark
// may touch is drawn aside.
struct SurfaceFormat {
    SkImageInfo info; // Of the bitmap's size.
    bool isInPlace = false;
};

// Nothing, with the reason in the log, when no such bitmap can be drawn into. A pixel that Skia
// knows is drawn aside all the same where the bitmap's rows do not begin at whole pixels.
std::optional<SurfaceFormat> surfaceFormat(const Bitmap& bitmap);

} // namespace cg
