// CGAffineTransform.cpp: affine transforms and what they map.

#include "XGGeometry.h"
#include <CoreGraphics/CGAffineTransform.h>

#include "Core/Geometry/Interval.h"
#include "Core/Geometry/NearlyEqual.h"

#include <algorithm>
#include <cmath>

namespace {

// Beyond this a float has too few bits behind the point for a half to mean anything.
constexpr CGFloat kLargestToSnap = 419430.4f;

CGFloat snapToHalf(CGFloat value) {
    if (std::fabs(value) < kLargestToSnap) {
        const CGFloat rounded = std::round(2 * value) / 2;
        if (cg::nearlyEqual(rounded, value))
            value = rounded;
    }
    return value == 0 ? 0 : value; // Never -0.
}

CGFloat determinant(const CGAffineTransform& t) {
    return t.a * t.d - t.b * t.c;
}

} // namespace

const CGAffineTransform CGAffineTransformIdentity = {1, 0, 0, 1, 0, 0};

CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d, CGFloat tx,
                                        CGFloat ty) {
    return {a, b, c, d, tx, ty};
}

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) {
    return {sx, 0, 0, sy, 0, 0};
}

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty) {
    return {1, 0, 0, 1, tx, ty};
}

CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle) {
    const CGFloat sine = snapToHalf(std::sin(angle));
    const CGFloat cosine = snapToHalf(std::cos(angle));
    return {cosine, sine, -sine, cosine, 0, 0};
}

CGAffineTransform CGAffineTransformConcat(CGAffineTransform first, CGAffineTransform second) {
    return {first.a * second.a + first.b * second.c,
            first.a * second.b + first.b * second.d,
            first.c * second.a + first.d * second.c,
            first.c * second.b + first.d * second.d,
            first.tx * second.a + first.ty * second.c + second.tx,
            first.tx * second.b + first.ty * second.d + second.ty};
}

CGAffineTransform CGAffineTransformTranslate(CGAffineTransform transform, CGFloat tx, CGFloat ty) {
    const CGPoint origin = CGPointApplyAffineTransform({tx, ty}, transform);
    return {transform.a, transform.b, transform.c, transform.d, origin.x, origin.y};
}

CGAffineTransform CGAffineTransformScale(CGAffineTransform transform, CGFloat sx, CGFloat sy) {
    return {sx * transform.a, sx * transform.b, sy * transform.c,
            sy * transform.d, transform.tx,     transform.ty};
}

CGAffineTransform CGAffineTransformRotate(CGAffineTransform transform, CGFloat angle) {
    return CGAffineTransformConcat(CGAffineTransformMakeRotation(angle), transform);
}

CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) {
    const CGFloat k = 1 / determinant(t);
    return {t.d * k,
            -t.b * k,
            -t.c * k,
            t.a * k,
            (t.c * t.ty - t.d * t.tx) * k,
            (t.b * t.tx - t.a * t.ty) * k};
}

bool CGAffineTransformIsIdentity(CGAffineTransform transform) {
    return CGAffineTransformEqualToTransform(transform, CGAffineTransformIdentity);
}

bool CGAffineTransformEqualToTransform(CGAffineTransform a, CGAffineTransform b) {
    return a.a == b.a && a.b == b.b && a.c == b.c && a.d == b.d && a.tx == b.tx && a.ty == b.ty;
}

// Deliberate: a goes with c and b with d, so that sx says how much of either axis ends up along x.
// The lengths of the mapped axes pair a with b; under a turn of unequal scales the two differ, and
// callers count on this one.
CGAffineTransform _CGAffineTransfromExtractScale(CGAffineTransform t) {
    if (CGAffineTransformIsIdentity(t))
        return t;
    const CGFloat sx = static_cast<CGFloat>(std::sqrt(double(t.a * t.a + t.c * t.c)));
    const CGFloat sy = static_cast<CGFloat>(std::sqrt(double(t.b * t.b + t.d * t.d)));
    return CGAffineTransformMakeScale(sx, sy);
}

CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform t) {
    return {t.a * point.x + t.c * point.y + t.tx, t.b * point.x + t.d * point.y + t.ty};
}

CGPoint XGPointApplyInverseAffineTransform(CGPoint point, CGAffineTransform t) {
    const CGFloat det = determinant(t);
    if (det == 0)
        return point;
    const CGFloat x = point.x - t.tx;
    const CGFloat y = point.y - t.ty;
    return {(t.d * x - t.c * y) / det, (t.a * y - t.b * x) / det};
}

CGSize CGSizeApplyAffineTransform(CGSize size, CGAffineTransform t) {
    return {t.a * size.width + t.c * size.height, t.b * size.width + t.d * size.height};
}

CGSize XGSizeApplyInverseAffineTransform(CGSize size, CGAffineTransform t) {
    const CGFloat det = determinant(t);
    if (det == 0)
        return size;
    return {(size.width * t.d - size.height * t.c) / det,
            (size.height * t.a - size.width * t.b) / det};
}

CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform transform) {
    if (transform.b == 0 && transform.c == 0)
        return CGRectStandardize({CGPointApplyAffineTransform(rect.origin, transform),
                                  CGSizeApplyAffineTransform(rect.size, transform)});

    rect = CGRectStandardize(rect);
    const cg::Interval x = cg::horizontal(rect);
    const cg::Interval y = cg::vertical(rect);
    const CGPoint corners[] = {
        CGPointApplyAffineTransform({x.minimum, y.minimum}, transform),
        CGPointApplyAffineTransform({x.maximum, y.minimum}, transform),
        CGPointApplyAffineTransform({x.minimum, y.maximum}, transform),
        CGPointApplyAffineTransform({x.maximum, y.maximum}, transform),
    };
    const auto [left, right] =
        std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
    const auto [low, high] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
    return cg::rectOf({left, right}, {low, high});
}

CGRect XGRectApplyInverseAffineTransform(CGRect rect, CGAffineTransform transform) {
    return CGRectApplyAffineTransform(rect, CGAffineTransformInvert(transform));
}
