// DeviceStroke.cpp: pens and dashes of user space, applied to paths in device space.

#include "Core/Context/DeviceStroke.h"

#include "XGLineDash.h"
#include "XGPath.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <numeric>
#include <span>

namespace cg {

namespace {

using Path = cf::Ref<CGPathRef>;

// How far a transform may be from keeping shapes and still count as doing so: a ten-thousandth of
// the line width is less than a pixel shows.
constexpr double kShapeTolerance = 1e-4;

// Whether lengths in all directions grow alike and right angles stay right.
bool keepsShapes(const CGAffineTransform& transform) {
    const double a = transform.a, b = transform.b, c = transform.c, d = transform.d;
    const double xLength = a * a + b * b;
    const double yLength = c * c + d * d;
    const double tolerance = kShapeTolerance * std::max(xLength, yLength);
    return tolerance > 0 && std::fabs(xLength - yLength) <= tolerance &&
           std::fabs(a * c + b * d) <= tolerance;
}

// ---- Dashes

// A phase within two periods of the pattern, which covers patterns of odd count, whose second
// period swaps dashes and gaps. Keeps huge phases in range when they are scaled.
CGFloat reducedPhase(std::span<const CGFloat> lengths, CGFloat phase) {
    const double period = 2 * std::accumulate(lengths.begin(), lengths.end(), 0.0);
    return period > 0 ? static_cast<CGFloat>(std::fmod(phase, period)) : phase;
}

Path dashedByScaled(CGPathRef path, XGLineDashRef dash, CGFloat scale) {
    const std::span lengths(XGLineDashGetLengths(dash), XGLineDashGetCount(dash));
    const std::unique_ptr<CGFloat[]> scaled(new (std::nothrow) CGFloat[lengths.size()]);
    if (!scaled)
        return nullptr;
    std::ranges::transform(lengths, scaled.get(), [scale](CGFloat each) { return each * scale; });
    const CGFloat phase = reducedPhase(lengths, XGLineDashGetPhase(dash)) * scale;
    return cf::adopt(
        CGPathCreateCopyByDashingPath(path, nullptr, phase, scaled.get(), lengths.size()));
}

// The path as the state's dash leaves it, in a space whose unit is 1 / `scale` of user space. A
// dash that cannot be applied leaves the line solid.
Path dashed(XGGStateRef state, CGPathRef path, CGFloat scale) {
    const XGLineDashRef dash = XGGStateGetLineDash(state);
    if (!dash)
        return cf::retain(path);
    const Path pieces = scale == 1
                            ? cf::adopt(static_cast<CGPathRef>(_CGPathCreateDashedPath(path, dash)))
                            : dashedByScaled(path, dash, scale);
    return pieces ? pieces : cf::retain(path);
}

Path outlined(XGGStateRef state, CGPathRef path, CGFloat width, const CGAffineTransform* mapping) {
    return cf::adopt(CGPathCreateCopyByStrokingPath(path, mapping, width, XGGStateGetLineCap(state),
                                                    XGGStateGetLineJoin(state),
                                                    XGGStateGetMiterLimit(state)));
}

// ---- Transforms that do not keep shapes

// User space enlarged so that its unit is about a pixel: outlines are made to the precision that a
// unit needs, and that must be the device's.
struct PenSpace {
    CGFloat scale = 1; // From user space.
    CGAffineTransform toDevice = {1, 0, 0, 1, 0, 0};
    CGAffineTransform fromDevice = {1, 0, 0, 1, 0, 0};
};

std::optional<PenSpace> penSpaceOf(const CGAffineTransform& ctm) {
    const CGFloat scale = std::max(std::hypot(ctm.a, ctm.b), std::hypot(ctm.c, ctm.d));
    if (!std::isfinite(scale) || !(scale > 0))
        return std::nullopt;
    const auto toDevice = CGAffineTransformScale(ctm, 1 / scale, 1 / scale);
    const auto fromDevice = inverseOf(toDevice);
    if (!fromDevice)
        return std::nullopt;
    return PenSpace{scale, toDevice, *fromDevice};
}

DeviceStroke strokeInPenSpace(XGGStateRef state, CGPathRef path) {
    const auto space = penSpaceOf(*XGGStateGetCombinedCTM(state));
    if (!space)
        return {};
    const Path inPenSpace = cf::adopt(CGPathCreateCopyByTransformingPath(path, &space->fromDevice));
    const Path pieces = dashed(state, inPenSpace.get(), space->scale);
    const CGFloat width = XGGStateGetLineWidth(state) * space->scale;
    // The thinnest line has no shape that a transform could change.
    if (width == 0)
        return {cf::adopt(CGPathCreateCopyByTransformingPath(pieces.get(), &space->toDevice)),
                StrokeForm::Line, 0};
    return {outlined(state, pieces.get(), width, &space->toDevice), StrokeForm::Outline, 0};
}

} // namespace

std::optional<CGAffineTransform> inverseOf(const CGAffineTransform& transform) {
    const CGAffineTransform inverse = CGAffineTransformInvert(transform);
    const CGFloat fields[] = {inverse.a, inverse.b, inverse.c, inverse.d, inverse.tx, inverse.ty};
    const bool isFinite =
        std::ranges::all_of(fields, [](CGFloat field) { return std::isfinite(field); });
    return isFinite ? std::optional(inverse) : std::nullopt;
}

DeviceStroke deviceStroke(XGGStateRef state, CGPathRef path) {
    const CGAffineTransform& ctm = *XGGStateGetCombinedCTM(state);
    if (!keepsShapes(ctm))
        return strokeInPenSpace(state, path);
    const CGFloat scale = _CGAffineTransfromExtractScale(ctm).a;
    return {dashed(state, path, scale), StrokeForm::Line, XGGStateGetLineWidth(state) * scale};
}

cf::Ref<CGPathRef> strokedOutline(XGGStateRef state, CGPathRef path) {
    DeviceStroke stroke = deviceStroke(state, path);
    if (!stroke.path || stroke.form == StrokeForm::Outline)
        return std::move(stroke.path);
    return outlined(state, stroke.path.get(), stroke.width, nullptr);
}

} // namespace cg
