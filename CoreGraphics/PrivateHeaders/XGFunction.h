/* XGFunction: computing functions, and comparing them. */
#pragma once

#include <CoreGraphics/CGFunction.h>

CG_BEGIN_DECLS

/** Computes `out`, as many values as the function's range has dimensions, from the inputs `in`.
 * Does nothing when an argument is missing. A function of more than four inputs must not be
 * computed by two threads at once. */
CG_EXPORT void XGFunctionEvaluate(CGFunctionRef function, const CGFloat* in, CGFloat* out);

/** The same for `count` places one behind the other, each as many values as the function has
 * inputs, into as many results, each as many values as it has outputs. Quicker than one by one for
 * the functions of gradients. */
CG_EXPORT void XGFunctionEvaluateSpan(CGFunctionRef function, const CGFloat* in, size_t count,
                                      CGFloat* out);

/** Whether callbacks, info, dimensions, domain and range are equal. NULL equals nothing. */
CG_EXPORT bool XGFunctionEqualToFunction(CGFunctionRef a, CGFunctionRef b);

CG_END_DECLS
