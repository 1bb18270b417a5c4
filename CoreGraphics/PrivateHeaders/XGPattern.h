/* XGPattern: the parts of a pattern, and drawing its cell. */
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGPattern.h>

CG_BEGIN_DECLS

/** Has the pattern draw one cell into `context`, in whatever space that has. */
CG_EXPORT void XGPatternDraw(CGPatternRef pattern, CGContextRef context);

/** Whether the cell sets its own colours. */
CG_EXPORT bool XGPatternIsColored(CGPatternRef pattern);
/** Whether the pattern is said to leave nothing uncovered; at first it is not. */
CG_EXPORT bool XGPatternIsOpaque(CGPatternRef pattern);
CG_EXPORT void XGPatternSetIsOpaque(CGPatternRef pattern, bool opaque);
/** The cell in pattern space; the zero rectangle for NULL. */
CG_EXPORT CGRect XGPatternGetBounds(CGPatternRef pattern);
/** The distances from cell to cell in pattern space. */
CG_EXPORT CGSize XGPatternGetStepSize(CGPatternRef pattern);
/** Pattern space to the context's base space; the identity for NULL. */
CG_EXPORT CGAffineTransform XGPatternGetMatrix(CGPatternRef pattern);
CG_EXPORT CGPatternTiling XGPatternGetTiling(CGPatternRef pattern);
/** A number kept for the caller, 1 at first; 0 for NULL. */
CG_EXPORT CGFloat XGPatternGetScale(CGPatternRef pattern);
CG_EXPORT void XGPatternSetScale(CGPatternRef pattern, CGFloat scale);

/** Whether info, colouring, opacity, bounds, matrix, steps and tiling are equal and the scales
 *  nearly so. The callbacks do not count. NULL equals nothing. */
CG_EXPORT bool XGPatternEqualToPattern(CGPatternRef a, CGPatternRef b);

CG_END_DECLS
