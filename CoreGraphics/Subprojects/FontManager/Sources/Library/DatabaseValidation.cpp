// DatabaseValidation.cpp: whether a stored database still tells the truth.

#include "Library/DatabaseValidation.h"

#include <Host/Host.h>

#include "Database/RecordKind.h"
#include "Font/FontIterator.h"
#include "Library/PreferredLanguages.h"
#include "Library/RecordText.h"
#include "Library/SystemState.h"

#include <climits>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

namespace fm {
namespace {

using StringCopier = CFStringRef (*)(FMDatabaseRef);

bool holds(FMDatabaseRef database, StringCopier copy, const cf::Ref<CFStringRef>& present) {
    return cf::equalOrBothAbsent<CFTypeRef>(cf::adopt(copy(database)).get(), present.get());
}

std::optional<std::int64_t> storedTime(FMDatabaseRef database, CFStringRef identifier) {
    std::int64_t seconds = 0;
    if (!identifier || !FMDatabaseFetchLastModified(database, identifier, &seconds))
        return std::nullopt;
    return seconds;
}

// A program without an information file agrees with a database made without one.
bool isOfThisApplication(FMDatabaseRef database) {
    const auto info = applicationInfoPath();
    return storedTime(database, info.get()) == modificationTime(info.get());
}

using Paths = std::unordered_set<std::string>;

// Notes the paths of installed files.
bool hasInstalledFonts(FMDatabaseRef database, Paths& files) {
    const FMFontIteratorRef fonts = FMFontIteratorCreate();
    bool holdsAll = fonts != nullptr;
    while (holdsAll && FMFontIteratorNext(fonts)) {
        const auto path = currentPath(fonts);
        const auto identifier = path ? path : currentWindowsIdentifier(fonts);
        holdsAll = storedTime(database, identifier.get()) == currentModificationTime(fonts);
        char bytes[PATH_MAX];
        if (path && CFStringGetFileSystemRepresentation(path.get(), bytes, sizeof bytes))
            files.emplace(bytes);
    }
    FMFontIteratorRelease(fonts);
    return holdsAll;
}

// Fonts are made from these records without looking back: all must be there, and no two fonts of
// one nimbra id. A font's file may also be gone without any installed font telling of it.
class FontRecords {
public:
    FontRecords(FMDatabaseRef database, const Paths& installedFiles)
        : database_(database), installedFiles_(installedFiles) {}

    bool areWhole() {
        const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database_));
        nimbraIds_.reserve(static_cast<std::size_t>(count));
        for (FMFontId id = 1; id <= count; ++id)
            if (!isWhole(id))
                return false;
        return true;
    }

private:
    bool isWhole(FMFontId id) {
        FMFontMetrics metrics;
        auto nimbraId = lowerCasedRecord(database_, record::kNimbraId, id);
        return nimbraId && nimbraIds_.insert(std::move(*nimbraId)).second &&
               lowerCasedRecord(database_, record::kPostScriptName, id) &&
               FMDatabaseGetFontMetrics(database_, id, &metrics) && hasSource(id);
    }

    bool hasSource(FMFontId id) const {
        const std::string path = pathInRecord(database_, id);
        if (path.empty())
            return lowerCasedRecord(database_, record::kWindowsIdentifier, id).has_value();
        return installedFiles_.contains(path) || HostFileExists(path.c_str());
    }

    const FMDatabaseRef database_;
    const Paths& installedFiles_;
    std::unordered_set<std::u16string> nimbraIds_;
};

} // namespace

bool isValid(FMDatabaseRef database) {
    Paths installedFiles;
    return FMDatabaseIsLatestVersion(database) &&
           holds(database, FMDatabaseCopySerializedPreferredLanguages,
                 serializedPreferredLanguages()) &&
           isOfThisApplication(database) &&
           holds(database, FMDatabaseCopySystemResourcesToken, systemResourcesToken()) &&
           hasInstalledFonts(database, installedFiles) &&
           FontRecords(database, installedFiles).areWhole();
}

} // namespace fm
