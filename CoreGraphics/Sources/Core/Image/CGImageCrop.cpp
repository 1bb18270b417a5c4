// CGImageCrop.cpp: parts of images, which share the bytes of the whole.

#include "XGDataProvider.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/Saturate.h"

#include <algorithm>
#include <limits>

namespace {

struct PixelRect {
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t width = 0;
    std::size_t height = 0;
};

// The whole pixels of `image` that `rect` touches; without width or height if there are none.
PixelRect pixelsWithin(const CGImage& image, CGRect rect) {
    const CGRect all = {{0, 0},
                        {static_cast<CGFloat>(image.width), static_cast<CGFloat>(image.height)}};
    const CGRect part = CGRectIntersection(CGRectIntegral(rect), all);
    if (CGRectIsNull(part))
        return {};
    // Floats beyond 2^24 may have been rounded up.
    const auto x = std::min(cg::saturate<std::size_t>(part.origin.x), image.width);
    const auto y = std::min(cg::saturate<std::size_t>(part.origin.y), image.height);
    return {x, y, std::min(cg::saturate<std::size_t>(part.size.width), image.width - x),
            std::min(cg::saturate<std::size_t>(part.size.height), image.height - y)};
}

// The rows of `part`, from its first pixel's byte to its last's.
cf::Ref<CGDataProviderRef> croppedProvider(const CGImage& image, const PixelRect& part) {
    const auto leftBits = (cg::CheckedSize(part.x) * image.bitsPerPixel).value();
    const auto rowBits = (cg::CheckedSize(part.width) * image.bitsPerPixel + 7).value();
    if (!leftBits || !rowBits)
        return nullptr;
    const auto offset = (cg::CheckedSize(part.y) * image.bytesPerRow + *leftBits / 8).value();
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!offset || *offset > most)
        return nullptr;
    return cf::adopt(XGDataProviderCreateCroppedWithProvider(
        image.provider.get(), static_cast<std::int64_t>(*offset), image.bytesPerRow, *rowBits / 8,
        part.height));
}

// What the provider of the whole image is, that of a part is not.
constexpr CGBitmapInfo kProviderBits =
    kXGImageNativeBuffer | kXGImageCommandQueue | kXGImageOffscreenTarget;

} // namespace

CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect) {
    if (!image)
        return nullptr;
    const PixelRect part = pixelsWithin(*image, rect);
    if (part.width == 0 || part.height == 0)
        return nullptr;
    // Without an offset it starts at 0, 0.
    if (part.width == image->width && part.height == image->height)
        return CGImageRetain(image);
    // Overflow keeps the low bits, which alone count here.
    if (part.x * image->bitsPerPixel % 8 != 0) {
        CG_LOG_ERROR("Attempt to crop an image with rect that does not fall on a pixel byte "
                     "boundary. left: %zu. bpp: %zu",
                     part.x, image->bitsPerPixel);
        return nullptr;
    }
    const auto provider = croppedProvider(*image, part);
    if (!provider)
        return nullptr;
    cg::ImageDescription description = cg::describe(*image);
    description.width = part.width;
    description.height = part.height;
    description.provider = provider.get();
    description.bitmapInfo &= ~kProviderBits;
    return cg::makeImage(description).release();
}
