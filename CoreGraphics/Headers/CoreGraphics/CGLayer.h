/* CGLayer.h: drawings kept for drawing them again. CGLayerRef stands in CGContext.h.
 *
 * A layer is a bitmap of its own, made up like that of the context it is meant for. Drawing it does
 * not copy its pixels. It belongs to the thread of its context. */
#pragma once

#include <CoreGraphics/CGContext.h>

CG_BEGIN_DECLS

/** A layer of `size`, in pixels, whose fractions are dropped, in the bitmap format and colour space
 *  of `context`. It starts with the pixels at the upper left of `context`, as far as there are any,
 *  and is transparent elsewhere. `auxiliaryInfo` is retained and not looked at. NULL for an empty
 *  size, for contexts without pixels, and when memory runs out. */
CG_EXPORT CGLayerRef CGLayerCreateWithContext(CGContextRef context, CGSize size,
                                              CFDictionaryRef auxiliaryInfo);
CG_EXPORT CFTypeID CGLayerGetTypeID(void);
CG_EXPORT CGLayerRef CGLayerRetain(CGLayerRef layer);
CG_EXPORT void CGLayerRelease(CGLayerRef layer);

/** The context that draws into the layer, lent. */
CG_EXPORT CGContextRef CGLayerGetContext(CGLayerRef layer);
/** The size given at creation. */
CG_EXPORT CGSize CGLayerGetSize(CGLayerRef layer);

/** Draws a layer into `rect` of user space, its first row at the rectangle's largest y, under the
 *  state's alpha, blend mode, clip, shadow and interpolation quality. A layer drawn into its own
 *  context is drawn as it was before. What cannot be read is drawn as a transparent layer, after an
 *  error in the log. Nothing for NULL. */
CG_EXPORT void CGContextDrawLayerInRect(CGContextRef context, CGRect rect, CGLayerRef layer);
/** The same at the layer's size, its lower left corner at `point`. */
CG_EXPORT void CGContextDrawLayerAtPoint(CGContextRef context, CGPoint point, CGLayerRef layer);

CG_END_DECLS
