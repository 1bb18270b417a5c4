// JpegReader.cpp: JPEG headers, pixels and metadata.

#include "ExifData.h"
#include "ImageReader.h"
#include "JpegSession.h"
#include "PropertyDictionary.h"

#include <ImageIO/CGImageProperties.h>

#include <algorithm>
#include <array>

namespace imageio {
namespace {

constexpr unsigned kDotsPerCentimetre = 2;
constexpr double kCentimetresPerInch = 2.54;

void setResolution(const jpeg_decompress_struct& jpeg, const ExifData& exif, ImageHeader& header) {
    header.horizontalDPI = exif.horizontalDPI();
    header.verticalDPI = exif.verticalDPI();
    if (jpeg.saw_JFIF_marker == FALSE || jpeg.density_unit == 0)
        return;
    const double scale = jpeg.density_unit == kDotsPerCentimetre ? kCentimetresPerInch : 1;
    header.horizontalDPI = jpeg.X_density * scale;
    header.verticalDPI = jpeg.Y_density * scale;
}

bool setPixelLayout(const jpeg_decompress_struct& jpeg, ImageHeader& header) {
    switch (jpeg.num_components) {
    case 1:
        return setLayout(header, 1, 8, kCGImageAlphaNone);
    case 3: // As screens have it, so that it can be drawn from without a copy.
        return setLayout(header, 4, 8, kCGBitmapByteOrder32Little | kCGImageAlphaNoneSkipFirst);
    case 4:
        // Adobe's programs write ink inverted, and all others that write four inks follow them.
        header.isInverted = jpeg.saw_Adobe_marker != FALSE;
        return setLayout(header, 4, 8, kCGImageAlphaNone);
    default:
        return false;
    }
}

bool readHeader(Bytes file, ImageHeader& header) {
    JpegSession session(file, JpegMetadata::All);
    if (!session.readHeader())
        return false;
    const jpeg_decompress_struct& jpeg = session.info();
    header.width = jpeg.image_width;
    header.height = jpeg.image_height;
    header.depth = 8;
    if (!setPixelLayout(jpeg, header))
        return false;
    header.space = spaceOfProfile(session.profile(), static_cast<std::size_t>(jpeg.num_components));
    const ExifData exif(session.exif());
    header.orientation = exif.orientation();
    setResolution(jpeg, exif, header);
    return static_cast<bool>(header.space);
}

std::size_t decode(Bytes file, const ImageHeader& header, std::uint8_t* pixels) {
    JpegSession session(file, JpegMetadata::None);
    return session.readHeader() ? session.readRows(header, pixels) : 0;
}

void addProperties(Bytes file, CFMutableDictionaryRef properties) {
    JpegSession session(file, JpegMetadata::All);
    if (!session.readHeader())
        return;
    const jpeg_decompress_struct& jpeg = session.info();
    if (jpeg.saw_JFIF_marker != FALSE) {
        const auto own = makeProperties();
        const std::array<std::int64_t, 2> version = {jpeg.JFIF_major_version,
                                                     jpeg.JFIF_minor_version};
        setIntegers(own.get(), kCGImagePropertyJFIFVersion, version);
        setInteger(own.get(), kCGImagePropertyJFIFXDensity, jpeg.X_density);
        setInteger(own.get(), kCGImagePropertyJFIFYDensity, jpeg.Y_density);
        setInteger(own.get(), kCGImagePropertyJFIFDensityUnit, jpeg.density_unit);
        setBoolean(own.get(), kCGImagePropertyJFIFIsProgressive, jpeg.progressive_mode != FALSE);
        setDictionary(properties, kCGImagePropertyJFIFDictionary, own);
    }
    ExifData(session.exif()).addProperties(properties);
}

// ---- Markers: 0xFF, a code, and a length that counts itself, up to the first scan's data.

constexpr std::uint8_t kStartOfScan = 0xDA, kEndOfImage = 0xD9, kApp1 = 0xE1;
constexpr std::uint8_t kFirstBare = 0xD0, kLastBare = 0xD8; // Of this range no lengths follow.

struct Marker {
    std::uint8_t code = 0; // 0: there is no marker here.
    Bytes contents, rest;
};

Marker nextMarker(Bytes bytes) {
    std::size_t i = 0;
    while (i < bytes.size() && bytes[i] == 0xFF) // Any number of them may come first.
        ++i;
    if (i == 0 || i == bytes.size())
        return {};
    Marker marker{bytes[i], {}, bytes.subspan(i + 1)};
    if (marker.code >= kFirstBare && marker.code <= kLastBare)
        return marker;
    if (marker.rest.size() < 2)
        return {};
    const std::size_t length = std::size_t(marker.rest[0]) << 8 | marker.rest[1];
    if (length < 2 || length > marker.rest.size())
        return {};
    marker.contents = marker.rest.subspan(2, length - 2);
    marker.rest = marker.rest.subspan(length);
    return marker;
}

Bytes findThumbnail(Bytes file) {
    static constexpr std::uint8_t kName[6] = {'E', 'x', 'i', 'f', 0, 0};
    for (Marker marker = nextMarker(file); marker.code != 0 && marker.code != kStartOfScan;
         marker = nextMarker(marker.rest)) {
        const Bytes contents = marker.contents;
        if (marker.code == kApp1 && contents.size() > sizeof(kName) &&
            std::equal(std::begin(kName), std::end(kName), contents.begin()))
            return ExifData(contents.subspan(sizeof(kName))).thumbnail();
    }
    return {};
}

// Within a scan's data an 0xFF stands for itself only before a zero, so that an end marker behind
// the first scan is one.
bool isComplete(Bytes file) {
    Marker marker = nextMarker(file);
    while (marker.code != 0 && marker.code != kStartOfScan)
        marker = nextMarker(marker.rest);
    if (marker.code == 0)
        return false;
    for (std::size_t i = marker.rest.size(); i >= 2; --i)
        if (marker.rest[i - 2] == 0xFF && marker.rest[i - 1] == kEndOfImage)
            return true;
    return false;
}

} // namespace

// A block of 64 pixels takes a bit or two, less only with the rare arithmetic coding.
constinit const ImageReader kJpegReader = {readHeader,    decode,     addProperties,
                                           findThumbnail, isComplete, 4096};

} // namespace imageio
