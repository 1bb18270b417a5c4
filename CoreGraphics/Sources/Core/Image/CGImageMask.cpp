// CGImageMask.cpp: images that let paint through in parts only, by another image or by colours.

#include "XGColorSpace.h"

#include "Core/Image/CGImageRecord.h"

#include <algorithm>

namespace {

// What is masked already, or a mask itself, takes no mask.
bool canBeMasked(CGImageRef image) {
    return image && !(image->flags &
                      (cg::kImageHasMaskingColors | cg::kImageCreatedAsMask | cg::kImageHasMask));
}

// Image masks, gray images of the device and pixels without a space.
bool canMask(CGImageRef mask) {
    return XGImageWasCreatedAsMask(mask) || !mask->space ||
           XGColorSpaceEqualToColorSpace(mask->space.get(), XGColorSpaceGetDeviceGray());
}

} // namespace

CGImageRef CGImageCreateWithMask(CGImageRef image, CGImageRef mask) {
    if (!canBeMasked(image) || !mask || !canMask(mask))
        return nullptr;
    if (mask->width != image->width || mask->height != image->height)
        return nullptr;
    auto masked = cf::adopt(CGImageCreateCopy(image));
    if (!masked)
        return nullptr;
    masked.get()->mask = cf::retain(mask);
    masked.get()->flags |= cg::kImageHasMask;
    return masked.release();
}

CGImageRef CGImageCreateWithMaskingColors(CGImageRef image, const CGFloat* components) {
    if (!canBeMasked(image) || !components)
        return nullptr;
    auto masked = cf::adopt(CGImageCreateCopy(image));
    if (!masked)
        return nullptr;
    const std::size_t count =
        std::min(CGColorSpaceGetNumberOfComponents(image->space.get()), cg::kMostDecodePairs);
    std::copy_n(components, 2 * count, masked.get()->maskingColors.begin());
    masked.get()->flags |= cg::kImageHasMaskingColors;
    return masked.release();
}
