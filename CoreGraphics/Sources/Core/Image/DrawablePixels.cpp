// DrawablePixels.cpp: the provider's own bytes where they can be drawn, a kept conversion
// elsewhere.

#include "DrawablePixels.h"

#include "XGColorSpace.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "PixelCache.h"
#include "PixelDecode.h"
#include "PixelLayout.h"
#include "PixelReader.h"

#include <array>
#include <new>

namespace cg {

namespace {

constexpr CFRuntimeClass kConvertedPixelsClass = {
    .className = "CGConvertedPixels",
    .finalize = finalize<ConvertedPixels>,
};

std::size_t bytesPerPixelOf(DrawableFormat format) {
    return format == DrawableFormat::Gray8 || format == DrawableFormat::Alpha8 ? 1 : 4;
}

// ---- Destinations

// The space that colours are given in.
CGColorSpaceRef colorsFor(CGColorSpaceRef destination) {
    switch (CGColorSpaceGetModel(destination)) {
    case kCGColorSpaceModelMonochrome:
    case kCGColorSpaceModelRGB:
        return destination;
    default:
        return XGColorSpaceGetDeviceRGB();
    }
}

// ---- Pixels that can be drawn where they lie

struct InPlaceRow {
    DrawableFormat format;
    std::array<std::size_t, 3> colors; // Which byte of the pixel.
    bool hasAlpha;
};

constexpr std::array kInPlaceRows = {
    InPlaceRow{DrawableFormat::BGRA8Premultiplied, {2, 1, 0}, true},
    InPlaceRow{DrawableFormat::BGRX8, {2, 1, 0}, false},
    InPlaceRow{DrawableFormat::RGBA8Premultiplied, {0, 1, 2}, true},
    InPlaceRow{DrawableFormat::RGBX8, {0, 1, 2}, false},
};

std::optional<DrawableFormat> colorFormatOf(const PixelLayout& layout) {
    if (layout.bitsPerPixel() != 32 || layout.colorCount() != 3)
        return std::nullopt;
    for (const InPlaceRow& row : kInPlaceRows) {
        bool matches =
            row.hasAlpha == layout.hasAlpha() && row.hasAlpha == layout.isPremultiplied();
        for (std::size_t i = 0; i < 3; ++i)
            matches = matches && layout.bytePlace(layout.field(i).offset / 8) == row.colors[i];
        if (matches)
            return row.format;
    }
    return std::nullopt;
}

// The format that the image's bytes are in, as far as its layout can tell.
std::optional<DrawableFormat> formatInPlace(CGImageRef image, const PixelLayout& layout,
                                            CGColorSpaceRef destination) {
    if (!layout.isMadeOfWhole(8) || image->mask || (image->flags & kImageHasMaskingColors))
        return std::nullopt;
    const bool isOneByte = layout.bitsPerPixel() == 8;
    if (image->flags & kImageCreatedAsMask) {
        // Samples say where paint does not go, unless they are decoded the other way round.
        const bool isInverted = image->hasDecode && image->decode[0] == 1 && image->decode[1] == 0;
        return isOneByte && isInverted ? std::optional(DrawableFormat::Alpha8) : std::nullopt;
    }
    if (!SampleDecoder(image, layout).isPlain())
        return std::nullopt;
    if (layout.colorCount() == 0)
        return isOneByte ? std::optional(DrawableFormat::Alpha8) : std::nullopt;

    const CGColorSpaceRef space = image->space.get();
    const bool isGray = CGColorSpaceGetModel(space) == kCGColorSpaceModelMonochrome;
    if (isGray && isOneByte && isReplicated(space, destination))
        return DrawableFormat::Gray8;
    if (CGColorSpaceGetModel(space) != CGColorSpaceGetModel(destination) ||
        needsConversion(space, destination))
        return std::nullopt;
    if (isGray)
        return isOneByte ? std::optional(DrawableFormat::Gray8) : std::nullopt;
    return colorFormatOf(layout);
}

// The same where the provider hands out its bytes, remembered for the space that was asked for
// last: a small image takes less time to draw than to look at its layout.
std::optional<DrawableFormat> rememberedFormatInPlace(CGImageRef image,
                                                      CGColorSpaceRef destination) {
    constexpr std::uint64_t kNone = 0xFF;
    const std::uint64_t subject = destination->serial << 8; // Serials begin at 1.
    std::uint64_t note = image->layoutInPlace.load(std::memory_order_relaxed);
    if ((note & ~kNone) != subject) {
        const auto layout = PixelLayout::of(*image);
        const auto format = layout && XGDataProviderIsDirect(image->provider.get())
                                ? formatInPlace(image, *layout, destination)
                                : std::nullopt;
        note = subject | (format ? static_cast<std::uint64_t>(*format) : kNone);
        image->layoutInPlace.store(note, std::memory_order_relaxed);
    }
    return (note & kNone) == kNone ? std::nullopt
                                   : std::optional(static_cast<DrawableFormat>(note & kNone));
}

// From the first pixel's byte to the last one's; nothing when there are none, rows overlap or do
// not begin at a pixel's boundary, or the sizes overflow.
std::optional<std::size_t> bytesInPlace(const CGImage& image, std::size_t pixelBytes) {
    if (image.width == 0 || image.height == 0 || image.bytesPerRow / pixelBytes < image.width ||
        image.bytesPerRow % pixelBytes != 0)
        return std::nullopt;
    return (CheckedSize(image.height - 1) * image.bytesPerRow + image.width * pixelBytes).value();
}

// ---- Conversion

ConvertedPixels* allocate(CGImageRef image, DrawableFormat format) {
    const auto rowBytes = (CheckedSize(image->width) * bytesPerPixelOf(format)).value();
    const auto bytes =
        (CheckedSize(image->width) * bytesPerPixelOf(format) * image->height).value();
    auto converted = cf::adopt(create<ConvertedPixels>(kConvertedPixelsClass));
    if (converted && bytes && *bytes <= SIZE_MAX / 2)
        converted.get()->pixels.reset(new (std::nothrow) std::byte[*bytes]);
    if (!converted || !converted.get()->pixels) {
        CG_LOG_ERROR("Allocation of bitmap failed.");
        return nullptr;
    }
    ConvertedPixels* const record = converted.release();
    record->format = format;
    record->width = image->width;
    record->height = image->height;
    record->bytesPerRow = *rowBytes;
    return record;
}

// A mask's samples as coverage: what is not ink.
void invert(ConvertedPixels& converted) {
    const std::size_t bytes = converted.bytesPerRow * converted.height;
    for (std::size_t i = 0; i < bytes; ++i)
        converted.pixels[i] = ~converted.pixels[i];
}

ConvertedPixelsRef read(CGImageRef image, PixelReader& reader, DrawableFormat format) {
    const auto converted = cf::adopt(allocate(image, format));
    if (!converted || !reader.readRows(0, image->height, converted.get()->pixels.get(),
                                       converted.get()->bytesPerRow))
        return nullptr;
    if (format == DrawableFormat::Alpha8 && (image->flags & kImageCreatedAsMask))
        invert(*converted.get());
    return ConvertedPixelsRef(cf::retain<const ConvertedPixels*>(converted.get()));
}

ConvertedPixelsRef convertToCoverage(CGImageRef image) {
    const auto reader = PixelReader::of(image, {});
    return reader ? read(image, *reader, DrawableFormat::Alpha8) : nullptr;
}

ConvertedPixelsRef convertToColors(CGImageRef image, CGColorSpaceRef destination,
                                   CGColorRenderingIntent intent) {
    PixelTarget target = {.space = destination, .intent = intent};
    const bool isTransparent = canBeTransparent(image);
    const bool staysGray = CGColorSpaceGetModel(destination) == kCGColorSpaceModelMonochrome;
    const CGColorSpaceRef own = pixelSpace(image);
    if (!isTransparent && (staysGray || isReplicated(own, destination))) {
        target.space = staysGray ? destination : own;
        const auto reader = PixelReader::of(image, target);
        return reader ? read(image, *reader, DrawableFormat::Gray8) : nullptr;
    }
    target.alpha = isTransparent ? AlphaUse::Premultiplied : AlphaUse::None;
    target.order = ComponentOrder::BGRX;
    const auto reader = PixelReader::of(image, target);
    if (!reader)
        return nullptr;
    return read(image, *reader,
                isTransparent ? DrawableFormat::BGRA8Premultiplied : DrawableFormat::BGRX8);
}

} // namespace

// ---- The cache

PixelCache* PixelCache::of(CGImageRef image) {
    PixelCache* cache = image->pixelCache.load(std::memory_order_acquire);
    if (cache)
        return cache;
    auto* const made = new (std::nothrow) PixelCache;
    if (!made || image->pixelCache.compare_exchange_strong(cache, made, std::memory_order_acq_rel))
        return made;
    delete made;
    return cache;
}

void destroyPixelCache(PixelCache* cache) {
    delete cache;
}

void purgePixelCache(PixelCache& cache) {
    cache.purge();
}

// ---- Drawable pixels

DrawablePixels::DrawablePixels(ConvertedPixelsRef converted)
    : format_(converted.get()->format), width_(converted.get()->width),
      height_(converted.get()->height), bytesPerRow_(converted.get()->bytesPerRow),
      pixels_(converted.get()->pixels.get()), converted_(std::move(converted)) {}

bool DrawablePixels::lockInPlace(CGImageRef image, CGColorSpaceRef destination) {
    const auto format = rememberedFormatInPlace(image, destination);
    if (!format)
        return false;
    const auto needed = bytesInPlace(*image, bytesPerPixelOf(*format));
    if (!needed)
        return false;
    locked_.emplace(image->provider.get());
    const bool isAligned =
        reinterpret_cast<std::uintptr_t>(locked_->bytes()) % bytesPerPixelOf(*format) == 0;
    if (!locked_->bytes() || locked_->size() < *needed || !isAligned) {
        locked_.reset();
        return false;
    }
    format_ = *format;
    width_ = image->width;
    height_ = image->height;
    bytesPerRow_ = image->bytesPerRow;
    pixels_ = locked_->bytes();
    return true;
}

std::optional<DrawablePixels> DrawablePixels::of(CGImageRef image, CGColorSpaceRef destination,
                                                 CGColorRenderingIntent intent) {
    if (!image || !image->provider)
        return std::nullopt;
    const CGColorSpaceRef space = colorsFor(destination);
    std::optional<DrawablePixels> drawable = DrawablePixels();
    if (drawable->lockInPlace(image, space))
        return drawable;

    const auto convert = [&] {
        return CGImageIsMask(image) ? convertToCoverage(image)
                                    : convertToColors(image, space, intent);
    };
    PixelCache* const cache = XGImageIsUncacheable(image) ? nullptr : PixelCache::of(image);
    auto converted =
        cache ? cache->find({cf::retain(space), intent}, convert) : ConvertedPixelsRef(convert());
    if (!converted)
        return std::nullopt;
    return DrawablePixels(std::move(converted));
}

} // namespace cg
