// ImageToWrite.cpp: reading the properties of an image to be written.

#include "ImageToWrite.h"

#include <CoreFoundation/CFNumber.h>

#include <ImageIO/CGImageDestination.h>
#include <ImageIO/CGImageProperties.h>

namespace imageio {
namespace {

CFTypeRef find(CFDictionaryRef properties, CFStringRef key, CFTypeID type) {
    const CFTypeRef value = properties ? CFDictionaryGetValue(properties, key) : nullptr;
    return value && CFGetTypeID(value) == type ? value : nullptr;
}

class Properties {
public:
    Properties(CFDictionaryRef own, CFDictionaryRef ofFile) : own_(own), ofFile_(ofFile) {}

    CFTypeRef value(CFStringRef key, CFTypeID type) const {
        const CFTypeRef first = find(own_, key, type);
        return first ? first : find(ofFile_, key, type);
    }

    // The number if it lies from `least` to `most`, which NaN does not.
    double number(CFStringRef key, double least, double most, double otherwise) const {
        const CFTypeRef found = value(key, CFNumberGetTypeID());
        double result = 0;
        if (!found)
            return otherwise;
        CFNumberGetValue(static_cast<CFNumberRef>(found), kCFNumberDoubleType, &result);
        return result >= least && result <= most ? result : otherwise;
    }

private:
    CFDictionaryRef own_;
    CFDictionaryRef ofFile_;
};

} // namespace

ImageToWrite imageToWrite(CGImageRef image, CFDictionaryRef own, CFDictionaryRef ofFile) {
    // More than any device has, and still well within the fields of the formats.
    constexpr double kMostDpi = 65535;
    const Properties properties(own, ofFile);
    ImageToWrite result = {.image = image};
    result.quality = static_cast<float>(properties.number(
        kCGImageDestinationLossyCompressionQuality, 0, 1, double{result.quality}));
    result.background = static_cast<CGColorRef>(const_cast<void*>(
        properties.value(kCGImageDestinationBackgroundColor, CGColorGetTypeID())));
    result.dpiWidth = properties.number(kCGImagePropertyDPIWidth, 0, kMostDpi, 0);
    result.dpiHeight = properties.number(kCGImagePropertyDPIHeight, 0, kMostDpi, 0);
    result.orientation =
        static_cast<std::uint8_t>(properties.number(kCGImagePropertyOrientation, 1, 8, 1));
    return result;
}

// TIFF 6.0, section 2: a header, a directory of one entry, and no further directory. An EXIF
// orientation is one SHORT, which stands in the entry itself.
std::array<std::uint8_t, 26> exifOfOrientation(std::uint8_t orientation) {
    return {'M',  'M',         0, 42, 0, 0, 0, 8,  // Big-endian; the directory is at 8.
            0,    1,                               // One entry.
            0x01, 0x12,        0, 3,  0, 0, 0, 1,  // Tag 0x112, of type SHORT, once.
            0,    orientation, 0, 0,  0, 0, 0, 0}; // Its value, padded; the end.
}

} // namespace imageio
