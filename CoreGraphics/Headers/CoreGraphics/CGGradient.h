/* CGGradient.h: colours at places along a line, and the way from each to the next. */
#pragma once

#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

typedef struct CGGradient* CGGradientRef;

/** Whether the end colours go on beyond the ends; may be or-ed. */
CG_OPTIONS(uint32_t, CGGradientDrawingOptions) {
    kCGGradientDrawsBeforeStartLocation = 1 << 0,
    kCGGradientDrawsAfterEndLocation = 1 << 1
};

CG_END_DECLS
