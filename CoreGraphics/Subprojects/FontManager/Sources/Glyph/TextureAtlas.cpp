// TextureAtlas.cpp: talking to the compositor that keeps glyphs in a texture.

#include "Glyph/TextureAtlas.h"

#include "Font/Locks.h"

#include <mutex>

namespace fm {

namespace {

// Guards the records' sprites and serialises the compositor's callbacks. Nothing else is locked
// while it is held.
struct Atlas {
    RecursiveMutex mutex;
    std::atomic<const FMTextureAtlasCallbacks*> callbacks{nullptr};
};

Atlas& atlas() {
    static auto& atlas = *new Atlas;
    return atlas;
}

void removeLocked(GlyphRecord& record) {
    if (record.sprite)
        record.atlas->removeSprite(record.atlas->info, record.sprite);
    record.sprite = nullptr;
    record.atlas = nullptr;
}

} // namespace

bool addSprite(GlyphRecord& record) {
    const FMTextureAtlasCallbacks* const callbacks =
        atlas().callbacks.load(std::memory_order_acquire);
    if (!callbacks || record.format == kFMGlyphFormatOutline)
        return false;
    if (record.width == 0 || record.height == 0)
        return true;
    const std::lock_guard hold(atlas().mutex);
    if (record.atlas == callbacks)
        return true;
    removeLocked(record);
    record.sprite = callbacks->addSprite(callbacks->info, &record);
    if (!record.sprite)
        return false;
    record.atlas = callbacks;
    return true;
}

void removeSprite(GlyphRecord& record) {
    if (!record.atlas)
        return;
    const std::lock_guard hold(atlas().mutex);
    removeLocked(record);
}

} // namespace fm

void FMFontSetTextureAtlasCallbacks(const FMTextureAtlasCallbacks* callbacks) {
    const bool isUsable =
        callbacks && callbacks->version == 0 && callbacks->addSprite && callbacks->removeSprite;
    fm::atlas().callbacks.store(isUsable ? callbacks : nullptr, std::memory_order_release);
}
