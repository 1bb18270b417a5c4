// PixelFormat.h: which bitmaps the raster backend draws into, and how Skia sees their pixels.
#pragma once

#include "Core/Context/XGBackend.h"
#include "include/core/SkImageInfo.h"

#include <optional>

namespace cg {

// Skia's description of the bitmap's pixels, or nothing, with the reason in the log, when no such
// bitmap can be drawn into.
std::optional<SkImageInfo> skiaImageInfo(const Bitmap& bitmap);

} // namespace cg
