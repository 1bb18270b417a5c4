// PngProperties.h: the metadata of PNG files.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include "ImageHeader.h"
#include "PngSession.h"

namespace imageio {

// The orientation in the file's EXIF data, which may stand behind the pixels; 1 without. `png` has
// read what stands before them.
std::uint32_t pngOrientation(Bytes file, const PngSession& png);
void addPngProperties(Bytes file, CFMutableDictionaryRef properties);

} // namespace imageio
