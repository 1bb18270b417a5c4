// TextureAtlas.cpp: talking to the compositor that keeps glyphs in a texture.

#include "Glyph/TextureAtlas.h"

#include "Font/Locks.h"

#include <mutex>

namespace fm {

namespace {

// The mutex guards all of it and the records' sprites, and serialises the compositor's callbacks.
// Nothing else is locked while it is held.
struct Atlas {
    RecursiveMutex mutex;
    const FMTextureAtlasCallbacks* callbacks = nullptr;
    // Sprites of another number belonged to an atlas that is no more.
    std::uint64_t number = 0;
};

Atlas& sharedAtlas() {
    static auto& atlas = *new Atlas;
    return atlas;
}

} // namespace

bool addSprite(GlyphRecord& record) {
    if (record.format == kFMGlyphFormatOutline)
        return false;
    Atlas& atlas = sharedAtlas();
    const std::lock_guard hold(atlas.mutex);
    if (!atlas.callbacks)
        return false;
    if (record.width == 0 || record.height == 0 ||
        (record.sprite && record.atlasNumber == atlas.number))
        return true;
    record.sprite = atlas.callbacks->addSprite(atlas.callbacks->info, &record);
    record.atlasNumber = atlas.number;
    return record.sprite != nullptr;
}

void removeSprite(GlyphRecord& record) {
    if (!record.sprite)
        return;
    Atlas& atlas = sharedAtlas();
    const std::lock_guard hold(atlas.mutex);
    if (atlas.callbacks && record.atlasNumber == atlas.number)
        atlas.callbacks->removeSprite(atlas.callbacks->info, record.sprite);
}

} // namespace fm

void FMFontSetTextureAtlasCallbacks(const FMTextureAtlasCallbacks* callbacks) {
    const bool isUsable =
        callbacks && callbacks->version == 0 && callbacks->addSprite && callbacks->removeSprite;
    fm::Atlas& atlas = fm::sharedAtlas();
    const std::lock_guard hold(atlas.mutex);
    atlas.callbacks = isUsable ? callbacks : nullptr;
    ++atlas.number;
}
