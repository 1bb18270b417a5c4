// CGImage.cpp: the image object: its class, its end, and what can be asked of it.

#include "XGColorSpace.h"

#include "Core/Image/CGImageRecord.h"

#include <algorithm>

namespace {

std::atomic<cg::UploadedImageObserver> uploadedImageObserver = nullptr;

void finalize(CFTypeRef object) {
    const auto image = cg::as<CGImageRef>(object);
    if (XGImageIsUploaded(image)) {
        if (const auto observe = uploadedImageObserver.load(std::memory_order_acquire))
            observe(image);
    }
    cg::finalize<CGImage>(object);
}

constexpr CFRuntimeClass kImageClass = {
    .className = "CGImage",
    .copy = cg::copyByRetaining,
    .finalize = finalize,
};

} // namespace

void cg::setUploadedImageObserver(UploadedImageObserver observer) {
    uploadedImageObserver.store(observer, std::memory_order_release);
}

CGImage::~CGImage() {
    cg::release(maskedImage.load(std::memory_order_acquire));
    if (const auto cache = pixelCache.load(std::memory_order_acquire))
        cg::destroyPixelCache(cache);
    delete drawingCache.load();
}

CFTypeID CGImageGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kImageClass);
    return id;
}

CGImageRef CGImageRetain(CGImageRef image) {
    return cg::retain(image);
}

void CGImageRelease(CGImageRef image) {
    cg::release(image);
}

// ---- Making

cf::Ref<CGImageRef> cg::makeImage(const ImageDescription& description) {
    const auto image = cg::create<CGImage>(CGImageGetTypeID());
    if (!image)
        return nullptr;
    image->width = description.width;
    image->height = description.height;
    image->bitsPerComponent = description.bitsPerComponent;
    image->bitsPerPixel = description.bitsPerPixel;
    image->bytesPerRow = description.bytesPerRow;
    image->bitmapInfo = description.bitmapInfo;
    image->flags = description.flags;
    image->space = cf::retain(description.space);
    image->provider = cf::retain(description.provider);
    image->hasDecode = description.decode.has_value();
    image->decode = description.decode.value_or(ComponentRanges{});
    image->intent = description.intent;
    return cf::adopt(image);
}

cg::ImageDescription cg::describe(const CGImage& image) {
    return {
        .width = image.width,
        .height = image.height,
        .bitsPerComponent = image.bitsPerComponent,
        .bitsPerPixel = image.bitsPerPixel,
        .bytesPerRow = image.bytesPerRow,
        .bitmapInfo = image.bitmapInfo & ~kXGImageUploaded,
        .flags = image.flags & (kImageInterpolates | kImageCreatedAsMask),
        .space = image.space.get(),
        .provider = image.provider.get(),
        .decode = image.hasDecode ? std::optional(image.decode) : std::nullopt,
        .intent = image.intent,
    };
}

std::size_t cg::componentsPerPixel(CGColorSpaceRef space, CGImageAlphaInfo alpha) {
    if (alpha == kCGImageAlphaOnly)
        return 1;
    return CGColorSpaceGetNumberOfComponents(space) + (alpha == kCGImageAlphaNone ? 0 : 1);
}

std::optional<cg::ComponentRanges> cg::decodeRanges(const CGFloat* decode, std::size_t pairs) {
    if (!decode || pairs == 0)
        return std::nullopt;
    ComponentRanges ranges{0, 1, 0, 1, 0, 1, 0, 1, 0, 1};
    std::copy_n(decode, 2 * std::min(pairs, kMostDecodePairs), ranges.begin());
    return ranges;
}

// ---- Questions

size_t CGImageGetWidth(CGImageRef image) {
    return image ? image->width : 0;
}

size_t CGImageGetHeight(CGImageRef image) {
    return image ? image->height : 0;
}

size_t CGImageGetBitsPerComponent(CGImageRef image) {
    return image ? image->bitsPerComponent : 0;
}

size_t CGImageGetBitsPerPixel(CGImageRef image) {
    return image ? image->bitsPerPixel : 0;
}

size_t CGImageGetBytesPerRow(CGImageRef image) {
    return image ? image->bytesPerRow : 0;
}

CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image) {
    return image ? image->bitmapInfo.load(std::memory_order_relaxed) : 0;
}

CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image) {
    return cg::alphaInfo(CGImageGetBitmapInfo(image));
}

CGColorSpaceRef CGImageGetColorSpace(CGImageRef image) {
    return image ? image->space.get() : nullptr;
}

CGDataProviderRef CGImageGetDataProvider(CGImageRef image) {
    return image ? image->provider.get() : nullptr;
}

const CGFloat* CGImageGetDecode(CGImageRef image) {
    return image && image->hasDecode ? image->decode.data() : nullptr;
}

bool CGImageGetShouldInterpolate(CGImageRef image) {
    return image && (image->flags & cg::kImageInterpolates);
}

CGColorRenderingIntent CGImageGetRenderingIntent(CGImageRef image) {
    return image ? image->intent : kCGRenderingIntentDefault;
}

CFStringRef CGImageGetUTType(CGImageRef image) {
    return image ? image->utType.get() : nullptr;
}

bool CGImageIsMask(CGImageRef image) {
    return XGImageWasCreatedAsMask(image) || CGImageGetAlphaInfo(image) == kCGImageAlphaOnly;
}

bool XGImageWasCreatedAsMask(CGImageRef image) {
    return image && (image->flags & cg::kImageCreatedAsMask);
}

bool CGImageIsMaskBaked(CGImageRef image) {
    if (!image)
        return false;
    constexpr auto masked = cg::kImageHasMaskingColors | cg::kImageHasMask;
    return !(image->flags & masked) || image->maskedImage.load(std::memory_order_acquire);
}

CGImageRef XGImageGetMask(CGImageRef image) {
    return image ? image->mask.get() : nullptr;
}
