// CGImageSource.cpp: making image sources, and finding out what they hold.

#include "CGImageSourceRecord.h"
#include <CoreFoundation/CFConstantString.h>

#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "PropertyDictionary.h"

#include <mutex>

CF_CONST_STRING_DECL(kCGImageSourceTypeIdentifierHint, "kCGImageSourceTypeIdentifierHint");
CF_CONST_STRING_DECL(kCGImageSourceShouldCache, "kCGImageSourceShouldCache");
CF_CONST_STRING_DECL(kCGImageSourceShouldCacheImmediately, "kCGImageSourceShouldCacheImmediately");
CF_CONST_STRING_DECL(kCGImageSourceShouldAllowFloat, "kCGImageSourceShouldAllowFloat");
CF_CONST_STRING_DECL(kCGImageSourceCreateThumbnailFromImageIfAbsent,
                     "kCGImageSourceCreateThumbnailFromImageIfAbsent");
CF_CONST_STRING_DECL(kCGImageSourceCreateThumbnailFromImageAlways,
                     "kCGImageSourceCreateThumbnailFromImageAlways");
CF_CONST_STRING_DECL(kCGImageSourceThumbnailMaxPixelSize, "kCGImageSourceThumbnailMaxPixelSize");
CF_CONST_STRING_DECL(kCGImageSourceCreateThumbnailWithTransform,
                     "kCGImageSourceCreateThumbnailWithTransform");

namespace {

using namespace imageio;

constexpr CFRuntimeClass kSourceClass = {
    .className = "CGImageSource",
    .finalize = cg::finalize<CGImageSource>,
};

cf::Ref<CFStringRef> hintOf(CFDictionaryRef options) {
    const CFTypeRef hint =
        options ? CFDictionaryGetValue(options, kCGImageSourceTypeIdentifierHint) : nullptr;
    const bool isText = hint && CFGetTypeID(hint) == CFStringGetTypeID();
    return cf::retain(isText ? static_cast<CFStringRef>(hint) : nullptr);
}

cf::Ref<CGImageSourceRef> makeSource(const Provider& provider, Arrival arrival,
                                     CFDictionaryRef options) {
    auto source = cf::adopt(cg::create<CGImageSource>(CGImageSourceGetTypeID()));
    if (source) {
        source.get()->hint = hintOf(options);
        source.get()->arrival = arrival;
        source.get()->inspection.given = provider;
    }
    return source;
}

// Data that can still be changed is copied, so that a source's bytes stay what they are.
Provider providerOfData(CFDataRef data) {
    const auto fixed = cf::adopt(data ? CFDataCreateCopy(nullptr, data) : nullptr);
    return cf::adopt(CGDataProviderCreateWithCFData(fixed.get()));
}

// Whether a file of that size may have so many pixels.
bool isInProportion(const ImageHeader& header, std::size_t fileSize, std::size_t pixelsPerByte) {
    constexpr std::size_t kPixelsThatMayBe = std::size_t(1) << 22;
    const auto pixels = (cg::CheckedSize(header.width) * header.height).value();
    const auto most = (cg::CheckedSize(fileSize) * pixelsPerByte).value();
    return pixels && (*pixels <= kPixelsThatMayBe || !most || *pixels <= *most);
}

PictureRef readPicture(const ImageReader& reader, const Provider& file, Bytes bytes) {
    ImageHeader header;
    if (!reader.readHeader(bytes, header))
        return nullptr;
    if (!isInProportion(header, bytes.size(), reader.mostPixelsPerByte)) {
        CG_LOG_WARNING("%zu x %zu pixels do not fit into a file of %zu bytes", header.width,
                       header.height, bytes.size());
        return nullptr;
    }
    return makePicture(reader, file, header);
}

void inspectFile(Inspection& inspection) {
    inspection.file = providerInMemory(inspection.given.get());
    const FileBytes file(inspection.file.get());
    inspection.format = formatOfBytes(std::as_bytes(file.bytes()));
    if (inspection.format && inspection.format->reader)
        inspection.picture = readPicture(*inspection.format->reader, inspection.file, file.bytes());
}

void update(CGImageSourceRef source, const Provider& provider, bool final) {
    const std::lock_guard hold(source->mutex);
    if (source->arrival != Arrival::Growing) {
        CG_LOG_WARNING("the image source is not one that gets more bytes");
        return;
    }
    source->arrival = final ? Arrival::Finished : Arrival::Growing;
    source->inspection = {.given = provider};
    source->isInspected = false;
}

} // namespace

imageio::Inspection CGImageSource::inspect() {
    const std::lock_guard hold(mutex);
    if (!isInspected) {
        inspectFile(inspection);
        isInspected = true;
    }
    inspection.isGrowing = arrival == Arrival::Growing;
    return inspection;
}

CFTypeID CGImageSourceGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kSourceClass);
    return id;
}

CGImageSourceRef CGImageSourceCreateWithDataProvider(CGDataProviderRef provider,
                                                     CFDictionaryRef options) {
    return provider ? makeSource(cf::retain(provider), Arrival::Whole, options).release() : nullptr;
}

CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options) {
    return CGImageSourceCreateWithDataProvider(providerOfData(data).get(), options);
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options) {
    const Provider provider = cf::adopt(CGDataProviderCreateWithURL(url));
    return CGImageSourceCreateWithDataProvider(provider.get(), options);
}

CGImageSourceRef CGImageSourceCreateIncremental(CFDictionaryRef options) {
    return makeSource(nullptr, Arrival::Growing, options).release();
}

void CGImageSourceUpdateData(CGImageSourceRef source, CFDataRef data, bool final) {
    if (source && data)
        update(source, providerOfData(data), final);
}

void CGImageSourceUpdateDataProvider(CGImageSourceRef source, CGDataProviderRef provider,
                                     bool final) {
    if (source && provider)
        update(source, cf::retain(provider), final);
}
