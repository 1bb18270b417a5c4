/* CGLayer.h: drawings kept for drawing them again. CGLayerRef stands in CGContext.h. */
#pragma once

#include <CoreGraphics/CGContext.h>
