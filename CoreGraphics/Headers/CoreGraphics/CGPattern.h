/* CGPattern.h: a drawing repeated as a paint. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGPattern* CGPatternRef;
struct CGContext;

/** How the distance between cells fits the device's pixels. */
CG_ENUM(int32_t, CGPatternTiling) {
    kCGPatternTilingNoDistortion = 0,
    kCGPatternTilingConstantSpacingMinimalDistortion = 1,
    kCGPatternTilingConstantSpacing = 2
};

/** Draws one cell into `context`, in the pattern's own space. */
typedef void (*CGPatternDrawPatternCallback)(void* info, struct CGContext* context);
/** The pattern is going away: frees `info`. */
typedef void (*CGPatternReleaseInfoCallback)(void* info);

/** What a pattern calls; `version` must be 0. `releaseInfo` may be NULL. */
typedef struct CGPatternCallbacks {
    unsigned int version;
    CGPatternDrawPatternCallback drawPattern;
    CGPatternReleaseInfoCallback releaseInfo;
} CGPatternCallbacks;

CG_END_DECLS
