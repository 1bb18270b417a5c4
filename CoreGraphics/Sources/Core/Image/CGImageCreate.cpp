// CGImageCreate.cpp: new images: which layouts are legal, and copies.

#include "Core/Data/LockedData.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"

namespace {

// Floats fill their pixel; other components have at most 32 bits.
bool hasLegalComponents(const cg::ImageDescription& image) {
    if (image.bitmapInfo & kCGBitmapFloatComponents)
        return image.bitsPerComponent == 32 && image.bitsPerPixel == 32;
    return image.bitsPerComponent <= 32;
}

// Whether the components fit into their pixel. Only pixels without opacity may have bits left over:
// those become the skipped ones.
bool fitPixel(cg::ImageDescription& image, std::size_t components) {
    const auto used = (cg::CheckedSize(components) * image.bitsPerComponent).value();
    if (!used || *used > image.bitsPerPixel)
        return false;
    if (*used == image.bitsPerPixel)
        return true;
    const CGImageAlphaInfo alpha = cg::alphaInfo(image.bitmapInfo);
    if (alpha == kCGImageAlphaNone)
        image.bitmapInfo |= kCGImageAlphaNoneSkipLast;
    return alpha == kCGImageAlphaNone || CGImageSkipAlpha(alpha);
}

// What is to be made of the arguments, among them the decode array; nothing when they are no image.
std::optional<cg::ImageDescription> validated(cg::ImageDescription image, const CGFloat* decode) {
    if (image.width == 0 || image.height == 0 || !image.provider)
        return std::nullopt;
    const CGImageAlphaInfo alpha = cg::alphaInfo(image.bitmapInfo);
    if (!image.space && alpha != kCGImageAlphaNone && alpha != kCGImageAlphaOnly)
        return std::nullopt;
    if (!hasLegalComponents(image))
        return std::nullopt;
    const std::size_t components = cg::componentsPerPixel(image.space, alpha);
    if (image.space && !fitPixel(image, components))
        return std::nullopt;
    image.decode = cg::decodeRanges(decode, components);
    return image;
}

bool isMaskDepth(std::size_t bits) {
    return bits == 1 || bits == 2 || bits == 4 || bits == 8;
}

constexpr std::uintptr_t kVectorAlignment = 4;

bool isAligned(const void* address) {
    return reinterpret_cast<std::uintptr_t>(address) % kVectorAlignment == 0;
}

constexpr std::uint32_t interpolationFlag(bool shouldInterpolate) {
    return shouldInterpolate ? cg::kImageInterpolates : 0;
}

} // namespace

CGImageRef XGImageCreateDeferred(size_t width, size_t height, size_t bitsPerComponent,
                                 size_t bitsPerPixel, size_t bytesPerRow, CGColorSpaceRef space,
                                 CGBitmapInfo bitmapInfo, CGDataProviderRef provider,
                                 const CGFloat* decode, bool shouldInterpolate,
                                 CGColorRenderingIntent intent) {
    const auto description = validated({.width = width,
                                        .height = height,
                                        .bitsPerComponent = bitsPerComponent,
                                        .bitsPerPixel = bitsPerPixel,
                                        .bytesPerRow = bytesPerRow,
                                        .bitmapInfo = bitmapInfo,
                                        .flags = interpolationFlag(shouldInterpolate),
                                        .space = space,
                                        .provider = provider,
                                        .intent = intent},
                                       decode);
    return description ? cg::makeImage(*description).release() : nullptr;
}

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat* decode, bool shouldInterpolate,
                         CGColorRenderingIntent intent) {
    const auto image =
        XGImageCreateDeferred(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow, space,
                              bitmapInfo, provider, decode, shouldInterpolate, intent);
    if (image && XGDataProviderIsDirect(provider)) {
        const cg::LockedData data(provider);
        if (!isAligned(data.bytes()))
            CG_LOG_ERROR("CGImageCreate requires %lu byte-aligned data to use SIMD (neon) for "
                         "performance. Given address %p.",
                         static_cast<unsigned long>(kVectorAlignment),
                         static_cast<const void*>(data.bytes()));
    }
    return image;
}

// Deliberate: the bits of a pixel are the caller's alone, who thereby sets the length of a row;
// only padding at the ends of rows is refused.
CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent,
                             size_t bitsPerPixel, size_t bytesPerRow, CGDataProviderRef provider,
                             const CGFloat* decode, bool shouldInterpolate) {
    if (width == 0 || height == 0 || !provider || !isMaskDepth(bitsPerComponent))
        return nullptr;
    const auto rowBits = (cg::CheckedSize(bitsPerPixel) * width + 7).value();
    if (!rowBits || *rowBits / 8 != bytesPerRow)
        return nullptr;
    return cg::makeImage({.width = width,
                          .height = height,
                          .bitsPerComponent = bitsPerComponent,
                          .bitsPerPixel = bitsPerPixel,
                          .bytesPerRow = bytesPerRow,
                          .flags = cg::kImageCreatedAsMask | interpolationFlag(shouldInterpolate),
                          .provider = provider,
                          .decode = cg::decodeRanges(decode, 1)})
        .release();
}

// ---- Copies

CGImageRef CGImageCreateCopy(CGImageRef image) {
    return image ? cg::makeImage(cg::describe(*image)).release() : nullptr;
}

CGImageRef CGImageCreateCopyWithColorSpace(CGImageRef image, CGColorSpaceRef space) {
    if (!image || !image->space || !space)
        return nullptr;
    if (CGColorSpaceGetNumberOfComponents(space) !=
        CGColorSpaceGetNumberOfComponents(image->space.get()))
        return nullptr;
    cg::ImageDescription description = cg::describe(*image);
    description.space = space;
    return cg::makeImage(description).release();
}
