/* CGShading.h: colour transitions computed by a function, along a line or between two circles. */
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGShading* CGShadingRef;

/* A shading gives every place a parameter and asks its function, of one input, for the colour
 * there: the components of a colour of the space, opacity last. The parameter goes from the least
 * value of the function's domain at the start to the greatest at the end (0 to 1 without a domain).
 * Where an end extends, its colour goes on beyond it; elsewhere nothing is painted. Points and
 * radii are in user space. Space and function are retained; NULL results when one is missing or
 * memory runs out. Deliberate: an end extends only when its argument is exactly 1. */

/** Colours along the line from `start` to `end`, the same at right angles to it. */
CG_EXPORT CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                            CGFunctionRef function, int extendStart, int extendEnd);
/** Colours from circle to circle, whose centres and radii change evenly from the first to the last;
 *  later ones cover earlier ones. */
CG_EXPORT CGShadingRef CGShadingCreateRadial(CGColorSpaceRef space, CGPoint start,
                                             CGFloat startRadius, CGPoint end, CGFloat endRadius,
                                             CGFunctionRef function, int extendStart,
                                             int extendEnd);
CG_EXPORT CFTypeID CGShadingGetTypeID(void);
CG_EXPORT CGShadingRef CGShadingRetain(CGShadingRef shading);
CG_EXPORT void CGShadingRelease(CGShadingRef shading);

CG_END_DECLS
