/* CGColorConversionInfo.h: conversions between colour spaces, made ahead of their use. */
#pragma once

#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

typedef const struct CGColorConversionInfo* CGColorConversionInfoRef;

/** Which way a step of a conversion goes. */
CG_ENUM(uint32_t, CGColorConversionInfoTransformType) {
    kCGColorConversionTransformFromSpace = 0,
    kCGColorConversionTransformToSpace = 1,
    kCGColorConversionTransformApplySpace = 2
};

CG_END_DECLS
