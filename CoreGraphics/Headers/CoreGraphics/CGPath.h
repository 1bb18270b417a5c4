/* CGPath.h: outlines made of lines and curves.
 *
 * Building: every function that adds to a path takes an optional transform `m`, through which each
 * given point goes first. The stored coordinates are then pinned to ±536869920, so that arithmetic
 * on them cannot overflow; NaN is stored as it is. A path that is NULL or immutable is left alone.
 * A segment needs a current point: on an empty path it is ignored, with a warning. After a close,
 * the next segment starts where the closed contour did.
 *
 * Memory: creating a path answers NULL when memory runs out. Its points lie in the rasteriser's own
 * storage, which ends the process when it cannot grow. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

/** A path that can still be added to, and one that is only read. */
typedef struct CGPath* CGMutablePathRef;
typedef const struct CGPath* CGPathRef;

/** How two segments of a stroke meet. */
CG_ENUM(int32_t, CGLineJoin) {
    kCGLineJoinMiter = 0, /**< A sharp corner, up to the miter limit. */
    kCGLineJoinRound = 1,
    kCGLineJoinBevel = 2
};

/** How a stroke ends. */
CG_ENUM(int32_t, CGLineCap) {
    kCGLineCapButt = 0,
    kCGLineCapRound = 1, /**< Half a disc beyond the end point. */
    kCGLineCapSquare = 2 /**< Half the line width beyond the end point. */
};

/** The kinds of element, with the number of points that each hands over. */
CG_ENUM(int32_t, CGPathElementType) {
    kCGPathElementMoveToPoint = 0,         /**< 1 */
    kCGPathElementAddLineToPoint = 1,      /**< 1 */
    kCGPathElementAddQuadCurveToPoint = 2, /**< 2: control point, end point */
    kCGPathElementAddCurveToPoint = 3,     /**< 3: two control points, end point */
    kCGPathElementCloseSubpath = 4         /**< 0 */
};

/** One element of a path; `points` is lent for the call that it is given to. */
typedef struct CGPathElement {
    CGPathElementType type;
    CGPoint* points;
} CGPathElement;

/** Is called for each element in turn. */
typedef void (*CGPathApplierFunction)(void* info, const CGPathElement* element);

/** What painting a path does. */
CG_ENUM(int32_t, CGPathDrawingMode) {
    kCGPathFill = 0,       /**< Fills by the non-zero winding rule. */
    kCGPathEOFill = 1,     /**< Fills by the even-odd rule. */
    kCGPathStroke = 2,
    kCGPathFillStroke = 3, /**< Fills, then strokes over it. */
    kCGPathEOFillStroke = 4
};

/* ---- Making paths --------------------------------------------------------------------------- */

CG_EXPORT CFTypeID CGPathGetTypeID(void);
CG_EXPORT CGPathRef CGPathRetain(CGPathRef path);
CG_EXPORT void CGPathRelease(CGPathRef path);

/** An empty path that can be added to, filled by the non-zero winding rule. */
CG_EXPORT CGMutablePathRef CGPathCreateMutable(void);
/** An immutable copy and one that can be added to. Both share the points of `path` until one of
 *  them changes. */
CG_EXPORT CGPathRef CGPathCreateCopy(CGPathRef path);
CG_EXPORT CGMutablePathRef CGPathCreateMutableCopy(CGPathRef path);
/** The same with every point mapped through `m`, when it is given. */
CG_EXPORT CGPathRef CGPathCreateCopyByTransformingPath(CGPathRef path, const CGAffineTransform* m);
CG_EXPORT CGMutablePathRef
CGPathCreateMutableCopyByTransformingPath(CGPathRef path, const CGAffineTransform* m);

/** Paths of one figure, as the Add function of the same name makes it. Deliberately still mutable:
 *  callers cast the result and go on adding. */
CG_EXPORT CGPathRef CGPathCreateWithRect(CGRect rect, const CGAffineTransform* m);
CG_EXPORT CGPathRef CGPathCreateWithEllipseInRect(CGRect rect, const CGAffineTransform* m);
CG_EXPORT CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth,
                                                CGFloat cornerHeight, const CGAffineTransform* m);

/** The outline of a stroke along `path`, immutable and filled by the winding rule. The stroke is
 *  made in the path's own space, its outline then mapped through `m`. A width that is not above 0
 *  is 0.0001. A cap or a join that does not exist is reported, and is butt or miter. */
CG_EXPORT CGPathRef CGPathCreateCopyByStrokingPath(CGPathRef path, const CGAffineTransform* m,
                                                   CGFloat lineWidth, CGLineCap lineCap,
                                                   CGLineJoin lineJoin, CGFloat miterLimit);
/** The pieces of `path` that a dash of `count` lengths leaves, the first one drawn, starting
 *  `phase` into the pattern; then mapped through `m`. NULL when there are no lengths, one is
 *  negative or not finite, all are 0, or more than a million pieces would come out. */
CG_EXPORT CGPathRef CGPathCreateCopyByDashingPath(CGPathRef path, const CGAffineTransform* m,
                                                  CGFloat phase, const CGFloat* lengths,
                                                  size_t count);

/* ---- Building ------------------------------------------------------------------------------- */

/** Starts a contour at (x, y). A move that directly follows another replaces it. */
CG_EXPORT void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x,
                                 CGFloat y);
