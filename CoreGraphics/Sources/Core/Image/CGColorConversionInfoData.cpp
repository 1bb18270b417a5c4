// CGColorConversionInfoData.cpp: pixels of any layout converted by a conversion made ahead.

#include "Core/Color/CGColorConversionInfoRecord.h"
#include "Core/Color/RowTransform.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "PixelArithmetic.h"
#include "PixelLayout.h"
#include "PixelSamples.h"
#include "PixelStages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace cg {

namespace {

// Pixels that go through all stages together. A multiple of eight, so that spans begin on whole
// bytes.
constexpr std::size_t kSpan = 256;
constexpr std::size_t kMostSteps = CGColorConversionInfo::kMostSpaces - 1;

// ---- Formats

std::optional<PixelLayout> layoutOf(const CGColorBufferFormat& format, CGColorSpaceRef space) {
    const std::size_t colors = CGColorSpaceGetNumberOfComponents(space);
    const auto layout = PixelLayout::of({.bitsPerComponent = format.bitsPerComponent,
                                         .bitsPerPixel = format.bitsPerPixel,
                                         .bitmapInfo = format.bitmapInfo,
                                         .colorCount = colors});
    const bool isUsable = layout && format.version == 0 && layout->colorCount() == colors &&
                          (layout->isFloat() || format.bitsPerComponent <= 16);
    return isUsable ? layout : std::nullopt;
}

bool holdsRows(const CGColorBufferFormat& format, std::size_t width, std::size_t height) {
    const auto rowBits = (CheckedSize(width) * format.bitsPerPixel + 7).value();
    return rowBits && *rowBits / 8 <= format.bytesPerRow &&
           (CheckedSize(format.bytesPerRow) * height).value();
}

bool canBeWritten(const PixelLayout& layout) {
    return layout.bitsPerPixel() % 8 == 0 &&
           (layout.bitsPerPixel() <= 64 || layout.isMadeOfWhole(16) || layout.isMadeOfWhole(32));
}

// ---- Samples

// A float that is no number is 0, so that integers can be made of it.
template <typename Component>
Component componentOf(std::uint32_t sample, unsigned bits, bool isFloat) {
    if (!isFloat)
        return scaledSample<Component>(sample,
                                       static_cast<std::uint32_t>((std::uint64_t{1} << bits) - 1));
    const float value = std::bit_cast<float>(sample);
    return widthChanged<Component>(value == value ? value : 0);
}

template <typename Component>
std::uint32_t sampleOf(Component component, unsigned bits, bool isFloat) {
    if (isFloat)
        return std::bit_cast<std::uint32_t>(widthChanged<float>(component));
    const std::uint32_t largest = (1u << bits) - 1;
    if constexpr (std::is_floating_point_v<Component>)
        return std::min(saturate<std::uint32_t>(component * static_cast<float>(largest) + 0.5f),
                        largest);
    else
        return (component * largest + kOne<Component> / 2u) / kOne<Component>;
}

// Fields of whole bytes of any number, which packSamples() has no word for.
void packWide(const PixelLayout& layout, const std::uint32_t* samples, std::size_t count,
              std::byte* pixels) {
    const std::size_t pixelBytes = layout.bitsPerPixel() / 8;
    std::memset(pixels, 0xFF, count * pixelBytes);
    for (std::size_t x = 0; x < count; ++x, pixels += pixelBytes) {
        for (std::size_t i = 0; i < layout.fieldCount(); ++i) {
            const SampleField& field = layout.field(i);
            const std::uint32_t sample = *samples++;
            for (unsigned bit = 0; bit < field.bits; bit += 8)
                pixels[layout.bytePlace((field.offset + bit) / 8)] =
                    static_cast<std::byte>(sample >> (field.bits - 8 - bit));
        }
    }
}

// ---- Conversion

// Goes through rows in components of one type.
template <typename Component>
class BufferConversion {
public:
    BufferConversion(const PixelLayout& from, const PixelLayout& to) : from_(from), to_(to) {}

    bool prepare(const CGColorConversionInfo& info) {
        const RowFormat format = {kComponentTypeOf<Component>, from_.hasAlpha()};
        for (; stepCount_ + 1 < info.count; ++stepCount_) {
            steps_[stepCount_] = RowTransform::between(info.spaces[stepCount_].get(), format,
                                                       info.spaces[stepCount_ + 1].get(), format,
                                                       info.intents[stepCount_ + 1]);
            if (!steps_[stepCount_])
                return false;
        }
        return true;
    }

