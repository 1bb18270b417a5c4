// FMGlyph.cpp: a font's glyphs, from the cache or made anew.

#include <FontManager/FMGlyph.h>

#include "Font/FMFontRecord.h"
#include "Glyph/GlyphCache.h"
#include "Glyph/GlyphRenderer.h"
#include "Glyph/TextureAtlas.h"

namespace {

// A font's number is not used again, unlike its address: glyphs of fonts that are no more may stay
// in the cache until others need their room.
std::uint64_t serialOf(FMFont& font) {
    static std::atomic<std::uint64_t> last{0};
    std::uint64_t serial = font.glyphSerial.load(std::memory_order_relaxed);
    if (serial != 0)
        return serial;
    const std::uint64_t fresh = last.fetch_add(1, std::memory_order_relaxed) + 1;
    return font.glyphSerial.compare_exchange_strong(serial, fresh, std::memory_order_relaxed)
               ? fresh
               : serial;
}

fm::GlyphPointer copyGlyph(FMFontRef font, CGGlyph glyph, const FMGlyphDescription* description) {
    const std::uint64_t serial = serialOf(*font);
    const auto key = fm::makeGlyphKey(serial, glyph, description);
    if (!key)
        return nullptr;
    fm::GlyphCache& cache = fm::GlyphCache::shared();
    if (fm::GlyphPointer record = cache.find(*key))
        return record;
    const fm::GlyphKey outline =
        description ? fm::makeOutlineKey(serial, glyph, *description) : *key;
    fm::GlyphPointer record = fm::renderGlyph(font, *key, outline);
    if (record)
        cache.add(*record);
    return record;
}

} // namespace

FMGlyphRef FMFontCopyGlyph(FMFontRef font, CGGlyph glyph, const FMGlyphDescription* description) {
    return font ? copyGlyph(font, glyph, description).release() : nullptr;
}

const FMGlyph* FMFontGetGlyphUnsafe(FMFontRef font, CGGlyph glyph,
                                    const FMGlyphDescription* description) {
    if (!font)
        return nullptr;
    const std::lock_guard hold(font->mutex);
    FMGlyph* const record = copyGlyph(font, glyph, description).release();
    const auto release = [](void* lent) { FMGlyphRelease(static_cast<FMGlyphRef>(lent)); };
    font->lentGlyph = fm::OwnedSlot(record, release);
    return record;
}

FMGlyphRef FMFontCopyBitmapGlyphWithSprite(FMFontRef font, CGGlyph glyph,
                                           const FMGlyphDescription* description) {
    if (!font || !description)
        return nullptr;
    fm::GlyphPointer record = copyGlyph(font, glyph, description);
    return record && fm::addSprite(*record) ? record.release() : nullptr;
}
