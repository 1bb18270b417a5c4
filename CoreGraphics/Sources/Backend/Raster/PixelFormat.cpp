// PixelFormat.cpp: the mapping from bitmap formats to Skia's colour types.

#include "Backend/Raster/PixelFormat.h"

#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>
#include <limits>

namespace cg {

namespace {

constexpr CGBitmapInfo kLittle32 = kCGBitmapByteOrder32Little;
constexpr CGBitmapInfo kBig32 = kCGBitmapByteOrder32Big;

CGImageAlphaInfo alphaInfo(const Bitmap& bitmap) {
    return static_cast<CGImageAlphaInfo>(bitmap.info & kCGBitmapAlphaInfoMask);
}

CGBitmapInfo byteOrder(const Bitmap& bitmap) {
    return bitmap.info & kCGBitmapByteOrderMask;
}

bool isByteOrderKnown(CGBitmapInfo order) {
    constexpr std::array known = {CGBitmapInfo{kCGBitmapByteOrderDefault},
                                  CGBitmapInfo{kCGBitmapByteOrder16Little}, kLittle32,
                                  CGBitmapInfo{kCGBitmapByteOrder16Big}, kBig32};
    return std::ranges::find(known, order) != known.end();
}

// Formats that Skia draws into as they stand: the row of an RGB bitmap of 8 bits per component.
struct NativeFormat {
    CGImageAlphaInfo alpha;
    bool little;
    SkColorType color;
    SkAlphaType opacity;
};

constexpr std::array kNativeRGB = {
    NativeFormat{kCGImageAlphaPremultipliedFirst, true, kBGRA_8888_SkColorType,
                 kPremul_SkAlphaType},
    NativeFormat{kCGImageAlphaNoneSkipFirst, true, kBGRA_8888_SkColorType, kOpaque_SkAlphaType},
    NativeFormat{kCGImageAlphaPremultipliedLast, false, kRGBA_8888_SkColorType,
                 kPremul_SkAlphaType},
    NativeFormat{kCGImageAlphaNoneSkipLast, false, kRGBA_8888_SkColorType, kOpaque_SkAlphaType},
};

struct Layout {
    SkColorType color = kUnknown_SkColorType;
    SkAlphaType opacity = kUnknown_SkAlphaType;
};

Layout rgbLayout(const Bitmap& bitmap) {
    const std::size_t bits = bitmap.bitsPerPixel;
    if (bits != 16 && bits != 24 && bits != 32 && bits != 64) {
        CG_LOG_ERROR("Unable to support %zu bits per pixels for RGB formats", bits);
        return {};
    }
    const CGBitmapInfo order = byteOrder(bitmap);
    const bool is32BitOrder =
        order == kCGBitmapByteOrderDefault || order == kLittle32 || order == kBig32;
    if (bits != 32 || bitmap.bitsPerComponent != 8 || !is32BitOrder)
        return {};
    const auto found = std::ranges::find_if(kNativeRGB, [&](const NativeFormat& native) {
        return native.alpha == alphaInfo(bitmap) && native.little == (order == kLittle32);
    });
    return found == kNativeRGB.end() ? Layout{} : Layout{found->color, found->opacity};
}

Layout monochromeLayout(const Bitmap& bitmap) {
    if (bitmap.bitsPerComponent != 8 || bitmap.bitsPerPixel != 8)
        return {};
    switch (alphaInfo(bitmap)) {
    case kCGImageAlphaNone:
        return {kGray_8_SkColorType, kOpaque_SkAlphaType};
    case kCGImageAlphaOnly:
        return {kAlpha_8_SkColorType, kPremul_SkAlphaType};
    default:
        return {};
    }
}

Layout maskLayout(const Bitmap& bitmap) {
    if (bitmap.bitsPerComponent != 8 || bitmap.bitsPerPixel != 8)
        return {};
    return {kAlpha_8_SkColorType, kPremul_SkAlphaType};
}

Layout layoutFor(const Bitmap& bitmap) {
    // An alpha-only bitmap has one component, whatever its colour space.
    if (alphaInfo(bitmap) == kCGImageAlphaOnly)
        return maskLayout(bitmap);
    const CGColorSpaceModel model = CGColorSpaceGetModel(bitmap.space);
    switch (model) {
    case kCGColorSpaceModelUnknown:
        return maskLayout(bitmap);
    case kCGColorSpaceModelMonochrome:
        return monochromeLayout(bitmap);
    case kCGColorSpaceModelRGB:
        return rgbLayout(bitmap);
    default:
        CG_LOG_ERROR("Colorspace %d not supported.", static_cast<int>(model));
        return {};
    }
}

bool isWellFormed(const Bitmap& bitmap) {
    if (!isByteOrderKnown(byteOrder(bitmap))) {
        CG_LOG_ERROR("Cannot get configuration for bitmap info with endianness flag %x",
                     static_cast<unsigned>(byteOrder(bitmap)));
        return false;
    }
    if (bitmap.bitsPerComponent > bitmap.bitsPerPixel) {
        CG_LOG_ERROR("Cannot get configuration with bpp: %zu, bpc: %zu", bitmap.bitsPerPixel,
                     bitmap.bitsPerComponent);
        return false;
    }
    return true;
}

// Skia counts in 32-bit integers and addresses within 2³¹ bytes.
bool fitsSkia(const Bitmap& bitmap) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return bitmap.width <= most >> 3 && bitmap.height <= most >> 3 && bitmap.bytesPerRow <= most;
}

} // namespace

std::optional<SkImageInfo> skiaImageInfo(const Bitmap& bitmap) {
    if (!isWellFormed(bitmap) || !fitsSkia(bitmap))
        return std::nullopt;
    const Layout layout = layoutFor(bitmap);
    if (layout.color == kUnknown_SkColorType) {
        CG_LOG_ERROR("Unknown color type: colorspace: %@, bitmapInfo: 0x%0X, bitsPerPixel: %zd, "
                     "bitsPerComponent: %zd, isFromMask: %s",
                     static_cast<const void*>(bitmap.space), static_cast<unsigned>(bitmap.info),
                     bitmap.bitsPerPixel, bitmap.bitsPerComponent, bitmap.space ? "no" : "yes");
        return std::nullopt;
    }
    return SkImageInfo::Make(static_cast<int>(bitmap.width), static_cast<int>(bitmap.height),
                             layout.color, layout.opacity);
}

} // namespace cg
