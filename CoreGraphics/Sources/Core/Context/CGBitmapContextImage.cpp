// CGBitmapContextImage.cpp: images of what a bitmap context shows.
//
// An image takes the pixels that the context holds, and the context copies them when it is next
// drawn to, if the image still exists then: most are made when a picture is finished.

#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGDataProvider.h>

#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/XGBackend.h"
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
    if (bitmap.isReachable)
        return cf::adopt(CFDataCreate(nullptr, static_cast<const UInt8*>(bitmap.pixels),
                                      CFDataGetLength(bitmap.data.get())));
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
        CG_LOG_ERROR("[%p] Failed to allocate %s (%zuX%zu+%zu-bit).",
                     static_cast<const void*>(context), "pixels", bitmap.width, bitmap.height,
                     bitmap.bitsPerPixel);
        return false;
    }
    bitmap.pixels = CFDataGetMutableBytePtr(copy.get());
    bitmap.data = cf::retain(static_cast<CFDataRef>(copy.get()));
    movePixels(context->info, bitmap.pixels);
    return true;
}

CGImageRef CGBitmapContextCreateImage(CGContextRef context) {
    const cg::BitmapFields* const bitmap = cg::fieldsOf(context);
    if (!bitmap)
        return nullptr;
    const auto data = snapshot(context, *bitmap);
    const auto provider = cf::adopt(data ? CGDataProviderCreateWithCFData(data.get()) : nullptr);
    return CGImageCreate(bitmap->width, bitmap->height, bitmap->bitsPerComponent,
                         bitmap->bitsPerPixel, bitmap->bytesPerRow, bitmap->space.get(),
                         bitmap->info & ~cg::kRecordsCommands, provider.get(), nullptr, true,
                         kCGRenderingIntentDefault);
}
