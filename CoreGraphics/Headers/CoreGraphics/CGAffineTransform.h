/* CGAffineTransform.h: affine transforms, and points, sizes and rectangles mapped by them.
 *
 * A point (x, y) maps to (a·x + c·y + tx, b·x + d·y + ty). Arithmetic is single precision. */
#pragma once

#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGAffineTransform {
    CGFloat a;
    CGFloat b;
    CGFloat c;
    CGFloat d;
    CGFloat tx;
    CGFloat ty;
} CGAffineTransform;

/** The transform that leaves every point where it is: {1, 0, 0, 1, 0, 0}. */
CG_EXPORT const CGAffineTransform CGAffineTransformIdentity;

CG_EXPORT CGAffineTransform CGAffineTransformMake(CGFloat a, CGFloat b, CGFloat c, CGFloat d,
                                                  CGFloat tx, CGFloat ty);
CG_EXPORT CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
CG_EXPORT CGAffineTransform CGAffineTransformMakeTranslation(CGFloat tx, CGFloat ty);
/** A turn by `angle` radians from the x axis towards the y axis. Sines and cosines that are a
 *  rounding error away from a multiple of one half snap to it, so that quarter turns are exact. */
CG_EXPORT CGAffineTransform CGAffineTransformMakeRotation(CGFloat angle);

/** The transform that applies `first`, then `second`. */
CG_EXPORT CGAffineTransform CGAffineTransformConcat(CGAffineTransform first,
                                                    CGAffineTransform second);
/** The transform that translates, scales or rotates, then applies `transform`. */
CG_EXPORT CGAffineTransform CGAffineTransformTranslate(CGAffineTransform transform, CGFloat tx,
                                                       CGFloat ty);
CG_EXPORT CGAffineTransform CGAffineTransformScale(CGAffineTransform transform, CGFloat sx,
                                                   CGFloat sy);
CG_EXPORT CGAffineTransform CGAffineTransformRotate(CGAffineTransform transform, CGFloat angle);
/** The transform that undoes `transform`. A singular one is not looked for: its inverse holds
 *  infinities or NaNs. */
CG_EXPORT CGAffineTransform CGAffineTransformInvert(CGAffineTransform transform);

/** Whether all six fields are exactly those of the identity. */
CG_EXPORT bool CGAffineTransformIsIdentity(CGAffineTransform transform);
/** Whether all six fields are exactly equal; -0 equals 0, NaN equals nothing. */
CG_EXPORT bool CGAffineTransformEqualToTransform(CGAffineTransform a, CGAffineTransform b);

CG_EXPORT CGPoint CGPointApplyAffineTransform(CGPoint point, CGAffineTransform transform);
/** The size mapped as a vector: the translation does not count, and the result may be negative. */
CG_EXPORT CGSize CGSizeApplyAffineTransform(CGSize size, CGAffineTransform transform);
/** The standardised bounds of the mapped rectangle. Null and infinite rectangles are not special.
 */
CG_EXPORT CGRect CGRectApplyAffineTransform(CGRect rect, CGAffineTransform transform);

/** Internal: the transform's scale alone, {sqrt(a² + c²), 0, 0, sqrt(b² + d²), 0, 0}; exactly the
 *  identity stays itself. */
CG_EXPORT CGAffineTransform _CGAffineTransfromExtractScale(CGAffineTransform transform);

CG_END_DECLS
