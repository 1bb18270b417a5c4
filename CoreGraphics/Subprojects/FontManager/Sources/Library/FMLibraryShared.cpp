// FMLibraryShared.cpp: the library that a process shares, and where its database is kept.

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFURL.h>

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "Font/Locks.h"
#include "Library/DatabaseValidation.h"
#include "Library/LibraryRecord.h"

#include <atomic>
#include <climits>
#include <optional>

namespace {

std::atomic<FMLibraryRef> sharedLibrary;

cf::Ref<CFURLRef> prebuiltDatabaseURL() {
    const CFBundleRef bundle = _CFBundleGetSystemResources();
    return cf::adopt(
        bundle ? CFBundleCopyResourceURL(bundle, CFSTR("SystemFonts2"), CFSTR("db"), CFSTR("Fonts"))
               : nullptr);
}

cf::Ref<CFURLRef> cachedDatabaseURL() {
    char folder[PATH_MAX];
    char path[PATH_MAX];
    if (!HostPathGetCachesDirectory(folder, sizeof folder) ||
        !HostPathConcatenate(folder, "SystemFonts2.db", path, sizeof path))
        return nullptr;
    return cf::adopt(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path),
        static_cast<CFIndex>(std::char_traits<char>::length(path)), false));
}

cf::Ref<FMDatabaseRef> openDatabase(CFURLRef url) {
    return cf::adopt(url ? FMDatabaseOpenWithURL(url) : nullptr);
}

// What the last run left in the caches, and the fonts to hold it against. Where there is something,
// it will most likely be asked for: the fonts are listed while the configuration is read.
struct Cached {
    cf::Ref<CFURLRef> url = cachedDatabaseURL();
    cf::Ref<FMDatabaseRef> database = openDatabase(url.get());
    std::optional<fm::InstalledFonts> installed;

    Cached() {
        if (database)
            installed.emplace(database.get());
    }
};

// The library over the database in the caches where that is valid, else over one that is made anew
// and left there for the next run.
FMLibraryRef createCached(FMConfigRef config, Cached& cached) {
    if (cached.database && fm::isValid(cached.database.get(), *cached.installed))
        return FMLibraryCreate(config, cached.database.get());
    const FMLibraryRef library = FMLibraryCreate(config, nullptr);
    if (library && !FMDatabasePersistToDisk(fm::databaseOf(library), cached.url.get()))
        CG_LOG(kHostLogDebug, "Failed to persist fmdatabase");
    return library;
}

FMLibraryRef createShared() {
    Cached cached;
    const auto config = cf::adopt(FMConfigCreateDefault());
    if (!config)
        fm::assertionFailed("FMLibraryGetShared");
    switch (FMConfigGetType(config.get())) {
    case kFMConfigTypePrebuiltDatabase:
        return FMLibraryCreate(config.get(), openDatabase(prebuiltDatabaseURL().get()).get());
    case kFMConfigTypeCachedDatabase:
        return createCached(config.get(), cached);
    default:
        return FMLibraryCreate(config.get(), nullptr);
    }
}

} // namespace

// Made under the font manager's lock, which comes before all others, so that who holds it may ask.
FMLibraryRef FMLibraryGetShared(void) {
    if (const FMLibraryRef library = sharedLibrary.load(std::memory_order_acquire))
        return library;
    const fm::GlobalLock hold;
    static bool isMaking = false;
    if (!sharedLibrary.load(std::memory_order_acquire) && !isMaking) {
        isMaking = true;
        sharedLibrary.store(createShared(), std::memory_order_release);
        isMaking = false;
    }
    return sharedLibrary.load(std::memory_order_acquire);
}

void FMLibrarySetShared(FMLibraryRef library) {
    const fm::GlobalLock hold;
    const FMLibraryRef before = sharedLibrary.exchange(cg::retain(library));
    cg::release(before);
}
