// ExifData.cpp: reading the EXIF data in a picture file.

#include "ExifData.h"

#include "PropertyDictionary.h"

#include <ImageIO/CGImageProperties.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace imageio {
namespace {

// Types of values as TIFF numbers them, and the bytes that each takes.
enum Type : std::uint16_t {
    kByte = 1,
    kText,
    kShort,
    kLong,
    kRational,
    kSignedByte,
    kUndefined,
    kSignedShort,
    kSignedLong,
    kSignedRational
};
constexpr std::array<std::uint8_t, 11> kTypeSizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8};

enum Tag : std::uint16_t {
    kOrientation = 0x0112,
    kXResolution = 0x011A,
    kYResolution = 0x011B,
    kResolutionUnit = 0x0128,
    kThumbnailOffset = 0x0201,
    kThumbnailSize = 0x0202,
    kExifDirectory = 0x8769
};

constexpr std::size_t kEntrySize = 12;
constexpr std::uint32_t kCentimetres = 3;
constexpr double kCentimetresPerInch = 2.54;

enum class Form { Value, List, Version };

struct Property {
    std::uint16_t tag;
    const CFStringRef* key;
    Form form = Form::Value;
};

constexpr Property kTIFFProperties[] = {
    {0x010D, &kCGImagePropertyTIFFDocumentName}, {0x010E, &kCGImagePropertyTIFFImageDescription},
    {0x010F, &kCGImagePropertyTIFFMake},         {0x0110, &kCGImagePropertyTIFFModel},
    {0x0112, &kCGImagePropertyTIFFOrientation},  {0x011A, &kCGImagePropertyTIFFXResolution},
    {0x011B, &kCGImagePropertyTIFFYResolution},  {0x0128, &kCGImagePropertyTIFFResolutionUnit},
    {0x0131, &kCGImagePropertyTIFFSoftware},     {0x0132, &kCGImagePropertyTIFFDateTime},
    {0x013B, &kCGImagePropertyTIFFArtist},       {0x013C, &kCGImagePropertyTIFFHostComputer},
    {0x8298, &kCGImagePropertyTIFFCopyright},
};

constexpr Property kExifProperties[] = {
    {0x829A, &kCGImagePropertyExifExposureTime},
    {0x829D, &kCGImagePropertyExifFNumber},
    {0x8822, &kCGImagePropertyExifExposureProgram},
    {0x8827, &kCGImagePropertyExifISOSpeedRatings, Form::List},
    {0x9000, &kCGImagePropertyExifExifVersion, Form::Version},
    {0x9003, &kCGImagePropertyExifDateTimeOriginal},
    {0x9004, &kCGImagePropertyExifDateTimeDigitized},
    {0x9201, &kCGImagePropertyExifShutterSpeedValue},
    {0x9202, &kCGImagePropertyExifApertureValue},
    {0x9203, &kCGImagePropertyExifBrightnessValue},
    {0x9204, &kCGImagePropertyExifExposureBiasValue},
    {0x9205, &kCGImagePropertyExifMaxApertureValue},
    {0x9206, &kCGImagePropertyExifSubjectDistance},
    {0x9207, &kCGImagePropertyExifMeteringMode},
    {0x9208, &kCGImagePropertyExifLightSource},
    {0x9209, &kCGImagePropertyExifFlash},
    {0x920A, &kCGImagePropertyExifFocalLength},
    {0xA001, &kCGImagePropertyExifColorSpace},
    {0xA002, &kCGImagePropertyExifPixelXDimension},
    {0xA003, &kCGImagePropertyExifPixelYDimension},
    {0xA402, &kCGImagePropertyExifExposureMode},
    {0xA403, &kCGImagePropertyExifWhiteBalance},
    {0xA404, &kCGImagePropertyExifDigitalZoomRatio},
    {0xA405, &kCGImagePropertyExifFocalLenIn35mmFilm},
    {0xA406, &kCGImagePropertyExifSceneCaptureType},
    {0xA433, &kCGImagePropertyExifLensMake},
    {0xA434, &kCGImagePropertyExifLensModel},
};

// Text ends at its NUL; writers pad it with blanks as well.
Bytes trimmed(Bytes text) {
    std::size_t length = 0;
    while (length < text.size() && text[length] != 0)
        ++length;
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return text.first(length);
}

void setList(CFMutableDictionaryRef properties, const Property& property, const ExifData& data,
             const ExifData::Entry& entry) {
    std::array<std::int64_t, 16> values;
    const std::size_t count = std::min<std::size_t>(entry.count, values.size());
    for (std::uint32_t i = 0; i < count; ++i)
        values[i] = data.integer(entry, i);
    setIntegers(properties, *property.key, std::span(values).first(count));
}

// "0230" is version 2.3.
void setVersion(CFMutableDictionaryRef properties, const Property& property,
                const ExifData::Entry& entry) {
    if (entry.values.size() != 4)
        return;
    std::array<std::int64_t, 4> digits;
    std::ranges::transform(entry.values, digits.begin(), [](std::uint8_t c) { return c - '0'; });
    digits[0] = digits[0] * 10 + digits[1];
    digits[1] = digits[2];
    digits[2] = digits[3];
    setIntegers(properties, *property.key, std::span(digits).first(digits[2] == 0 ? 2 : 3));
}

void setProperty(CFMutableDictionaryRef properties, const Property& property, const ExifData& data,
                 const ExifData::Entry& entry) {
    const bool isRational = entry.type == kRational || entry.type == kSignedRational;
    if (property.form == Form::Version)
        setVersion(properties, property, entry);
    else if (entry.type == kText)
        setText(properties, *property.key, trimmed(entry.values));
    else if (entry.count == 0 || entry.type == kUndefined)
        return;
    else if (property.form == Form::List)
        setList(properties, property, data, entry);
    else if (isRational)
        setReal(properties, *property.key, data.real(entry, 0));
    else
        setInteger(properties, *property.key, data.integer(entry, 0));
}

} // namespace

