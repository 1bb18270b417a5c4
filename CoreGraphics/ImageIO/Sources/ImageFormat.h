// ImageFormat.h: the formats of image files, a row each.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <array>
#include <cstddef>
#include <span>

namespace imageio {

struct ImageReader;
class ByteSink;
struct ImageToWrite;

// What is known of a format. Functions that the library lacks for it are NULL.
struct ImageFormat {
    const CFStringRef* type;
    std::array<const char*, 6> extensions; // Lower case; unused places are NULL.

    // Whether a file that begins with `head` is of this format; 12 bytes suffice for all.
    bool (*hasSignature)(std::span<const std::byte> head);
    const ImageReader* reader;
    // False, after a line in the log, when the image cannot be written or the sink is broken.
    bool (*write)(const ImageToWrite& image, ByteSink& sink);
};

// All formats, in the order in which signatures are tried.
std::span<const ImageFormat> imageFormats();

// The row of a type identifier; NULL when there is none.
const ImageFormat* formatOfType(CFStringRef type);
// The row of a file's first bytes; NULL when no signature fits.
const ImageFormat* formatOfBytes(std::span<const std::byte> head);

} // namespace imageio
