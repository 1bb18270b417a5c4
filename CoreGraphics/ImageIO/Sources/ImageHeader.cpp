// ImageHeader.cpp: checked sizes of pictures, and the colour spaces of files.

#include "ImageHeader.h"

#include <CoreFoundation/CFData.h>

#include "Core/Object/CheckedSize.h"

namespace imageio {
namespace {

constexpr std::size_t kMostBytes = std::size_t(1) << 30;
constexpr std::size_t kMostPixelsInLine = 0x7FFFFFFF;

} // namespace

bool setLayout(ImageHeader& header, std::size_t components, std::size_t bits, CGBitmapInfo info) {
    if (header.width == 0 || header.height == 0 || header.width > kMostPixelsInLine ||
        header.height > kMostPixelsInLine)
        return false;
    const auto rowBits = (cg::CheckedSize(header.width) * (components * bits) + 7).value();
    if (!rowBits)
        return false;
    const auto total = (cg::CheckedSize(*rowBits / 8) * header.height).value();
    if (!total || *total > kMostBytes)
        return false;
    header.bitsPerComponent = bits;
    header.bitsPerPixel = components * bits;
    header.bytesPerRow = *rowBits / 8;
    header.bitmapInfo = info;
    return true;
}

cf::Ref<CGColorSpaceRef> deviceSpace(std::size_t components) {
    switch (components) {
    case 1:
        return cf::adopt(CGColorSpaceCreateDeviceGray());
    case 3:
        return cf::adopt(CGColorSpaceCreateDeviceRGB());
    case 4:
        return cf::adopt(CGColorSpaceCreateDeviceCMYK());
    default:
        return nullptr;
    }
}

cf::Ref<CGColorSpaceRef> spaceOfProfile(Bytes profile, std::size_t components) {
    if (!profile.empty()) {
        const auto data =
            cf::adopt(CFDataCreate(nullptr, profile.data(), static_cast<CFIndex>(profile.size())));
        auto space = cf::adopt(data ? CGColorSpaceCreateWithICCProfile(data.get()) : nullptr);
        if (space && CGColorSpaceGetNumberOfComponents(space.get()) == components)
            return space;
    }
    return deviceSpace(components);
}

} // namespace imageio
