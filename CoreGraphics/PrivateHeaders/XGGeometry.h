/* XGGeometry: what sibling libraries ask of geometry beyond the public functions. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

/** The point and the size that are nowhere: both components +infinity. */
CG_EXPORT const CGPoint XGPointNull;
CG_EXPORT const CGSize XGSizeNull;

/** Whether either component is infinite or NaN. */
CG_EXPORT bool XGPointIsNull(CGPoint point);
CG_EXPORT bool XGSizeIsNull(CGSize size);

CG_EXPORT CGFloat XGPointDistance(CGPoint a, CGPoint b);
/** Whether `point` lies on the segment from `a` to `b`, within a rounding error. The segment's
 * range is tested on x alone: on a vertical one every point of the line passes. */
CG_EXPORT bool XGPointIsOnLine(CGPoint point, CGPoint a, CGPoint b);

/** What the transform maps to `point` or `size`; the argument itself when it is singular. */
CG_EXPORT CGPoint XGPointApplyInverseAffineTransform(CGPoint point, CGAffineTransform transform);
CG_EXPORT CGSize XGSizeApplyInverseAffineTransform(CGSize size, CGAffineTransform transform);
/** CGRectApplyAffineTransform by the inverse; a singular transform is not looked for. */
CG_EXPORT CGRect XGRectApplyInverseAffineTransform(CGRect rect, CGAffineTransform transform);

/** Origin and size multiplied by the factors. */
CG_EXPORT CGRect XGRectScale(CGRect rect, CGFloat sx, CGFloat sy);
/** The rectangle of the proportions of `aspect`, centred on `bounds`, that just fits inside, or
 * just covers it. Sizes of 0 are not looked for: they give infinities or NaNs. */
CG_EXPORT CGRect XGRectMakeWithAspectRatioInsideRect(CGSize aspect, CGRect bounds);
CG_EXPORT CGRect XGRectMakeWithAspectRatioOutsideRect(CGSize aspect, CGRect bounds);
/** The bounds of what remains of `rect` once `minus` is taken away; CGRectNull when nothing does.
 */
CG_EXPORT CGRect XGRectBoundsOfRectMinusRect(CGRect rect, CGRect minus);

/** Whether the rectangles overlap or touch at a minimum edge; `common`, unless NULL, then receives
 *  the area that they share. Null and infinite rectangles are not special. */
CG_EXPORT bool _CGRectFastIntersection(const CGRect* a, const CGRect* b, CGRect* common);

CG_END_DECLS
