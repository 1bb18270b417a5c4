// DatabaseValidation.cpp: whether a stored database still tells the truth.

#include "Library/DatabaseValidation.h"

#include <Host/Host.h>

#include "Database/RecordKind.h"
#include "Font/FontIterator.h"
#include "Library/PreferredLanguages.h"
#include "Library/RecordText.h"
#include "Library/SystemState.h"

#include <algorithm>
#include <climits>
#include <optional>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

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

// The fonts that the host has now. Listing them takes about as long as going over all records, so
// it is done meanwhile.
class InstalledFonts {
public:
    InstalledFonts() : listing_([this] { list(); }) {}
    ~InstalledFonts() { wait(); }
    InstalledFonts(const InstalledFonts&) = delete;
    InstalledFonts& operator=(const InstalledFonts&) = delete;

    // Whether the database has each as it is now.
    bool areIn(FMDatabaseRef database) {
        wait();
        return isListed_ && std::ranges::all_of(fonts_, [&](const Font& font) {
                   return storedTime(database, font.identifier.get()) == font.time;
               });
    }
    // Whether the file is one of theirs, of which the host says that it is there.
    bool haveFile(const std::string& path) {
        wait();
        return files_.contains(path);
    }

private:
    struct Font {
        cf::Ref<CFStringRef> identifier; // A path or a name.
        std::int64_t time;
    };

    void list() {
        const FMFontIteratorRef fonts = FMFontIteratorCreate();
        isListed_ = fonts != nullptr;
        while (FMFontIteratorNext(fonts)) {
            auto path = currentPath(fonts);
            char bytes[PATH_MAX];
            if (path && CFStringGetFileSystemRepresentation(path.get(), bytes, sizeof bytes))
                files_.emplace(bytes);
            fonts_.push_back({path ? std::move(path) : currentWindowsIdentifier(fonts),
                              currentModificationTime(fonts)});
        }
        FMFontIteratorRelease(fonts);
    }
    void wait() {
        if (listing_.joinable())
            listing_.join();
    }

    std::vector<Font> fonts_;
    std::unordered_set<std::string> files_;
    bool isListed_ = false;
    std::thread listing_; // Last: it fills in all others.
};

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
    bool haveTheirFiles(InstalledFonts& installed) const {
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

bool isValid(FMDatabaseRef database) {
    if (!FMDatabaseIsLatestVersion(database) ||
        !holds(database, FMDatabaseCopySerializedPreferredLanguages,
               serializedPreferredLanguages()))
        return false;
    InstalledFonts installed;
    FontRecords records(database);
    return isOfThisApplication(database) &&
           holds(database, FMDatabaseCopySystemResourcesToken, systemResourcesToken()) &&
           records.areWhole() && installed.areIn(database) && records.haveTheirFiles(installed);
}

} // namespace fm
