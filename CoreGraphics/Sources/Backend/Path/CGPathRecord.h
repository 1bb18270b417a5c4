// CGPathRecord.h: what a path object holds, and the few rules that all its files share.
#pragma once

#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGPath.h>

#include <include/core/SkMatrix.h>
#include <include/core/SkPath.h>
#include <src/core/SkPathPriv.h>

#include <cstdint>

// Copies share the points, which Skia keeps behind `path` and copies on write. Growing them cannot
// report that memory ran out: Skia then ends the process.
struct CGPath {
    CFRuntimeBase base;
    SkPath path;
    uint32_t flags = 0;
    // As it was given. Skia has room for two bits of it, two of whose values turn a fill inside
    // out, so its own fill type holds no more than whether this byte is 1.
    uint8_t evenOddFlag = 0;
};

namespace cg {

inline constexpr uint32_t kPathIsMutable = 1;

// The points of a path that may be changed, else NULL.
inline SkPath* editablePoints(CGMutablePathRef path) {
    return path && (path->flags & kPathIsMutable) ? &path->path : nullptr;
}

// Empty, with one reference; NULL when memory runs out.
CGMutablePathRef createPath(uint32_t flags);

// Skia computes the bounds and the identity of points when first asked, and stores them without a
// lock. Points that threads may come to share have both computed before.
inline void settle(const SkPath& points) {
    points.updateBoundsCache();
    points.getGenerationID();
}

inline SkMatrix skiaMatrix(const CGAffineTransform& m) {
    return SkMatrix::MakeAll(m.a, m.c, m.tx, m.b, m.d, m.ty, 0, 0, 1);
}

inline CGRect rectOf(const SkRect& r) {
    return {{r.fLeft, r.fTop}, {r.fRight - r.fLeft, r.fBottom - r.fTop}};
}

} // namespace cg
