/* CGPattern.h: a drawing repeated as a paint. */
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGPattern* CGPatternRef;
struct CGContext;

/** How the distance between cells fits the device's pixels. */
CG_ENUM(int32_t, CGPatternTiling){kCGPatternTilingNoDistortion = 0,
                                  kCGPatternTilingConstantSpacingMinimalDistortion = 1,
                                  kCGPatternTilingConstantSpacing = 2};

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

/** A pattern whose cell, `bounds` in pattern space, repeats every `xStep` and `yStep` units of that
 *  space; `matrix` maps pattern space to the base space of the context. The cell of a coloured
 *  pattern sets its own colours, any other is a stencil for the colour that it is painted with. The
 *  callbacks are copied. NULL when they are missing or memory runs out; `info` stays the caller's
 *  then. Deliberate: a pattern is coloured only when `isColored` is exactly 1. */
CG_EXPORT CGPatternRef CGPatternCreate(void* info, CGRect bounds, CGAffineTransform matrix,
                                       CGFloat xStep, CGFloat yStep, CGPatternTiling tiling,
                                       int isColored, const CGPatternCallbacks* callbacks);
CG_EXPORT CFTypeID CGPatternGetTypeID(void);
CG_EXPORT CGPatternRef CGPatternRetain(CGPatternRef pattern);
CG_EXPORT void CGPatternRelease(CGPatternRef pattern);

CG_END_DECLS
