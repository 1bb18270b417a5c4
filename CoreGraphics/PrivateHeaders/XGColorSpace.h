/* XGColorSpace: comparing colour spaces, and what colours of a space may hold. */
#pragma once

#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

/** The device's spaces without a reference of the caller's; immortal. */
CG_EXPORT CGColorSpaceRef XGColorSpaceGetDeviceGray(void);
CG_EXPORT CGColorSpaceRef XGColorSpaceGetDeviceRGB(void);
CG_EXPORT CGColorSpaceRef XGColorSpaceGetDeviceCMYK(void);

/** The sRGB space, made the first time by its name; NULL as long as it cannot be made. */
CG_EXPORT CGColorSpaceRef XGColorSpaceGetSRGB(void);
/** Whether the space was made by the name kCGColorSpaceSRGB; the same profile by other means does
 *  not count. */
CG_EXPORT bool XGColorSpaceIsSRGB(CGColorSpaceRef space);

/** Whether the models, the numbers of components and the bases are equal. Calibration, tables and
 *  names do not count: all RGB spaces are equal. NULL equals nothing. */
CG_EXPORT bool XGColorSpaceEqualToColorSpace(CGColorSpaceRef a, CGColorSpaceRef b);

/** Writes components of a colour of `space`, clamped, into `out`, which may be `in`. A gray space
 *  reads and writes two values (the opacity as well), RGB and Lab three, CMYK four, a pattern space
 *  one, other spaces none. Lab takes a lightness of 0 to 1 and a* and b* of -100 to 100. */
CG_EXPORT void XGColorSpaceClampComponents(CGColorSpaceRef space, const CGFloat* in, CGFloat* out);

/** The colour that a drawing starts with in `space`: opaque black. NULL for spaces without one
 *  (Lab). */
CG_EXPORT CGColorRef XGColorSpaceCopyDefaultColor(CGColorSpaceRef space);

CG_END_DECLS
