// PixelFormat.cpp: the mapping from bitmap formats to Skia's colour types.

#include "Backend/Raster/PixelFormat.h"

#include "Core/Image/PixelLayout.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace cg {

namespace {

CGImageAlphaInfo alphaInfo(const Bitmap& bitmap) {
    return static_cast<CGImageAlphaInfo>(bitmap.info & kCGBitmapAlphaInfoMask);
}

CGBitmapInfo byteOrder(const Bitmap& bitmap) {
    return bitmap.info & kCGBitmapByteOrderMask;
}

bool isByteOrderKnown(CGBitmapInfo order) {
    constexpr std::array known = {
        CGBitmapInfo{kCGBitmapByteOrderDefault}, CGBitmapInfo{kCGBitmapByteOrder16Little},
        CGBitmapInfo{kCGBitmapByteOrder32Little}, CGBitmapInfo{kCGBitmapByteOrder16Big},
        CGBitmapInfo{kCGBitmapByteOrder32Big}};
    return std::ranges::find(known, order) != known.end();
}

// How pixels are drawn: in place, or aside in another layout.
struct Drawn {
    SkColorType color = kUnknown_SkColorType;
    SkAlphaType opacity = kUnknown_SkAlphaType;
    bool isInPlace = false;
};

constexpr Drawn kGrayInPlace = {kGray_8_SkColorType, kOpaque_SkAlphaType, true};
constexpr Drawn kAlphaInPlace = {kAlpha_8_SkColorType, kPremul_SkAlphaType, true};

// Aside, with as many bits as the components need.
Drawn drawnAside(const PixelLayout& layout) {
    bool isDeep = false;
    for (std::size_t i = 0; i < layout.fieldCount(); ++i)
        isDeep = isDeep || layout.field(i).bits > 8;
    return {isDeep ? kR16G16B16A16_unorm_SkColorType : kBGRA_8888_SkColorType,
            layout.hasAlpha() ? kPremul_SkAlphaType : kOpaque_SkAlphaType, false};
}

// Where in a pixel the bytes of its three colours begin, the least significant ones on hosts that
// put those first.
std::array<std::size_t, 3> colorPlaces(const PixelLayout& layout, unsigned bits) {
    std::array<std::size_t, 3> places = {};
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = layout.bytePlace(layout.field(i).offset / 8 + (bits == 16 ? 1 : 0));
    return places;
}

// What Skia calls an RGB layout, where it has a name for it.
SkColorType rgbInPlace(const PixelLayout& layout) {
    if (std::endian::native != std::endian::little)
        return kUnknown_SkColorType;
    constexpr std::array kBGR = {std::size_t{2}, std::size_t{1}, std::size_t{0}};
    constexpr std::array kRGB = {std::size_t{0}, std::size_t{1}, std::size_t{2}};
    constexpr std::array kRGB16 = {std::size_t{0}, std::size_t{2}, std::size_t{4}};
    if (layout.bitsPerPixel() == 32 && layout.isMadeOfWhole(8)) {
        const auto places = colorPlaces(layout, 8);
        return places == kBGR   ? kBGRA_8888_SkColorType
               : places == kRGB ? kRGBA_8888_SkColorType
                                : kUnknown_SkColorType;
    }
    if (layout.bitsPerPixel() == 64 && layout.isMadeOfWhole(16) && layout.unit() == 2)
        return colorPlaces(layout, 16) == kRGB16 ? kR16G16B16A16_unorm_SkColorType
                                                 : kUnknown_SkColorType;
    const bool is565 = layout.bitsPerPixel() == 16 && layout.field(1) == SampleField{5, 6};
    return is565 && layout.unit() == 2 ? kRGB_565_SkColorType : kUnknown_SkColorType;
}

bool isStraight(const Bitmap& bitmap) {
    return alphaInfo(bitmap) == kCGImageAlphaLast || alphaInfo(bitmap) == kCGImageAlphaFirst;
}

std::optional<PixelLayout> layoutOf(const Bitmap& bitmap) {
    return PixelLayout::of({.bitsPerComponent = bitmap.bitsPerComponent,
                            .bitsPerPixel = bitmap.bitsPerPixel,
                            .bitmapInfo = bitmap.info,
                            .colorCount = CGColorSpaceGetNumberOfComponents(bitmap.space)});
}

Drawn rgb(const Bitmap& bitmap) {
    const std::size_t bits = bitmap.bitsPerPixel;
    if (bits != 16 && bits != 24 && bits != 32 && bits != 64) {
        CG_LOG_ERROR("Unable to support %zu bits per pixels for RGB formats", bits);
        return {};
    }
    if (isStraight(bitmap)) {
        CG_LOG_ERROR("Cannot support RGB alpha format %d", static_cast<int>(alphaInfo(bitmap)));
        return {};
    }
    const auto layout = layoutOf(bitmap);
    if (!layout)
        return {};
    Drawn drawn = drawnAside(*layout);
    if (const SkColorType inPlace = rgbInPlace(*layout); inPlace != kUnknown_SkColorType) {
        drawn.color = inPlace;
        drawn.isInPlace = true;
    }
    return drawn;
}

bool isByteEach(const Bitmap& bitmap) {
    return bitmap.bitsPerComponent == 8 && bitmap.bitsPerPixel == 8;
}

// Components of one byte cannot stand in another order.
bool isPermuted(const Bitmap& bitmap) {
    if ((bitmap.info & kCGImagePixelFormatMask) == 0)
        return false;
    CG_LOG_ERROR("Cannot support non-RGB/CMYK/GA colorspace with permute configurations at the "
                 "moment");
    return true;
}

Drawn monochrome(const Bitmap& bitmap) {
    if (alphaInfo(bitmap) == kCGImageAlphaNone)
        return isByteEach(bitmap) && !isPermuted(bitmap) ? kGrayInPlace : Drawn{};
    if (isStraight(bitmap)) {
        CG_LOG_ERROR("Cannot support GA alpha format %d", static_cast<int>(alphaInfo(bitmap)));
        return {};
    }
    const bool isPair = bitmap.bitsPerPixel == 2 * bitmap.bitsPerComponent;
    const bool isSupported = isPair && (bitmap.bitsPerPixel == 16 || bitmap.bitsPerPixel == 32);
    const auto layout = isSupported ? layoutOf(bitmap) : std::nullopt;
    return layout ? drawnAside(*layout) : Drawn{};
}

Drawn mask(const Bitmap& bitmap) {
    return isByteEach(bitmap) && !isPermuted(bitmap) ? kAlphaInPlace : Drawn{};
}

Drawn drawnFor(const Bitmap& bitmap, CGColorSpaceRef space);

Drawn cmyk(const Bitmap& bitmap, CGColorSpaceRef space) {
    if (alphaInfo(bitmap) != kCGImageAlphaNone) {
        CG_LOG_ERROR("Unable to support alpha format %d for CMYK formats",
                     static_cast<int>(alphaInfo(bitmap)));
        CG_LOG_ERROR("Cannot support CMYK alpha format %d", static_cast<int>(alphaInfo(bitmap)));
        return {};
    }
    if (bitmap.bitsPerPixel != 32) {
        CG_LOG_ERROR("Unable to support %zu bits per pixels for CMYK formats", bitmap.bitsPerPixel);
        return drawnFor(bitmap, CGColorSpaceGetBaseColorSpace(space));
    }
    const auto layout = layoutOf(bitmap);
    return layout ? drawnAside(*layout) : Drawn{};
}

// Whatever its colours are, an index is a byte; the colours must be such as can be drawn.
Drawn indexed(const Bitmap& bitmap, CGColorSpaceRef space) {
    if (alphaInfo(bitmap) != kCGImageAlphaNone || !isByteEach(bitmap)) {
        CG_LOG_ERROR("Invalid colortable index size.");
        return {};
    }
    const auto layout = isPermuted(bitmap) ? std::nullopt : layoutOf(bitmap);
    const CGColorSpaceModel base = CGColorSpaceGetModel(CGColorSpaceGetBaseColorSpace(space));
    if (base != kCGColorSpaceModelMonochrome && base != kCGColorSpaceModelRGB &&
        base != kCGColorSpaceModelCMYK) {
        CG_LOG_ERROR("Colorspace %d not supported.", static_cast<int>(base));
        return {};
    }
    return layout ? drawnAside(*layout) : Drawn{};
}

Drawn drawnFor(const Bitmap& bitmap, CGColorSpaceRef space) {
    // An alpha-only bitmap has one component, whatever its colour space.
    if (alphaInfo(bitmap) == kCGImageAlphaOnly)
        return mask(bitmap);
    const CGColorSpaceModel model = CGColorSpaceGetModel(space);
    switch (model) {
    case kCGColorSpaceModelUnknown:
        return mask(bitmap);
    case kCGColorSpaceModelMonochrome:
        return monochrome(bitmap);
    case kCGColorSpaceModelRGB:
        return rgb(bitmap);
    case kCGColorSpaceModelCMYK:
        return cmyk(bitmap, space);
    case kCGColorSpaceModelIndexed:
        return indexed(bitmap, space);
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

// Skia reads and writes whole pixels.
bool isAligned(const Bitmap& bitmap, std::size_t pixelBytes) {
    return bitmap.bytesPerRow % pixelBytes == 0 &&
           reinterpret_cast<std::uintptr_t>(bitmap.pixels) % pixelBytes == 0;
}

// The layout that is drawn aside for pixels that lie across their boundaries.
SkColorType layoutAside(SkColorType inPlace) {
    return inPlace == kR16G16B16A16_unorm_SkColorType ? inPlace : kBGRA_8888_SkColorType;
}

} // namespace

std::optional<SurfaceFormat> surfaceFormat(const Bitmap& bitmap) {
    if (!isWellFormed(bitmap) || !fitsSkia(bitmap))
        return std::nullopt;
    Drawn drawn = drawnFor(bitmap, bitmap.space);
    if (drawn.color == kUnknown_SkColorType) {
        CG_LOG_ERROR("Unknown color type: colorspace: %@, bitmapInfo: 0x%0X, bitsPerPixel: %zd, "
                     "bitsPerComponent: %zd, isFromMask: %s",
                     static_cast<const void*>(bitmap.space), static_cast<unsigned>(bitmap.info),
                     bitmap.bitsPerPixel, bitmap.bitsPerComponent, bitmap.space ? "no" : "yes");
        return std::nullopt;
    }
    if (drawn.isInPlace && !isAligned(bitmap, bitmap.bitsPerPixel / 8)) {
        drawn.isInPlace = false;
        drawn.color = layoutAside(drawn.color);
    }
    return SurfaceFormat{SkImageInfo::Make(static_cast<int>(bitmap.width),
                                           static_cast<int>(bitmap.height), drawn.color,
                                           drawn.opacity),
                         drawn.isInPlace};
}

} // namespace cg
