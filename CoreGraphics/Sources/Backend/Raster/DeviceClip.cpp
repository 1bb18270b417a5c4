// DeviceClip.cpp: a clipping's rectangle and paths as a surface's clip.

#include "Backend/Raster/DeviceClip.h"

#include "XGPath.h"
#include <CoreFoundation/CFArray.h>

#include "Backend/Raster/ImagePixels.h"
#include "Backend/Raster/SkiaConversions.h"
#include "include/core/SkBitmap.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

namespace cg {

namespace {

CFIndex countOf(CFArrayRef paths) {
    return paths ? CFArrayGetCount(paths) : 0;
}

CGPathRef pathAt(CFArrayRef paths, CFIndex index) {
    return static_cast<CGPathRef>(CFArrayGetValueAtIndex(paths, index));
}

// How many paths the two share from the first on: a copied state shares its paths.
CFIndex commonPaths(CFArrayRef paths, CFArrayRef outerPaths) {
    const CFIndex most = std::min(countOf(paths), countOf(outerPaths));
    CFIndex common = 0;
    while (common < most && pathAt(paths, common) == pathAt(outerPaths, common))
        ++common;
    return common;
}

constexpr float kUnbounded = std::numeric_limits<float>::infinity();

// A clipping's rectangle is shrunk to the bounds of each path that it is intersected with. An edge
// that the paths impose would be antialiased once by the path and once more by the rectangle: it
// counts as unbounded here, and so does one that the outer clip imposes.
SkRect ownEdges(CGRect rect, CFArrayRef paths, XGClippingRef outer) {
    SkRect edges = toSkia(rect);
    SkRect imposed = {-kUnbounded, -kUnbounded, kUnbounded, kUnbounded};
    const auto impose = [&imposed](const SkRect& by) {
        imposed.setLTRB(std::max(imposed.left(), by.left()), std::max(imposed.top(), by.top()),
                        std::min(imposed.right(), by.right()),
                        std::min(imposed.bottom(), by.bottom()));
    };
    for (CFIndex index = 0; index < countOf(paths); ++index)
        impose(toSkia(CGPathGetBoundingBox(pathAt(paths, index))));
    if (outer)
        impose(toSkia(XGClippingGetBoundingBox(outer)));

    constexpr float far = 1 << 24; // Beyond every surface.
    if (edges.left() <= imposed.left())
        edges.fLeft = -far;
    if (edges.top() <= imposed.top())
        edges.fTop = -far;
    if (edges.right() >= imposed.right())
        edges.fRight = far;
    if (edges.bottom() >= imposed.bottom())
        edges.fBottom = far;
    return edges;
}

// A mask whose pixels are in use.
struct MaskInUse {
    cf::Ref<CGImageRef> image;
    ImagePixels pixels;
};

// The gray of a clipping's mask, which has been baked, as coverage that lies where the image has
// it. Empty when it cannot be read.
SkBitmap coverageOf(CGImageRef mask) {
    auto pixels = ImagePixels::of(mask, nullptr, kCGRenderingIntentDefault);
    if (!pixels || pixels->pixmap().colorType() != kGray_8_SkColorType)
        return {};
    const SkPixmap gray = pixels->pixmap();
    auto* const use = new (std::nothrow) MaskInUse{cf::retain(mask), std::move(*pixels)};
    SkBitmap coverage;
    if (!use ||
        !coverage.installPixels(
            SkImageInfo::MakeA8(gray.width(), gray.height()), gray.writable_addr(), gray.rowBytes(),
            [](void*, void* kept) { delete static_cast<MaskInUse*>(kept); }, use))
        return {};
    coverage.setImmutable();
    return coverage;
}

PlacedImage placed(const SkBitmap& coverage, const SkRect& rect) {
    return {.pixels = coverage.pixmap(),
            .rect = rect,
            .toDevice = turnedAround(rect),
            .sampling = SkSamplingOptions(SkFilterMode::kLinear),
            .bitmap = &coverage};
}

// A clipping's coverage over a rectangle of whole device pixels. Empty when it cannot be had.
SkBitmap over(const SkRect& box, XGClippingRef clipping) {
    const SkBitmap coverage = coverageOf(XGClippingGetMask(clipping));
    SkBitmap bitmap;
    const SkIRect area = box.roundOut();
    if (coverage.isNull() ||
        !bitmap.tryAllocPixelsFlags(SkImageInfo::MakeA8(area.width(), area.height()),
                                    SkBitmap::kZeroPixels_AllocFlag))
        return {};
    // Its upper edge is at row 0: y counts down from there.
    Surface surface(bitmap.pixmap(), area.bottom(), {area.left(), 0});
    surface.drawImage(placed(coverage, toSkia(XGClippingGetMaskRect(clipping))), SkPaint());
    return bitmap;
}

// A mask set inside a transparency layer contains the one from outside, the lesser of the two in
// each place, and that one will be applied to the layer again: what is left is their quotient.
SkBitmap quotient(XGClippingRef clipping, XGClippingRef outerClipping) {
    const SkRect box = toSkia(XGClippingGetMaskRect(clipping));
    SkBitmap mask = over(box, clipping);
    const SkBitmap outer = over(box, outerClipping);
    if (mask.isNull() || outer.isNull())
        return {};
    for (int y = 0; y < mask.height(); ++y) {
        std::uint8_t* const row = mask.getAddr8(0, y);
        const std::uint8_t* const outerRow = outer.getAddr8(0, y);
        for (int x = 0; x < mask.width(); ++x) {
            const int by = outerRow[x];
            row[x] = by == 0
                         ? std::uint8_t{0}
                         : static_cast<std::uint8_t>(std::min(255, (row[x] * 255 + by / 2) / by));
        }
    }
    mask.setImmutable();
    return mask;
}

// Clips all when a mask cannot be read.
void clipToMask(Surface& surface, XGClippingRef clipping, XGClippingRef outer) {
    const SkBitmap coverage = XGClippingGetMask(outer) ? quotient(clipping, outer)
                                                       : coverageOf(XGClippingGetMask(clipping));
    if (coverage.isNull())
        surface.clipOut();
    else
        surface.clipMask(placed(coverage, toSkia(XGClippingGetMaskRect(clipping))));
}

void applyRectAndPaths(Surface& surface, XGClippingRef clipping, XGClippingRef outer,
                       Antialias antialias) {
    const CFArrayRef paths = XGClippingGetPaths(clipping);
    if (!paths && !outer) {
        surface.clipRect(toSkia(XGClippingGetBoundingBox(clipping)), antialias);
        return;
    }
    surface.clipRect(ownEdges(XGClippingGetBoundingBox(clipping), paths, outer), antialias);
    const CFIndex first = outer ? commonPaths(paths, XGClippingGetPaths(outer)) : 0;
    for (CFIndex index = first; index < countOf(paths); ++index)
        surface.clipPath(*static_cast<const SkPath*>(_CGPathGetNativeObject(pathAt(paths, index))),
                         antialias);
}

} // namespace

void applyClipping(Surface& surface, XGClippingRef clipping, XGClippingRef outer,
                   Antialias antialias) {
    surface.resetClip();
    if (!clipping)
        return;
    XGClippingBake(clipping);
    if (XGClippingIsEmpty(clipping)) {
        surface.clipOut();
        return;
    }
    applyRectAndPaths(surface, clipping, outer, antialias);
    const CGImageRef mask = XGClippingGetMask(clipping);
    if (mask && mask != XGClippingGetMask(outer))
        clipToMask(surface, clipping, outer);
}

} // namespace cg
