// PngProperties.h: the metadata of PNG files.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include "ImageHeader.h"
#include "PngSession.h"

namespace imageio {

// The orientation in the file's EXIF data, 1 without.
std::uint32_t pngOrientation(const PngSession& png);
void addPngProperties(Bytes file, CFMutableDictionaryRef properties);

} // namespace imageio
