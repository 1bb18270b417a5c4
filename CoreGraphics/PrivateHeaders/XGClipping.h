/* XGClipping: the clip region of a graphics state, in device space: what lies inside a bounding
 * rectangle, inside every one of a list of paths, and as far as a mask lets paint through. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

typedef struct XGClipping* XGClippingRef;

/** A clipping with the null rectangle and no paths. */
CG_EXPORT XGClippingRef XGClippingCreateEmpty(void);
CG_EXPORT XGClippingRef XGClippingCreateWithRect(CGRect rect);
/** The inside of `path` by the given rule. The bounding box becomes the rectangle; when that is
 *  empty no path is kept. NULL without a path. */
CG_EXPORT XGClippingRef XGClippingCreateWithPath(CGPathRef path, bool evenOdd);
/** `mask` in `rect` of a space that `matrix` maps to device space. The rectangle is the bounds
 *  there; when that is empty no mask is kept. NULL without a mask. */
CG_EXPORT XGClippingRef XGClippingCreateWithMask(CGAffineTransform matrix, CGRect rect,
                                                 CGImageRef mask);
/** A clipping that can be changed without changing `clipping`; the paths themselves are shared. */
CG_EXPORT XGClippingRef XGClippingCreateCopy(XGClippingRef clipping);
CG_EXPORT XGClippingRef XGClippingRetain(XGClippingRef clipping);
CG_EXPORT void XGClippingRelease(XGClippingRef clipping);

/* An intersection that leaves nothing empties the clipping: the zero rectangle and no paths, which
 * clips everything away. The same happens when memory runs out: drawing too little is seen and does
 * no harm, drawing outside the clip may. */

CG_EXPORT void XGClippingIntersectWithRect(XGClippingRef clipping, CGRect rect);
CG_EXPORT void XGClippingIntersectWithPath(XGClippingRef clipping, CGPathRef path, bool evenOdd);

/** One mask is left: what was there and the new one are drawn into a gray image over the bounding
 *  box, each pixel the lesser coverage of the two. */
CG_EXPORT void XGClippingIntersectWithMask(XGClippingRef clipping, CGAffineTransform matrix,
                                           CGRect rect, CGImageRef mask);
/** Makes the mask, if any, an opaque gray image along the axes of device space, 255 where paint
 *  goes through. A mask that is one already stays. */
CG_EXPORT void XGClippingBake(XGClippingRef clipping);

/** Whether nothing is inside. NULL clips nothing and is not empty. */
CG_EXPORT bool XGClippingIsEmpty(XGClippingRef clipping);
/** The rectangle; the zero rectangle for NULL. */
CG_EXPORT CGRect XGClippingGetBoundingBox(XGClippingRef clipping);
/** The CGPaths, each with its own fill rule, or NULL when there are none. Lent. */
CG_EXPORT CFArrayRef XGClippingGetPaths(XGClippingRef clipping);
/** The mask, lent; NULL when there is none. */
CG_EXPORT CGImageRef XGClippingGetMask(XGClippingRef clipping);
/** Where the mask lies in the space of its matrix; the null rectangle without one. */
CG_EXPORT CGRect XGClippingGetMaskRect(XGClippingRef clipping);
/** The mask's space to device space; the identity without one. */
CG_EXPORT CGAffineTransform XGClippingGetMaskMatrix(XGClippingRef clipping);
/** The rectangle when it alone is the clip, else the null rectangle. */
CG_EXPORT CGRect XGClippingGetSimpleRect(XGClippingRef clipping);

/** Whether both clip by the same rectangle, equal paths and equal masks. A clipping equals itself;
 *  only one NULL is unequal, two are equal. */
CG_EXPORT bool XGClippingEqualToClipping(XGClippingRef a, XGClippingRef b);

CG_END_DECLS
