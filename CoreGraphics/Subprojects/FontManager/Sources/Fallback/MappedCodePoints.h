// MappedCodePoints.h: every code point that a font maps to a glyph.
#pragma once

#include <FontManager/FMBase.h>

#include <cstdint>
#include <vector>

namespace fm {

// Ascending; empty when the face cannot be opened. A face that was closed is closed again: a walk
// over hundreds of fonts keeps no memory.
std::vector<std::uint32_t> mappedCodePoints(FMFontRef font);

} // namespace fm
