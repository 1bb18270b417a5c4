/* CGColorTransform: single colours into one colour space.
 *
 * Immutable, so that any number of threads use one at the same time. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

typedef struct CGColorTransform* CGColorTransformRef;

/** A transform into `space`, which is retained. There are no `options` yet: NULL. NULL without a
 *  space. */
CG_EXPORT CGColorTransformRef CGColorTransformCreate(CGColorSpaceRef space,
                                                     CFDictionaryRef options);

CG_EXPORT CFTypeID CGColorTransformGetTypeID(void);
CG_EXPORT CGColorTransformRef CGColorTransformRetain(CGColorTransformRef transform);
CG_EXPORT void CGColorTransformRelease(CGColorTransformRef transform);

/** The space that colours are brought into. Lent. */
CG_EXPORT CGColorSpaceRef CGColorTransformGetColorSpace(CGColorTransformRef transform);

/** The colour in the transform's space: the colour itself, retained, when its space equals that
 *  one, else a new one. NULL when there is no way between the spaces. */
CG_EXPORT CGColorRef CGColorTransformConvertColor(CGColorTransformRef transform, CGColorRef color,
                                                  CGColorRenderingIntent intent);

/** Converts the components of a colour of `space`, without opacity, from `in` into `out`, which has
 *  room for the components of the transform's space and may be `in`. Both are as a CGColor holds
 *  them, clamped. False, with `out` left alone, when there is no way between the spaces. */
CG_EXPORT bool CGColorTransformConvertColorComponents(CGColorTransformRef transform,
                                                      CGColorSpaceRef space,
                                                      CGColorRenderingIntent intent,
                                                      const CGFloat* in, CGFloat* out);

CG_END_DECLS
