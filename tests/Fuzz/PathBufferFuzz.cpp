// PathBufferFuzz.cpp: paths read from any bytes, asked everything, turned into other paths, and
// written back.

#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <Host/Host.h>

#include <include/core/SkPath.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using Path = cf::Ref<CGPathRef>;

void require(bool condition) {
    if (!condition)
        std::abort();
}

std::vector<std::byte> written(CGPathRef path) {
    std::vector<std::byte> bytes(_CGPathWriteToBuffer(path, nullptr));
    require(_CGPathWriteToBuffer(path, bytes.data()) == bytes.size());
    return bytes;
}

bool isFinite(CGRect rect) {
    return std::isfinite(rect.origin.x + rect.size.width) &&
           std::isfinite(rect.origin.y + rect.size.height);
}

void sampleSegments(CGPathRef path) {
    CGPathApply(path, nullptr, [](void*, const CGPathElement* element) {
        uint32_t count = 0;
        const CGPoint* const points = _CGPathElementGetAllPoints(element, &count);
        volatile CGFloat sum = 0;
        for (uint32_t i = 0; i < count; ++i)
            sum = sum + points[i].x;
        std::array<CGPoint, 4> samples;
        _CGPathSegmentEvaluate(element, samples.data(), samples.size());
    });
}

void ask(CGPathRef path) {
    const CGPoint point = CGPathGetCurrentPoint(path);
    CGPathGetBoundingBox(path);
    CGPathGetPathBoundingBox(path);
    for (const bool evenOdd : {false, true})
        CGPathContainsPoint(path, nullptr, {point.x + 1, point.y - 1}, evenOdd);
    CGRect rect;
    CGPathIsRect(path, &rect);
    _CGPathICantBelieveItsNotACircle(path, &rect);
    _CGPathIsClosed(path);
    // Arcs by tangents abort, as documented.
    const auto& native = *static_cast<const SkPath*>(_CGPathGetNativeObject(path));
    if (!(native.getSegmentMasks() & SkPath::kConic_SegmentMask))
        _CGPathIsRectilinear(path);
    std::array<CGRect, 8> rects;
    std::size_t count = 0;
    _CGPathCanBeFilledByRects(path, rects.data(), rects.size(), &count);
    _CGPathCanBeStrokedByRects(path, kCGLineCapButt, kCGLineJoinMiter, 10);
    std::array<XGPathIntersection, 8> crossings;
    require(_CGPathLineIntersection(path, crossings.data(), crossings.size(), {0, 0}, point) <=
            crossings.size());
    sampleSegments(path);
    require(CFHash(path) == CFHash(Path(cf::adopt(CGPathCreateCopy(path))).get()));
}

// In proportion to the path, so that no input makes millions of dashes.
void outline(CGPathRef path) {
    const CGRect box = CGPathGetBoundingBox(path);
    const CGFloat size = box.size.width + box.size.height;
    const std::array<CGFloat, 3> lengths = {size / 16, size / 32, size / 64};
    const CGAffineTransform turn = {0.5f, 1, -2, 0.25f, 3, 4};
    for (const auto join : {kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel}) {
        const auto cap = static_cast<CGLineCap>(join);
        const auto stroked =
            cf::adopt(CGPathCreateCopyByStrokingPath(path, &turn, size / 40, cap, join, 4));
        CGPathGetPathBoundingBox(stroked.get());
    }
    const auto dashed = cf::adopt(
        CGPathCreateCopyByDashingPath(path, nullptr, size / 50, lengths.data(), lengths.size()));
    CGPathGetPathBoundingBox(dashed.get());
    CGPathRelease(_CGPathCreateReversedPath(path));
    CGPathRelease(_CGPathCreateBlendedPath(path, path, 0.5f));
    CGPathRelease(_CGPathCreateVisualizationPath(path, size / 20));
    CGImageRelease(_CGPathCreateVisualizationImage(path, 40 / size));
}

void tessellate(CGPathRef path) {
    const CGRect box = CGPathGetBoundingBox(path);
    const double tolerance = (double{box.size.width} + double{box.size.height}) / 500;
    for (const uint32_t rule : {kXGPathFillWinding, kXGPathFillEvenOdd}) {
        CGRect bounds;
        const auto check = [](void*, const CGPoint* vertices, size_t vertexCount,
                              const uint32_t* indices, size_t indexCount) {
            require(indexCount % 3 == 0 && indexCount > 0);
            for (size_t i = 0; i < indexCount; ++i)
                require(indices[i] < vertexCount && std::isfinite(vertices[indices[i]].x) &&
                        std::isfinite(vertices[indices[i]].y));
        };
        _CGPathTessellate(path, rule, tolerance, check, nullptr, &bounds);
    }
}

void change(CGPathRef path) {
    const auto changed = cf::adopt(CGPathCreateMutableCopy(path));
    CGPathAddLineToPoint(changed.get(), nullptr, 1, 2);
    CGPathAddArcToPoint(changed.get(), nullptr, 5, 6, 7, 3, 2);
    CGPathAddArc(changed.get(), nullptr, 0, 0, 1, 0, 4, false);
    CGPathAddPath(changed.get(), nullptr, path);
    CGPathCloseSubpath(changed.get());
    CGPathGetPathBoundingBox(changed.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    constexpr std::size_t kMostBytes = 2048;
    if (size > kMostBytes)
        return 0;
    HostLogSetThreshold(kHostLogFault);
    const Path path = cf::adopt<CGPathRef>(_CGPathCreateFromBuffer(bytes, size));
    if (!path)
        return 0;
    const auto flat = written(path.get());
    const Path again = cf::adopt<CGPathRef>(_CGPathCreateFromBuffer(flat.data(), flat.size()));
    // Not the same bytes: a rounded rectangle of Skia's whose radii are next to nothing becomes
    // plain.
    const CGRect box = CGPathGetBoundingBox(path.get());
    require(CGRectEqualToRect(CGPathGetBoundingBox(again.get()), box) || !isFinite(box));
    ask(path.get());
    outline(path.get());
    tessellate(path.get());
    change(path.get());
    return 0;
}
