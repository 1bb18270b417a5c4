/* CGColorSpace.h: what the components of a colour mean. */
#pragma once

#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

typedef struct CGColorSpace* CGColorSpaceRef;

/** How colours outside the destination's range are mapped into it (ICC.1, rendering intents). */
CG_ENUM(int32_t, CGColorRenderingIntent) {
    kCGRenderingIntentDefault = 0,
    kCGRenderingIntentAbsoluteColorimetric = 1,
    kCGRenderingIntentRelativeColorimetric = 2,
    kCGRenderingIntentPerceptual = 3,
    kCGRenderingIntentSaturation = 4
};

/** What kind of components a colour space has. */
CG_ENUM(int32_t, CGColorSpaceModel) {
    kCGColorSpaceModelUnknown = -1,
    kCGColorSpaceModelMonochrome = 0,
    kCGColorSpaceModelRGB = 1,
    kCGColorSpaceModelCMYK = 2,
    kCGColorSpaceModelLab = 3,
    kCGColorSpaceModelDeviceN = 4,
    kCGColorSpaceModelIndexed = 5,
    kCGColorSpaceModelPattern = 6,
    kCGColorSpaceModelXYZ = 7
};

CG_END_DECLS
