// PixelDecode.cpp: decode arrays, and what holds without one.

#include "PixelDecode.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Image/CGImageRecord.h"

namespace cg {

namespace {

// As integers of profiles hold it, whatever the range of the image's own space.
DecodeRange labRange(CGColorSpaceRef space, std::size_t field) {
    if (field == 0)
        return {0, 100, 0, 100};
    DecodeRange range = {-128, 127, -128, 127};
    if (const auto* lab = std::get_if<LabCalibration>(&space->calibration)) {
        range.minimum = static_cast<double>(lab->range[2 * field - 2]);
        range.maximum = static_cast<double>(lab->range[2 * field - 1]);
    }
    return range;
}

} // namespace

DecodeRange defaultDecodeRange(CGColorSpaceRef space, std::size_t component, double largest) {
    switch (CGColorSpaceGetModel(space)) {
    case kCGColorSpaceModelLab:
        return labRange(space, component);
    case kCGColorSpaceModelIndexed:
        return {0, largest, 0, 255};
    default:
        return {};
    }
}

SampleDecoder::SampleDecoder(CGImageRef image, const PixelLayout& layout) : layout_(layout) {
    // Opacity is no colour, and the decode array is one of colours; but where there is nothing
    // else, as in masks, it is what gets decoded.
    const bool isAlphaOnly = layout.colorCount() == 0;
    const std::size_t decoded = isAlphaOnly ? 1 : layout.colorCount();
    const CGColorSpaceRef space = isAlphaOnly ? nullptr : image->space.get();
    isPlain_ = !layout.isFloat();
    for (std::size_t i = 0; i < layout.fieldCount(); ++i) {
        largest_[i] = static_cast<std::uint32_t>((std::uint64_t{1} << layout.field(i).bits) - 1);
        if (i < decoded) {
            ranges_[i] = defaultDecodeRange(space, i, layout.isFloat() ? 1 : largest_[i]);
            if (image->hasDecode) {
                ranges_[i].minimum = static_cast<double>(image->decode[2 * i]);
                ranges_[i].maximum = static_cast<double>(image->decode[2 * i + 1]);
            }
        }
        isPlain_ = isPlain_ && ranges_[i].isPlain();
    }
}

} // namespace cg
