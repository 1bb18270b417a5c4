/* CGPath.h: outlines made of lines and curves. */
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

CG_END_DECLS
