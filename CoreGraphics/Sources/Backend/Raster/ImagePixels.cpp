// ImagePixels.cpp: the layouts that images are drawn from, as Skia's.

#include "Backend/Raster/ImagePixels.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Diagnostics.h"
#include "src/core/SkMipmap.h"

#include <array>
#include <limits>
#include <mutex>
#include <new>
#include <span>
#include <utility>

namespace cg {

namespace {

struct Layout {
    DrawableFormat format;
    SkColorType color;
    SkAlphaType opacity;
};

// Indexed by the format. Skia's own layout without opacity is not used: Skia makes no halved images
// of it, and each attempt leaks.
constexpr std::array kLayouts = {
    Layout{DrawableFormat::BGRA8Premultiplied, kBGRA_8888_SkColorType, kPremul_SkAlphaType},
    Layout{DrawableFormat::BGRX8, kBGRA_8888_SkColorType, kOpaque_SkAlphaType},
    Layout{DrawableFormat::RGBA8Premultiplied, kRGBA_8888_SkColorType, kPremul_SkAlphaType},
    Layout{DrawableFormat::RGBX8, kRGBA_8888_SkColorType, kOpaque_SkAlphaType},
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

// About the pixels that an image is drawn from in the first destination that it meets.
class ImageCache : public DrawingCache {
public:
    // The image's, made from `pixels` if it has none; NULL when it is about other colours, or when
    // memory runs out.
    static ImageCache* of(CGImageRef image, CGColorSpaceRef space, CGColorRenderingIntent intent,
                          const SkPixmap& pixels) {
        auto* cache = static_cast<ImageCache*>(image->drawingCache.load());
        if (!cache)
            cache = keep(image, new (std::nothrow) ImageCache(space, intent, pixels));
        return cache && cache->space_.get() == space && cache->intent_ == intent ? cache : nullptr;
    }

    bool isOpaque() const { return isOpaque_; }
    const SkBitmap& bitmap() const { return bitmap_; }

    const SkMipmap* mipmap(const SkPixmap& pixels) {
        std::call_once(once_, [&] { mipmap_.reset(SkMipmap::Build(pixels, nullptr)); });
        return mipmap_.get();
    }

private:
    ImageCache(CGColorSpaceRef space, CGColorRenderingIntent intent, const SkPixmap& pixels)
        : space_(cf::retain(space)), intent_(intent),
          isOpaque_(pixels.isOpaque() && pixels.info().bytesPerPixel() == 4 &&
                    cg::isOpaque(pixels)) {
        bitmap_.installPixels(pixels);
    }

    static ImageCache* keep(CGImageRef image, ImageCache* made) {
        DrawingCache* first = nullptr;
        if (image->drawingCache.compare_exchange_strong(first, made))
            return made;
        delete made;
        return static_cast<ImageCache*>(first);
    }

    const cf::Ref<CGColorSpaceRef> space_; // Held: its address is compared.
    const CGColorRenderingIntent intent_;
    const bool isOpaque_; // No byte that Skia takes for opacity says anything else.
    SkBitmap bitmap_;     // Where the pixels lay when they were drawn for the first time.
    std::once_flag once_;
    sk_sp<SkMipmap> mipmap_;
};

std::optional<SkPixmap> ImagePixels::halved(SkSize scale) const {
    const int times = sk_float_round2int(SkMipmap::ComputeLevel(scale));
    if (times <= 0)
        return pixmap_;
    const SkMipmap* const mipmap = cache_ ? cache_->mipmap(pixmap_) : nullptr;
    SkMipmap::Level level;
    if (!mipmap || !mipmap->getLevel(times - 1, &level))
        return std::nullopt;
    return level.fPixmap;
}

const SkBitmap* ImagePixels::bitmap() const {
    const bool isSame = cache_ && cache_->bitmap().getPixels() == pixmap_.addr() &&
                        cache_->bitmap().rowBytes() == pixmap_.rowBytes() &&
                        cache_->bitmap().info() == pixmap_.info();
    return isSame ? &cache_->bitmap() : nullptr;
}

ImagePixels::ImagePixels(DrawablePixels drawable) : drawable_(std::move(drawable)) {
    const Layout& layout = kLayouts[static_cast<std::size_t>(drawable_.format())];
    const SkImageInfo info =
        SkImageInfo::Make(static_cast<int>(drawable_.width()), static_cast<int>(drawable_.height()),
                          layout.color, layout.opacity);
    pixmap_ = SkPixmap(info, drawable_.pixels(), drawable_.bytesPerRow());
}

// Skia trusts the fourth byte of opaque pixels to be full; what programs leave there may be
// anything.
bool ImagePixels::makeOpaque() {
    if (!pixmap_.isOpaque() || pixmap_.info().bytesPerPixel() != 4 ||
        (cache_ ? cache_->isOpaque() : isOpaque(pixmap_)))
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
    if (!XGImageIsUncacheable(image))
        pixels.cache_ = ImageCache::of(image, destination, intent, pixels.pixmap_);
    if (!pixels.makeOpaque())
        return std::nullopt;
    return pixels;
}

} // namespace cg
