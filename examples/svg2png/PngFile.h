// PngFile.h: writes a bitmap to a PNG file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace svg {

// 32-bit pixels, blue first and alpha last in memory, premultiplied; top row first.
struct Bitmap {
    const std::uint8_t* pixels = nullptr;
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bytesPerRow = 0;
};

// Writes an 8-bit RGBA file, which PNG wants not premultiplied. The file appears whole or not at
// all. On failure `error` says why in one line.
bool writePng(const std::string& fileName, const Bitmap& bitmap, std::string& error);

} // namespace svg
