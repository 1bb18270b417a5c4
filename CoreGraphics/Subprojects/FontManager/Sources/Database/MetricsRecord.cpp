// MetricsRecord.cpp: packing metrics by a table of their fields.

#include "MetricsRecord.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace fm {

namespace {

// Where a word of 32 bits, a number or a float, lies in the record and in memory.
struct Field {
    std::size_t offset;
    std::size_t inMemory;
};

constexpr Field kFields[] = {
    {0, offsetof(FMFontMetrics, unitsPerEm)},
    {4, offsetof(FMFontMetrics, traits)},
    {8, offsetof(FMFontMetrics, bbox.origin.x)},
    {12, offsetof(FMFontMetrics, bbox.origin.y)},
    {16, offsetof(FMFontMetrics, bbox.size.width)},
    {20, offsetof(FMFontMetrics, bbox.size.height)},
    {24, offsetof(FMFontMetrics, weight)},
    {28, offsetof(FMFontMetrics, reserved16)},
    {32, offsetof(FMFontMetrics, ascent)},
    {36, offsetof(FMFontMetrics, descent)},
    {40, offsetof(FMFontMetrics, leading)},
    {44, offsetof(FMFontMetrics, italicAngle)},
    {48, offsetof(FMFontMetrics, stemV)},
    {52, offsetof(FMFontMetrics, xHeight)},
    {56, offsetof(FMFontMetrics, capHeight)},
    {60, offsetof(FMFontMetrics, reserved48)},
    {64, offsetof(FMFontMetrics, underlinePosition)},
    {68, offsetof(FMFontMetrics, underlineThickness)},
    {82, offsetof(FMFontMetrics, heightMultiple)},
    {86, offsetof(FMFontMetrics, heightMultipleForUIKit)},
};
constexpr std::size_t kPanoseOffset = 72;
constexpr std::size_t kPanoseSize = sizeof(FMFontMetrics::panose);
static_assert(std::size(kFields) * 4 + kPanoseSize == kMetricsRecordSize);
static_assert(sizeof(CGFloat) == 4);

} // namespace

std::array<std::byte, kMetricsRecordSize> packMetrics(const FMFontMetrics& metrics) {
    std::array<std::byte, kMetricsRecordSize> record;
    const auto* const memory = reinterpret_cast<const std::byte*>(&metrics);
    for (const auto& [offset, inMemory] : kFields) {
        std::uint32_t word;
        std::memcpy(&word, memory + inMemory, sizeof word);
        storeLittleEndian(record.data() + offset, word);
    }
    std::memcpy(record.data() + kPanoseOffset, metrics.panose, kPanoseSize);
    return record;
}

bool unpackMetrics(Bytes record, FMFontMetrics& metrics) {
    if (record.size() != kMetricsRecordSize)
        return false;
    auto* const memory = reinterpret_cast<std::byte*>(&metrics);
    for (const auto& [offset, inMemory] : kFields) {
        const auto word = loadLittleEndian<std::uint32_t>(record.data() + offset);
        std::memcpy(memory + inMemory, &word, sizeof word);
    }
    std::memcpy(metrics.panose, record.data() + kPanoseOffset, kPanoseSize);
    return true;
}

} // namespace fm
