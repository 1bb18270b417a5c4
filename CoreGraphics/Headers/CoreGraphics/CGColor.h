/* CGColor.h: colours, immutable: components in a colour space, opacity last. */
#pragma once

#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGPattern.h>

CG_BEGIN_DECLS

typedef struct CGColor* CGColorRef;

CG_END_DECLS
