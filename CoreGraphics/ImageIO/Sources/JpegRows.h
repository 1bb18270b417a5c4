// JpegRows.h: an image's pixels as a JPEG file takes them.
#pragma once

#include "ImageToWrite.h"
#include "WrittenPixels.h"

#include <array>
#include <cstdint>
#include <memory>

namespace imageio {

class JpegRows {
public:
    JpegRows(const ImageToWrite& image, const FileColors& colors);

    // Good until the next call; NULL after a line in the log.
    const std::uint8_t* row(std::size_t y);

private:
    JpegRows(const ImageToWrite& image, const WrittenLayout& layout, CGColorSpaceModel model);
    void flatten(const std::uint8_t* from);
    void invert(const std::uint8_t* from);

    WrittenLayout layout_;
    bool isInverted_;
    std::size_t width_;
    WrittenRows rows_;
    std::array<std::uint8_t, 4> background_ = {};
    std::unique_ptr<std::uint8_t[]> finished_; // A row; absent where the pixels serve as they are.
};

} // namespace imageio
