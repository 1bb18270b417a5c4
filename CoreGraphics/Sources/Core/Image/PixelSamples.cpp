// PixelSamples.cpp: one reader for every make-up of pixels, and quick ones for whole bytes.

#include "PixelSamples.h"

#include <array>
#include <cstring>

namespace cg {

namespace {

// Up to 32 bits of the stream from bit `offset` on.
std::uint32_t sampleAt(const PixelLayout& layout, const std::byte* pixels, std::size_t offset,
                       unsigned bits) {
    std::uint64_t value = 0;
    const std::size_t end = offset + bits;
    for (std::size_t byte = offset / 8; byte * 8 < end; ++byte)
        value = value << 8 | std::to_integer<std::uint64_t>(pixels[layout.bytePlace(byte)]);
    const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
    return static_cast<std::uint32_t>(value >> ((8 - end % 8) % 8) & mask);
}

// A pixel of whole bytes, eight at most, as a number; and how far right each field is in it.
std::uint64_t numberAt(const PixelLayout& layout, const std::byte* pixel, std::size_t bytes) {
    std::uint64_t number = 0;
    for (std::size_t byte = 0; byte < bytes; ++byte)
        number = number << 8 | std::to_integer<std::uint64_t>(pixel[layout.bytePlace(byte)]);
    return number;
}

struct FieldBits {
    std::size_t shift = 0;
    std::uint64_t mask = 0;
};
using AllFieldBits = std::array<FieldBits, PixelLayout::kMostFields>;

AllFieldBits fieldBitsOf(const PixelLayout& layout) {
    AllFieldBits all;
    for (std::size_t i = 0; i < layout.fieldCount(); ++i) {
        const SampleField& field = layout.field(i);
        all[i] = {layout.bitsPerPixel() - field.offset - field.bits,
                  (std::uint64_t{1} << field.bits) - 1};
    }
    return all;
}

template <std::size_t bytes>
void unpackNumbers(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                   std::uint32_t* samples) {
    const AllFieldBits bits = fieldBitsOf(layout);
    const std::size_t fields = layout.fieldCount();
    for (std::size_t x = 0; x < count; ++x, pixels += bytes) {
        const std::uint64_t number = numberAt(layout, pixels, bytes);
        for (std::size_t i = 0; i < fields; ++i)
            *samples++ = static_cast<std::uint32_t>(number >> bits[i].shift & bits[i].mask);
    }
}

// Where the fields' bytes lie in a pixel, the first `bytesPerField` for the first field.
using BytePlaces = std::array<std::size_t, PixelLayout::kMostFields * 2>;

BytePlaces placesOf(const PixelLayout& layout, std::size_t bytesPerField) {
    BytePlaces places = {};
    for (std::size_t i = 0; i < layout.fieldCount(); ++i)
        for (std::size_t byte = 0; byte < bytesPerField; ++byte)
            places[i * bytesPerField + byte] = layout.bytePlace(layout.field(i).offset / 8 + byte);
    return places;
}

// The number of fields is known when compiling, so that the inner loop is unrolled.
template <std::size_t bytesPerField, std::size_t fields, typename Sample>
void gather(const BytePlaces& places, const std::byte* pixels, std::size_t stride,
            std::size_t count, Sample* samples) {
    for (std::size_t x = 0; x < count; ++x, pixels += stride)
        for (std::size_t i = 0; i < fields; ++i) {
            unsigned value = 0;
            for (std::size_t byte = 0; byte < bytesPerField; ++byte)
                value = value << 8 |
                        std::to_integer<unsigned>(pixels[places[i * bytesPerField + byte]]);
            *samples++ = static_cast<Sample>(value);
        }
}

template <std::size_t bytesPerField, typename Sample>
void gatherFields(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                  Sample* samples) {
    using Gather = void (*)(const BytePlaces&, const std::byte*, std::size_t, std::size_t, Sample*);
    constexpr std::array<Gather, PixelLayout::kMostFields> byCount = {
        gather<bytesPerField, 1, Sample>, gather<bytesPerField, 2, Sample>,
        gather<bytesPerField, 3, Sample>, gather<bytesPerField, 4, Sample>,
        gather<bytesPerField, 5, Sample>};
    byCount[layout.fieldCount() - 1](placesOf(layout, bytesPerField), pixels,
                                     layout.bitsPerPixel() / 8, count, samples);
}

// The way back of gather(). Bytes of no field become 0xFF.
template <std::size_t bytesPerField, std::size_t fields, typename Sample>
void scatter(const BytePlaces& places, const Sample* samples, std::size_t count, std::byte* pixels,
             std::size_t stride) {
    const bool hasUnused = stride > fields * bytesPerField;
    for (std::size_t x = 0; x < count; ++x, pixels += stride) {
        if (hasUnused)
            std::memset(pixels, 0xFF, stride);
        for (std::size_t i = 0; i < fields; ++i) {
            const unsigned value = *samples++;
            for (std::size_t byte = 0; byte < bytesPerField; ++byte)
                pixels[places[i * bytesPerField + byte]] =
                    static_cast<std::byte>(value >> 8 * (bytesPerField - 1 - byte));
        }
    }
}

template <std::size_t bytesPerField, typename Sample>
void scatterFields(const PixelLayout& layout, const Sample* samples, std::size_t count,
                   std::byte* pixels) {
    using Scatter =
        void (*)(const BytePlaces&, const Sample*, std::size_t, std::byte*, std::size_t);
    constexpr std::array<Scatter, PixelLayout::kMostFields> byCount = {
        scatter<bytesPerField, 1, Sample>, scatter<bytesPerField, 2, Sample>,
        scatter<bytesPerField, 3, Sample>, scatter<bytesPerField, 4, Sample>,
        scatter<bytesPerField, 5, Sample>};
    byCount[layout.fieldCount() - 1](placesOf(layout, bytesPerField), samples, count, pixels,
                                     layout.bitsPerPixel() / 8);
}

} // namespace

void unpackSamples(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                   std::uint32_t* samples) {
    if (layout.isMadeOfWhole(8))
        return gatherFields<1>(layout, pixels, count, samples);
    if (layout.bitsPerPixel() == 16)
        return unpackNumbers<2>(layout, pixels, count, samples);
    if (layout.bitsPerPixel() == 24)
        return unpackNumbers<3>(layout, pixels, count, samples);
    if (layout.bitsPerPixel() == 32)
        return unpackNumbers<4>(layout, pixels, count, samples);
    const std::size_t fields = layout.fieldCount();
    for (std::size_t x = 0; x < count; ++x)
        for (std::size_t i = 0; i < fields; ++i)
            *samples++ =
                sampleAt(layout, pixels, x * layout.bitsPerPixel() + layout.field(i).offset,
                         layout.field(i).bits);
}

void unpackBytes(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                 std::uint8_t* samples) {
    gatherFields<1>(layout, pixels, count, samples);
}

void unpackWords(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                 std::uint16_t* samples) {
    gatherFields<2>(layout, pixels, count, samples);
}

void packSamples(const PixelLayout& layout, const std::uint32_t* samples, std::size_t count,
                 std::byte* pixels) {
    const AllFieldBits bits = fieldBitsOf(layout);
    const std::size_t bytes = layout.bitsPerPixel() / 8;
    std::uint64_t unused = ~std::uint64_t{0};
    for (std::size_t i = 0; i < layout.fieldCount(); ++i)
        unused &= ~(bits[i].mask << bits[i].shift);
    for (std::size_t x = 0; x < count; ++x, pixels += bytes) {
        std::uint64_t number = unused;
        for (std::size_t i = 0; i < layout.fieldCount(); ++i)
            number |= std::uint64_t{*samples++} << bits[i].shift;
        for (std::size_t byte = 0; byte < bytes; ++byte)
            pixels[layout.bytePlace(byte)] =
                static_cast<std::byte>(number >> 8 * (bytes - 1 - byte));
    }
}

void packBytes(const PixelLayout& layout, const std::uint8_t* samples, std::size_t count,
               std::byte* pixels) {
    scatterFields<1>(layout, samples, count, pixels);
}

void packWords(const PixelLayout& layout, const std::uint16_t* samples, std::size_t count,
               std::byte* pixels) {
    scatterFields<2>(layout, samples, count, pixels);
}

} // namespace cg
