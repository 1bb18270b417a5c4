// GlyphRecord.h: what lies behind the glyphs that users see.
#pragma once

#include <FontManager/FMGlyph.h>

#include "Glyph/GlyphKey.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace fm {

struct GlyphRecord : FMGlyph {
    GlyphKey key;
    std::size_t bytes = 0; // Of the block, and about those of the path.
    std::atomic<bool> isUsed{false};
    std::uint64_t atlasNumber = 0; // Of the atlas that the sprite is in.
    GlyphRecord* next = nullptr; // Of those that are about to be freed.

    std::atomic_ref<int32_t> users() { return std::atomic_ref(count); }
};

inline GlyphRecord* recordOf(FMGlyphRef glyph) {
    return static_cast<GlyphRecord*>(glyph);
}

struct ReleaseGlyph {
    void operator()(FMGlyphRef glyph) const { FMGlyphRelease(glyph); }
};
using GlyphPointer = std::unique_ptr<GlyphRecord, ReleaseGlyph>;

// A record with one user and room for rows, without gaps, which the caller has to fill in; empty
// when memory runs out. The sizes have been limited.
GlyphPointer makeGlyphRecord(const GlyphKey& key, FMGlyphFormat format, uint32_t width,
                             uint32_t height);
// The pixels of a record that nobody else knows yet.
uint8_t* rowOf(GlyphRecord& record, uint32_t row);
// Makes a path, which may be NULL, the record's.
void setPath(GlyphRecord& record, CGPathRef path);

} // namespace fm
