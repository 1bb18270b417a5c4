// PngFile.h: writes a picture to a PNG file.
#pragma once

#include <CoreGraphics/CGContext.h>

#include <string>

namespace svg {

// Writes what a bitmap context holds. The file appears whole or not at all. On failure `error` says
// why in one line.
bool writePng(const std::string& fileName, CGContextRef context, std::string& error);

} // namespace svg
