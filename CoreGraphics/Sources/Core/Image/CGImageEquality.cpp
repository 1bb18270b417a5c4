// CGImageEquality.cpp: whether two images are the same picture.

#include "XGColorSpace.h"
#include "XGDataProvider.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/RowTransform.h"
#include "Core/Data/LockedData.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr std::uint32_t kPictureFlags =
    cg::kImageCreatedAsMask | cg::kImageHasMaskingColors | cg::kImageHasMask;
constexpr CGBitmapInfo kPublicBits =
    kCGBitmapAlphaInfoMask | kCGBitmapFloatInfoMask | kCGBitmapByteOrderMask;

// The row stride is not part of a picture.
bool haveEqualLayout(const CGImage& a, const CGImage& b) {
    return a.width == b.width && a.height == b.height && a.bitsPerComponent == b.bitsPerComponent &&
           a.bitsPerPixel == b.bitsPerPixel &&
           (a.bitmapInfo & kPublicBits) == (b.bitmapInfo & kPublicBits) &&
           (a.flags & kPictureFlags) == (b.flags & kPictureFlags);
}

bool haveEqualRanges(const CGImage& a, const CGImage& b) {
    return a.hasDecode == b.hasDecode && a.decode == b.decode && a.maskingColors == b.maskingColors;
}

bool haveEqualTables(CGColorSpaceRef a, CGColorSpaceRef b) {
    const auto* const tableOfA = std::get_if<cg::ColorTable>(&a->calibration);
    const auto* const tableOfB = std::get_if<cg::ColorTable>(&b->calibration);
    if (!tableOfA || !tableOfB)
        return !tableOfA && !tableOfB;
    return std::ranges::equal(tableOfA->bytes, tableOfB->bytes);
}

// Whether the same components show the same colour in both.
bool areInterchangeable(CGColorSpaceRef a, CGColorSpaceRef b) {
    if (a == b)
        return true;
    if (!XGColorSpaceEqualToColorSpace(a, b) || !haveEqualTables(a, b))
        return false;
    // Pixels of indexed spaces have the colours of the base.
    return a->baseSpace ? areInterchangeable(a->baseSpace.get(), b->baseSpace.get())
                        : !cg::needsConversion(a, b);
}

// The bytes of an image's rows, in place where they lie in memory, else read one row at a time.
class Rows {
public:
    Rows(const CGImage& image, std::size_t rowBytes)
        : image_(image), locked_(image.provider.get()), rowBytes_(rowBytes) {
        if (!locked_.bytes())
            buffer_.reset(new (std::nothrow) std::byte[rowBytes]);
    }

    // NULL when the provider has not as many bytes.
    const std::byte* row(std::size_t y) const {
        const auto start = cg::CheckedSize(y) * image_.bytesPerRow;
        const auto end = (start + rowBytes_).value();
        if (!end || *end > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return nullptr;
        if (locked_.bytes())
            return *end <= locked_.size() ? locked_.bytes() + *start.value() : nullptr;
        std::size_t count = 0;
        if (!buffer_ ||
            !XGDataProviderReadBytes(image_.provider.get(), buffer_.get(),
                                     static_cast<std::int64_t>(*start.value()), rowBytes_, &count))
            return nullptr;
        return count == rowBytes_ ? buffer_.get() : nullptr;
    }

private:
    const CGImage& image_;
    cg::LockedData locked_;
    std::size_t rowBytes_;
    std::unique_ptr<std::byte[]> buffer_;
};

// Both have the same layout.
bool haveEqualPixels(const CGImage& a, const CGImage& b) {
    if (a.provider == b.provider && a.bytesPerRow == b.bytesPerRow)
        return true;
    const auto rowBits = (cg::CheckedSize(a.width) * a.bitsPerPixel).value();
    if (!rowBits)
        return false;
    const std::size_t wholeBytes = *rowBits / 8;
    const std::size_t restBits = *rowBits % 8;
    const auto restMask = static_cast<std::byte>(0xFF00U >> restBits & 0xFFU);
    const std::size_t rowBytes = wholeBytes + (restBits ? 1 : 0);
    const Rows rowsOfA(a, rowBytes);
    const Rows rowsOfB(b, rowBytes);
    for (std::size_t y = 0; y < a.height; ++y) {
        const std::byte* const rowOfA = rowsOfA.row(y);
        const std::byte* const rowOfB = rowsOfB.row(y);
        if (!rowOfA || !rowOfB || std::memcmp(rowOfA, rowOfB, wholeBytes) != 0)
            return false;
        if (restBits && ((rowOfA[wholeBytes] ^ rowOfB[wholeBytes]) & restMask) != std::byte{0})
            return false;
    }
    return true;
}

bool areEqualUnmasked(const CGImage& a, const CGImage& b) {
    return haveEqualLayout(a, b) && haveEqualRanges(a, b) && (!a.space == !b.space) &&
           (!a.space || areInterchangeable(a.space.get(), b.space.get())) && haveEqualPixels(a, b);
}

} // namespace

bool XGImageEqualToImage(CGImageRef a, CGImageRef b) {
    if (!a || !b)
        return false;
    // A mask may be masked itself, and so on: each turn goes one mask further.
    while (a != b) {
        if (!a || !b || !areEqualUnmasked(*a, *b))
            return false;
        a = a->mask.get();
        b = b->mask.get();
    }
    return true;
}
