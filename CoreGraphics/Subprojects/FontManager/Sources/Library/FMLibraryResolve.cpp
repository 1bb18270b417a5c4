// FMLibraryResolve.cpp: how names become fonts.

#include <FontManager/FMFont.h>

#include "Font/Locks.h"
#include "Library/LibraryRecord.h"
#include "Library/NameInference.h"
#include "Library/NameScore.h"

#include <array>

namespace {

// The only bit of the options that counts.
constexpr std::uint32_t kBypassCaches = 1;

// The best of the family's fonts. The first font that cannot be had ends the search.
fm::FontRef bestOfFamily(FMLibrary& library, const fm::InferredName& wanted) {
    fm::FontRef best;
    float bestScore = fm::kNoScore;
    for (const FMFontId id : library.families.fontsOf(wanted.family, library.database.get())) {
        fm::FontRef candidate = library.permanentFont(id);
        const FMFontMetrics* const metrics = FMFontGetMetrics(candidate.get());
        if (!metrics)
            break;
        const float score = fm::traitScore(wanted.traits, metrics->traits) +
                            fm::weightScore(wanted.weight, metrics->weight);
        if (!fm::isBetterScore(score, bestScore))
            continue;
        best = std::move(candidate);
        bestScore = score;
    }
    return best;
}

fm::FontRef indexedFont(FMLibrary& library, const std::u16string& name) {
    const auto entry = library.names.find(name);
    if (!entry || entry->font)
        return fm::FontRef::retain(entry ? entry->font : nullptr);
    return entry->fontId != 0 ? library.permanentFont(entry->fontId) : fm::FontRef();
}

CFStringRef cjkLanguageOf(CFStringRef preferred) {
    // Deliberate: "kr" is a country, not the language "ko", so that Korean users get the font for
    // simplified Chinese, which covers Hangul as well.
    for (const CFStringRef language : {CFSTR("zh-Hant"), CFSTR("ja"), CFSTR("kr")})
        if (preferred && CFEqual(preferred, language))
            return language;
    return CFSTR("zh-Hans");
}

} // namespace

fm::FontRef FMLibrary::fontWithName(CFStringRef name, bool bypassesCaches) {
    const std::u16string key = fm::lowerCased(name);
    if (!bypassesCaches) {
        if (fm::FontRef font = indexedFont(*this, key))
            return font;
        if (const auto remembered = nameCache.find(key))
            return fm::FontRef::retain(*remembered);
    }
    fm::InferredName wanted = fm::inferName(name);
    if (!bypassesCaches)
        wanted.family = substitutions.resolve(std::move(wanted.family));
    fm::FontRef font = bestOfFamily(*this, wanted);
    if (!bypassesCaches)
        nameCache.remember(key, font.get());
    return font;
}

FMFontRef FMLibraryCopyFontWithName(FMLibraryRef library, CFStringRef name, uint32_t options) {
    if (!library || !name)
        return nullptr;
    const fm::GlobalLock hold;
    return library->fontWithName(name, options & kBypassCaches).release();
}

FMFontRef FMLibraryCopyDefaultFont(FMLibraryRef library) {
    return FMLibraryCopyFontWithName(library, CFSTR("nimbra_sans"), 0);
}

FMFontRef FMLibraryCopyLastResortFont(FMLibraryRef library) {
    if (!library)
        return nullptr;
    const FMFontRef font = FMLibraryCopyFontWithName(library, CFSTR("LastResort"), 0);
    if (!font)
        fm::assertionFailed(__func__);
    return font;
}

FMFontRef FMLibraryGetPreferredCJKFont(FMLibraryRef library) {
    if (!library)
        return nullptr;
    const fm::GlobalLock hold;
    if (!library->preferredCJKFont) {
        const auto name = cf::adopt(CFStringCreateWithFormat(
            nullptr, nullptr, CFSTR("nimbra_%@"), cjkLanguageOf(library->preferredLanguage.get())));
        library->preferredCJKFont = library->fontWithName(name.get(), false);
    }
    return library->preferredCJKFont->get();
}

CFArrayRef FMLibraryCopyDBFontNames(FMLibraryRef library) {
    if (!library)
        return nullptr;
    const auto names = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const FMDatabaseRef database = fm::databaseOf(library);
    const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database));
    for (FMFontId id = 1; id <= count; ++id)
        if (const auto name = cf::adopt(FMDatabaseCopyFontFullName(database, id)))
            CFArrayAppendValue(names.get(), name.get());
    return CFArrayCreateCopy(nullptr, names.get());
}

CFArrayRef FMLibraryCopyFontPSNamesForFamily(FMLibraryRef library, CFStringRef family) {
    if (!library || !family)
        return nullptr;
    const auto names = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    const fm::GlobalLock hold;
    const FMDatabaseRef database = fm::databaseOf(library);
    const std::u16string key = fm::inferName(family).family;
    for (const FMFontId id : library->families.fontsOf(key, database))
        if (const auto name = cf::adopt(FMDatabaseCopyFontPostScriptName(database, id)))
            CFArrayAppendValue(names.get(), name.get());
    return CFArrayCreateCopy(nullptr, names.get());
}
