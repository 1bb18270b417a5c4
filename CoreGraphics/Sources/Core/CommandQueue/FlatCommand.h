// FlatCommand.h: where a queue and its commands have their fields in flat buffers.
#pragma once

#include "Core/CommandQueue/Command.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace cg {

// Offsets and sizes in bytes; little-endian, nothing between the parts. docs/command-queue.md is
// the same table for readers.
namespace flat {

inline constexpr std::size_t kHeaderSize = 68;
inline constexpr std::size_t kMark =
    0; // Of our own: tells a reader that, and how much, it can read.
inline constexpr std::size_t kTotalSize = 4;
inline constexpr std::size_t kImageCount = 16;
inline constexpr std::size_t kWidth = 32;
inline constexpr std::size_t kHeight = 36;
inline constexpr std::size_t kBitsPerComponent = 40;
inline constexpr std::size_t kBitsPerPixel = 44;
inline constexpr std::size_t kBitmapInfo = 52;
inline constexpr std::size_t kCommandCount = 60;
inline constexpr std::size_t kProcess = 64;

inline constexpr std::uint32_t kMarkValue = 0x51434758; // "XGCQ"

inline constexpr std::size_t kCommandSize = 68; // Without its items.
inline constexpr std::size_t kColor = 32;       // Not 0: four components follow the items.
inline constexpr std::size_t kImage = 36;       // The image's key.
inline constexpr std::size_t kPath = 40;        // Not 0: a length and a path's bytes follow those.

inline constexpr std::size_t kColorComponents = 4;

// Fields that are copied as they lie in memory.
struct Field {
    std::size_t flat;
    std::size_t native;
    std::size_t size;
};
inline constexpr std::array kFields = {
    Field{0, offsetof(XGCommand, kind), 4},        Field{4, offsetof(XGCommand, bounds), 16},
    Field{20, offsetof(XGCommand, isPartial), 1},  Field{24, offsetof(XGCommand, blendMode), 4},
    Field{28, offsetof(XGCommand, reserved28), 4}, Field{44, offsetof(XGCommand, parameters), 16},
    Field{60, offsetof(XGCommand, itemCount), 4},  Field{64, offsetof(XGCommand, reserved64), 4},
};

} // namespace flat

} // namespace cg
