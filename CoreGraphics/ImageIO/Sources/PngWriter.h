// PngWriter.h: PNG files, by libpng.
#pragma once

#include "ImageToWrite.h"

namespace imageio {

class ByteSink;

// Gray and RGB of 8 and 16 bits with and without opacity, which is straight in the file; opaque
// indexed images keep their table. False, after a line in the log, when that fails.
bool writePng(const ImageToWrite& image, ByteSink& sink);

} // namespace imageio
