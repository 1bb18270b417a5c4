// WrittenPixels.cpp: choosing a file's colours, and going through an image's rows.

#include "WrittenPixels.h"

#include "XGColorSpace.h"
#include "XGDataProvider.h"
#include "XGImage.h"
#include "XGImagePixels.h"

#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <new>

namespace imageio {

// ---- Colours

std::uint32_t FileColors::componentCount() const {
    return model == kCGColorSpaceModelCMYK ? 4 : model == kCGColorSpaceModelRGB ? 3 : 1;
}

FileColors fileColors(CGImageRef image, InkColors inks) {
    CGColorSpaceRef space = CGImageGetColorSpace(image);
    if (!space || CGImageIsMask(image))
        return {};
    if (CGColorSpaceGetModel(space) == kCGColorSpaceModelIndexed)
        space = CGColorSpaceGetBaseColorSpace(space);

    FileColors colors;
    colors.model = CGColorSpaceGetModel(space);
    colors.isSRGB = XGColorSpaceIsSRGB(space);
    colors.profile = cf::adopt(CGColorSpaceCopyICCData(space));
    const bool isDevice = space == XGColorSpaceGetDeviceGray() ||
                          space == XGColorSpaceGetDeviceRGB() ||
                          space == XGColorSpaceGetDeviceCMYK();
    const bool hasModel = colors.model == kCGColorSpaceModelMonochrome ||
                          colors.model == kCGColorSpaceModelRGB ||
                          (colors.model == kCGColorSpaceModelCMYK && inks == InkColors::Accepted);
    if (hasModel && (isDevice || colors.isSRGB || colors.profile))
        return colors;
    CGColorSpaceRef sRGB = XGColorSpaceGetSRGB();
    return {sRGB, kCGColorSpaceModelRGB, true, cf::adopt(CGColorSpaceCopyICCData(sRGB))};
}

namespace {

// A masked image that has been drawn keeps another with the mask applied.
bool isMasked(CGImageRef image) {
    return XGImageGetMask(image) || !CGImageIsMaskBaked(image) ||
           _CGImageGetMaskedImage(image) != image;
}

} // namespace

bool hasOpacity(CGImageRef image) {
    return !CGImageIsMask(image) &&
           (!XGImageAlphaInfoIsOpaque(CGImageGetAlphaInfo(image)) || isMasked(image));
}

// ---- Rows

namespace {

// Whether the bytes of the image's provider are laid out so. Larger components may lie in the
// wrong order and are not looked at.
bool hasLayout(CGImageRef image, const WrittenLayout& layout) {
    const CGColorSpaceRef space = CGImageGetColorSpace(image);
    const CGBitmapInfo order = CGImageGetBitmapInfo(image) & kCGBitmapByteOrderMask;
    const CGImageAlphaInfo wanted = !layout.hasAlpha         ? kCGImageAlphaNone
                                    : layout.isPremultiplied ? kCGImageAlphaPremultipliedLast
                                                             : kCGImageAlphaLast;
    return space && !layout.space && layout.bitsPerComponent == 8 &&
           CGColorSpaceGetModel(space) != kCGColorSpaceModelIndexed &&
           CGImageGetBitsPerComponent(image) == 8 &&
           CGImageGetBitsPerPixel(image) == 8 * layout.bytesPerPixel() &&
           (order == kCGBitmapByteOrderDefault || order == kCGBitmapByteOrder32Big) &&
           CGImageGetAlphaInfo(image) == wanted && !CGImageGetDecode(image) && !isMasked(image);
}

} // namespace

WrittenRows::WrittenRows(CGImageRef image, const WrittenLayout& layout)
    : image_(image), layout_(layout), height_(CGImageGetHeight(image)), bytesPerRow_(0) {
    // Enough rows at once that what is set up for each reading counts for little.
    constexpr std::size_t kBandBytes = 256 * 1024;
    if (hasLayout(image, layout) && lockOwnBytes())
        return;
    bytesPerRow_ =
        (cg::CheckedSize(CGImageGetWidth(image)) * layout.bytesPerPixel()).value().value_or(0);
    if (bytesPerRow_ == 0)
        return;
    bandRows_ = std::clamp<std::size_t>(kBandBytes / bytesPerRow_, 1, height_);
    if (const auto bytes = (cg::CheckedSize(bytesPerRow_) * bandRows_).value())
        band_.reset(new (std::nothrow) std::uint8_t[*bytes]);
    if (!band_)
        CG_LOG_ERROR("no memory for %zu rows of %zu bytes", bandRows_, bytesPerRow_);
}

WrittenRows::~WrittenRows() {
    if (locked_)
        XGDataProviderUnlockData(locked_);
}

bool WrittenRows::lockOwnBytes() {
    const CGDataProviderRef provider = CGImageGetDataProvider(image_);
    const std::size_t used = CGImageGetWidth(image_) * layout_.bytesPerPixel();
    const std::size_t stride = CGImageGetBytesPerRow(image_);
    const auto needed = (cg::CheckedSize(stride) * (height_ - 1) + used).value();
    const auto size = cg::CheckedSize(XGDataProviderGetSize(provider)).value();
    if (!needed || !size || *needed > *size)
        return false;
    ownBytes_ = static_cast<const std::uint8_t*>(XGDataProviderLockData(provider));
    locked_ = ownBytes_ ? provider : nullptr;
    bytesPerRow_ = stride;
    return ownBytes_ != nullptr;
}

bool WrittenRows::readBand(std::size_t firstRow) {
    const std::size_t count = std::min(bandRows_, height_ - firstRow);
    const XGPixelRequest request = {
        .space = layout_.space,
        .bitsPerComponent = layout_.bitsPerComponent,
        .hasAlpha = layout_.hasAlpha,
        .premultiplied = layout_.isPremultiplied,
    };
    if (!band_ || !XGImageReadPixels(image_, &request, firstRow, count, band_.get(), bytesPerRow_))
        return false;
    bandStart_ = firstRow;
    bandEnd_ = firstRow + count;
    return true;
}

const std::uint8_t* WrittenRows::row(std::size_t y) {
    if (ownBytes_)
        return ownBytes_ + y * bytesPerRow_;
    if ((y < bandStart_ || y >= bandEnd_) && !readBand(y))
        return nullptr;
    return band_.get() + (y - bandStart_) * bytesPerRow_;
}

} // namespace imageio
