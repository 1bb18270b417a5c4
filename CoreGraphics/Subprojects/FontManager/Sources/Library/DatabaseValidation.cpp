// DatabaseValidation.cpp: whether a stored database still tells the truth.

#include "Library/DatabaseValidation.h"

#include <Host/Host.h>

#include "Database/RecordKind.h"
#include "Library/PreferredLanguages.h"
#include "Library/RecordText.h"
#include "Library/SystemState.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace fm {
namespace {

using StringCopier = CFStringRef (*)(FMDatabaseRef);

bool holds(FMDatabaseRef database, StringCopier copy, const cf::Ref<CFStringRef>& present) {
    return cf::equalOrBothAbsent<CFTypeRef>(cf::adopt(copy(database)).get(), present.get());
}

// A program without an information file agrees with a database made without one.
bool isOfThisApplication(FMDatabaseRef database) {
    const auto info = applicationInfoPath();
    return storedModificationTime(database, info.get()) == modificationTime(info.get());
}

// Fonts are made from these records without looking back: all must be there, and no two fonts of
// one nimbra id. A font's file may also be gone without any installed font telling of it.
class FontRecords {
public:
    explicit FontRecords(FMDatabaseRef database) : database_(database) {}

    bool areWhole() {
        const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database_));
        nimbraIds_.reserve(static_cast<std::size_t>(count));
        for (FMFontId id = 1; id <= count; ++id)
            if (!isWhole(id))
                return false;
        return true;
    }

    // Of fonts that are whole.
    bool haveTheirFiles(const InstalledFonts& installed) const {
        return std::ranges::all_of(files_, [&](const std::string& path) {
            return installed.haveFile(path) || HostFileExists(path.c_str());
        });
    }

private:
    bool isWhole(FMFontId id) {
        FMFontMetrics metrics;
        auto nimbraId = lowerCasedRecord(database_, record::kNimbraId, id);
        return nimbraId && nimbraIds_.insert(std::move(*nimbraId)).second &&
               isTextRecord(database_, record::kPostScriptName, id) &&
               FMDatabaseGetFontMetrics(database_, id, &metrics) && noteSource(id);
    }

    // The faces of a file follow each other.
    bool noteSource(FMFontId id) {
        std::string path = pathInRecord(database_, id);
        if (path.empty())
            return isTextRecord(database_, record::kWindowsIdentifier, id);
        if (files_.empty() || files_.back() != path)
            files_.push_back(std::move(path));
        return true;
    }

    const FMDatabaseRef database_;
    std::unordered_set<std::u16string> nimbraIds_;
    std::vector<std::string> files_;
};

} // namespace

bool isValid(FMDatabaseRef database, const InstalledFonts& installed) {
    FontRecords records(database);
    return FMDatabaseIsLatestVersion(database) &&
           holds(database, FMDatabaseCopySerializedPreferredLanguages,
                 serializedPreferredLanguages()) &&
           isOfThisApplication(database) &&
           holds(database, FMDatabaseCopySystemResourcesToken, systemResourcesToken()) &&
           records.areWhole() && installed.areInDatabase() && records.haveTheirFiles(installed);
}

} // namespace fm
