// ExifData.h: reading the EXIF data in a picture file: TIFF directories without TIFF pixels.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include "ImageHeader.h"

#include <optional>

namespace imageio {

// Any bytes may be given: what lies outside of them, or is not as the tag has it, is passed over.
class ExifData {
public:
    explicit ExifData(Bytes tiff);

    // 1 to 8; 1 where nothing valid is said.
    std::uint32_t orientation() const;
    // Pixels an inch; 0 where it is not said.
    double horizontalDPI() const;
    double verticalDPI() const;
    // The JPEG file of the thumbnail, or no bytes.
    Bytes thumbnail() const;
    // Adds the dictionaries of TIFF and EXIF tags, unless they would be empty.
    void addProperties(CFMutableDictionaryRef properties) const;

    // The values of one tag, in the file's byte order.
    struct Entry {
        std::uint16_t tag = 0, type = 0;
        std::uint32_t count = 0;
        Bytes values;
    };
    std::uint32_t integer(const Entry& entry, std::uint32_t index) const;
    double real(const Entry& entry, std::uint32_t index) const;

private:
    std::uint16_t u16(std::size_t offset) const;
    std::uint32_t u32(std::size_t offset) const;
    std::size_t number(Bytes bytes, std::size_t size) const;
    std::optional<Entry> entryAt(std::size_t offset) const;
    std::optional<Entry> find(std::size_t directory, std::uint16_t tag) const;
    std::uint32_t integerOf(std::size_t directory, std::uint16_t tag) const;
    double resolution(std::uint16_t tag) const;
    std::size_t thumbnailDirectory() const;

    Bytes tiff_;
    bool isBigEndian_ = false;
    std::size_t mainDirectory_ = 0; // 0: none, as the data begins with its head.
};

} // namespace imageio
