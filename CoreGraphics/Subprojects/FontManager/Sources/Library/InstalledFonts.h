// InstalledFonts.h: the fonts that the host has now, to hold a database against.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMDatabase.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace fm {

// Listing them takes about as long as all else that a start does, so it begins with the object, in
// the background. Who asks before a thread has come to it does it himself.
class InstalledFonts {
public:
    explicit InstalledFonts(FMDatabaseRef database);

    // Whether the database has each as it is now.
    bool areInDatabase() const;
    // Whether the file is one of theirs, of which the host says that it is there.
    bool haveFile(const std::string& path) const;

private:
    struct Listing;

    std::shared_ptr<Listing> listing_; // Shared with the task.
};

// The time under which the database knows a file or font; nothing where it does not.
std::optional<std::int64_t> storedModificationTime(FMDatabaseRef database, CFStringRef identifier);

} // namespace fm
