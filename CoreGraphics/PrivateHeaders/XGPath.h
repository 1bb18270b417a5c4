/* XGPath: what sibling libraries ask of paths beyond the public functions. */
#pragma once

#include "XGLineDash.h"
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

/** A mutable path with the contours of `path`, the last one first, each from end to start. */
CG_EXPORT CGMutablePathRef _CGPathCreateReversedPath(CGPathRef path);
/** Maps every point of a mutable path in place; the results are not pinned. */
CG_EXPORT void _CGPathConcatCTM(CGMutablePathRef path, CGFloat a, CGFloat b, CGFloat c, CGFloat d,
                                CGFloat tx, CGFloat ty);

/** The fill rule that travels with the path: 1 is even-odd, anything else the winding rule. The
 *  byte is kept as given. An immutable path keeps its rule. */
CG_EXPORT void _CGPathSetEvenOddFill(CGMutablePathRef path, uint8_t flag);
CG_EXPORT bool _CGPathIsEvenOddFill(CGPathRef path);

/** Whether the first and the last of at least two stored points are exactly equal. Close elements
 *  are not looked at. */
CG_EXPORT bool _CGPathIsClosed(CGPathRef path);
/** Whether every segment is a line along an axis; true without segments. An arc that
 *  CGPathAddArcToPoint made is no segment that it can judge: that aborts the process. */
CG_EXPORT bool _CGPathIsRectilinear(CGPathRef path);

/** The address of the rasteriser's own path inside the object; it lives as long as `path` does. */
CG_EXPORT void* _CGPathGetNativeObject(CGPathRef path);

/** All points of a segment that CGPathApply hands over, the end point of the previous element
 *  first: `count` receives 2 for a line, 3 for a quadratic, 4 for a cubic and 0 for a close. For a
 *  move the answer is its own point, and `count` is left unwritten. */
CG_EXPORT CGPoint* _CGPathElementGetAllPoints(const CGPathElement* element, uint32_t* count);

/** The pieces of `path` that `dash` leaves, as a mutable path; NULL as for
 *  CGPathCreateCopyByDashingPath. */
CG_EXPORT CGMutablePathRef _CGPathCreateDashedPath(CGPathRef path, XGLineDashRef dash);

/** Whether the path is a circle within 1 %, of four cubics or of eight quadratics: one contour,
 *  closed or not, of either direction. `circle`, when given, then receives the square around it. */
CG_EXPORT bool _CGPathICantBelieveItsNotACircle(CGPathRef path, CGRect* circle);

/** Samples the segment of an element that CGPathApply hands over at `count` even steps, from its
 *  start up to but not including its end, and answers the place after the last point written. NULL
 *  for a move, a close, or when there is nowhere to write. */
CG_EXPORT CGPoint* _CGPathSegmentEvaluate(const CGPathElement* element, CGPoint* points,
                                          uint32_t count);

/** A place where a line crosses a path. */
typedef struct XGPathIntersection {
    CGPoint point;
    uint32_t element;  /**< Which of the elements that CGPathApply hands over, from 0. */
    CGFloat parameter; /**< Where on that element's segment: 0 at its start, 1 at its end. */
} XGPathIntersection;

/** Stores the places where the endless line through `p0` and `p1` crosses or touches `path`, in the
 *  path's order, up to `capacity` of them, and answers how many it stored. What a close draws
 * counts as a segment; a point that two segments share is found once, as the second one's start; a
 * segment that lies in the line is found by its start alone. 0 without a path, somewhere to store,
 * or two points. */
CG_EXPORT size_t _CGPathLineIntersection(CGPathRef path, XGPathIntersection* results,
                                         size_t capacity, CGPoint p0, CGPoint p1);

/** Whether filling `path`, by either rule, is filling rectangles along the axes that do not
 * overlap: every contour is one, open or closed, or encloses nothing. If so `count`, when given,
 * receives how many there are, and `rects`, when given, the first `capacity` of them, sorted by
 * their smallest x. False also for points that are not finite. */
