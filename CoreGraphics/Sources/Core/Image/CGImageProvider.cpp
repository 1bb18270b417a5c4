// CGImageProvider.cpp: what an image's provider is and holds, and the names of images in traces.

#include "XGDataProvider.h"
#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFString.h>

#include "Core/Image/CGImageRecord.h"
#include "Core/Image/TraceNames.h"

namespace {

void* providerInfo(CGImageRef image, CGBitmapInfo bit) {
    const bool isMarked = (CGImageGetBitmapInfo(image) & bit) != 0;
    return isMarked ? XGDataProviderGetInfo(image->provider.get()) : nullptr;
}

using Lock = const void* (*)(CGDataProviderRef);
using Unlock = void (*)(CGDataProviderRef);

bool canLock(CGDataProviderRef provider, Lock lock, Unlock unlock) {
    if (!lock(provider))
        return false;
    unlock(provider);
    return true;
}

// As much of `source` as a trace shows: 256 bytes of UTF-8 and no half character.
cf::Ref<CFStringRef> traceName(CFStringRef source) {
    UInt8 text[256];
    CFIndex size = 0;
    CFStringGetBytes(source, {0, CFStringGetLength(source)}, kCFStringEncodingUTF8, '?', false,
                     text, sizeof text, &size);
    return cf::adopt(CFStringCreateWithBytes(nullptr, text, size, kCFStringEncodingUTF8, false));
}

} // namespace

void* XGImageGetNativeBuffer(CGImageRef image) {
    return providerInfo(image, kXGImageNativeBuffer);
}

void* XGImageGetCommandQueue(CGImageRef image) {
    return providerInfo(image, kXGImageCommandQueue);
}

void* XGImageGetOffscreenRenderTarget(CGImageRef image) {
    return providerInfo(image, kXGImageOffscreenTarget);
}

// ---- Decoding

bool CGImageForceDecode(CGImageRef image) {
    if (!image || !image->provider)
        return false;
    const CGDataProviderRef provider = image->provider.get();
    return canLock(provider, XGDataProviderLockPlanarData, XGDataProviderUnlockPlanarData) ||
           canLock(provider, XGDataProviderLockPremultipliedData,
                   XGDataProviderUnlockPremultipliedData) ||
           canLock(provider, XGDataProviderLockData, XGDataProviderUnlockData);
}

bool XGImageForceDecode(CGImageRef image) {
    return CGImageForceDecode(image);
}

bool XGImageIsPlanar(CGImageRef image, uint32_t* planeCount) {
    constexpr std::size_t planeCountOffset = 16;
    const CGDataProviderRef provider = CGImageGetDataProvider(image);
    const void* const data = XGDataProviderLockPlanarData(provider);
    if (!data)
        return false;
    if (planeCount)
        *planeCount = static_cast<const std::uint8_t*>(data)[planeCountOffset];
    XGDataProviderUnlockPlanarData(provider);
    return true;
}

// ---- Traces

int32_t XGImageGetTraceID(CGImageRef image) {
    if (!image)
        return cg::traceID(CFSTR("NoImage"));
    const std::int32_t known = image->traceID.load(std::memory_order_relaxed);
    if (known > 0)
        return known;
    const CFStringRef source = image->debugSource.get();
    const std::int32_t id =
        source ? cg::traceID(traceName(source).get()) : cg::traceID(CFSTR("UnknownImage"));
    image->traceID.store(id, std::memory_order_relaxed);
    return id;
}
