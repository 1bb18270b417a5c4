/* CGGeometry.h: points, sizes, rectangles and vectors, and the functions on them.
 *
 * Plain values of 32-bit floats: nothing here allocates (but the dictionary forms) or locks, and no
 * function reports an error. Where a function names no rule for infinities and NaNs, they flow
 * through its arithmetic.
 *
 * A rectangle of negative width or height stands for the same area as its standardised form. It is
 * null when its origin is not finite, whatever its size. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

/** A place, in the units of the space that it is given in. */
typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;

/** A width and a height. */
typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;

/** A distance and a direction. */
typedef struct CGVector {
    CGFloat dx;
    CGFloat dy;
} CGVector;

/** An area with sides along the axes. */
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

/** The sides of a rectangle, as CGRectDivide takes them. */
CG_ENUM(uint32_t, CGRectEdge){CGRectMinXEdge = 0, CGRectMinYEdge = 1, CGRectMaxXEdge = 2,
                              CGRectMaxYEdge = 3};

CG_EXPORT const CGPoint CGPointZero;
CG_EXPORT const CGSize CGSizeZero;
CG_EXPORT const CGRect CGRectZero;
/** The rectangle that is nowhere: its origin is (+infinity, +infinity), its size 0. */
CG_EXPORT const CGRect CGRectNull;
/** The rectangle without bounds: the largest float wide and high, around the origin. */
CG_EXPORT const CGRect CGRectInfinite;

CG_INLINE CGPoint CGPointMake(CGFloat x, CGFloat y) {
    CGPoint point;
    point.x = x;
    point.y = y;
    return point;
}

CG_INLINE CGSize CGSizeMake(CGFloat width, CGFloat height) {
    CGSize size;
    size.width = width;
    size.height = height;
    return size;
}

CG_INLINE CGVector CGVectorMake(CGFloat dx, CGFloat dy) {
    CGVector vector;
    vector.dx = dx;
    vector.dy = dy;
    return vector;
}

CG_INLINE CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect rect;
    rect.origin.x = x;
    rect.origin.y = y;
    rect.size.width = width;
    rect.size.height = height;
    return rect;
}

/* ---- Points and sizes ---------------------------------------------------------------------- */

/** Whether both components are exactly equal; -0 equals 0, NaN equals nothing. */
CG_EXPORT bool CGPointEqualToPoint(CGPoint a, CGPoint b);
CG_EXPORT bool CGSizeEqualToSize(CGSize a, CGSize b);

/* ---- Edges of a rectangle ------------------------------------------------------------------ */

/** The smaller and the larger coordinate on an axis, whatever the sign of the size. */
CG_EXPORT CGFloat CGRectGetMinX(CGRect rect);
CG_EXPORT CGFloat CGRectGetMaxX(CGRect rect);
CG_EXPORT CGFloat CGRectGetMinY(CGRect rect);
CG_EXPORT CGFloat CGRectGetMaxY(CGRect rect);
/** The coordinate of the centre. */
CG_EXPORT CGFloat CGRectGetMidX(CGRect rect);
CG_EXPORT CGFloat CGRectGetMidY(CGRect rect);
/** The size without its sign. */
CG_EXPORT CGFloat CGRectGetWidth(CGRect rect);
CG_EXPORT CGFloat CGRectGetHeight(CGRect rect);

/* ---- Questions about rectangles ------------------------------------------------------------ */

/** Whether the origin is infinite or NaN on either axis. */
CG_EXPORT bool CGRectIsNull(CGRect rect);
/** Whether the rectangle is null or has no width or no height. */
CG_EXPORT bool CGRectIsEmpty(CGRect rect);
/** Whether the standardised rectangle is exactly CGRectInfinite. */
CG_EXPORT bool CGRectIsInfinite(CGRect rect);
/** Whether the standardised rectangles are exactly equal. */
CG_EXPORT bool CGRectEqualToRect(CGRect a, CGRect b);
/** Whether `point` lies inside; points on the minimum edges do, those on the maximum edges do not.
 */
CG_EXPORT bool CGRectContainsPoint(CGRect rect, CGPoint point);
/** Whether `inner` lies in `outer`, edges that stick out by a rounding error included. A null
 * `outer` contains nothing, a null `inner` lies in everything else. */
CG_EXPORT bool CGRectContainsRect(CGRect outer, CGRect inner);
/** Whether the areas overlap. Rectangles that only touch do not; two with the same minimum edge
 *  overlap on that axis even if one has no size there. */
CG_EXPORT bool CGRectIntersectsRect(CGRect a, CGRect b);

/* ---- Rectangles made of rectangles --------------------------------------------------------- */

/** The same area with a width and a height that are not negative. */
CG_EXPORT CGRect CGRectStandardize(CGRect rect);
/** The common area; CGRectNull when there is none or an argument is null. Rectangles that touch
 *  have a common area without width or height. */
CG_EXPORT CGRect CGRectIntersection(CGRect a, CGRect b);
/** The smallest rectangle around both. When one is null it is the other, just as given. */
CG_EXPORT CGRect CGRectUnion(CGRect a, CGRect b);
/** The standardised rectangle moved by (dx, dy); a null one as given. */
CG_EXPORT CGRect CGRectOffset(CGRect rect, CGFloat dx, CGFloat dy);
/** The standardised rectangle with its vertical sides moved inwards by `dx` and its horizontal ones
 *  by `dy` (outwards when negative); CGRectNull when it would turn inside out. */
CG_EXPORT CGRect CGRectInset(CGRect rect, CGFloat dx, CGFloat dy);
/** The smallest rectangle of whole numbers around the standardised one. Edges that are a rounding
 *  error away from a whole number snap to it. */
CG_EXPORT CGRect CGRectIntegral(CGRect rect);
/** Cuts a rectangle in two, `amount` away from `edge` (at most the extent, at least 0). `slice`
 *  receives the part at the edge, `remainder` the other; each may be NULL. A null rectangle makes
 *  both CGRectNull; an unknown edge leaves both untouched. */
CG_EXPORT void CGRectDivide(CGRect rect, CGRect* slice, CGRect* remainder, CGFloat amount,
                            CGRectEdge edge);

/* ---- Dictionary forms ---------------------------------------------------------------------- */

/** A dictionary of numbers of type kCFNumberCGFloatType under the keys "X", "Y", "Width" and
 *  "Height", as far as the value has them. The caller owns it; NULL when memory runs out. */
CG_EXPORT CFDictionaryRef CGPointCreateDictionaryRepresentation(CGPoint point);
CG_EXPORT CFDictionaryRef CGSizeCreateDictionaryRepresentation(CGSize size);
CG_EXPORT CFDictionaryRef CGRectCreateDictionaryRepresentation(CGRect rect);
/** Reads such a dictionary. False when it is NULL, lacks a key, or holds a value that is no number
 * or not exactly a float; fields read up to there are written (of a rectangle the size comes
 * first). */
CG_EXPORT bool CGPointMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGPoint* point);
CG_EXPORT bool CGSizeMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGSize* size);
CG_EXPORT bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rect);

CG_END_DECLS
