// ImageUploads.cpp: keys of images, and the lists that the compositor works through.

#include "Core/CommandQueue/ImageUploads.h"

#include "XGCommandQueue.h"
#include <CoreFoundation/CFDictionary.h>
#include <Host/Host.h>

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/RuntimeObject.h"

#include <atomic>
#include <mutex>

namespace {

const void* keyPointer(std::uint32_t key) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(key));
}

// An image that the compositor has a copy of has come to its end, on whatever thread dropped it.
void noteEnd(CGImageRef image) {
    static host::Mutex mutex; // Two may end at once; no other lock is taken under it.
    const std::lock_guard hold(mutex);
    CFArrayAppendValue(XGCommandQueueGetImagesToFinalize(), image);
}

// Keys to images, which it retains.
CFMutableDictionaryRef uploadedImages() {
    static const CFMutableDictionaryRef images =
        CFDictionaryCreateMutable(nullptr, 0, nullptr, &kCFTypeDictionaryValueCallBacks);
    return images;
}

} // namespace

CFMutableArrayRef XGCommandQueueGetImagesToUpload(void) {
    static const CFMutableArrayRef images = [] {
        cg::setUploadedImageObserver(noteEnd);
        return CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    }();
    return images;
}

CFMutableArrayRef XGCommandQueueGetImagesToFinalize(void) {
    static const CFMutableArrayRef images = CFArrayCreateMutable(nullptr, 0, nullptr);
    return images;
}

// Given when first asked for: few images are ever recorded.
uint32_t XGCommandQueueGetImageKey(CGImageRef image) {
    static std::atomic<std::uint32_t> lastKey = 0;
    if (!image)
        return 0;
    std::uint32_t key = image->uploadKey.load();
    if (key != 0)
        return key;
    const std::uint32_t fresh = ++lastKey;
    return image->uploadKey.compare_exchange_strong(key, fresh) ? fresh : key;
}

void XGCommandQueueTrackUploadedImage(uint32_t key, CGImageRef image) {
    if (!image)
        return;
    CFDictionarySetValue(uploadedImages(), keyPointer(key), image);
    CFRelease(image);
}

void XGCommandQueueFinalizeImage(uint32_t key) {
    CFDictionaryRemoveValue(uploadedImages(), keyPointer(key));
}

cf::Ref<CGImageRef> cg::uploadedImage(std::uint32_t key) {
    const void* const image =
        key == 0 ? nullptr : CFDictionaryGetValue(uploadedImages(), keyPointer(key));
    return cf::retain(static_cast<CGImageRef>(const_cast<void*>(image)));
}
