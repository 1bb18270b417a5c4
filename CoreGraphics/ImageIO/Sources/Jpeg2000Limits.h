// Jpeg2000Limits.h: what decoding a JPEG 2000 codestream would set up besides pixels.
#pragma once

#include "Jpeg2000Header.h"

namespace imageio {

// A few bytes of a codestream's headers can cut the picture into precincts and code blocks of next
// to no pixels, in thousands of layers, and a decoder sets up records for all of them before it
// looks for their data. Whether their number is in proportion to the bytes that there are.
bool structuresFit(const Jpeg2000Header& header);

} // namespace imageio
