// InstalledFonts.cpp: the fonts that the host has now.

#include "Library/InstalledFonts.h"

#include <Host/Host.h>

#include "Font/FontIterator.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace fm {

struct InstalledFonts::Listing {
    struct Font {
        cf::Ref<CFStringRef> identifier; // A path or a name.
        std::int64_t time;
    };

    std::vector<Font> fonts;
    std::unordered_set<std::string> files;
    bool isListed = false;
    std::atomic<bool> isTaken = false; // Somebody is making the list.
    std::atomic<bool> isMade = false;

    void make() {
        if (isTaken.exchange(true))
            return;
        list();
        isMade = true;
        isMade.notify_all();
    }
    void waitUntilMade() {
        make();
        isMade.wait(false);
    }

private:
    void list() {
        const FMFontIteratorRef iterator = FMFontIteratorCreate();
        isListed = iterator != nullptr;
        while (FMFontIteratorNext(iterator)) {
            auto path = currentPath(iterator);
            char bytes[PATH_MAX];
            if (path && CFStringGetFileSystemRepresentation(path.get(), bytes, sizeof bytes))
                files.emplace(bytes);
            fonts.push_back({path ? std::move(path) : currentWindowsIdentifier(iterator),
                             currentModificationTime(iterator)});
        }
        FMFontIteratorRelease(iterator);
    }
};

InstalledFonts::InstalledFonts() : listing_(std::make_shared<Listing>()) {
    auto task = std::make_unique<std::shared_ptr<Listing>>(listing_);
    const auto run = [](void* context) {
        const std::unique_ptr<std::shared_ptr<Listing>> listing(
            static_cast<std::shared_ptr<Listing>*>(context));
        (*listing)->make();
    };
    if (HostTaskSubmit(run, task.get()))
        static_cast<void>(task.release());
}

bool InstalledFonts::areIn(FMDatabaseRef database) const {
    listing_->waitUntilMade();
    return listing_->isListed && std::ranges::all_of(listing_->fonts, [&](const auto& font) {
               return storedModificationTime(database, font.identifier.get()) == font.time;
           });
}

bool InstalledFonts::haveFile(const std::string& path) const {
    listing_->waitUntilMade();
    return listing_->files.contains(path);
}

std::optional<std::int64_t> storedModificationTime(FMDatabaseRef database, CFStringRef identifier) {
    std::int64_t seconds = 0;
    if (!identifier || !FMDatabaseFetchLastModified(database, identifier, &seconds))
        return std::nullopt;
    return seconds;
}

} // namespace fm