CG_EXPORT void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x,
                                    CGFloat y);
/** A quadratic Bézier segment to (x, y) with the control point (cpx, cpy). */
CG_EXPORT void CGPathAddQuadCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m,
                                         CGFloat cpx, CGFloat cpy, CGFloat x, CGFloat y);
/** A cubic Bézier segment to (x, y) with the control points (cp1x, cp1y) and (cp2x, cp2y). */
CG_EXPORT void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m,
                                     CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                                     CGFloat x, CGFloat y);
/** Closes the current contour. Closing it again, or an empty path, adds nothing. */
CG_EXPORT void CGPathCloseSubpath(CGMutablePathRef path);
/** Moves to the first point and adds a line to each further one. */
CG_EXPORT void CGPathAddLines(CGMutablePathRef path, const CGAffineTransform* m,
                              const CGPoint* points, size_t count);
/** A closed contour from (minX, minY) over (maxX, minY), (maxX, maxY) and (minX, maxY), whatever
 *  the signs of the rectangle's size. */
CG_EXPORT void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect);
CG_EXPORT void CGPathAddRects(CGMutablePathRef path, const CGAffineTransform* m,
                              const CGRect* rects, size_t count);
/** Four cubics that start at (maxX, midY) and run towards maxY; their radial error is least, 0.02 %
 *  of the radius. */
CG_EXPORT void CGPathAddEllipseInRect(CGMutablePathRef path, const CGAffineTransform* m,
                                      CGRect rect);
/** A rectangle with elliptic corners, started and directed like the ellipse. Corner sizes are taken
 *  between 0 and half the rectangle's; when either is 0, the corners are sharp. */
CG_EXPORT void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect,
                                    CGFloat cornerWidth, CGFloat cornerHeight);
/** The arc around (x, y) from `startAngle` to `endAngle`, in cubics of a quarter turn at most,
 *  joined by a line when the current point lies off its start. Clockwise, as seen with y upwards,
 *  is the direction in which the angle decreases. Angles a whole turn apart give a full circle,
 *  equal ones no more than the start point. Angles that are not finite add nothing, with a warning;
 *  beyond ±65536, where single precision no longer tells one turn's angles well apart, whole turns
 *  are dropped. */
CG_EXPORT void CGPathAddArc(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y,
                            CGFloat radius, CGFloat startAngle, CGFloat endAngle, bool clockwise);
/** The arc from `startAngle` that sweeps `delta`, clockwise when that is negative. */
CG_EXPORT void CGPathAddRelativeArc(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x,
                                    CGFloat y, CGFloat radius, CGFloat startAngle, CGFloat delta);
/** A line and an arc of `radius` that touches the lines from the current point to (x1, y1) and from
 *  there to (x2, y2); where no such arc exists, a line to (x1, y1). */
CG_EXPORT void CGPathAddArcToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x1,
                                   CGFloat y1, CGFloat x2, CGFloat y2, CGFloat radius);
/** Appends all contours of `other`, mapped through `m` but not pinned. Appending a path to itself
 *  does nothing. */
CG_EXPORT void CGPathAddPath(CGMutablePathRef path, const CGAffineTransform* m, CGPathRef other);
/** Replaces the path by the part of its area that lies in `rect`, with the rule by which that part
 *  is to be filled. Deliberately also on immutable paths; no other thread may be using them. False,
 *  with the path as it was, when a point is not finite or the operation does not come out. */
CG_EXPORT bool CGPathIntersectWithRect(CGMutablePathRef path, CGRect rect);

/* ---- Reading -------------------------------------------------------------------------------- */

/** Whether the path is NULL or has no elements. */
CG_EXPORT bool CGPathIsEmpty(CGPathRef path);
/** The point stored last; (0, 0) without one. */
CG_EXPORT CGPoint CGPathGetCurrentPoint(CGPathRef path);
/** Whether both are the same object, or have the same elements and fill rule; -0 equals 0. */
CG_EXPORT bool CGPathEqualToPath(CGPathRef path1, CGPathRef path2);
/** Whether the path is one rectangle along the axes; `rect`, when given, then receives it. */
CG_EXPORT bool CGPathIsRect(CGPathRef path, CGRect* rect);
/** Calls `function` for each element in order, each with points of its own for the time of the
 *  call. An arc made by CGPathAddArcToPoint arrives as two or more quadratics. The function may
 *  change or release the path: what is reported is the path as it was. */
CG_EXPORT void CGPathApply(CGPathRef path, void* info, CGPathApplierFunction function);
/** The smallest rectangle around all stored points, control points included; CGRectNull for a path
 *  without points, and the zero rectangle when a point is not finite. */
CG_EXPORT CGRect CGPathGetBoundingBox(CGPathRef path);
/** The smallest rectangle around the outline, to the extrema of its curves; CGRectNull for a path
 *  without points or with one that is not finite. */
CG_EXPORT CGRect CGPathGetPathBoundingBox(CGPathRef path);
/** Whether the area of the path holds `point`, mapped through `m`, by the even-odd or the winding
 *  rule; the rule that the path carries is not looked at. Open contours count as closed. */
CG_EXPORT bool CGPathContainsPoint(CGPathRef path, const CGAffineTransform* m, CGPoint point,
                                   bool eoFill);

CG_END_DECLS
