// PngPalette.h: indexed images as PNG files keep them.
#pragma once

#include <CoreGraphics/CGImage.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace imageio {

// A table of RGB colours, and the image's own bytes as indices into it.
class PngPalette {
public:
    // Nothing for images that are not indexed, or not as a PNG file could keep them: with masks, a
    // decode array, an odd pixel, or bytes that cannot be locked.
    static std::optional<PngPalette> of(CGImageRef image);

    PngPalette(PngPalette&& other) noexcept;
    PngPalette& operator=(PngPalette&&) = delete;
    ~PngPalette();

    int bitsPerIndex() const { return bitsPerIndex_; }
    std::size_t entryCount() const { return entryCount_; }
    const std::uint8_t* entry(std::size_t index) const { return &table_[3 * index]; }
    const std::uint8_t* row(std::size_t y) const { return bytes_ + y * bytesPerRow_; }

private:
    PngPalette() = default;
    bool lock(CGImageRef image);
    void fillTable(CGColorSpaceRef space, std::size_t highestIndex);
    std::size_t highestIndex(CGImageRef image) const;

    CGDataProviderRef locked_ = nullptr;
    const std::uint8_t* bytes_ = nullptr;
    std::size_t bytesPerRow_ = 0;
    int bitsPerIndex_ = 0;
    std::size_t entryCount_ = 0;
    std::array<std::uint8_t, 3 * 256> table_ = {};
};

} // namespace imageio
