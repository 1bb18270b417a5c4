/* XGShading: the parts of a shading. NULL has none: false, NULL, the zero point, 0. */
#pragma once

#include <CoreGraphics/CGShading.h>

CG_BEGIN_DECLS

CG_EXPORT bool XGShadingIsRadial(CGShadingRef shading);
CG_EXPORT bool XGShadingExtendsStart(CGShadingRef shading);
CG_EXPORT bool XGShadingExtendsEnd(CGShadingRef shading);
/** Lent. */
CG_EXPORT CGColorSpaceRef XGShadingGetColorSpace(CGShadingRef shading);
/** Lent. */
CG_EXPORT CGFunctionRef XGShadingGetFunction(CGShadingRef shading);
/** The ends of an axial shading, the centres of a radial one. */
CG_EXPORT CGPoint XGShadingGetStartPoint(CGShadingRef shading);
CG_EXPORT CGPoint XGShadingGetEndPoint(CGShadingRef shading);
/** The radii of a radial shading; 0 of an axial one. */
CG_EXPORT CGFloat XGShadingGetStartRadius(CGShadingRef shading);
CG_EXPORT CGFloat XGShadingGetEndRadius(CGShadingRef shading);

CG_END_DECLS
