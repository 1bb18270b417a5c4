// PixelLayout.cpp: pixels checked once, so that what reads them need not.

#include "PixelLayout.h"

#include "Core/Image/CGImageRecord.h"

#include <algorithm>

namespace cg {

namespace {

// The bytes of a unit that are to be reversed, for pixels of that many bits.
std::optional<std::size_t> reversedUnit(CGBitmapInfo info, std::size_t bitsPerPixel) {
    std::size_t unit = 1;
    switch (info & kCGBitmapByteOrderMask) {
    case kCGBitmapByteOrderDefault:
    case kCGBitmapByteOrder16Big:
    case kCGBitmapByteOrder32Big:
        return 1;
    case kCGBitmapByteOrder16Little:
        unit = 2;
        break;
    case kCGBitmapByteOrder32Little:
        unit = 4;
        break;
    default:
        return std::nullopt;
    }
    while (bitsPerPixel % (unit * 8) != 0 && unit > 1)
        unit /= 2;
    return unit;
}

bool isAlphaMeaningful(CGImageAlphaInfo alpha) {
    return alpha >= kCGImageAlphaPremultipliedLast && alpha <= kCGImageAlphaFirst;
}

bool standsFirst(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaPremultipliedFirst || alpha == kCGImageAlphaFirst ||
           alpha == kCGImageAlphaNoneSkipFirst;
}

} // namespace

std::optional<PixelLayout> PixelLayout::of(const PixelDescription& description) {
    const auto alpha =
        static_cast<CGImageAlphaInfo>(description.bitmapInfo & kCGBitmapAlphaInfoMask);
    const auto unit = reversedUnit(description.bitmapInfo, description.bitsPerPixel);
    if (!unit || description.bitsPerPixel == 0 || alpha > kCGImageAlphaOnly)
        return std::nullopt;

    PixelLayout layout;
    layout.unit_ = *unit;
    layout.bitsPerPixel_ = description.bitsPerPixel;
    layout.isFloat_ = (description.bitmapInfo & kCGBitmapFloatComponents) != 0;
    layout.hasAlpha_ = isAlphaMeaningful(alpha) || alpha == kCGImageAlphaOnly;
    layout.isPremultiplied_ =
        alpha == kCGImageAlphaPremultipliedLast || alpha == kCGImageAlphaPremultipliedFirst;
    // Masks without a space have one component, a gray.
    layout.colorCount_ =
        alpha == kCGImageAlphaOnly ? 0 : std::max<std::size_t>(description.colorCount, 1);
    if (layout.fieldCount() > kMostFields || layout.colorCount_ >= kMostFields)
        return std::nullopt;

    const CGBitmapInfo format = description.bitmapInfo & kCGImagePixelFormatMask;
    if (format == kCGImagePixelFormatRGB565)
        return layout.placePackedFields(alpha) ? std::optional(layout) : std::nullopt;
    if (format != kCGImagePixelFormatPacked && format != kCGImagePixelFormatRGB555)
        return std::nullopt;
    return layout.placeFields(description, alpha) ? std::optional(layout) : std::nullopt;
}

std::optional<PixelLayout> PixelLayout::of(const CGImage& image) {
    return of({.bitsPerComponent = image.bitsPerComponent,
               .bitsPerPixel = image.bitsPerPixel,
               .bitmapInfo = image.bitmapInfo.load(std::memory_order_relaxed),
               .colorCount = CGColorSpaceGetNumberOfComponents(image.space.get())});
}

bool PixelLayout::placeFields(const PixelDescription& description, CGImageAlphaInfo alpha) {
    const std::size_t bits = description.bitsPerComponent;
    if (bits == 0 || bits > 32 || (isFloat_ && (bits != 32 || bitsPerPixel_ % 8 != 0)))
        return false;
    const std::size_t colorBits = colorCount_ * bits;
    if (colorBits > bitsPerPixel_)
        return false;

    // Opacity takes a component's width, or what is left: one bit beside three of five.
    const std::size_t rest = bitsPerPixel_ - colorBits;
    const std::size_t alphaBits = hasAlpha_ ? std::min(rest, bits) : 0;
    if (hasAlpha_ && (alphaBits == 0 || (isFloat_ && alphaBits != bits)))
        return false;
    std::size_t place = 0;
    if (standsFirst(alpha))
        place = hasAlpha_ ? alphaBits : rest;
    for (std::size_t i = 0; i < colorCount_; ++i)
        fields_[i] = {place + i * bits, static_cast<unsigned>(bits)};
    if (hasAlpha_)
        fields_[colorCount_] = {standsFirst(alpha) ? 0 : colorBits,
                                static_cast<unsigned>(alphaBits)};
    return true;
}

// Five, six and five bits of red, green and blue.
bool PixelLayout::placePackedFields(CGImageAlphaInfo alpha) {
    if (bitsPerPixel_ != 16 || colorCount_ != 3 || hasAlpha_ || isFloat_ ||
        alpha > kCGImageAlphaNoneSkipFirst)
        return false;
    fields_ = {SampleField{0, 5}, SampleField{5, 6}, SampleField{11, 5}};
    return true;
}

bool PixelLayout::isMadeOfWhole(unsigned bits) const {
    return bitsPerPixel_ % 8 == 0 &&
           std::all_of(fields_.begin(), fields_.begin() + static_cast<std::ptrdiff_t>(fieldCount()),
                       [bits](const SampleField& field) {
                           return field.bits == bits && field.offset % 8 == 0;
                       });
}

} // namespace cg
