// FMLibraryRegister.cpp: enters fonts into a library and takes them out.

#include "Config/FontOverrides.h"
#include "Font/FMFontRecord.h"
#include "Font/Locks.h"
#include "Library/LibraryRecord.h"

#include <algorithm>
#include <mutex>

namespace {

// 8 marks the font that stands for all emoji sequences, beside the flag that callers ask for.
constexpr std::uint16_t kEmojiFlags = kFMFontPermIsPlatformEmoji | 8;

cf::Ref<CFStringRef> nimbraIdOf(FMFontRef font) {
    return cf::adopt(FMFontCopyNimbraId(font, false));
}

// A font of the database is as good as registered before it is made.
bool isPromised(const FMLibrary& library, FMFontRef font, CFStringRef nimbraId) {
    FMFontId promised = 0;
    if (FMFontGetFontId(font) != 0 ||
        !FMDatabaseLookupFontNimbraId(library.database.get(), nimbraId, &promised))
        return false;
    const auto slot = static_cast<std::size_t>(promised);
    const bool isMade = slot < library.permanent.size() && library.permanent[slot];
    return promised > 0 && !isMade;
}

void applyOverrides(const FMLibrary& library, FMFontRef font) {
    const auto family = cf::adopt(FMFontCopyNimbraFamilyName(font, false));
    if (!FMFontGetMetrics(font))
        return;
    const std::lock_guard hold(font->mutex);
    fm::applyOverrides(library.overrides.get(), family.get(), font->metrics);
}

void markEmoji(const FMLibrary& library, FMFontRef font, CFStringRef postScriptName) {
    constexpr std::u16string_view role = u"nimbra_emoji";
    const std::u16string emoji = library.substitutions.resolve(std::u16string(role));
    if (emoji == role || fm::lowerCased(postScriptName).find(emoji) == std::u16string::npos)
        return;
    const auto flags = static_cast<std::uint16_t>(FMFontGetPermFlags(font) | kEmojiFlags);
    FMFontSetPermFlags(font, flags);
}

} // namespace

bool FMLibrary::registerFont(FMFontRef font) {
    const FMLibraryRef before = font->library.exchange(this);
    const auto fullName = cf::adopt(FMFontCopyFullName(font, false));
    const auto postScriptName = cf::adopt(FMFontCopyPostScriptName(font, false));
    const auto displayName = cf::adopt(FMFontCopyDisplayName(font, false));
    const auto nimbraId = nimbraIdOf(font);
    std::u16string key = fm::lowerCased(nimbraId.get());
    if (!postScriptName || !nimbraId || registry.contains(key) ||
        isPromised(*this, font, nimbraId.get())) {
        font->library = before;
        return false;
    }
    applyOverrides(*this, font);
    registry.emplace(std::move(key), fm::FontRef::retain(font));
    registered.push_back(font);
    for (const auto& name : {fullName, displayName, postScriptName})
        names.enter(name.get(), font);
    markEmoji(*this, font, postScriptName.get());
    nameCache.forgetAll();
    return true;
}

bool FMLibraryRegisterFont(FMLibraryRef library, FMFontRef font) {
    if (!library || !font)
        return false;
    const fm::GlobalLock hold;
    return library->registerFont(font);
}

bool FMLibraryUnregisterFont(FMLibraryRef library, FMFontRef font) {
    if (!library || !font)
        return false;
    const fm::GlobalLock hold;
    const auto nimbraId = nimbraIdOf(font);
    const auto found = library->registry.find(fm::lowerCased(nimbraId.get()));
    if (found == library->registry.end() || found->second.get() != font)
        return false;
    const fm::FontRef kept = found->second;
    library->registry.erase(found);
    std::erase(library->registered, font);
    library->names.remove(font);
    library->nameCache.forgetAll();
    if (!FMFontIsPermanent(font))
        font->library = nullptr;
    return true;
}

FMFontRef FMLibraryCopyFontByNimbraId(FMLibraryRef library, CFStringRef nimbraId) {
    if (!library || !nimbraId)
        return nullptr;
    const fm::GlobalLock hold;
    const auto found = library->registry.find(fm::lowerCased(nimbraId));
    if (found != library->registry.end())
        return FMFontRetain(found->second.get());
    FMFontId fontId = 0;
    if (!FMDatabaseLookupFontNimbraId(library->database.get(), nimbraId, &fontId))
        return nullptr;
    return library->permanentFont(fontId).release();
}
