/* CGBitmapContext.h: contexts that draw into pixels in memory. */
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGImage.h>

CG_BEGIN_DECLS

/** The context no longer needs the pixels that its caller gave. */
typedef void (*CGBitmapContextReleaseDataCallback)(void* releaseInfo, void* data);

CG_END_DECLS
