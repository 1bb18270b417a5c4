// HarfBuzzFunctions.h: what HarfBuzz asks a font, answered by ours.
#pragma once

#include <hb.h>

namespace fm {

// Their font data is an FMFontRef. Made once and immutable.
hb_font_funcs_t* harfBuzzFunctions();

} // namespace fm