CG_EXPORT bool _CGPathCanBeFilledByRects(CGPathRef path, CGRect* rects, size_t capacity,
                                         size_t* count);
/** Whether rectangles along the axes add up to the stroke of `path`: it runs along the axes, caps
 *  are butt or square, and joins miters that a right angle does not exceed. */
CG_EXPORT bool _CGPathCanBeStrokedByRects(CGPathRef path, CGLineCap cap, CGLineJoin join,
                                          CGFloat miterLimit);

/** The path whose points lie at the share `t` of the way from those of `from` to those of `to`; the
 *  two have the same elements, otherwise the answer is NULL. `t` may lie outside of 0…1. */
CG_EXPORT CGPathRef _CGPathCreateBlendedPath(CGPathRef from, CGPathRef to, CGFloat t);

enum { kXGPathFillWinding = 0, kXGPathFillEvenOdd = 1 };

/** Receives triangles: three indices each, into the call's own vertices. */
typedef void (*XGPathTessellateFunction)(void* info, const CGPoint* vertices, size_t vertexCount,
                                         const uint32_t* indices, size_t indexCount);

/** How far a chord may lie off a curve, in the path's units, where _CGPathTessellate is not told:
 * 0.5 at first. To be changed before threads tessellate. */
CG_EXPORT double _CGPathDefaultTessellateTolerance;

/** Hands the inside of `path` to `function` as triangles that do not overlap, in batches; crossing
 *  edges are resolved. Open contours count as closed. `fillRule` is one of the two above; another
 *  aborts the process. Chords keep within `tolerance`, in the path's units, of the curves; 0 or
 * less and NaN stand for the default. `bounds`, when given, receives the rectangle around the
 * triangles' corners, the null rectangle without any. False, and no call, without a path, a
 * function or memory for the sweep, and for points that are not finite. */
CG_EXPORT bool _CGPathTessellate(CGPathRef path, uint32_t fillRule, double tolerance,
                                 XGPathTessellateFunction function, void* info, CGRect* bounds);

/** Writes a path into memory of the process, to be read by the next function, and answers how many
 *  bytes it takes; with a NULL buffer it only does the latter. 0 for a NULL path. */
CG_EXPORT size_t _CGPathWriteToBuffer(CGPathRef path, void* buffer);
/** A path like the one written into a buffer of `length` bytes, mutable if that was. Nothing beyond
 *  the length is read. Bytes that are no path, with a warning, make an empty path that takes its
 *  mutability from the last four; fewer than four make NULL. */
CG_EXPORT CGMutablePathRef _CGPathCreateFromBuffer(const void* buffer, size_t length);
/** Prints the path's elements for debugging. */
CG_EXPORT void _CGPathDump(CGPathRef path);

/** `path` with marks of `markSize` units on its points and a line from each control point to the
 *  ends next to it, to be looked at when stroked: a diamond where a contour starts, a square where
 * a segment ends, a circle around each control point. 0 or less leaves the marks out. An immutable
 *  path, filled by the winding rule. NULL without a path and for points or a size that are not
 *  finite. */
CG_EXPORT CGPathRef _CGPathCreateVisualizationPath(CGPathRef path, CGFloat markSize);
/** A picture of the same at `scale` pixels a unit, y up: the inside gray, the outline black,
 * handles and control points blue, points red; marks are 7 pixels wide whatever the scale. It
 * covers the bounds of all points and 5 pixels around them, in premultiplied device RGB, clear
 * where nothing is. NULL for a path without elements and a scale that is not positive; also, after
 * a log line, for points that are not finite, without memory, and where a side would take 16384
 * pixels or more. */
CG_EXPORT CGImageRef _CGPathCreateVisualizationImage(CGPathRef path, CGFloat scale);

CG_END_DECLS
