// InstalledFonts.cpp: the fonts that the host has now.

#include "Library/InstalledFonts.h"

#include <Host/Fonts.h>

#include "Core/Object/Diagnostics.h"
#include "Database/FMDatabaseRecord.h"

#include <algorithm>
#include <atomic>
#include <string_view>
#include <utility>
#include <vector>

namespace fm {

struct InstalledFonts::Listing {
    cf::Ref<FMDatabaseRef> database;
    std::vector<std::string> files;
    bool isListed = false;
    bool areInDatabase = true;
    std::atomic<bool> isTaken = false; // Somebody is making the list.
    std::atomic<bool> isMade = false;

    void make() {
        if (isTaken.exchange(true))
            return;
        const auto take = [](const HostFont* font, void* context) {
            static_cast<Listing*>(context)->take(*font);
        };
        isListed = HostFontEnumerate(take, this);
        // The host gives them in this order.
        if (!std::ranges::is_sorted(files))
            std::ranges::sort(files);
        isMade = true;
        isMade.notify_all();
    }
    void waitUntilMade() {
        make();
        isMade.wait(false);
    }

private:
    void take(const HostFont& font) {
        const char* const identifier = font.path ? font.path : font.name;
        const RecordKey key(record::kLastModified, std::string_view(identifier));
        if (!key.isValid()) {
            CG_LOG_AS(kHostLogWarning, "FMLibraryGetShared", "a font was left out");
            return;
        }
        const auto stored = readNumber(database.get(), key);
        areInDatabase =
            areInDatabase && stored && static_cast<std::int64_t>(*stored) == font.modificationTime;
        if (font.path)
            files.emplace_back(font.path);
    }
};

InstalledFonts::InstalledFonts(FMDatabaseRef database) : listing_(std::make_shared<Listing>()) {
    listing_->database = cf::retain(database);
    auto task = std::make_unique<std::shared_ptr<Listing>>(listing_);
    const auto run = [](void* context) {
        const std::unique_ptr<std::shared_ptr<Listing>> listing(
            static_cast<std::shared_ptr<Listing>*>(context));
        (*listing)->make();
    };
    if (HostTaskSubmit(run, task.get()))
        static_cast<void>(task.release());
}

bool InstalledFonts::areInDatabase() const {
    listing_->waitUntilMade();
    return listing_->isListed && listing_->areInDatabase;
}

bool InstalledFonts::haveFile(const std::string& path) const {
    listing_->waitUntilMade();
    return std::ranges::binary_search(listing_->files, path);
}

std::optional<std::int64_t> storedModificationTime(FMDatabaseRef database, CFStringRef identifier) {
    std::int64_t seconds = 0;
    if (!identifier || !FMDatabaseFetchLastModified(database, identifier, &seconds))
        return std::nullopt;
    return seconds;
}

} // namespace fm
