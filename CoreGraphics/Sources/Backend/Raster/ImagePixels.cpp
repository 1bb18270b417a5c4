// ImagePixels.cpp: the layouts that images are drawn from, as Skia's.

#include "Backend/Raster/ImagePixels.h"

#include "Core/Object/Diagnostics.h"

#include <array>
#include <limits>
#include <span>
#include <utility>

namespace cg {

namespace {

struct Layout {
    DrawableFormat format;
    SkColorType color;
    SkAlphaType opacity;
};

// Indexed by the format.
constexpr std::array kLayouts = {
    Layout{DrawableFormat::BGRA8Premultiplied, kBGRA_8888_SkColorType, kPremul_SkAlphaType},
    Layout{DrawableFormat::BGRX8, kBGRA_8888_SkColorType, kOpaque_SkAlphaType},
    Layout{DrawableFormat::RGBA8Premultiplied, kRGBA_8888_SkColorType, kPremul_SkAlphaType},
    Layout{DrawableFormat::RGBX8, kRGB_888x_SkColorType, kOpaque_SkAlphaType},
    Layout{DrawableFormat::Gray8, kGray_8_SkColorType, kOpaque_SkAlphaType},
    Layout{DrawableFormat::Alpha8, kAlpha_8_SkColorType, kPremul_SkAlphaType},
};
static_assert(kLayouts.size() == std::size_t(DrawableFormat::Alpha8) + 1);

constexpr std::uint32_t kOpaqueAlpha = 0xFF000000;

std::span<const std::uint32_t> rowOf(const SkPixmap& pixels, int y) {
    return {pixels.addr32(0, y), static_cast<std::size_t>(pixels.width())};
}

bool isOpaque(const SkPixmap& pixels) {
    for (int y = 0; y < pixels.height(); ++y) {
        std::uint32_t common = kOpaqueAlpha;
        for (const std::uint32_t pixel : rowOf(pixels, y))
            common &= pixel;
        if (common != kOpaqueAlpha)
            return false;
    }
    return true;
}

// Skia counts in 32-bit integers and addresses within 2³¹ bytes.
bool fitsSkia(const DrawablePixels& drawable) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return drawable.width() <= most >> 3 && drawable.height() <= most >> 3 &&
           drawable.bytesPerRow() <= most;
}

} // namespace

ImagePixels::ImagePixels(DrawablePixels drawable) : drawable_(std::move(drawable)) {
    const Layout& layout = kLayouts[static_cast<std::size_t>(drawable_.format())];
    const SkImageInfo info =
        SkImageInfo::Make(static_cast<int>(drawable_.width()), static_cast<int>(drawable_.height()),
                          layout.color, layout.opacity);
    pixmap_ = SkPixmap(info, drawable_.pixels(), drawable_.bytesPerRow());
}

// Skia has no layout whose first three bytes are blue, green and red and whose fourth is nothing.
// It trusts the fourth to be full; what programs leave there may be anything.
bool ImagePixels::makeOpaque() {
    if (drawable_.format() != DrawableFormat::BGRX8 || isOpaque(pixmap_))
        return true;
    if (!opaque_.tryAllocPixels(pixmap_.info())) {
        CG_LOG_ERROR("Allocation of bitmap failed.");
        return false;
    }
    for (int y = 0; y < pixmap_.height(); ++y) {
        std::uint32_t* out = opaque_.getAddr32(0, y);
        for (const std::uint32_t pixel : rowOf(pixmap_, y))
            *out++ = pixel | kOpaqueAlpha;
    }
    pixmap_ = opaque_.pixmap();
    return true;
}

std::optional<ImagePixels> ImagePixels::of(CGImageRef image, CGColorSpaceRef destination,
                                           CGColorRenderingIntent intent) {
    auto drawable = DrawablePixels::of(image, destination, intent);
    if (!drawable || !drawable->pixels() || !fitsSkia(*drawable))
        return std::nullopt;
    ImagePixels pixels(std::move(*drawable));
    if (!pixels.makeOpaque())
        return std::nullopt;
    return pixels;
}

} // namespace cg
