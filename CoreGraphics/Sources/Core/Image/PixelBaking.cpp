// PixelBaking.cpp: images whose masks, depth or colours have been settled for good.

#include "PixelBaking.h"

#include "XGColorSpace.h"
#include "XGImagePixels.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "PixelReader.h"

#include <new>

namespace cg {

namespace {

void freeBytes(void*, const void* data, std::size_t) {
    delete[] static_cast<const std::byte*>(data);
}

CGBitmapInfo bitmapInfoOf(Opacity opacity) {
    const auto alpha =
        opacity == Opacity::Opaque ? kCGImageAlphaNoneSkipFirst : kCGImageAlphaPremultipliedFirst;
    return CGBitmapInfo{alpha} | CGBitmapInfo{kCGBitmapByteOrder32Little};
}

} // namespace

BakedPixels roomFor(std::size_t width, std::size_t height, Opacity opacity) {
    BakedPixels pixels = {.width = width, .height = height, .opacity = opacity};
    const auto bytes = (CheckedSize(width) * 4 * height).value();
    if (bytes && *bytes > 0 && *bytes <= SIZE_MAX / 2)
        pixels.bytes.reset(new (std::nothrow) std::byte[*bytes]);
    if (!pixels)
        CG_LOG_ERROR("Allocation of bitmap failed.");
    return pixels;
}

BakedPixels bake(CGImageRef image, CGColorSpaceRef space) {
    const bool isTransparent = canBeTransparent(image);
    const auto reader =
        PixelReader::of(image, {.space = space,
                                .alpha = isTransparent ? AlphaUse::Premultiplied : AlphaUse::None,
                                .order = ComponentOrder::BGRX,
                                .intent = image->intent});
    if (!reader)
        return {};
    BakedPixels pixels = roomFor(image->width, image->height,
                                 isTransparent ? Opacity::Premultiplied : Opacity::Opaque);
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
    return makeImage({.width = pixels.width,
                      .height = pixels.height,
                      .bitsPerComponent = 8,
                      .bitsPerPixel = 32,
                      .bytesPerRow = pixels.bytesPerRow(),
                      .bitmapInfo = bitmapInfoOf(pixels.opacity),
                      .flags = like->flags & kImageInterpolates,
                      .space = space,
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
