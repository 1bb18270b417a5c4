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

CG_END_DECLS
