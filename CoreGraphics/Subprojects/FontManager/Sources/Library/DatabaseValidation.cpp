// DatabaseValidation.cpp: whether a stored database still tells the truth.

#include "Library/DatabaseValidation.h"

#include "Font/FontIterator.h"
#include "Library/PreferredLanguages.h"
#include "Library/SystemState.h"

#include <optional>
#include <string>
#include <unordered_set>

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

bool hasInstalledFonts(FMDatabaseRef database) {
    const FMFontIteratorRef fonts = FMFontIteratorCreate();
    bool holdsAll = fonts != nullptr;
    while (holdsAll && FMFontIteratorNext(fonts)) {
        const auto identifier = FMFontIteratorGetType(fonts) == kFMFontIteratorTypeFile
                                    ? currentPath(fonts)
                                    : currentWindowsIdentifier(fonts);
        holdsAll = storedTime(database, identifier.get()) == currentModificationTime(fonts);
    }
    FMFontIteratorRelease(fonts);
    return holdsAll;
}

// Fonts are made from these records without looking back: they must be there and agree. A font's
// file may also be gone without any installed font telling of it.
class FontRecords {
public:
    explicit FontRecords(FMDatabaseRef database) : database_(database) {}

    bool areWhole() {
        const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database_));
        for (FMFontId id = 1; id <= count; ++id)
            if (!isWhole(id))
                return false;
        return true;
    }

private:
    bool isWhole(FMFontId id) {
        FMFontMetrics metrics;
        FMFontId found = 0;
        const auto nimbraId = cf::adopt(FMDatabaseCopyFontNimbraId(database_, id));
        const auto name = cf::adopt(FMDatabaseCopyFontPostScriptName(database_, id));
        return name && nimbraId && FMDatabaseGetFontMetrics(database_, id, &metrics) &&
               FMDatabaseLookupFontNimbraId(database_, nimbraId.get(), &found) && found == id &&
               hasSource(id);
    }

    bool hasSource(FMFontId id) {
        const auto location = cf::adopt(FMDatabaseCopyFontLocation(database_, id));
        if (!location)
            return cf::adopt(FMDatabaseCopyFontWindowsIdentifier(database_, id)) != nullptr;
        if (cf::equalOrBothAbsent<CFTypeRef>(location.get(), lastLocation_.get()))
            return true;
        const auto url = cf::adopt(CFURLCreateWithString(nullptr, location.get(), nullptr));
        lastLocation_ = location;
        return modificationTime(pathOf(url.get()).get()).has_value();
    }

    const FMDatabaseRef database_;
    cf::Ref<CFStringRef> lastLocation_; // The faces of a file follow each other.
};

} // namespace

bool isValid(FMDatabaseRef database) {
    return FMDatabaseIsLatestVersion(database) &&
           holds(database, FMDatabaseCopySerializedPreferredLanguages,
                 serializedPreferredLanguages()) &&
           isOfThisApplication(database) &&
           holds(database, FMDatabaseCopySystemResourcesToken, systemResourcesToken()) &&
           hasInstalledFonts(database) && FontRecords(database).areWhole();
}

} // namespace fm
