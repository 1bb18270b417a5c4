// ImageReader.h: what each decoder does for the image sources.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include "ImageHeader.h"

namespace imageio {

// The functions of a decoder. They keep nothing between calls, so that any number of threads may
// read one file, and they see all bytes that there are of it.
struct ImageReader {
    // False when the header is damaged or not all there, or of a kind that cannot be decoded.
    bool (*readHeader)(Bytes file, ImageHeader& header);
    // Writes the picture that `header` announced to `pixels`, memory that is not initialised, as
    // far as it can be decoded. How many rows, counted from the top, are written in full.
    std::size_t (*decode)(Bytes file, const ImageHeader& header, std::uint8_t* pixels);
    // Adds the dictionaries of the format's own metadata; may be NULL.
    void (*addProperties)(Bytes file, CFMutableDictionaryRef properties);
    // The file of the thumbnail within the file, or no bytes; may be NULL.
    Bytes (*findThumbnail)(Bytes file);
    // Whether the end of the file's structure is there.
    bool (*isComplete)(Bytes file);
    // More pixels than this for a byte of file are taken for an attempt to exhaust memory.
    std::size_t mostPixelsPerByte;
};

extern const ImageReader kPngReader;
extern const ImageReader kJpegReader;
extern const ImageReader kJpeg2000Reader;

} // namespace imageio
