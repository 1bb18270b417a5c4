// PixelBaking.cpp: images whose masks, depth or colours have been settled for good.

#include "PixelBaking.h"

#include "XGColorSpace.h"
#include "XGImagePixels.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "PixelLayout.h"
#include "PixelReader.h"

#include <new>

namespace cg {

namespace {

void freeBytes(void*, const void* data, std::size_t) {
    delete[] static_cast<const std::byte*>(data);
}

bool isDeep(CGImageRef image) {
    const auto layout = PixelLayout::of(*image);
    for (std::size_t i = 0; layout && i < layout->fieldCount(); ++i)
        if (layout->field(i).bits > 8)
            return true;
    return false;
}

BakedLayout layoutFor(CGImageRef image) {
    if (CGImageIsMask(image))
        return {.opacity = Opacity::Opaque, .components = 1};
    return {.opacity = canBeTransparent(image) ? Opacity::Premultiplied : Opacity::Opaque,
            .bytesPerComponent = static_cast<std::uint8_t>(isDeep(image) ? 2 : 1)};
}

PixelTarget targetFor(const BakedLayout& layout, CGColorSpaceRef space, CGImageRef image) {
    if (layout.components == 1)
        return {}; // Opacity alone is read as gray.
    const bool isDeep = layout.bytesPerComponent == 2;
    return {.space = space,
            .type = isDeep ? ComponentType::Unsigned16 : ComponentType::Unsigned8,
            .alpha = layout.opacity == Opacity::Opaque ? AlphaUse::None : AlphaUse::Premultiplied,
            .order = isDeep ? ComponentOrder::RGBX : ComponentOrder::BGRX,
            .intent = image->intent};
}

CGBitmapInfo bitmapInfoOf(const BakedLayout& layout, CGImageRef like) {
    if (layout.components == 1)
        return like->bitmapInfo.load(std::memory_order_relaxed) & kCGBitmapAlphaInfoMask;
    const bool isOpaque = layout.opacity == Opacity::Opaque;
    if (layout.bytesPerComponent == 2)
        return (isOpaque ? kCGImageAlphaNoneSkipLast : kCGImageAlphaPremultipliedLast) |
               kCGImageByteOrder16Host;
    return (isOpaque ? kCGImageAlphaNoneSkipFirst : kCGImageAlphaPremultipliedFirst) |
           kCGBitmapByteOrder32Little;
}

} // namespace

BakedPixels roomFor(std::size_t width, std::size_t height, const BakedLayout& layout) {
    BakedPixels pixels = {.width = width, .height = height, .layout = layout};
    const auto bytes = (CheckedSize(width) * layout.bytesPerPixel() * height).value();
    if (bytes && *bytes > 0 && *bytes <= SIZE_MAX / 2)
        pixels.bytes.reset(new (std::nothrow) std::byte[*bytes]);
    if (!pixels)
        CG_LOG_ERROR("Allocation of bitmap failed.");
    return pixels;
}

BakedPixels bake(CGImageRef image, CGColorSpaceRef space) {
    const BakedLayout layout = layoutFor(image);
    const auto reader = PixelReader::of(image, targetFor(layout, space, image));
    if (!reader)
        return {};
    BakedPixels pixels = roomFor(image->width, image->height, layout);
    if (!pixels || !reader->readRows(0, pixels.height, pixels.bytes.get(), pixels.bytesPerRow()))
        return {};
    return pixels;
}

cf::Ref<CGImageRef> imageOf(BakedPixels pixels, CGColorSpaceRef space, CGImageRef like) {
    if (!pixels)
        return nullptr;
    const auto provider = cf::adopt(CGDataProviderCreateWithData(
        nullptr, pixels.bytes.get(), pixels.bytesPerRow() * pixels.height, freeBytes));
    if (!provider)
        return nullptr;
    static_cast<void>(pixels.bytes.release()); // The provider frees them from here on.
    const bool isMask = pixels.layout.components == 1;
    const std::uint32_t kept = kImageInterpolates | (isMask ? kImageCreatedAsMask : 0);
    return makeImage({.width = pixels.width,
                      .height = pixels.height,
                      .bitsPerComponent = std::size_t{8} * pixels.layout.bytesPerComponent,
                      .bitsPerPixel = 8 * pixels.layout.bytesPerPixel(),
                      .bytesPerRow = pixels.bytesPerRow(),
                      .bitmapInfo = bitmapInfoOf(pixels.layout, like),
                      .flags = like->flags & kept,
                      .space = isMask ? like->space.get() : space,
                      .provider = provider.get(),
                      .intent = like->intent});
}

} // namespace cg

CGImageRef _CGImageGetMaskedImage(CGImageRef image) {
    if (!image || !cg::isMasked(image))
        return image;
    CGImageRef made = image->maskedImage.load(std::memory_order_acquire);
    if (made)
        return made;

    const CGColorSpaceRef own = cg::pixelSpace(image);
    const CGColorSpaceRef space =
        CGColorSpaceGetModel(own) == kCGColorSpaceModelRGB ? own : XGColorSpaceGetDeviceRGB();
    auto masked = cg::imageOf(cg::bake(image, space), space, image);
    if (!masked)
        return nullptr;
    if (image->maskedImage.compare_exchange_strong(made, masked.get(), std::memory_order_acq_rel))
        return masked.release();
    return made;
}

CGImageRef XGImageCreateCopyByConvertingToRGB(CGImageRef image) {
    if (!image)
        return nullptr;
    const CGColorSpaceRef own = cg::pixelSpace(image);
    const CGColorSpaceModel model = CGColorSpaceGetModel(own ? own : image->space.get());
    if (CGImageIsMask(image) || CGColorSpaceGetModel(image->space.get()) == kCGColorSpaceModelRGB)
        return cg::retain(image);
    if (model < kCGColorSpaceModelMonochrome || model > kCGColorSpaceModelLab) {
        CG_LOG_ERROR("Cannot convert image with colorspace %d to RGB", static_cast<int>(model));
        return nullptr;
    }
    const CGColorSpaceRef space = model == kCGColorSpaceModelRGB ? own : XGColorSpaceGetDeviceRGB();
    return cg::imageOf(cg::bake(image, space), space, image).release();
}
