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

CG_END_DECLS
