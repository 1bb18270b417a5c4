// PixelSamples.h: raw component values out of packed pixels.
#pragma once

#include "PixelLayout.h"

#include <cstddef>
#include <cstdint>

namespace cg {

// The samples of `count` pixels as they stand, each pixel's fields in the layout's order. Floats
// are given as their bits. `pixels` is where a pixel begins on a whole byte; nothing is read beyond
// the byte in which the last pixel ends.
void unpackSamples(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                   std::uint32_t* samples);

// The same of pixels whose fields are whole bytes, or whole pairs of bytes.
void unpackBytes(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                 std::uint8_t* samples);
void unpackWords(const PixelLayout& layout, const std::byte* pixels, std::size_t count,
                 std::uint16_t* samples);

// Makes pixels of one to eight whole bytes up of samples, which fit their fields: the way back.
// Bits of no field become 1, as the unused byte of opaque pixels is full.
void packSamples(const PixelLayout& layout, const std::uint32_t* samples, std::size_t count,
                 std::byte* pixels);
void packBytes(const PixelLayout& layout, const std::uint8_t* samples, std::size_t count,
               std::byte* pixels);
void packWords(const PixelLayout& layout, const std::uint16_t* samples, std::size_t count,
               std::byte* pixels);

} // namespace cg
