// GlyphPixels.cpp: copying rows of FreeType's pixels.

#include "Glyph/GlyphPixels.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fm {

namespace {

constexpr uint32_t kMostPixels = 0x7fff;

FMGlyphFormat formatOf(unsigned char pixelMode) {
    switch (pixelMode) {
    case FT_PIXEL_MODE_LCD:
        return kFMGlyphFormatSubpixelMask;
    case FT_PIXEL_MODE_BGRA:
        return kFMGlyphFormatColor;
    default:
        return kFMGlyphFormatGreyMask;
    }
}

// Rows run upwards in memory where the pitch is negative.
const unsigned char* sourceRow(const FT_Bitmap& bitmap, uint32_t row) {
    const auto pitch = static_cast<std::size_t>(std::abs(bitmap.pitch));
    return bitmap.buffer + pitch * (bitmap.pitch < 0 ? bitmap.rows - 1 - row : row);
}

// The leftmost pixel is in the highest bits of a byte.
void expandRow(const unsigned char* source, uint8_t* row, uint32_t width, unsigned bits) {
    const unsigned perByte = 8 / bits, highest = (1u << bits) - 1;
    for (uint32_t x = 0; x < width; ++x) {
        const unsigned shift = 8 - bits * (x % perByte + 1);
        const unsigned level = (source[x / perByte] >> shift) & highest;
        row[x] = static_cast<uint8_t>(level * 255 / highest);
    }
}

void copyRow(const FT_Bitmap& bitmap, const unsigned char* source, uint8_t* row, uint32_t width) {
    switch (bitmap.pixel_mode) {
    case FT_PIXEL_MODE_MONO:
        return expandRow(source, row, width, 1);
    case FT_PIXEL_MODE_GRAY2:
        return expandRow(source, row, width, 2);
    case FT_PIXEL_MODE_GRAY4:
        return expandRow(source, row, width, 4);
    case FT_PIXEL_MODE_LCD:
        std::memcpy(row, source, std::size_t{width} * 3);
        return;
    case FT_PIXEL_MODE_BGRA:
        std::memcpy(row, source, std::size_t{width} * 4);
        return;
    default:
        std::memcpy(row, source, width);
    }
}

} // namespace

GlyphPointer copyBitmap(const GlyphKey& key, const FT_GlyphSlotRec& slot) {
    const FT_Bitmap& bitmap = slot.bitmap;
    const bool isSmooth = bitmap.pixel_mode == FT_PIXEL_MODE_LCD;
    const uint32_t width = isSmooth ? bitmap.width / 3 : bitmap.width;
    if (width > kMostPixels || bitmap.rows > kMostPixels || bitmap.pixel_mode == FT_PIXEL_MODE_NONE)
        return bitmap.rows == 0 ? makeGlyphRecord(key, kFMGlyphFormatGreyMask, 0, 0) : nullptr;
    GlyphPointer record = makeGlyphRecord(key, formatOf(bitmap.pixel_mode), width, bitmap.rows);
    if (!record)
        return nullptr;
    record->left = slot.bitmap_left;
    record->top = slot.bitmap_top;
    for (uint32_t row = 0; width > 0 && row < bitmap.rows; ++row)
        copyRow(bitmap, sourceRow(bitmap, row), rowOf(*record, row), width);
    return record;
}

} // namespace fm
