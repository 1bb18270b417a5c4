/* CGColor.h: colours, immutable: components in a colour space, opacity last. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGPattern.h>

CG_BEGIN_DECLS

typedef struct CGColor* CGColorRef;

/** Names for CGColorGetConstantColor; the text of each is its identifier. */
CG_EXPORT const CFStringRef kCGColorWhite;
CG_EXPORT const CFStringRef kCGColorBlack;
CG_EXPORT const CFStringRef kCGColorClear;

/* Components run from 0 to 1 unless the space says otherwise, and are clamped when a colour is
 * made: a value that is not finite becomes the lower bound. Opacity is clamped in gray spaces only.
 * An object of a foreign object-messaging runtime may stand for a colour in every call: it is asked
 * for its colour by the message "CGColor". */

/** A colour of `space` with components copied from `components`, opacity last: one more than the
 *  space has. NULL when either is missing. */
CG_EXPORT CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components);
/** Colours of the generic gray, RGB and CMYK spaces. */
CG_EXPORT CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha);
CG_EXPORT CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue,
                                             CGFloat alpha);
CG_EXPORT CGColorRef CGColorCreateGenericCMYK(CGFloat cyan, CGFloat magenta, CGFloat yellow,
                                              CGFloat black, CGFloat alpha);
/** A colour that paints with `pattern`. Components as for CGColorCreate: an uncoloured pattern's
 * are those of the base of the pattern space `space`, or of device gray when `space` has no base; a
 *  coloured pattern has its opacity alone, in a pattern space without a base. NULL when an argument
 *  is missing. */
CG_EXPORT CGColorRef CGColorCreateWithPattern(CGColorSpaceRef space, CGPatternRef pattern,
                                              const CGFloat* components);
/** The same colour, retained. */
CG_EXPORT CGColorRef CGColorCreateCopy(CGColorRef color);
/** The same colour at another opacity; a negative one keeps the old. */
CG_EXPORT CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha);
/** Not implemented: logs a fault and aborts. */
CG_EXPORT CGColorRef CGColorCreateCopyByMatchingToColorSpace(CGColorSpaceRef space,
                                                             CGColorRenderingIntent intent,
                                                             CGColorRef color,
                                                             CFDictionaryRef options);
/** Opaque white, opaque black or clear by its name, else NULL. Lent, and the same object each time.
 */
CG_EXPORT CGColorRef CGColorGetConstantColor(CFStringRef name);

CG_EXPORT CFTypeID CGColorGetTypeID(void);
CG_EXPORT CGColorRef CGColorRetain(CGColorRef color);
CG_EXPORT void CGColorRelease(CGColorRef color);

/** Whether components (bit for bit), pattern and space are equal. Two NULLs are equal. */
CG_EXPORT bool CGColorEqualToColor(CGColorRef a, CGColorRef b);

/** The last component. */
CG_EXPORT CGFloat CGColorGetAlpha(CGColorRef color);
/** Lent. */
CG_EXPORT CGColorSpaceRef CGColorGetColorSpace(CGColorRef color);
/** The pattern of a pattern colour, else NULL. Lent. */
CG_EXPORT CGPatternRef CGColorGetPattern(CGColorRef color);
/** How many components there are, opacity included. */
CG_EXPORT size_t CGColorGetNumberOfComponents(CGColorRef color);
/** The components; they live as long as the colour. */
CG_EXPORT const CGFloat* CGColorGetComponents(CGColorRef color);

/* ---- Internal ------------------------------------------------------------------------------ */

/** The colour as red, green, blue and opacity; each output may be NULL. A coloured pattern gives
 *  zeroes after a warning; a colour that cannot be converted gives opaque red after a warning, so
 *  that the mistake is seen. NULL gives zeroes. */
CG_EXPORT void _CGColorGetRGBA(CGColorRef color, CGFloat* red, CGFloat* green, CGFloat* blue,
                               CGFloat* alpha);
/** Whether nothing shows through: the opacity is above 0.999, or the pattern is said to be opaque.
 */
CG_EXPORT bool _CGColorIsOpaque(CGColorRef color);

CG_END_DECLS
