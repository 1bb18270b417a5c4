// BitmapMemory.h: where a bitmap's pixels are, at an address or in a native buffer.
#pragma once

#include "Core/Context/XGBackend.h"

#include <cstddef>

namespace cg {

class BitmapMemory {
public:
    explicit BitmapMemory(const Bitmap& bitmap)
        : pixels_(static_cast<std::byte*>(bitmap.pixels)), buffer_(bitmap.buffer),
          bytesPerRow_(bitmap.bytesPerRow), bytesPerPixel_(bitmap.bitsPerPixel / 8) {}

    // Makes the pixels reachable until unlock(). False, with the reason in the log, when they are
    // no more.
    bool lock();
    void unlock();

    // Of the pixel in a column and a row. The pixels are locked.
    std::byte* at(int column, int row) const {
        return pixels_ + static_cast<std::size_t>(row) * bytesPerRow_ +
               static_cast<std::size_t>(column) * bytesPerPixel_;
    }
    std::byte* pixels() const { return pixels_; }
    void move(void* to) { pixels_ = static_cast<std::byte*>(to); }
    std::size_t bytesPerRow() const { return bytesPerRow_; }
    std::size_t bytesPerPixel() const { return bytesPerPixel_; }

private:
    std::byte* pixels_;
    XGNativeBuffer* buffer_; // NULL: the pixels stay where they are.
    std::size_t bytesPerRow_;
    std::size_t bytesPerPixel_;
};

} // namespace cg
