/* CGImageDestination.h: writing images into files. */
#pragma once

#include <ImageIO/ImageIOBase.h>

CG_BEGIN_DECLS

typedef struct CGImageDestination* CGImageDestinationRef;

/** How faithful a lossy format keeps the image: a number from 0, the smallest file, to 1. */
CG_EXTERN const CFStringRef kCGImageDestinationLossyCompressionQuality;
/** The CGColor that shows through where the format knows no opacity; white without it. */
CG_EXTERN const CFStringRef kCGImageDestinationBackgroundColor;

CG_END_DECLS
