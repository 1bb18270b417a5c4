// BitmapMemory.cpp: native buffers locked for a mark.

#include "Backend/Raster/BitmapMemory.h"

#include "Core/Context/NativeBuffer.h"

namespace cg {

bool BitmapMemory::lock() {
    if (!buffer_)
        return pixels_;
    pixels_ = static_cast<std::byte*>(lockNativeBuffer(*buffer_));
    return pixels_;
}

void BitmapMemory::unlock() {
    if (buffer_)
        unlockNativeBuffer(*buffer_);
}

} // namespace cg
