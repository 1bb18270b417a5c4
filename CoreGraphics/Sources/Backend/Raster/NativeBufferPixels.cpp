// NativeBufferPixels.cpp: nothing is copied; a buffer's pixels are drawn into where they lie.

#include "Backend/Raster/NativeBufferPixels.h"

#include <limits>

namespace cg {

std::optional<SkPixmap> NativeBufferPixels::borrow(const SkIRect& area) {
    if (!memory_.lock())
        return std::nullopt;
    return SkPixmap(info_.makeDimensions(area.size()), memory_.at(area.left(), area.top()),
                    memory_.bytesPerRow());
}

std::int64_t NativeBufferPixels::mostPixels() const {
    return std::numeric_limits<std::int64_t>::max();
}

void NativeBufferPixels::fill(const SkIRect& area, SkColor color) {
    if (const auto pixels = borrow(area)) {
        pixels->erase(color);
        giveBack();
    }
}

} // namespace cg
