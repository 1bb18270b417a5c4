/* XGVector: plane vectors, and their polar form. */
#pragma once

#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

/** Laid out like a CGPoint: horizontal, then vertical. */
typedef struct XGVector {
    CGFloat x;
    CGFloat y;
} XGVector;

CG_EXPORT const XGVector XGVectorZero;

/** Whether both components are exactly equal; -0 equals 0, NaN equals nothing. */
CG_EXPORT bool XGVectorEqualToVector(XGVector a, XGVector b);
CG_EXPORT bool XGVectorIsZero(XGVector vector);

CG_EXPORT XGVector XGVectorAdd(XGVector a, XGVector b);
CG_EXPORT XGVector XGVectorScalarMultiply(XGVector vector, CGFloat factor);
CG_EXPORT CGFloat XGVectorDotProduct(XGVector a, XGVector b);

/** The vector of `length` at `angle` radians from the x axis. */
CG_EXPORT XGVector XGVectorMakePolar(CGFloat length, CGFloat angle);
/** The length and angle that XGVectorMakePolar makes the vector of; each output may be NULL. The
 *  angle is within a quarter turn of the x axis: a vector to the left has a negative length. */
CG_EXPORT void XGVectorGetPolar(XGVector vector, CGFloat* length, CGFloat* angle);

CG_END_DECLS
