// Typefaces.h: fonts as Skia knows them.
#pragma once

#include <CoreGraphics/CGFont.h>

#include "include/core/SkRefCnt.h"
#include "include/core/SkTypeface.h"

namespace cg {

// The typeface of a font, made when it is first drawn with and kept with its FMFont, so that glyphs
// are cached once however many objects a program makes of a font. NULL where it cannot be read.
sk_sp<SkTypeface> typefaceOf(CGFontRef font);

} // namespace cg
