// DatabaseBuilder.cpp: finds all fonts and stores what is to know of them.

#include "Library/DatabaseBuilder.h"

#include <CoreFoundation/CFArray.h>

#include "Core/Object/Diagnostics.h"
#include "Font/FaceUse.h"
#include "Font/FontIterator.h"
#include "Library/LibraryRecord.h"
#include "Library/PreferredLanguages.h"
#include "Library/SystemState.h"

#include <vector>

namespace fm {
namespace {

class Builder {
public:
    explicit Builder(FMLibrary& library) : library_(library), database_(library.database.get()) {}

    void addAssets(CFArrayRef urls) {
        for (CFIndex index = 0; urls && index < CFArrayGetCount(urls); ++index)
            addFile(pathOf(static_cast<CFURLRef>(CFArrayGetValueAtIndex(urls, index))).get());
    }

    void addInstalled() {
        const FMFontIteratorRef fonts = FMFontIteratorCreate();
        while (FMFontIteratorNext(fonts)) {
            if (FMFontIteratorGetType(fonts) == kFMFontIteratorTypeFile)
                addInstalledFile(fonts);
            else
                addInstalledData(fonts);
        }
        FMFontIteratorRelease(fonts);
    }

    void addApplicationFonts() {
        for (const auto& path : applicationFontPaths())
            addFile(path.get());
    }

    // What tells a later run whether the database still holds.
    void storeState() {
        for (const auto& file : installedFiles_)
            FMDatabaseStoreLastModified(database_, file.path.get(), file.modificationTime);
        FMDatabaseStoreSerializedPreferredLanguages(database_,
                                                    serializedPreferredLanguages().get());
        FMDatabaseStoreSystemResourcesToken(database_, systemResourcesToken().get());
        const auto info = applicationInfoPath();
        if (const auto time = modificationTime(info.get()))
            FMDatabaseStoreLastModified(database_, info.get(), *time);
    }

private:
    struct InstalledFile {
        cf::Ref<CFStringRef> path;
        std::int64_t modificationTime;
    };

    void addInstalledFile(FMFontIteratorRef fonts) {
        auto path = currentPath(fonts);
        addFile(path.get());
        installedFiles_.push_back({std::move(path), currentModificationTime(fonts)});
    }

    void addInstalledData(FMFontIteratorRef fonts) {
        std::int64_t faceIndex = 0;
        const auto data = currentData(fonts, &faceIndex);
        if (!data)
            return;
        const auto font = FontRef::adopt(FMFontCreateFromMemory(
            CFDataGetBytePtr(data.get()), static_cast<std::size_t>(CFDataGetLength(data.get())),
            faceIndex, false));
        FMFontCacheWindowsIdentifier(font.get(), currentWindowsIdentifier(fonts).get());
        FMFontSetLastModtime(font.get(), currentModificationTime(fonts));
        addFont(font.get());
    }

    // Every face of the file.
    void addFile(CFStringRef path) {
        FT_Long faces = 1;
        for (FT_Long index = 0; index < faces; ++index) {
            const auto font = FontRef::adopt(FMFontCreateWithPath(path, index, false));
            if (!font)
                continue;
            if (index == 0)
                faces = FaceUse(font.get()).face()->num_faces;
            addFont(font.get());
        }
    }

    // The face is closed again: hundreds would stay open, of which few will be used.
    void addFont(FMFontRef font) {
        if (!font || !library_.registerFont(font))
            return;
        if (!FMDatabaseStoreFont(database_, font))
            CG_LOG_AS(kHostLogDebug, "FMLibraryCreate", "store font failed");
        library_.makePermanent(font);
        if (library_.databaseMode == kFMConfigTypePrebuiltDatabase)
            library_.fallback->addFontToCharmaps(font);
        FMFontClearFaceData(font);
    }

    FMLibrary& library_;
    const FMDatabaseRef database_;
    std::vector<InstalledFile> installedFiles_;
};

} // namespace

void buildDatabase(FMLibrary& library, FMConfigRef config) {
    library.database = cf::adopt(FMDatabaseCreateInMemory());
    Builder builder(library);
    builder.addAssets(FMConfigGetAssetFontURLs(config));
    builder.addInstalled();
    builder.addApplicationFonts();
    builder.storeState();
    if (library.databaseMode == kFMConfigTypePrebuiltDatabase)
        library.fallback->storeCharmaps(nullptr);
}

} // namespace fm
