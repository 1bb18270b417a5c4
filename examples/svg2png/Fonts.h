// Fonts.h: the fonts that a document names.
#pragma once

#include "Handles.h"
#include "Style.h"

namespace svg {

using FontRef = std::unique_ptr<std::remove_pointer_t<CGFontRef>, Releaser<CGFontRelease>>;

// The first of the style's families that is there, in the style's weight and slant. NULL on a
// system without fonts.
FontRef fontOf(const Style& style);

} // namespace svg
