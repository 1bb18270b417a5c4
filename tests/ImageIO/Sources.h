// Sources.h: image sources over bytes, and what their images hold.
#pragma once

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "EncodedFiles.h"

#include <ImageIO/ImageIO.h>

namespace test {

using Source = cf::Ref<CGImageSourceRef>;
using Image = cf::Ref<CGImageRef>;
using Dictionary = cf::Ref<CFDictionaryRef>;

inline cf::Ref<CFDataRef> dataOf(const Bytes& bytes) {
    return cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
}
inline Source sourceOf(const Bytes& bytes) {
    return cf::adopt(CGImageSourceCreateWithData(dataOf(bytes).get(), nullptr));
}
inline Image imageOf(const Bytes& bytes, CFDictionaryRef options = nullptr) {
    return cf::adopt(CGImageSourceCreateImageAtIndex(sourceOf(bytes).get(), 0, options));
}

// The decoded bytes; none when they cannot be had.
inline Bytes pixelsOf(CGImageRef image) {
    const auto data = cf::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image)));
    if (!data)
        return {};
    const UInt8* const bytes = CFDataGetBytePtr(data.get());
    return {bytes, bytes + CFDataGetLength(data.get())};
}

inline Dictionary optionOf(CFStringRef key, CFTypeRef value) {
    const void* keys[] = {key};
    const void* values[] = {value};
    return cf::adopt(CFDictionaryCreate(nullptr, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                                        &kCFTypeDictionaryValueCallBacks));
}

} // namespace test
