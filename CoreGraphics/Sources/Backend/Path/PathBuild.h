// PathBuild.h: the steps that building functions share, on the rasteriser's path.
#pragma once

#include <CoreGraphics/CGPath.h>

#include "PathElements.h"

#include <include/core/SkPath.h>

#include <span>

namespace cg {

enum class Closed { No, Yes };

// Starts a contour; of two moves in a row only the second stays.
void moveTo(SkPath& path, SkPoint point);

// A contour of one corner or more, joined by lines.
void addPolygon(SkPath& path, std::span<const SkPoint> corners, Closed closed);

void addRect(SkPath& path, const CGAffineTransform* m, const CGRect& rect);

// Out of line, so that the building functions need no frame for it.
[[gnu::cold, gnu::noinline]] void reportNoCurrentPoint(const char* function);

// Whether a segment has a point to start from; tells the log on behalf of `function` if not. Skia
// would start it at (0, 0), which nobody asked for.
inline bool hasCurrentPoint(const SkPath& path, const char* function) {
    if (hasElements(path)) [[likely]]
        return true;
    reportNoCurrentPoint(function);
    return false;
}

} // namespace cg
