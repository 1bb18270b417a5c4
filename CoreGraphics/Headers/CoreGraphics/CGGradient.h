/* CGGradient.h: colours at places along a line, and the way from each to the next. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

typedef struct CGGradient* CGGradientRef;

/** Whether the end colours go on beyond the ends; may be or-ed. */
CG_OPTIONS(uint32_t, CGGradientDrawingOptions){kCGGradientDrawsBeforeStartLocation = 1 << 0,
                                               kCGGradientDrawsAfterEndLocation = 1 << 1};

/* Gradients are immutable. Locations run from 0 to 1 and need no order: stops are sorted, and those
 * of equal location keep theirs, which makes a hard edge. Where no stop lies at 0 or at 1, the
 * outermost one is repeated there. Between stops, each component and the opacity go linearly from
 * one value to the next. NULL locations spread the stops evenly. */

/** A gradient of `count` stops, two or more, in `space`; `components` has for each stop the
 *  components of a colour of that space, opacity last. NULL when the space or the components are
 *  missing, when there are fewer than two stops, when the space has more than four components, or
 *  when memory runs out. */
CG_EXPORT CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space,
                                                            const CGFloat* components,
                                                            const CGFloat* locations, size_t count);
/** The same of an array of CGColor objects, each of which is converted to `space`; NULL also when
 *  one of them cannot be. */
CG_EXPORT CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef space, CFArrayRef colors,
                                                   const CGFloat* locations);
CG_EXPORT CFTypeID CGGradientGetTypeID(void);
CG_EXPORT CGGradientRef CGGradientRetain(CGGradientRef gradient);
CG_EXPORT void CGGradientRelease(CGGradientRef gradient);

CG_END_DECLS
