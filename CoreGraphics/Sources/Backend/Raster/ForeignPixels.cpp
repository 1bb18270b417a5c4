// ForeignPixels.cpp: read, drawn into by others, compared, and written back.

#include "Backend/Raster/ForeignPixels.h"

#include <CoreGraphics/CGDataProvider.h>

#include "Core/Color/RowTransform.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

namespace cg {

namespace {

// Two megabytes in the wider layout, and as many again for the pixels as they were.
constexpr std::int64_t kMostPixels = 1 << 18;

DrawnFormat drawnFormat(const SkImageInfo& info) {
    return info.colorType() == kR16G16B16A16_unorm_SkColorType ? DrawnFormat::RGBA16
                                                               : DrawnFormat::BGRA8;
}

PixelTarget targetFor(const SkImageInfo& info, CGColorSpaceRef space) {
    const bool isDeep = drawnFormat(info) == DrawnFormat::RGBA16;
    return {.space = drawnSpace(space),
            .type = isDeep ? ComponentType::Unsigned16 : ComponentType::Unsigned8,
            .alpha = info.isOpaque() ? AlphaUse::None : AlphaUse::Premultiplied,
            .order = isDeep ? ComponentOrder::RGBX : ComponentOrder::BGRX};
}

// One pixel of an opaque colour in each layout.
std::uint64_t drawnPixel(SkColor color, DrawnFormat format) {
    if (format == DrawnFormat::BGRA8)
        return color;
    const auto wide = [](U8CPU component) { return static_cast<std::uint16_t>(component * 257); };
    const std::array<std::uint16_t, 4> words = {wide(SkColorGetR(color)), wide(SkColorGetG(color)),
                                                wide(SkColorGetB(color)), 0xFFFF};
    std::uint64_t pixel;
    std::memcpy(&pixel, words.data(), sizeof pixel);
    return pixel;
}

// The bits of a pixel in which a change is one: all, or those of the colours.
template <typename Pixel>
Pixel meaningfulBits(bool isOpaque) {
    std::array<std::byte, sizeof(Pixel)> bytes;
    bytes.fill(std::byte{0xFF});
    if (isOpaque)
        std::fill(bytes.end() - sizeof(Pixel) / 4, bytes.end(), std::byte{0});
    return std::bit_cast<Pixel>(bytes);
}

} // namespace

ForeignPixels::ForeignPixels(const Bitmap& bitmap, const SkImageInfo& drawn)
    : memory_(bitmap), info_(drawn), bitmap_(bitmap) {}

std::unique_ptr<ForeignPixels> ForeignPixels::create(const Bitmap& bitmap,
                                                     const SkImageInfo& drawn) {
    const auto layout =
        PixelLayout::of({.bitsPerComponent = bitmap.bitsPerComponent,
                         .bitsPerPixel = bitmap.bitsPerPixel,
                         .bitmapInfo = bitmap.info,
                         .colorCount = CGColorSpaceGetNumberOfComponents(bitmap.space)});
    std::unique_ptr<ForeignPixels> pixels(new (std::nothrow) ForeignPixels(bitmap, drawn));
    if (!layout || !pixels)
        return nullptr;
    pixels->writer_ = PixelWriter::of(*layout, bitmap.space, drawnFormat(drawn));
    return pixels->writer_ ? std::move(pixels) : nullptr;
}

void ForeignPixels::movePixels(void* to) {
    memory_.move(to);
    reader_ = nullptr; // Made over the old address.
    image_ = nullptr;
}

// ---- Lending

// A native buffer may lie elsewhere each time that it is locked.
bool ForeignPixels::prepareReader() {
    if (bitmap_.pixels != memory_.pixels())
        reader_ = nullptr;
    if (reader_)
        return true;
    bitmap_.pixels = memory_.pixels();
    const auto provider = cf::adopt(CGDataProviderCreateWithData(
        nullptr, bitmap_.pixels, bitmap_.bytesPerRow * bitmap_.height, nullptr));
    image_ = provider ? makeImage({.width = bitmap_.width,
                                   .height = bitmap_.height,
                                   .bitsPerComponent = bitmap_.bitsPerComponent,
                                   .bitsPerPixel = bitmap_.bitsPerPixel,
                                   .bytesPerRow = bitmap_.bytesPerRow,
                                   .bitmapInfo = bitmap_.info,
                                   .space = bitmap_.space,
                                   .provider = provider.get()})
                      : nullptr;
    if (image_)
        reader_ = PixelReader::of(image_.get(), targetFor(info_, bitmap_.space));
    return reader_ != nullptr;
}

bool ForeignPixels::reserve(std::size_t bytes) {
    if (bytes <= capacity_)
        return true;
    drawn_.reset(new (std::nothrow) std::byte[2 * bytes]);
    capacity_ = drawn_ ? bytes : 0;
    return drawn_ != nullptr;
}

bool ForeignPixels::read(const SkIRect& area) {
    const auto width = static_cast<std::size_t>(area.width());
    rowBytes_ = width * static_cast<std::size_t>(info_.bytesPerPixel());
    const std::size_t size = rowBytes_ * static_cast<std::size_t>(area.height());
    if (!prepareReader() || !reserve(size)) {
        CG_LOG_ERROR("Allocation of bitmap failed.");
        return false;
    }
    for (int row = 0; row < area.height(); ++row)
        if (!reader_->readPixels(static_cast<std::size_t>(area.top() + row),
                                 static_cast<std::size_t>(area.left()), width, drawnRow(row)))
            return false;
    std::memcpy(drawn_.get() + capacity_, drawn_.get(), size);
    return true;
}

std::optional<SkPixmap> ForeignPixels::borrow(const SkIRect& area) {
    if (!memory_.lock())
        return std::nullopt;
    if (!read(area)) {
        memory_.unlock();
        return std::nullopt;
    }
    area_ = area;
    return SkPixmap(info_.makeDimensions(area.size()), drawn_.get(), rowBytes_);
}

// Runs of changed pixels, each at once.
template <typename Pixel>
void ForeignPixels::writeChanges() {
    const int width = area_.width();
    const Pixel meaningful = meaningfulBits<Pixel>(info_.isOpaque());
    const auto isChanged = [meaningful](Pixel now, Pixel before) {
        return ((now ^ before) & meaningful) != 0;
    };
    for (int row = 0; row < area_.height(); ++row) {
        const auto* const now = reinterpret_cast<const Pixel*>(drawnRow(row));
        const auto* const before = reinterpret_cast<const Pixel*>(rowBefore(row));
        for (int x = 0; x < width;) {
            while (x < width && !isChanged(now[x], before[x]))
                ++x;
            const int first = x;
            while (x < width && isChanged(now[x], before[x]))
                ++x;
            if (x > first)
                writer_->write(reinterpret_cast<const std::byte*>(now + first),
                               static_cast<std::size_t>(x - first),
                               memory_.at(area_.left() + first, area_.top() + row));
        }
    }
}

void ForeignPixels::giveBack() {
    if (info_.bytesPerPixel() == 8)
        writeChanges<std::uint64_t>();
    else
        writeChanges<std::uint32_t>();
    memory_.unlock();
}

std::int64_t ForeignPixels::mostPixels() const {
    return kMostPixels;
}

// ---- One colour

void ForeignPixels::noteColor(CGColorRef color, SkColor drawn) {
    const CGColorSpaceRef space = CGColorGetColorSpace(color);
    if (SkColorGetA(drawn) != 0xFF || CGColorSpaceGetModel(space) != kCGColorSpaceModelCMYK ||
        CGColorSpaceGetModel(bitmap_.space) != kCGColorSpaceModelCMYK ||
        needsConversion(space, bitmap_.space))
        return;
    const std::uint64_t pixel = drawnPixel(drawn, drawnFormat(info_));
    writer_->keepColor(reinterpret_cast<const std::byte*>(&pixel), CGColorGetComponents(color));
}

void ForeignPixels::fill(const SkIRect& area, SkColor color) {
    if (!memory_.lock())
        return;
    const DrawnFormat format = drawnFormat(info_);
    const std::uint64_t pixel = drawnPixel(color, format);
    std::byte* const first = memory_.at(area.left(), area.top());
    const std::size_t size = static_cast<std::size_t>(area.width()) * memory_.bytesPerPixel();
    writer_->write(reinterpret_cast<const std::byte*>(&pixel), 1, first);
    for (std::size_t filled = memory_.bytesPerPixel(); filled < size; filled *= 2)
        std::memcpy(first + filled, first, std::min(filled, size - filled));
    for (int row = area.top() + 1; row < area.bottom(); ++row)
        std::memcpy(memory_.at(area.left(), row), first, size);
    memory_.unlock();
}

} // namespace cg
