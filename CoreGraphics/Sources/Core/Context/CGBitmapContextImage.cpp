// CGBitmapContextImage.cpp: images of what a bitmap context shows.
//
// An image takes the pixels that the context holds, and the context copies them when it is next
// drawn to, if the image still exists then: most are made when a picture is finished.

#include "XGBitmapContext.h"
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGDataProvider.h>

#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/XGBackend.h"
#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Diagnostics.h"

namespace {

// Nobody else can begin to share what is not shared.
bool isShared(CFDataRef data) {
    return CFGetRetainCount(data) > 1;
}

bool takeBack(void* context) {
    return cg::takeBackPixels(static_cast<CGContextRef>(context));
}

// The pixels as they are now and stay.
cf::Ref<CFDataRef> snapshot(CGContextRef context, const cg::BitmapFields& bitmap) {
    if (bitmap.isReachable) {
        const cg::LockedPixels pixels(bitmap);
        return pixels.get()
                   ? cf::adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(pixels.get()),
                                            CFDataGetLength(bitmap.data.get())))
                   : nullptr;
    }
    cg::callBeforeNextMark(context->info, takeBack, context);
    return bitmap.data;
}

} // namespace

bool cg::takeBackPixels(CGContextRef context) {
    BitmapFields& bitmap = *fieldsOf(context);
    if (bitmap.isReachable || !isShared(bitmap.data.get()))
        return true;
    const auto copy = cf::adopt(CFDataCreateMutableCopy(nullptr, 0, bitmap.data.get()));
    if (!copy) {
        logFailedAllocation(context, describe(bitmap));
        return false;
    }
    bitmap.pixels = CFDataGetMutableBytePtr(copy.get());
    bitmap.data = cf::retain(static_cast<CFDataRef>(copy.get()));
    movePixels(context->info, bitmap.pixels);
    return true;
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
    return XGBitmapContextCreateImageWithSize(context, CGBitmapContextGetWidth(context),
                                              CGBitmapContextGetHeight(context));
}

// Not validated as an image that a caller describes: some formats that can be drawn into, such as
// three times 5 bits and an opacity of one, are none for CGImageCreate.
CGImageRef XGBitmapContextCreateImageWithSize(CGContextRef context, size_t width, size_t height) {
    const cg::BitmapFields* const bitmap = cg::fieldsOf(context);
    if (!bitmap || width == 0 || height == 0)
        return nullptr;
    if (width > bitmap->width || height > bitmap->height) {
        CG_LOG_ERROR("A bitmap of %zu by %zu pixels has no part of %zu by %zu", bitmap->width,
                     bitmap->height, width, height);
        return nullptr;
    }
    const bool isWhole = width == bitmap->width && height == bitmap->height;
    if (context->queue && isWhole)
        return cg::createQueueImage(context);
    if (!cg::bringIntoPixels(context))
        return nullptr;
    const auto data = snapshot(context, *bitmap);
    const auto provider = cf::adopt(data ? CGDataProviderCreateWithCFData(data.get()) : nullptr);
    if (!provider) {
        cg::logFailedAllocation(context, cg::describe(*bitmap));
        return nullptr;
    }
    provider.get()->keepsBytes = true; // The context copies them before it draws on.
    return cg::makeImage({.width = width,
                          .height = height,
                          .bitsPerComponent = bitmap->bitsPerComponent,
                          .bitsPerPixel = bitmap->bitsPerPixel,
                          .bytesPerRow = bitmap->bytesPerRow,
                          .bitmapInfo = bitmap->info & ~cg::kRecordsCommands,
                          .flags = cg::kImageInterpolates,
                          .space = bitmap->space.get(),
                          .provider = provider.get()})
        .release();
}
