// LittleEndian.h: numbers as the font database stores them.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

namespace fm {

template <std::unsigned_integral Number>
void storeLittleEndian(std::byte* bytes, Number number) {
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes[i] = static_cast<std::byte>(number >> (8 * i));
}

template <std::unsigned_integral Number>
Number loadLittleEndian(const std::byte* bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number |= static_cast<Number>(std::to_integer<Number>(bytes[i]) << (8 * i));
    return number;
}

} // namespace fm
