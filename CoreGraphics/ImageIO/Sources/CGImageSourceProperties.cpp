// CGImageSourceProperties.cpp: what a source tells about its file and its image.

#include "CGImageSourceRecord.h"
#include "XGColorSpace.h"

#include "ProfileDescription.h"
#include "PropertyDictionary.h"

#include <ImageIO/CGImageProperties.h>

namespace {

using namespace imageio;

CFStringRef nameOf(CGColorSpaceModel model) {
    switch (model) {
    case kCGColorSpaceModelMonochrome:
        return kCGImagePropertyColorModelGray;
    case kCGColorSpaceModelCMYK:
        return kCGImagePropertyColorModelCMYK;
    case kCGColorSpaceModelLab:
        return kCGImagePropertyColorModelLab;
    default:
        return kCGImagePropertyColorModelRGB;
    }
}

void addColors(CFMutableDictionaryRef properties, const ImageHeader& header) {
    const CGColorSpaceRef base = CGColorSpaceGetBaseColorSpace(header.space.get());
    const CGColorSpaceRef space = header.isIndexed ? base : header.space.get();
    setValue(properties, kCGImagePropertyColorModel, nameOf(CGColorSpaceGetModel(space)));
    const auto name = cf::adopt(CGColorSpaceCopyName(space));
    setValue(properties, kCGImagePropertyNamedColorSpace, name.get());
    const auto profile = cf::adopt(CGColorSpaceCopyICCData(space));
    if (profile)
        setValue(properties, kCGImagePropertyProfileName,
                 profileDescription({CFDataGetBytePtr(profile.get()),
                                     static_cast<std::size_t>(CFDataGetLength(profile.get()))})
                     .get());
}

void addHeader(CFMutableDictionaryRef properties, const ImageHeader& header) {
    setInteger(properties, kCGImagePropertyPixelWidth, static_cast<std::int64_t>(header.width));
    setInteger(properties, kCGImagePropertyPixelHeight, static_cast<std::int64_t>(header.height));
    setInteger(properties, kCGImagePropertyDepth, header.depth);
    setInteger(properties, kCGImagePropertyOrientation, header.orientation);
    setBoolean(properties, kCGImagePropertyHasAlpha, header.hasAlpha);
    setBoolean(properties, kCGImagePropertyIsIndexed, header.isIndexed);
    if (header.horizontalDPI > 0)
        setReal(properties, kCGImagePropertyDPIWidth, header.horizontalDPI);
    if (header.verticalDPI > 0)
        setReal(properties, kCGImagePropertyDPIHeight, header.verticalDPI);
    addColors(properties, header);
}

} // namespace

CFDictionaryRef CGImageSourceCopyProperties(CGImageSourceRef source, CFDictionaryRef) {
    if (!source)
        return nullptr;
    const Inspection found = source->inspect();
    if (!found.format)
        return nullptr;
    const FileBytes file(found.file.get());
    const auto properties = makeProperties();
    setInteger(properties.get(), kCGImagePropertyFileSize,
               static_cast<std::int64_t>(file.bytes().size()));
    return CFDictionaryCreateCopy(nullptr, properties.get());
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index,
                                                   CFDictionaryRef) {
    if (!source || index != 0)
        return nullptr;
    const Inspection found = source->inspect();
    if (!found.picture)
        return nullptr;
    const FileBytes file(found.file.get());
    const auto properties = makeProperties();
    addHeader(properties.get(), found.picture.get()->header);
    const ImageReader& reader = *found.format->reader;
    if (properties && reader.addProperties)
        reader.addProperties(file.bytes(), properties.get());
    return properties ? CFDictionaryCreateCopy(nullptr, properties.get()) : nullptr;
}
