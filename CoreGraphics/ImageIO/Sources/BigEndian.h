// BigEndian.h: numbers in the headers of files, the most significant byte first.
#pragma once

#include "ImageHeader.h"

namespace imageio {

// 0 for bytes beyond the end.
inline std::uint32_t number(Bytes bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | (offset + i < bytes.size() ? bytes[offset + i] : 0u);
    return value;
}
inline std::uint32_t u16(Bytes bytes, std::size_t offset) {
    return number(bytes, offset, 2);
}
inline std::uint32_t u32(Bytes bytes, std::size_t offset) {
    return number(bytes, offset, 4);
}

} // namespace imageio
