// CGFontRecord.h: what a font is made of.
#pragma once

#include "XGFont.h"
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGFont.h>
#include <FontManager/FMFont.h>

#include <memory>
#include <mutex>

namespace cg {

struct ReleaseFMFont {
    void operator()(FMFontRef font) const { FMFontRelease(font); }
};
using FMFontPtr = std::unique_ptr<FMFont, ReleaseFMFont>;

} // namespace cg

// Immutable, but for the variations, which are made when they are first asked for.
struct CGFont {
    CFRuntimeBase base;
    cg::FMFontPtr font;
    const FMFontMetrics* metrics = nullptr; // The font's own, there as long as it is.
    std::once_flag variationsOnce;
    cf::Ref<CFDictionaryRef> variations;
};
