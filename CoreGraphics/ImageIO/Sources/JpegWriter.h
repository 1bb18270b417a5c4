// JpegWriter.h: JPEG files, by libjpeg.
#pragma once

#include "ImageToWrite.h"

namespace imageio {

class ByteSink;

// Gray, RGB as YCbCr, and CMYK as it is, inverted as programs that write it do. What is not opaque
// lies over the background colour. False, after a line in the log, when that fails.
bool writeJpeg(const ImageToWrite& image, ByteSink& sink);

} // namespace imageio