ExifData::ExifData(Bytes tiff) : tiff_(tiff) {
    constexpr std::size_t kHead = 8;
    constexpr std::uint16_t kMagic = 42;
    if (tiff.size() < kHead)
        return;
    isBigEndian_ = tiff[0] == 'M';
    const std::uint8_t mark = isBigEndian_ ? 'M' : 'I';
    if (tiff[0] == mark && tiff[1] == mark && u16(2) == kMagic)
        mainDirectory_ = u32(4);
}

std::size_t ExifData::number(Bytes bytes, std::size_t size) const {
    std::size_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[isBigEndian_ ? i : size - 1 - i];
    return value;
}

// 0 outside of the data.
std::uint16_t ExifData::u16(std::size_t offset) const {
    const bool isInside = offset <= tiff_.size() && tiff_.size() - offset >= 2;
    return isInside ? static_cast<std::uint16_t>(number(tiff_.subspan(offset), 2)) : 0;
}

std::uint32_t ExifData::u32(std::size_t offset) const {
    const bool isInside = offset <= tiff_.size() && tiff_.size() - offset >= 4;
    return isInside ? static_cast<std::uint32_t>(number(tiff_.subspan(offset), 4)) : 0;
}

// An entry is tag, type, count, and the values or, when they take more than four bytes, their
// place.
std::optional<ExifData::Entry> ExifData::entryAt(std::size_t offset) const {
    if (offset > tiff_.size() || tiff_.size() - offset < kEntrySize)
        return std::nullopt;
    Entry entry{.tag = u16(offset), .type = u16(offset + 2), .count = u32(offset + 4)};
    if (entry.type == 0 || entry.type >= kTypeSizes.size() || entry.count > tiff_.size())
        return std::nullopt;
    const std::size_t size = entry.count * std::size_t(kTypeSizes[entry.type]);
    const std::size_t place = size <= 4 ? offset + 8 : u32(offset + 8);
    if (place > tiff_.size() || size > tiff_.size() - place)
        return std::nullopt;
    entry.values = tiff_.subspan(place, size);
    return entry;
}

std::optional<ExifData::Entry> ExifData::find(std::size_t directory, std::uint16_t tag) const {
    const std::size_t count = directory == 0 ? 0 : u16(directory);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t offset = directory + 2 + i * kEntrySize;
        if (u16(offset) == tag)
            return entryAt(offset);
    }
    return std::nullopt;
}

std::uint32_t ExifData::integer(const Entry& entry, std::uint32_t index) const {
    const std::size_t size = kTypeSizes[entry.type];
    if (index >= entry.count || size > 4)
        return 0;
    return static_cast<std::uint32_t>(number(entry.values.subspan(index * size), size));
}

double ExifData::real(const Entry& entry, std::uint32_t index) const {
    if (index >= entry.count || kTypeSizes[entry.type] != 8)
        return 0;
    const auto over = static_cast<std::uint32_t>(number(entry.values.subspan(index * 8), 4));
    const auto under = static_cast<std::uint32_t>(number(entry.values.subspan(index * 8 + 4), 4));
    if (under == 0)
        return 0;
    if (entry.type == kRational)
        return double(over) / under;
    return double(static_cast<std::int32_t>(over)) / static_cast<std::int32_t>(under);
}

std::uint32_t ExifData::integerOf(std::size_t directory, std::uint16_t tag) const {
    const auto entry = find(directory, tag);
    return entry ? integer(*entry, 0) : 0;
}

std::uint32_t ExifData::orientation() const {
    const std::uint32_t value = integerOf(mainDirectory_, kOrientation);
    return value >= 1 && value <= 8 ? value : 1;
}

double ExifData::resolution(std::uint16_t tag) const {
    const auto entry = find(mainDirectory_, tag);
    const double value = entry ? real(*entry, 0) : 0;
    const bool isMetric = integerOf(mainDirectory_, kResolutionUnit) == kCentimetres;
    return isMetric ? value * kCentimetresPerInch : value;
}

double ExifData::horizontalDPI() const {
    return resolution(kXResolution);
}
double ExifData::verticalDPI() const {
    return resolution(kYResolution);
}

// The place of the next directory follows a directory's entries.
std::size_t ExifData::thumbnailDirectory() const {
    return mainDirectory_ == 0 ? 0 : u32(mainDirectory_ + 2 + u16(mainDirectory_) * kEntrySize);
}

Bytes ExifData::thumbnail() const {
    const std::size_t directory = thumbnailDirectory();
    const std::size_t offset = integerOf(directory, kThumbnailOffset);
    const std::size_t size = integerOf(directory, kThumbnailSize);
    if (offset == 0 || offset > tiff_.size() || size > tiff_.size() - offset)
        return {};
    return tiff_.subspan(offset, size);
}

void ExifData::addProperties(CFMutableDictionaryRef properties) const {
    const auto add = [&](CFStringRef key, std::size_t directory, std::span<const Property> table) {
        const auto own = makeProperties();
        for (const Property& property : table)
            if (const auto entry = find(directory, property.tag))
                setProperty(own.get(), property, *this, *entry);
        setDictionary(properties, key, own);
    };
    add(kCGImagePropertyTIFFDictionary, mainDirectory_, kTIFFProperties);
    add(kCGImagePropertyExifDictionary, integerOf(mainDirectory_, kExifDirectory), kExifProperties);
}

} // namespace imageio
