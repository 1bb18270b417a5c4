// GlyphRecord.cpp: making and freeing glyph records.

#include "Glyph/GlyphRecord.h"

#include "Glyph/TextureAtlas.h"

#include <cstdlib>
#include <new>

namespace fm {

namespace {

constexpr std::size_t kBytesPerPathElement = 32;

uint32_t bytesPerRow(FMGlyphFormat format, uint32_t width) {
    constexpr uint32_t bytesPerPixel[] = {0, 1, 3, 4};
    return width * bytesPerPixel[format];
}

} // namespace

GlyphPointer makeGlyphRecord(const GlyphKey& key, FMGlyphFormat format, uint32_t width,
                             uint32_t height) {
    const uint32_t rowBytes = bytesPerRow(format, width);
    const std::size_t bytes = sizeof(GlyphRecord) + std::size_t{rowBytes} * height;
    void* const block = std::malloc(bytes);
    if (!block)
        return nullptr;
    auto* const record = ::new (block) GlyphRecord{};
    record->count = 1;
    record->format = format;
    record->glyph = key.glyph;
    record->width = width;
    record->height = height;
    record->bytesPerRow = rowBytes;
    record->key = key;
    record->bytes = bytes;
    if (bytes > sizeof(GlyphRecord))
        record->pixels = reinterpret_cast<const uint8_t*>(record + 1);
    return GlyphPointer(record);
}

uint8_t* rowOf(GlyphRecord& record, uint32_t row) {
    return reinterpret_cast<uint8_t*>(&record + 1) + std::size_t{row} * record.bytesPerRow;
}

void setPath(GlyphRecord& record, CGPathRef path) {
    std::size_t elements = 0;
    CGPathApply(path, &elements,
                [](void* info, const CGPathElement*) { ++*static_cast<std::size_t*>(info); });
    record.path = CGPathRetain(path);
    record.bytes += elements * kBytesPerPathElement;
}

} // namespace fm

void FMGlyphFree(FMGlyphRef glyph) {
    if (!glyph)
        return;
    fm::GlyphRecord* const record = fm::recordOf(glyph);
    fm::removeSprite(*record);
    CGPathRelease(record->path);
    record->~GlyphRecord();
    std::free(record);
}
