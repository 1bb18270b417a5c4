// PngChunks.h: the chunks that a PNG file consists of.
#pragma once

#include "ImageHeader.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace imageio {

struct PngChunk {
    std::uint32_t name = 0; // Its four letters, the first the most significant.
    Bytes whole;            // With length, name and checksum.
};

constexpr std::uint32_t pngName(const char (&letters)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(letters[i]);
    return value;
}

// Goes from chunk to chunk, without a look at what is in them.
class PngChunks {
public:
    // The file's signature is not looked at either.
    explicit PngChunks(Bytes file);
    // Nothing where the next chunk is not all there.
    std::optional<PngChunk> next();
    // The name of the next chunk where there is no more of it than that; 0 where there is not even
    // a name.
    std::uint32_t nameOfBrokenChunk();

private:
    Bytes rest_;
};

// A file's metadata without its pixels: what libpng would only read behind them stands in this copy
// where it is found at once. There is no end chunk, and no image data where libpng expects some.
class PngLateMetadata {
public:
    explicit PngLateMetadata(Bytes file);
    // No bytes when nothing stands behind the pixels, or memory runs out.
    Bytes bytes() const { return {copy_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> copy_;
    std::size_t size_ = 0;
};

} // namespace imageio
