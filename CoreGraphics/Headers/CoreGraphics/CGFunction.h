/* CGFunction.h: functions of the caller's own, as shadings use them. */
#pragma once

#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

typedef struct CGFunction* CGFunctionRef;

/** Computes the values `out` of the function at `in`; both arrays have the function's dimensions.
 */
typedef void (*CGFunctionEvaluateCallback)(void* info, const CGFloat* in, CGFloat* out);
/** The function is going away: frees `info`. */
typedef void (*CGFunctionReleaseInfoCallback)(void* info);

/** What a function calls; `version` must be 0. `releaseInfo` may be NULL. */
typedef struct CGFunctionCallbacks {
    unsigned int version;
    CGFunctionEvaluateCallback evaluate;
    CGFunctionReleaseInfoCallback releaseInfo;
} CGFunctionCallbacks;

/** A function from `domainDimension` inputs to `rangeDimension` outputs, which calls the callbacks
 *  (copied) with `info`. `domain` and `range` hold a least and a greatest value for each input and
 *  output, and are copied; NULL leaves that side unlimited. Inputs are limited to the domain (a NaN
 *  becomes its least value), outputs to the range (what is not finite becomes its least value).
 *  NULL when the callbacks or their `evaluate` are missing, when their version is not 0, or when
 *  memory runs out; `info` stays the caller's then. */
CG_EXPORT CGFunctionRef CGFunctionCreate(void* info, size_t domainDimension, const CGFloat* domain,
                                         size_t rangeDimension, const CGFloat* range,
                                         const CGFunctionCallbacks* callbacks);
CG_EXPORT CFTypeID CGFunctionGetTypeID(void);
CG_EXPORT CGFunctionRef CGFunctionRetain(CGFunctionRef function);
CG_EXPORT void CGFunctionRelease(CGFunctionRef function);

CG_END_DECLS
