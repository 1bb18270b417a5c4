// PngPalette.cpp: indexed images as PNG files keep them.

#include "PngPalette.h"

#include "XGDataProvider.h"

#include "Core/Object/CheckedSize.h"
#include "WrittenPixels.h"

#include <algorithm>
#include <utility>

namespace imageio {
namespace {

bool isPackedIndices(CGImageRef image) {
    const std::size_t bits = CGImageGetBitsPerPixel(image);
    const CGBitmapInfo order = CGImageGetBitmapInfo(image) & kCGBitmapByteOrderMask;
    return CGColorSpaceGetModel(CGImageGetColorSpace(image)) == kCGColorSpaceModelIndexed &&
           (bits == 1 || bits == 2 || bits == 4 || bits == 8) &&
           CGImageGetBitsPerComponent(image) == bits && order == kCGBitmapByteOrderDefault &&
           !CGImageGetDecode(image) && !hasOpacity(image);
}

} // namespace

std::optional<PngPalette> PngPalette::of(CGImageRef image) {
    const CGColorSpaceRef space = CGImageGetColorSpace(image);
    const CGColorSpaceModel base = CGColorSpaceGetModel(CGColorSpaceGetBaseColorSpace(space));
    const std::size_t colors = CGColorSpaceGetColorTableCount(space);
    PngPalette palette;
    if (!isPackedIndices(image) || base != kCGColorSpaceModelRGB || colors == 0 || colors > 256 ||
        !palette.lock(image))
        return std::nullopt;
    palette.fillTable(space, palette.highestIndex(image));
    return palette;
}

PngPalette::PngPalette(PngPalette&& other) noexcept
    : locked_(std::exchange(other.locked_, nullptr)), bytes_(other.bytes_),
      bytesPerRow_(other.bytesPerRow_), bitsPerIndex_(other.bitsPerIndex_),
      entryCount_(other.entryCount_), table_(other.table_) {}

PngPalette::~PngPalette() {
    if (locked_)
        XGDataProviderUnlockData(locked_);
}

bool PngPalette::lock(CGImageRef image) {
    const CGDataProviderRef provider = CGImageGetDataProvider(image);
    bitsPerIndex_ = static_cast<int>(CGImageGetBitsPerPixel(image));
    bytesPerRow_ = CGImageGetBytesPerRow(image);
    const auto bits = (cg::CheckedSize(CGImageGetWidth(image)) * bitsPerIndex_ + 7).value();
    if (!bits)
        return false;
    const auto needed =
        (cg::CheckedSize(bytesPerRow_) * (CGImageGetHeight(image) - 1) + *bits / 8).value();
    const auto size = cg::CheckedSize(XGDataProviderGetSize(provider)).value();
    if (!needed || !size || *needed > *size)
        return false;
    bytes_ = static_cast<const std::uint8_t*>(XGDataProviderLockData(provider));
    locked_ = bytes_ ? provider : nullptr;
    return bytes_ != nullptr;
}

// The largest that occurs, of indices that fill a byte; of smaller ones the largest there can be.
std::size_t PngPalette::highestIndex(CGImageRef image) const {
    if (bitsPerIndex_ < 8)
        return (std::size_t{1} << bitsPerIndex_) - 1;
    std::uint8_t highest = 0;
    for (std::size_t y = 0; y < CGImageGetHeight(image); ++y)
        highest = std::max(highest, *std::max_element(row(y), row(y) + CGImageGetWidth(image)));
    return highest;
}

// Indices past the table mean its last colour, which a file has to spell out.
void PngPalette::fillTable(CGColorSpaceRef space, std::size_t highestIndex) {
    const std::size_t colors = CGColorSpaceGetColorTableCount(space);
    entryCount_ = highestIndex + 1;
    std::array<std::uint8_t, 3 * 256> own = {};
    CGColorSpaceGetColorTable(space, own.data());
    for (std::size_t i = 0; i < entryCount_; ++i)
        std::copy_n(&own[3 * std::min(i, colors - 1)], 3, &table_[3 * i]);
}

} // namespace imageio
