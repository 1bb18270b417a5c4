// ImageToWrite.h: an image with what its caller says of the file.
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGImage.h>

#include <array>
#include <cstdint>
#include <optional>

namespace imageio {

struct ImageToWrite {
    CGImageRef image = nullptr;
    float quality = 0.75f;           // 0 to 1.
    CGColorRef background = nullptr; // Lent; NULL for white.
    double dpiWidth = 0;             // Pixels an inch; 0 when not told.
    double dpiHeight = 0;
    std::uint8_t orientation = 1; // As EXIF counts: 1 to 8.

    bool hasResolution() const { return dpiWidth > 0 && dpiHeight > 0; }
};

// The image as its own properties describe it, or else those of the whole file; both may be NULL.
// What is out of range counts as not told.
ImageToWrite imageToWrite(CGImageRef image, CFDictionaryRef own, CFDictionaryRef ofFile);

// EXIF data, a TIFF stream of big-endian order, whose one tag is the orientation.
std::array<std::uint8_t, 26> exifOfOrientation(std::uint8_t orientation);

} // namespace imageio
