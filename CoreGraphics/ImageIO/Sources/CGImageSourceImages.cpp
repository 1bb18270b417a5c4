// CGImageSourceImages.cpp: the images and thumbnails of a source.

#include "CGImageSourceRecord.h"
#include "XGImage.h"

#include "PropertyDictionary.h"
#include "Thumbnail.h"

#include <limits>

namespace {

using namespace imageio;

using Image = cf::Ref<CGImageRef>;

// Inks that are written inverted: 255 is none.
constexpr CGFloat kInverted[8] = {1, 0, 1, 0, 1, 0, 1, 0};

Image makeImage(const Inspection& found, KeepPixels keep) {
    const ImageHeader& header = found.picture.get()->header;
    const Provider pixels = makePixelProvider(found.picture.get(), keep);
    auto image = cf::adopt(XGImageCreateDeferred(
        header.width, header.height, header.bitsPerComponent, header.bitsPerPixel,
        header.bytesPerRow, header.space.get(), header.bitmapInfo, pixels.get(),
        header.isInverted ? kInverted : nullptr, true, kCGRenderingIntentDefault));
    XGImageSetSourceDataProvider(image.get(), found.given.get());
    XGImageSetUTType(image.get(), *found.format->type);
    return image;
}

Image imageOf(const Inspection& found, CFDictionaryRef options) {
    const bool mayKeep = booleanOption(options, kCGImageSourceShouldCache, true);
    auto image = makeImage(found, mayKeep ? KeepPixels::Yes : KeepPixels::No);
    if (image && booleanOption(options, kCGImageSourceShouldCacheImmediately, false))
        XGImageForceDecode(image.get());
    return image;
}

// The picture of the file within the file.
Image embeddedThumbnail(const Inspection& found) {
    const FileBytes file(found.file.get());
    const ImageReader& reader = *found.format->reader;
    const Bytes bytes = reader.findThumbnail ? reader.findThumbnail(file.bytes()) : Bytes();
    if (bytes.empty())
        return nullptr;
    const auto data =
        cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
    const auto source = cf::adopt(CGImageSourceCreateWithData(data.get(), nullptr));
    return cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
}

Image imageForThumbnail(const Inspection& found, CFDictionaryRef options) {
    const bool always = booleanOption(options, kCGImageSourceCreateThumbnailFromImageAlways, false);
    const bool ifAbsent =
        booleanOption(options, kCGImageSourceCreateThumbnailFromImageIfAbsent, false);
    Image image = always ? nullptr : embeddedThumbnail(found);
    // The whole picture is of no use once its thumbnail is made, unless somebody keeps it.
    if (!image && (always || ifAbsent))
        image = makeImage(found, KeepPixels::Yes);
    return image;
}

// How many pixels the option allows; without it as many as there are.
std::size_t pixelLimit(CFDictionaryRef options) {
    constexpr double kNone = std::numeric_limits<std::int32_t>::max();
    const double limit = numberOption(options, kCGImageSourceThumbnailMaxPixelSize, kNone);
    return limit >= 1 && limit < kNone ? static_cast<std::size_t>(limit)
                                       : static_cast<std::size_t>(kNone);
}

} // namespace

CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index,
                                           CFDictionaryRef options) {
    if (!source || index != 0)
        return nullptr;
    const Inspection found = source->inspect();
    return found.picture ? imageOf(found, options).release() : nullptr;
}

CGImageRef CGImageSourceCreateThumbnailAtIndex(CGImageSourceRef source, size_t index,
                                               CFDictionaryRef options) {
    if (!source || index != 0)
        return nullptr;
    const Inspection found = source->inspect();
    const Image image = found.picture ? imageForThumbnail(found, options) : nullptr;
    if (!image)
        return nullptr;
    const bool turns = booleanOption(options, kCGImageSourceCreateThumbnailWithTransform, false);
    const std::uint32_t orientation = turns ? found.picture.get()->header.orientation : 1;
    return makeThumbnail(image.get(), pixelLimit(options), orientation).release();
}
