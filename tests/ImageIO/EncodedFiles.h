// EncodedFiles.h: picture files of made-up pixels, written with the bare libraries.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace test {

using Bytes = std::vector<std::uint8_t>;

struct PngFile {
    std::uint32_t width = 19, height = 11;
    int depth = 8;
    int colorType = 2; // As libpng numbers them: 0 gray, 2 RGB, 3 palette, 4 and 6 with alpha.
    bool isInterlaced = false;
    bool hasTransparentColor = false; // A tRNS chunk; half of a palette's entries.
    std::function<void(void* png, void* info)> addChunks, addLateChunks; // Before, behind the rows.
};
// Random pixels, filtered as libpng likes.
Bytes makePng(const PngFile& file);

struct JpegFile {
    std::uint32_t width = 35, height = 21;
    int components = 3; // 1 gray, 3 YCbCr, 4 inks.
    int sampling = 2;   // Of the first component; the others have 1.
    bool isProgressive = false;
    bool storesColorsDirectly = false; // RGB or CMYK rather than YCbCr or YCCK.
    bool hasAdobeMarker = false;
    int restartRows = 0;
    std::function<void(void* jpeg)> addMarkers;
};
// Smooth pixels with some noise.
Bytes makeJpeg(const JpegFile& file);

struct Jpeg2000File {
    std::uint32_t width = 23, height = 17;
    int components = 3;
    int depth = 8;
    int chromaStep = 1; // Grid points for a sample of all components but the first.
    bool hasBoxes = true;
    bool isSYCC = false, isCMYK = false, hasAlpha = false;
    Bytes profile;
    int tileSide = 0;          // 0 for one tile.
    float compressionRate = 1; // Lossy if above 1.
};
// The component's samples, row after row.
std::vector<std::int32_t> jpeg2000Samples(const Jpeg2000File& file, int component);
Bytes makeJpeg2000(const Jpeg2000File& file);

} // namespace test
