// FMLibraryPermanent.cpp: the fonts of a library's database, which stay once they are made.

#include "Fallback/FallbackAccess.h"
#include "Font/FMFontRecord.h"
#include "Font/Locks.h"
#include "Library/LibraryRecord.h"

namespace {

// Deliberate: another name for the last resort's slot, which stored ids use.
constexpr FMFontId kLastResortAlias = 4444;

} // namespace

void FMLibrary::makePermanent(FMFontRef font) {
    const FMFontId id = FMFontGetFontId(font);
    if (!font || id < 0)
        return;
    const auto slot = static_cast<std::size_t>(id);
    if (slot >= permanent.size())
        permanent.resize(slot + 1);
    permanent[slot] = fm::FontRef::retain(font);
    font->isPermanent = true;
}

fm::FontRef FMLibrary::permanentFont(FMFontId fontId) {
    if (fontId < 0)
        return {};
    const auto slot = static_cast<std::size_t>(fontId);
    if (slot < permanent.size() && permanent[slot])
        return permanent[slot];
    if (fontId == 0 || fontId > FMDatabaseGetFontsCount(database.get()))
        return {};
    auto font = fm::FontRef::adopt(FMFontCreateWithFontId(this, fontId));
    if (!font || !registerFont(font.get()))
        fm::assertionFailed("FMLibraryCopyPermanentFont");
    makePermanent(font.get());
    if (!fm::FallbackAccess::hasPendingWork(*fallback)) {
        FMFontLock(font.get());
        FMFontGetFTFaceUnsafe(font.get(), true);
        FMFontUnlock(font.get());
    }
    return font;
}

FMFontRef FMLibraryCopyPermanentFont(FMLibraryRef library, FMFontId fontId) {
    if (!library || fontId == 0)
        return nullptr;
    const fm::GlobalLock hold;
    return library->permanentFont(fontId == kLastResortAlias ? 0 : fontId).release();
}