    void convertRow(const std::byte* in, std::byte* out, std::size_t width) {
        for (; width > 0; width -= std::min(width, kSpan)) {
            const std::size_t count = std::min(width, kSpan);
            read(in, count);
            write(converted(count), count, out);
            in += kSpan * from_.bitsPerPixel() / 8;
            out += count * (to_.bitsPerPixel() / 8);
        }
    }

private:
    void read(const std::byte* in, std::size_t count) {
        unpackSamples(from_, in, count, samples_);
        const std::uint32_t* sample = samples_;
        Component* pixel = buffers_[0];
        for (std::size_t x = 0; x < count; ++x)
            for (std::size_t i = 0; i < from_.fieldCount(); ++i)
                *pixel++ = componentOf<Component>(*sample++, from_.field(i).bits, from_.isFloat());
        if (from_.isPremultiplied())
            divideByAlpha(buffers_[0], count, from_.colorCount());
    }

    Component* converted(std::size_t count) {
        std::size_t current = 0;
        for (std::size_t step = 0; step < stepCount_; ++step, current ^= 1)
            steps_[step].get()->apply(buffers_[current], buffers_[current ^ 1], count);
        return buffers_[current];
    }

    void write(Component* pixels, std::size_t count, std::byte* out) {
        if (to_.isPremultiplied() && from_.hasAlpha())
            multiplyByAlpha(pixels, count, to_.colorCount());
        std::uint32_t* sample = samples_;
        for (std::size_t x = 0; x < count; ++x) {
            for (std::size_t i = 0; i < to_.fieldCount(); ++i) {
                const bool isGiven = i < to_.colorCount() || from_.hasAlpha();
                *sample++ = sampleOf<Component>(isGiven ? pixels[i] : kOne<Component>,
                                                to_.field(i).bits, to_.isFloat());
            }
            pixels += to_.colorCount() + from_.hasAlpha();
        }
        if (to_.bitsPerPixel() <= 64)
            packSamples(to_, samples_, count, out);
        else
            packWide(to_, samples_, count, out);
    }

    PixelLayout from_, to_;
    std::array<RowTransformRef, kMostSteps> steps_;
    std::size_t stepCount_ = 0;
    std::uint32_t samples_[kSpan * PixelLayout::kMostFields];
    Component buffers_[2][kSpan * PixelLayout::kMostFields];
};

struct Buffer {
    std::size_t width, height;
    const std::byte* source;
    std::size_t sourceBytesPerRow;
    std::byte* destination;
    std::size_t destinationBytesPerRow;
};

template <typename Component>
bool convert(const CGColorConversionInfo& info, const PixelLayout& from, const PixelLayout& to,
             Buffer buffer) {
    const std::unique_ptr<BufferConversion<Component>> conversion(
        new (std::nothrow) BufferConversion<Component>(from, to));
    if (!conversion || !conversion->prepare(info))
        return false;
    for (; buffer.height > 0; --buffer.height) {
        conversion->convertRow(buffer.source, buffer.destination, buffer.width);
        buffer.source += buffer.sourceBytesPerRow;
        buffer.destination += buffer.destinationBytesPerRow;
    }
    return true;
}

bool isNarrow(const PixelLayout& layout) {
    return !layout.isFloat() && !layout.isPremultiplied() && layout.field(0).bits <= 8;
}

} // namespace

} // namespace cg

bool CGColorConversionInfoConvertData(CGColorConversionInfoRef info, size_t width, size_t height,
                                      void* destination, CGColorBufferFormat destinationFormat,
                                      const void* source, CGColorBufferFormat sourceFormat,
                                      CFDictionaryRef) {
    if (!info || !destination || !source)
        return false;
    const auto from = cg::layoutOf(sourceFormat, info->spaces[0].get());
    const auto to = cg::layoutOf(destinationFormat, info->spaces[info->count - 1].get());
    if (!from || !to || !cg::canBeWritten(*to)) {
        CG_LOG_WARNING("no conversion from %zu to %zu bits per component",
                       sourceFormat.bitsPerComponent, destinationFormat.bitsPerComponent);
        return false;
    }
    if (!cg::holdsRows(sourceFormat, width, height) ||
        !cg::holdsRows(destinationFormat, width, height))
        return false;
    const cg::Buffer buffer = {width,
                               height,
                               static_cast<const std::byte*>(source),
                               sourceFormat.bytesPerRow,
                               static_cast<std::byte*>(destination),
                               destinationFormat.bytesPerRow};
    if (from->isFloat() || to->isFloat())
        return cg::convert<float>(*info, *from, *to, buffer);
    if (cg::isNarrow(*from) && cg::isNarrow(*to))
        return cg::convert<std::uint8_t>(*info, *from, *to, buffer);
    return cg::convert<std::uint16_t>(*info, *from, *to, buffer);
}
