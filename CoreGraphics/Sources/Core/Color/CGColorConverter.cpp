// CGColorConverter.cpp: rows of pixels from one colour space and format to another.

#include <CoreGraphics/CGColorConverter.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/RowTransform.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <optional>

struct CGColorConverter {
    CFRuntimeBase base;
    cg::RowTransformRef transform;
    std::size_t inBytesPerPixel = 0;
    std::size_t outBytesPerPixel = 0;
};

namespace {

constexpr CFRuntimeClass kColorConverterClass = {
    .className = "CGColorConverter",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColorConverter>,
};

std::optional<cg::RowFormat> rowFormat(const CGColorConverterFormat& format) {
    switch (format.bitsPerComponent) {
    case 8:
        return cg::RowFormat{cg::ComponentType::Unsigned8, format.hasAlpha};
    case 16:
        return cg::RowFormat{cg::ComponentType::Unsigned16, format.hasAlpha};
    case 32:
        return cg::RowFormat{cg::ComponentType::Float, format.hasAlpha};
    default:
        return std::nullopt;
    }
}

std::size_t bytesPerPixel(CGColorSpaceRef space, const CGColorConverterFormat& format) {
    return (space->componentCount + format.hasAlpha) * (format.bitsPerComponent / 8);
}

// Whether rows of that length lie apart and the last ends within the range of sizes.
bool isPlausible(std::size_t bytesPerPixel, std::size_t width, std::size_t height,
                 std::size_t bytesPerRow) {
    const auto rowBytes = (cg::CheckedSize(width) * cg::CheckedSize(bytesPerPixel)).value();
    return rowBytes && *rowBytes <= bytesPerRow &&
           (cg::CheckedSize(bytesPerRow) * cg::CheckedSize(height)).value();
}

} // namespace

CFTypeID CGColorConverterGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kColorConverterClass);
    return id;
}

CGColorConverterRef CGColorConverterCreate(CGColorSpaceRef from,
                                           const CGColorConverterFormat* fromFormat,
                                           CGColorSpaceRef to,
                                           const CGColorConverterFormat* toFormat,
                                           CGColorRenderingIntent intent) {
    if (!from || !fromFormat || !to || !toFormat)
        return nullptr;
    const auto source = rowFormat(*fromFormat);
    const auto destination = rowFormat(*toFormat);
    if (!source || !destination) {
        CG_LOG_WARNING("no conversion from %u to %u bits per component",
                       fromFormat->bitsPerComponent, toFormat->bitsPerComponent);
        return nullptr;
    }
    auto transform = cg::RowTransform::between(from, *source, to, *destination, intent);
    if (!transform)
        return nullptr;
    const auto converter = cg::create<CGColorConverter>(CGColorConverterGetTypeID());
    if (converter) {
        converter->transform = std::move(transform);
        converter->inBytesPerPixel = bytesPerPixel(from, *fromFormat);
        converter->outBytesPerPixel = bytesPerPixel(to, *toFormat);
    }
    return converter;
}

CGColorConverterRef CGColorConverterRetain(CGColorConverterRef converter) {
    return cg::retain(converter);
}
void CGColorConverterRelease(CGColorConverterRef converter) {
    cg::release(converter);
}

bool CGColorConverterConvertRows(CGColorConverterRef converter, const void* in,
                                 size_t inBytesPerRow, void* out, size_t outBytesPerRow,
                                 size_t width, size_t height) {
    if (!converter || !in || !out ||
        !isPlausible(converter->inBytesPerPixel, width, height, inBytesPerRow) ||
        !isPlausible(converter->outBytesPerPixel, width, height, outBytesPerRow))
        return false;
    const auto* source = static_cast<const std::byte*>(in);
    auto* destination = static_cast<std::byte*>(out);
    for (std::size_t row = 0; row < height; ++row) {
        converter->transform.get()->apply(source, destination, width);
        source += inBytesPerRow;
        destination += outBytesPerRow;
    }
    return true;
}
