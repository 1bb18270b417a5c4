// CGImageDecodingHooks.cpp: the slots of the image file library, and pictures made through them.

#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFString.h>

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Diagnostics.h"

#include <MobileCoreServices/UTCoreTypes.h>

XGImageSourceCreateFunction _ImageIOCGImageSourceCreateWithDataProvider = nullptr;
XGImageSourceGetTypeFunction _ImageIOCGImageSourceGetType = nullptr;
XGImageSourceCreateImageFunction _ImageIOCGImageSourceCreateImageAtIndex = nullptr;
XGImageSourceReleaseFunction _ImageIOXGImageSourceRelease = nullptr;
CFStringRef _ImageIOkCGImageSourceTypeIdentifierHint = nullptr;

namespace {

bool hooksAreFilled() {
    return _ImageIOCGImageSourceCreateWithDataProvider && _ImageIOCGImageSourceGetType &&
           _ImageIOCGImageSourceCreateImageAtIndex && _ImageIOXGImageSourceRelease;
}

// What a caller asked for besides the file.
struct Wishes {
    const CGFloat* decode;
    bool shouldInterpolate;
    CGColorRenderingIntent intent;
};

// The image is new and nobody else's yet.
void grant(CGImage& image, const Wishes& wishes, CFStringRef type) {
    if (wishes.shouldInterpolate)
        image.flags |= cg::kImageInterpolates;
    else
        image.flags &= ~cg::kImageInterpolates;
    image.intent = wishes.intent;
    const std::size_t pairs =
        cg::componentsPerPixel(image.space.get(), cg::alphaInfo(image.bitmapInfo));
    if (const auto ranges = cg::decodeRanges(wishes.decode, pairs)) {
        image.decode = *ranges;
        image.hasDecode = true;
    }
    image.utType = cf::retain(type);
}

cf::Ref<CFDictionaryRef> sourceOptions(CFStringRef expectedType) {
    const void* key = _ImageIOkCGImageSourceTypeIdentifierHint;
    const void* value = expectedType;
    if (!key)
        return nullptr;
    return cf::adopt(CFDictionaryCreate(nullptr, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks));
}

bool isType(CFStringRef type, CFStringRef expected) {
    return type && expected && CFEqual(type, expected);
}

// The first picture of a file of either type. The hooks are filled.
cf::Ref<CGImageRef> imageOfFile(CGDataProviderRef provider, CFStringRef expectedType,
                                CFStringRef otherType, const Wishes& wishes) {
    if (!provider)
        return nullptr;
    const auto options = sourceOptions(expectedType);
    const auto source = _ImageIOCGImageSourceCreateWithDataProvider(provider, options.get());
    if (!source)
        return nullptr;
    cf::Ref<CGImageRef> image;
    // The type is the source's: it is kept before the source goes.
    const auto type = cf::retain(_ImageIOCGImageSourceGetType(source));
    if (isType(type.get(), expectedType) || isType(type.get(), otherType))
        image = cf::adopt(_ImageIOCGImageSourceCreateImageAtIndex(source, 0, nullptr));
    _ImageIOXGImageSourceRelease(source);
    if (image)
        grant(*image.get(), wishes, type.get());
    return image;
}

} // namespace

CGImageRef CGImageCreateWithPNGDataProvider(CGDataProviderRef provider, const CGFloat* decode,
                                            bool shouldInterpolate, CGColorRenderingIntent intent) {
    if (!hooksAreFilled()) {
        CG_LOG_ERROR("WARNING: CGImageCreateWithPNGDataProvider needs CGImageSource. "
                     "Load ImageIO framework.");
        return nullptr;
    }
    return imageOfFile(provider, kUTTypePNG, nullptr, {decode, shouldInterpolate, intent})
        .release();
}

CGImageRef CGImageCreateWithJPEGDataProvider(CGDataProviderRef provider, const CGFloat* decode,
                                             bool shouldInterpolate,
                                             CGColorRenderingIntent intent) {
    if (!hooksAreFilled()) {
        CG_LOG_ERROR("CGImageSourceCreateWithDataProvider symbol not found. "
                     "Load ImageIO framework.");
        return nullptr;
    }
    return imageOfFile(provider, kUTTypeJPEG, kUTTypeJPEG2000, {decode, shouldInterpolate, intent})
        .release();
}
