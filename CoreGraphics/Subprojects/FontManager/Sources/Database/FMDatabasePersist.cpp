// FMDatabasePersist.cpp: writing a font database to disk, and listing it.
//
// The records go into a file of a temporary name, which then takes the place of the old database:
// at any time the database is one of the two, whole. All processes use the same temporary name, so
// that one which was killed leaves nothing behind that is not used again. They would write into
// each other's file, also when it has become the database, did they not lock it.

#include <Host/ExclusiveFile.h>

#include "Core/Object/Diagnostics.h"
#include "FMDatabaseRecord.h"

#include <algorithm>
#include <climits>
#include <cstdio>

namespace {

// Longer than any writing takes: whoever holds the file then does not go on.
constexpr uint32_t kPatienceInMilliseconds = 2000;

bool write(const fm::RecordMap& records, int descriptor) {
    constantdatabase::Writer writer(descriptor);
    bool isWhole = true;
    records.forEach(
        [&](fm::Bytes key, fm::Bytes value) { isWhole = isWhole && writer.add(key, value); });
    return writer.finish() && isWhole;
}

// Text that a log can take, whatever the bytes.
class Printable {
public:
    explicit Printable(fm::Bytes bytes) {
        for (const std::byte byte : bytes.first(std::min(bytes.size(), sizeof text_ - 1))) {
            const int character = std::to_integer<int>(byte);
            text_[size_++] =
                character >= 0x20 && character < 0x7f ? static_cast<char>(character) : '.';
        }
        text_[size_] = '\0';
    }
    const char* text() const { return text_; }

private:
    char text_[1024];
    size_t size_ = 0;
};

void printRecord(fm::Bytes key, fm::Bytes value) {
    // An array of numbers, and a long one.
    if (std::ranges::equal(key, fm::RecordKey(fm::record::kCharmaps).bytes()))
        return;
    CG_LOG_AS(kHostLogDebug, "FMDatabasePrint", "%s (%zu) ::: %s (%zu)", Printable(key).text(),
              key.size(), Printable(value).text(), value.size());
}

} // namespace

bool FMDatabasePersistToDisk(FMDatabaseRef database, CFURLRef url) {
    char path[PATH_MAX];
    char temporary[PATH_MAX + sizeof ".tmp"];
    if (!database || !url)
        return false;
    const std::lock_guard hold(database->mutex);
    if (!database->isInMemory) {
        CG_LOG_ERROR("a database that was opened from a file cannot be written");
        return false;
    }
    database->isPersisted = true;
    if (database->isIncomplete ||
        !CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path))
        return false;
    std::snprintf(temporary, sizeof temporary, "%s.tmp", path);
    // The lock is held until the file has its name.
    const host::Descriptor file(HostFileOpenExclusively(temporary, kPatienceInMilliseconds));
    return file && write(database->records, file.get()) && HostFileRename(temporary, path);
}

void FMDatabasePrint(FMDatabaseRef database) {
    if (!database || !HostLogIsEnabled(kHostLogDebug))
        return;
    const std::lock_guard hold(database->mutex);
    if (database->isInMemory) {
        CG_LOG(kHostLogDebug, "In memory, count %zu", database->records.size());
        database->records.forEach(printRecord);
    } else {
        CG_LOG(kHostLogDebug, "Not in memory, count %zu", database->reader->count());
        database->reader->forEach(printRecord);
    }
}
