// XGVector.cpp: plane vectors.

#include "XGVector.h"

#include <cmath>

const XGVector XGVectorZero = {0, 0};

bool XGVectorEqualToVector(XGVector a, XGVector b) {
    return a.x == b.x && a.y == b.y;
}

bool XGVectorIsZero(XGVector vector) {
    return vector.x == 0 && vector.y == 0;
}

XGVector XGVectorAdd(XGVector a, XGVector b) {
    return {a.x + b.x, a.y + b.y};
}

XGVector XGVectorScalarMultiply(XGVector vector, CGFloat factor) {
    return {vector.x * factor, vector.y * factor};
}

CGFloat XGVectorDotProduct(XGVector a, XGVector b) {
    return a.x * b.x + a.y * b.y;
}

XGVector XGVectorMakePolar(CGFloat length, CGFloat angle) {
    return {length * std::cos(angle), length * std::sin(angle)};
}

// Deliberate: the arctangent of the ratio, not of the pair. A vector that points left keeps its
// angle within a quarter turn and has a negative length instead; made from the two, it is itself.
void XGVectorGetPolar(XGVector vector, CGFloat* length, CGFloat* angle) {
    if (angle)
        *angle = std::atan(vector.y / vector.x);
    if (length) {
        const CGFloat distance = std::sqrt(vector.x * vector.x + vector.y * vector.y);
        *length = vector.x < 0 ? -distance : distance;
    }
}
