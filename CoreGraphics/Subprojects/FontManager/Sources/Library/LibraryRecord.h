// LibraryRecord.h: what a font library holds.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <FontManager/FMConfig.h>
#include <FontManager/FMDatabase.h>
#include <FontManager/FMFallback.h>
#include <FontManager/FMLibrary.h>

#include "Font/FontRef.h"
#include "Library/FamilyMap.h"
#include "Library/NameCache.h"
#include "Library/NameIndex.h"
#include "Library/Substitutions.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace fm {

constexpr CFIndex kRememberedNames = 20;

} // namespace fm

// What is set when the library is made does not change; all else is guarded by the font manager's
// lock, but for the fallback and the database, which have locks of their own.
struct FMLibrary {
    CFRuntimeBase base;

    std::int32_t databaseMode = 0; // An FMConfigType.
    std::int32_t maxCacheableOverrideSize = 0;
    cf::Ref<CFStringRef> preferredLanguage;
    fm::Substitutions substitutions;
    cf::Ref<FMFontOverridesRef> overrides;
    cf::Ref<FMDatabaseRef> database;

    // By lower-cased nimbra id, as databases know it.
    std::unordered_map<std::u16string, fm::FontRef> registry;
    std::vector<FMFontRef> registered;  // In that order; the registry retains them.
    std::vector<fm::FontRef> permanent; // Slot n is the font with id n; the last resort has none.
    fm::NameIndex names;
    fm::NameCache nameCache{fm::kRememberedNames};
    fm::FamilyMap families;
    std::optional<fm::FontRef> preferredCJKFont;

    std::unique_ptr<FMFallback> fallback; // Goes first: it holds fonts and asks the library.

    ~FMLibrary();

    // ---- With the font manager's lock held.

    // Enters a font that is not there yet; false when it is, or has no PostScript name.
    bool registerFont(FMFontRef font);
    // Gives the font the slot of its id.
    void makePermanent(FMFontRef font);
    // The permanent font, made if need be; none when the database has no font of that id.
    fm::FontRef permanentFont(FMFontId fontId);
    // The font of that name; none when there is none.
    fm::FontRef fontWithName(CFStringRef name, bool bypassesCaches);
};

namespace fm {

// Lent; NULL when there is none.
inline FMDatabaseRef databaseOf(FMLibraryRef library) {
    return library ? library->database.get() : nullptr;
}

// Ends the process: a font that was promised cannot be had.
[[noreturn]] void assertionFailed(const char* function);

} // namespace fm
