/* XGGradient: what a gradient is drawn from. */
#pragma once

#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGradient.h>

CG_BEGIN_DECLS

/** The space of the stops' colours. Lent. */
CG_EXPORT CGColorSpaceRef XGGradientGetColorSpace(CGGradientRef gradient);

/** A function from a location in 0 to 1 to the components there, opacity last, each in 0 to 1. Made
 *  the first time that it is asked for. Lent, and of use only as long as the gradient lives, which
 *  it does not retain; shadings made with it do. Exactly at a location that two stops share it is
 *  0. */
CG_EXPORT CGFunctionRef XGGradientGetFunction(CGGradientRef gradient);

/** Whether spaces, functions and stops are equal. NULL equals nothing.
 *  Deliberate: a gradient's function is made for it alone, so that no two gradients are equal. */
CG_EXPORT bool XGGradientEqualToGradient(CGGradientRef a, CGGradientRef b);

CG_END_DECLS
