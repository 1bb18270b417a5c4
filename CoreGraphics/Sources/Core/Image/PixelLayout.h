// PixelLayout.h: where the components of a pixel lie among its bits.
#pragma once

#include <CoreGraphics/CGImage.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace cg {

// What a caller says of an image's pixels.
struct PixelDescription {
    std::size_t bitsPerComponent = 0;
    std::size_t bitsPerPixel = 0;
    CGBitmapInfo bitmapInfo = 0;
    std::size_t colorCount = 0; // Components of the colour space; 0 without one.
};

// Bits of one component, counted from the first, most significant bit of the pixel.
struct SampleField {
    std::size_t offset = 0;
    unsigned bits = 0;

    friend bool operator==(const SampleField&, const SampleField&) = default;
};

// A pixel's make-up, which holds once made:
// - there is at least one field, at most four of colour and one of opacity, each of 1 to 32 bits;
// - every field lies inside the pixel;
// - floats are of 32 bits, at a multiple of 8 bits;
// - the byte order's unit divides the pixel.
//
// A row is a stream of bits, most significant first. A little-endian byte order means that the
// bytes of each 16-bit or 32-bit unit of the row stand in reverse. Where a pixel is not made of
// whole units, the unit is halved until it is: 16-bit gray in 32-bit order swaps its two bytes, and
// 8-bit or packed 24-bit pixels lie as they are. No order can then reach beyond a row.
//
// Bits that no component needs lie where the unused opacity would: behind the colours, or before
// them for "skip first".
class PixelLayout {
public:
    static constexpr std::size_t kMostFields = 5;

    // Nothing when no pixel can be made up like that.
    static std::optional<PixelLayout> of(const PixelDescription& description);
    static std::optional<PixelLayout> of(const CGImage& image);

    std::size_t bitsPerPixel() const { return bitsPerPixel_; }
    // The fields of colour come first; opacity, if any, is the last field.
    std::size_t fieldCount() const { return colorCount_ + (hasAlpha_ ? 1 : 0); }
    std::size_t colorCount() const { return colorCount_; }
    bool hasAlpha() const { return hasAlpha_; }
    bool isPremultiplied() const { return isPremultiplied_; }
    bool isFloat() const { return isFloat_; }
    const SampleField& field(std::size_t index) const { return fields_[index]; }
    // The bytes of a unit whose order is reversed; 1 when bytes lie in order.
    std::size_t unit() const { return unit_; }

    // Whether every field is `bits` wide and starts at a byte.
    bool isMadeOfWhole(unsigned bits) const;
    // Where in a pixel of whole bytes the byte lies that stands `index`-th in the stream.
    std::size_t bytePlace(std::size_t index) const { return index ^ (unit_ - 1); }

private:
    PixelLayout() = default;
    bool placeFields(const PixelDescription& description, CGImageAlphaInfo alpha);
    bool placePackedFields(CGImageAlphaInfo alpha);

    std::array<SampleField, kMostFields> fields_;
    std::size_t bitsPerPixel_ = 0;
    std::size_t colorCount_ = 0;
    std::size_t unit_ = 1;
    bool hasAlpha_ = false;
    bool isPremultiplied_ = false;
    bool isFloat_ = false;
};

} // namespace cg
