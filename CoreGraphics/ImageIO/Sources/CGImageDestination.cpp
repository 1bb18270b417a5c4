// CGImageDestination.cpp: the object that images are written through.

#include <CoreFoundation/CFConstantString.h>
#include <Host/Host.h>

#include "ByteSink.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "ImageFormat.h"
#include "ImageToWrite.h"

#include <ImageIO/CGImageDestination.h>
#include <limits.h>

CF_CONST_STRING_DECL(kCGImageDestinationLossyCompressionQuality,
                     "kCGImageDestinationLossyCompressionQuality");
CF_CONST_STRING_DECL(kCGImageDestinationBackgroundColor, "kCGImageDestinationBackgroundColor");

struct CGImageDestination {
    CFRuntimeBase base;
    const imageio::ImageFormat* format = nullptr;
    // The consumer of the caller's or of our own over the data.
    cf::Ref<CGDataConsumerRef> consumer;
    cf::Ref<CFMutableDataRef> data; // Where a failure is undone: absent for a caller's consumer.
    cf::Ref<CFURLRef> url;          // Where the data goes at the end; absent for others.
    cf::Ref<CFDictionaryRef> properties;
    cf::Ref<CGImageRef> image;
    cf::Ref<CFDictionaryRef> imageProperties;
    std::size_t added = 0;
    bool isFinalized = false;
};

namespace {

constexpr CFRuntimeClass kDestinationClass = {
    .className = "CGImageDestination",
    .finalize = cg::finalize<CGImageDestination>,
};

cf::Ref<CGImageDestinationRef> makeDestination(CFStringRef type, std::size_t count) {
    const imageio::ImageFormat* format = imageio::formatOfType(type);
    if (!format || !format->write) {
        CG_LOG_WARNING("images of type '%@' cannot be written", type);
        return nullptr;
    }
    if (count != 1) {
        CG_LOG_WARNING("a file of type '%@' holds one image, not %zu", type, count);
        return nullptr;
    }
    auto* const destination = cg::create<CGImageDestination>(CGImageDestinationGetTypeID());
    if (destination)
        destination->format = format;
    return cf::adopt<CGImageDestinationRef>(destination);
}

cf::Ref<CGImageDestinationRef> makeWithData(CFMutableDataRef data, CFStringRef type,
                                            std::size_t count) {
    auto consumer = cf::adopt(CGDataConsumerCreateWithCFData(data));
    auto destination = consumer ? makeDestination(type, count) : nullptr;
    if (destination) {
        destination.get()->consumer = std::move(consumer);
        destination.get()->data = cf::retain(data);
    }
    return destination;
}

// A replaced file keeps its rights, and a new one is private: one that is there, if empty, gives
// the picture the rights of any file that the process makes.
void claim(const char* path) {
    if (HostFileExists(path))
        return;
    const int descriptor = HostFileOpenForWriting(path);
    if (descriptor >= 0)
        HostFileClose(descriptor);
}

bool replaceFile(CFURLRef url, CFDataRef data) {
    char path[PATH_MAX];
    if (CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path)) {
        claim(path);
        if (HostFileReplace(path, CFDataGetBytePtr(data),
                            static_cast<std::size_t>(CFDataGetLength(data))))
            return true;
    }
    CG_LOG_ERROR("cannot write the file %@", url);
    return false;
}

bool write(CGImageDestinationRef destination) {
    const imageio::ImageToWrite image =
        imageio::imageToWrite(destination->image.get(), destination->imageProperties.get(),
                              destination->properties.get());
    imageio::ByteSink sink(destination->consumer.get());
    if (!destination->format->write(image, sink))
        return false;
    if (!sink.flush()) {
        CG_LOG_ERROR("cannot write an image: the bytes were not taken");
        return false;
    }
    return !destination->url || replaceFile(destination->url.get(), destination->data.get());
}

} // namespace

CFTypeID CGImageDestinationGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kDestinationClass);
    return id;
}

CFArrayRef CGImageDestinationCopyTypeIdentifiers(void) {
    auto types = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const imageio::ImageFormat& format : imageio::imageFormats())
        if (types && format.write)
            CFArrayAppendValue(types.get(), *format.type);
    return types.release();
}

// ---- Create

CGImageDestinationRef CGImageDestinationCreateWithDataConsumer(CGDataConsumerRef consumer,
                                                               CFStringRef type, size_t count,
                                                               CFDictionaryRef) {
    auto destination = consumer ? makeDestination(type, count) : nullptr;
    if (destination)
        destination.get()->consumer = cf::retain(consumer);
    return destination.release();
}

CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data, CFStringRef type,
                                                       size_t count, CFDictionaryRef) {
    return data ? makeWithData(data, type, count).release() : nullptr;
}

CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type, size_t count,
                                                      CFDictionaryRef) {
    char path[PATH_MAX];
    if (!url ||
        !CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path))
        return nullptr;
    const auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    auto destination = data ? makeWithData(data.get(), type, count) : nullptr;
    if (destination)
        destination.get()->url = cf::retain(url);
    return destination.release();
}

// ---- Images

void CGImageDestinationSetProperties(CGImageDestinationRef destination,
                                     CFDictionaryRef properties) {
    if (destination)
        destination->properties = cf::retain(properties);
}

void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                CFDictionaryRef properties) {
    if (!destination || !image || destination->isFinalized)
        return;
    if (++destination->added > 1) {
        CG_LOG_WARNING("the file holds one image: there is no room for another");
        return;
    }
    destination->image = cf::retain(image);
    destination->imageProperties = cf::retain(properties);
}

void CGImageDestinationAddImageFromSource(CGImageDestinationRef destination,
                                          CGImageSourceRef source, size_t index,
                                          CFDictionaryRef properties) {
    if (!destination || !source)
        return;
    const auto image = cf::adopt(CGImageSourceCreateImageAtIndex(source, index, nullptr));
    const auto found = cf::adopt(CGImageSourceCopyPropertiesAtIndex(source, index, nullptr));
    const auto merged =
        cf::adopt(found ? CFDictionaryCreateMutableCopy(nullptr, 0, found.get()) : nullptr);
    if (merged && properties)
        CFDictionaryApplyFunction(
            properties,
            [](const void* key, const void* value, void* into) {
                CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(into), key, value);
            },
            merged.get());
    CGImageDestinationAddImage(destination, image.get(), merged ? merged.get() : properties);
}

bool CGImageDestinationFinalize(CGImageDestinationRef destination) {
    if (!destination)
        return false;
    if (destination->isFinalized || destination->added != 1) {
        CG_LOG_WARNING("cannot finalise: %s", destination->isFinalized  ? "it has been done already"
                                              : destination->added == 0 ? "no image was added"
                                                                        : "too many images");
        return false;
    }
    destination->isFinalized = true;
    const CFIndex before = CFDataGetLength(destination->data.get());
    const bool isWritten = write(destination);
    if (!isWritten && destination->data)
        CFDataSetLength(destination->data.get(), before);
    destination->image = nullptr;
    return isWritten;
}
