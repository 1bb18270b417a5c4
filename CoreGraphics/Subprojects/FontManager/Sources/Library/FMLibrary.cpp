// FMLibrary.cpp: makes and ends font libraries.

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/Object/RuntimeOptions.h"
#include "Fallback/FallbackAccess.h"
#include "Font/FMFontRecord.h"
#include "Font/LastResortFont.h"
#include "Font/Locks.h"
#include "Library/DatabaseBuilder.h"
#include "Library/LibraryRecord.h"
#include "Library/PreferredLanguages.h"
#include "Library/WarmUp.h"

#include <limits>

namespace {

constexpr CFRuntimeClass kLibraryClass = {
    .className = "FMLibrary",
    .finalize = cg::finalize<FMLibrary>,
};

std::int32_t cacheableOverrideSizeOption() {
    constexpr std::int32_t unlimited = std::numeric_limits<std::int32_t>::max();
    static std::int32_t value = unlimited;
    [[maybe_unused]] static const bool isRegistered =
        cg::registerOption({.name = "NIMBRA_FM_MAX_CACHEABLE_SIZE",
                            .title = "Largest cacheable font override",
                            .category = "Fonts",
                            .description = "The size in bytes up to which font overrides are "
                                           "cached; negative for any size"},
                           value);
    return value < 0 ? unlimited : value;
}

// Fonts outlive their library where somebody keeps them.
void forgetLibrary(FMFontRef font, FMLibraryRef library) {
    FMLibraryRef expected = library;
    if (font)
        font->library.compare_exchange_strong(expected, nullptr);
}

FMFallback::FontList fontsOfSet(FMLibraryRef library, std::uint32_t set, FMFallback& fallback) {
    FMFallback::FontList fonts;
    for (const FMFontId id : fm::FallbackAccess::fontIdsOf(fallback, set))
        if (const FMFontRef font = FMLibraryCopyPermanentFont(library, id))
            fonts.push_back(font);
    return fonts;
}

void addLastResortFont(FMLibrary& library) {
    const auto font = fm::FontRef::adopt(FMFontCreateLastResortFont());
    const auto name = cf::adopt(FMFontCopyFullName(font.get(), false));
    library.names.enter(CFSTR(""), nullptr);
    library.names.enter(name.get(), font.get());
    library.makePermanent(font.get());
}

void useDatabase(FMLibrary& library, FMDatabaseRef database) {
    library.database = cf::retain(database);
    library.names.enterFontsOf(database);
    if (library.databaseMode == kFMConfigTypePrebuiltDatabase)
        library.fallback->initWithCharMaps();
}

// The last resort draws what it can with the default font.
void deferLastResort(FMLibrary& library) {
    const fm::FontRef standIn = library.fontWithName(CFSTR("nimbra_sans"), false);
    if (auto* const lastResort = fm::asLastResortFont(library.permanentFont(0).get()))
        lastResort->deferTo(standIn.get());
}

} // namespace

void fm::assertionFailed(const char* function) {
    CG_LOG_AS(kHostLogFault, function, "Assertion failed %s",
              "CoreGraphics/Subprojects/FontManager/Sources/FMLibrary");
    HostAbortWithBacktrace();
}

FMLibrary::~FMLibrary() {
    fallback.reset();
    for (const FMFontRef font : registered)
        forgetLibrary(font, this);
    for (const fm::FontRef& font : permanent)
        forgetLibrary(font.get(), this);
}

FMLibraryRef FMLibraryCreate(FMConfigRef config, FMDatabaseRef database) {
    auto library = cf::adopt<FMLibraryRef>(cg::create<FMLibrary>(kLibraryClass));
    if (!library)
        return nullptr;
    const fm::GlobalLock hold;
    FMLibrary& record = *library.get();
    record.databaseMode = FMConfigGetType(config);
    record.substitutions = fm::Substitutions(cf::adopt(FMConfigCopyFontSubstitution(config)).get());
    addLastResortFont(record);
    record.preferredLanguage = fm::preferredFontLanguage();
    record.overrides = cf::adopt(FMConfigAdoptFontOverrides(config));
    record.maxCacheableOverrideSize = cacheableOverrideSizeOption();
    record.fallback = std::make_unique<FMFallback>(
        library.get(), [library = library.get()](std::uint32_t set, FMFallback* fallback) {
            return fontsOfSet(library, set, *fallback);
        });
    if (database)
        useDatabase(record, database);
    else
        fm::buildDatabase(record, config);
    deferLastResort(record);
    if (database && record.databaseMode != kFMConfigTypePrebuiltDatabase)
        fm::startWarmUp(library.get());
    return library.release();
}

void FMLibraryRelease(FMLibraryRef library) {
    cg::release(library);
}

CFDictionaryRef FMLibraryGetSubstitutions(FMLibraryRef library) {
    return library ? library->substitutions.dictionary() : nullptr;
}

int32_t FMLibraryGetMaxCacheableOverrideSize(FMLibraryRef library) {
    return library ? library->maxCacheableOverrideSize : 0;
}
