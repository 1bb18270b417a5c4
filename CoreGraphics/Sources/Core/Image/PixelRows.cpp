// PixelRows.cpp: never a byte beyond the provider's size, whatever an image says of itself.

#include "PixelRows.h"

#include "XGDataProvider.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace cg {

namespace {

// What is fetched at once from a provider that cannot be locked.
constexpr std::size_t kWindowBytes = 64 * 1024;

} // namespace

std::size_t neededBytes(const CGImage& image, const PixelLayout& layout) {
    const auto rowBits = (CheckedSize(image.width) * layout.bitsPerPixel() + 7).value();
    if (!rowBits)
        return 0;
    const auto total = (CheckedSize(image.bytesPerRow) * (image.height - 1) + *rowBits / 8).value();
    // Providers count in signed numbers.
    return total && *total <= SIZE_MAX / 2 ? *total : 0;
}

PixelRows::PixelRows(CGImageRef image, const PixelLayout& layout)
    : provider_(image->provider.get()), bytesPerRow_(image->bytesPerRow),
      totalBytes_(neededBytes(*image, layout)) {
    if (isCountable() && XGDataProviderIsDirect(provider_))
        locked_.emplace(provider_);
}

const std::byte* PixelRows::bytes(std::size_t row, std::size_t firstByte, std::size_t count) {
    const std::size_t offset = row * bytesPerRow_ + firstByte;
    if (locked_ && locked_->bytes()) {
        const std::size_t size = locked_->size();
        if (offset <= size && count <= size - offset)
            return locked_->bytes() + offset;
        logShortRead(std::min(offset, size), count);
        return nullptr;
    }
    if (offset < windowOffset_ || offset + count > windowOffset_ + windowSize_)
        if (!fill(offset, count))
            return nullptr;
    return window_.get() + (offset - windowOffset_);
}

bool PixelRows::fill(std::size_t offset, std::size_t count) {
    const std::size_t wanted = std::min(std::max(count, kWindowBytes), totalBytes_ - offset);
    if (wanted > windowCapacity_) {
        window_.reset(new (std::nothrow) std::byte[wanted]);
        windowCapacity_ = window_ ? wanted : 0;
    }
    windowOffset_ = offset;
    windowSize_ = 0;
    std::size_t read = 0;
    if (window_ && XGDataProviderReadBytes(provider_, window_.get(), static_cast<int64_t>(offset),
                                           wanted, &read))
        windowSize_ = std::min(read, wanted);
    if (windowSize_ >= count)
        return true;
    logShortRead(offset + windowSize_, count - windowSize_);
    return false;
}

void PixelRows::logShortRead(std::size_t offset, std::size_t missing) const {
    if (HostLogIsEnabled(kHostLogError))
        logMessage(kHostLogError, "_ImageDataProviderRead",
                   "Failed to read %zu bytes after having read %zu of %zu", missing, offset,
                   totalBytes_);
}

} // namespace cg
