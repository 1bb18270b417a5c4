/* XGColor: comparing, converting and mixing colours. */
#pragma once

#include <CoreGraphics/CGColor.h>

CG_BEGIN_DECLS

/** Whether the colour has an equal space, exactly these components (opacity included) and, if
 *  `pattern` is given, an equal pattern. */
CG_EXPORT bool XGColorEqualToColorComponents(CGColorRef color, CGColorSpaceRef space,
                                             const CGFloat* components, CGPatternRef pattern);

/** The colour expressed in `space`; the colour itself, retained, when its space is equal. Device
 *  gray, RGB and sRGB convert directly: gray to three equal components, RGB to its luma (ITU-R
 *  BT.709-6, 3.2: 0.2126, 0.7152, 0.0722). Indexed colours go through their table, pattern colours
 *  through their base, all others through the profiles of the two spaces. NULL when no transform
 *  between the two can be made. */
CG_EXPORT CGColorRef XGColorCreateWithColor(CGColorSpaceRef space, CGColorRef color,
                                            CGColorRenderingIntent intent);

/** a × weightA + b × weightB, component by component, in the common space or in device RGB. A
 * colour of opacity below 0.01 does not take part: the other is returned with its opacity weighted.
 * Weights of 1 and 0 give the one colour itself; where a pattern takes part the result is `a`. */
CG_EXPORT CGColorRef XGColorCreateBlendedColor(CGColorRef a, CGColorRef b, CGFloat weightA,
                                               CGFloat weightB);

CG_END_DECLS
