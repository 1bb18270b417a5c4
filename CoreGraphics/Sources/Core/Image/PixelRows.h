// PixelRows.h: the bytes of an image's rows, out of its provider.
#pragma once

#include <CoreGraphics/CGImage.h>

#include "Core/Data/LockedData.h"
#include "PixelLayout.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace cg {

// From the first byte of an image's first row to the last that a pixel of the last row needs; 0
// when the sizes overflow.
std::size_t neededBytes(const CGImage& image, const PixelLayout& layout);

// Bytes that can be had as memory are read where they lie, locked while this object lives. Others
// are copied out piece by piece: an image over a stream is never held whole.
class PixelRows {
public:
    PixelRows(CGImageRef image, const PixelLayout& layout);

    // Whether the sizes that the image claims can be counted at all.
    bool isCountable() const { return totalBytes_ > 0; }

    // `count` bytes from `firstByte` of a row on, until the next call. NULL, with the reason in the
    // log, when the provider has not so many.
    const std::byte* bytes(std::size_t row, std::size_t firstByte, std::size_t count);

private:
    bool fill(std::size_t offset, std::size_t count);
    void logShortRead(std::size_t offset, std::size_t missing) const;

    CGDataProviderRef provider_;
    std::size_t bytesPerRow_ = 0;
    std::size_t totalBytes_ = 0;
    std::optional<LockedData> locked_;

    // A window on what cannot be locked.
    std::unique_ptr<std::byte[]> window_;
    std::size_t windowCapacity_ = 0;
    std::size_t windowOffset_ = 0;
    std::size_t windowSize_ = 0;
};

} // namespace cg
