// InkRows.h: rows of four inks for profiles that know three.
#pragma once

#include "Core/Color/RowTransform.h"

namespace cg {

// Leaves out the black of each pixel, which the three others make up: each grows by it, up to all
// of the ink (PostScript Language Reference, third edition, 7.2.4, the other way round).
void foldBlack(RowFormat format, const void* in, void* out, std::size_t pixelCount);

// Puts in no black behind three inks.
void addNoBlack(RowFormat format, const void* in, void* out, std::size_t pixelCount);

} // namespace cg
