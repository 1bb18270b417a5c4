// CGPathVisualization.cpp: showing how a path is made: its points, control points and handles.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

#include "Core/Object/Diagnostics.h"
#include "PathElements.h"

#include <include/core/SkCanvas.h>
#include <include/core/SkPaint.h>

#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

// What is drawn beside the outline. Marks are open to the eye by their form alone: a contour starts
// in a diamond, segments end in squares, and control points are discs.
class Skeleton {
public:
    explicit Skeleton(float markSize) : radius_(markSize / 2) {}

    void addPath(const SkPath& path) {
        const SkPoint* points = SkPathPriv::PointData(path);
        for (const uint8_t verb : cg::verbsOf(path)) {
            addElement(verb, points);
            points += cg::pointCount(verb);
        }
    }

    SkPath handles, corners, controls;

private:
    // `own` begins with the element's own points; those of the one before lie in front of it.
    void addElement(uint8_t verb, const SkPoint* own) {
        const std::size_t count = cg::pointCount(verb);
        if (verb == SkPath::kMove_Verb) {
            markStart(own[0]);
        } else if (count > 0) {
            if (count > 1)
                addHandles(own, count);
            markEnd(own[count - 1]);
        }
    }

    // From each end to the control point next to it, which is one for both unless there are two.
    void addHandles(const SkPoint* own, std::size_t count) {
        for (std::size_t i = 0; i + 1 < count; ++i)
            markControl(own[i]);
        addLine(own[-1], own[0]);
        addLine(own[count - 2], own[count - 1]);
    }

    void addLine(SkPoint from, SkPoint to) {
        handles.moveTo(from);
        handles.lineTo(to);
    }
    bool hasMarks() const { return radius_ > 0; }
    void markStart(SkPoint p) {
        if (hasMarks())
            corners.addPoly({{p.fX + radius_, p.fY},
                             {p.fX, p.fY + radius_},
                             {p.fX - radius_, p.fY},
                             {p.fX, p.fY - radius_}},
                            true);
    }
    void markEnd(SkPoint p) {
        if (hasMarks())
            corners.addRect(SkRect::MakeLTRB(p.fX, p.fY, p.fX, p.fY).makeOutset(radius_, radius_));
    }
    void markControl(SkPoint p) {
        if (hasMarks())
            controls.addCircle(p.fX, p.fY, radius_);
    }

    float radius_;
};

// ---- The picture

constexpr float kMarkSizeInPixels = 7;
constexpr float kMarginInPixels = 5;
constexpr float kMostPixelsOnASide = 1 << 14;

constexpr SkColor kInside = 0x30808080, kOutline = 0xFF000000, kHandle = 0xFF4080FF,
                  kCorner = 0xFFD02020, kControl = 0xFF2060D0;

void drawPath(SkCanvas& canvas, const SkPath& path, SkColor color, SkPaint::Style style) {
    SkPaint paint;
    paint.setAntiAlias(true);
    paint.setColor(color);
    paint.setStyle(style);
    paint.setStrokeWidth(1);
    canvas.drawPath(path, paint);
}

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Pixels = std::unique_ptr<void, Free>;

// Rows of 4 bytes a pixel, as their size says.
CGImageRef createImage(Pixels pixels, std::size_t width, std::size_t height) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto release = [](void*, const void* memory, size_t) {
        std::free(const_cast<void*>(memory));
    };
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, pixels.get(), 4 * width * height, release));
    if (!provider)
        return nullptr;
    (void)pixels.release(); // The provider's now.
    return CGImageCreate(width, height, 8, 32, 4 * width, space.get(),
                         kCGImageAlphaPremultipliedLast, provider.get(), nullptr, false,
                         kCGRenderingIntentDefault);
}

// `path` is in pixels, its corner at (0, 0).
CGImageRef createPicture(const SkPath& path, int width, int height) {
    const auto info = SkImageInfo::Make(width, height, kRGBA_8888_SkColorType, kPremul_SkAlphaType);
    Pixels pixels(std::calloc(info.computeMinByteSize(), 1));
    const auto canvas =
        pixels ? SkCanvas::MakeRasterDirect(info, pixels.get(), info.minRowBytes()) : nullptr;
    if (!canvas) {
        CG_LOG_ERROR("no memory for a picture of %d by %d pixels", width, height);
        return nullptr;
    }
    Skeleton skeleton(kMarkSizeInPixels);
    skeleton.addPath(path);
    drawPath(*canvas, path, kInside, SkPaint::kFill_Style);
    drawPath(*canvas, path, kOutline, SkPaint::kStroke_Style);
    drawPath(*canvas, skeleton.handles, kHandle, SkPaint::kStroke_Style);
    drawPath(*canvas, skeleton.controls, kControl, SkPaint::kFill_Style);
    drawPath(*canvas, skeleton.corners, kCorner, SkPaint::kFill_Style);
    return createImage(std::move(pixels), static_cast<std::size_t>(width),
                       static_cast<std::size_t>(height));
}

} // namespace

CGPathRef _CGPathCreateVisualizationPath(CGPathRef path, CGFloat markSize) {
    if (!path || !path->path.isFinite() || !std::isfinite(markSize))
        return nullptr;
    const CGMutablePathRef shown = cg::createPath(0);
    if (!shown)
        return nullptr;
    Skeleton skeleton(markSize);
    skeleton.addPath(path->path);
    shown->path = path->path;
    shown->path.setFillType(SkPathFillType::kWinding);
    for (const SkPath* part : {&skeleton.handles, &skeleton.corners, &skeleton.controls})
        shown->path.addPath(*part);
    cg::settle(shown->path);
    return shown;
}

CGImageRef _CGPathCreateVisualizationImage(CGPathRef path, CGFloat scale) {
    if (!path || !cg::hasElements(path->path) || !(scale > 0))
        return nullptr;
    // Rows run down, the path's y up.
    SkPath scaled = path->path.makeTransform(SkMatrix::Scale(scale, -scale));
    const SkRect bounds = scaled.getBounds().makeOutset(kMarginInPixels, kMarginInPixels);
    if (!scaled.isFinite() || !(bounds.width() < kMostPixelsOnASide) ||
        !(bounds.height() < kMostPixelsOnASide)) {
        CG_LOG_WARNING("a picture of [%p] would be too large", static_cast<const void*>(path));
        return nullptr;
    }
    scaled.offset(-bounds.left(), -bounds.top());
    return createPicture(scaled, static_cast<int>(std::ceil(bounds.width())),
                         static_cast<int>(std::ceil(bounds.height())));
}
