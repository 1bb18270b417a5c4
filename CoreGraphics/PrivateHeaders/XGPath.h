/* XGPath: what sibling libraries ask of paths beyond the public functions. */
#pragma once

#include <CoreGraphics/CGPath.h>

#include "XGLineDash.h"

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

/** Writes a path into memory of the process, to be read by the next function, and answers how many
 *  bytes it takes; with a NULL buffer it only does the latter. 0 for a NULL path. */
CG_EXPORT size_t _CGPathWriteToBuffer(CGPathRef path, void* buffer);
/** A path like the one written into a buffer of `length` bytes, mutable if that was. Nothing beyond
 *  the length is read. Bytes that are no path, with a warning, make an empty path that takes its
 *  mutability from the last four; fewer than four make NULL. */
CG_EXPORT CGMutablePathRef _CGPathCreateFromBuffer(const void* buffer, size_t length);
/** Prints the path's elements for debugging. */
CG_EXPORT void _CGPathDump(CGPathRef path);

CG_END_DECLS
