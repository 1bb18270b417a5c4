/* CGShading.h: colour transitions computed by a function, along a line or between two circles. */
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGShading* CGShadingRef;

CG_END_DECLS
