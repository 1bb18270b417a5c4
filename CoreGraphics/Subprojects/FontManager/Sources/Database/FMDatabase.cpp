// FMDatabase.cpp: making and opening font databases, and the records that are of no font.

#include <CoreFoundation/CFURLAccess.h>

#include "FMDatabaseRecord.h"

#include <climits>
#include <limits>

namespace {

constexpr CFRuntimeClass kDatabaseClass = {
    .className = "FMDatabase",
    .finalize = cg::finalize<FMDatabase>,
};

using Database = cf::Ref<FMDatabaseRef>;

bool openFile(FMDatabase& database, CFURLRef url) {
    char path[PATH_MAX];
    if (!CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(path), sizeof path))
        return false;
    const host::Descriptor file(HostFileOpenForReading(path));
    if (file)
        database.reader = constantdatabase::Reader::overFile(file.get());
    return database.reader.has_value();
}

bool openBytes(FMDatabase& database, CFURLRef url) {
    CFDataRef loaded = nullptr;
    CFURLCreateDataAndPropertiesFromResource(nullptr, url, &loaded, nullptr, nullptr, nullptr);
    database.contents = cf::adopt(loaded);
    if (!loaded)
        return false;
    const std::span bytes(CFDataGetBytePtr(loaded), static_cast<size_t>(CFDataGetLength(loaded)));
    database.reader = constantdatabase::Reader::overBytes(std::as_bytes(bytes));
    return database.reader.has_value();
}

bool isFileURL(CFURLRef url) {
    const auto scheme = cf::adopt(CFURLCopyScheme(url));
    return scheme && CFStringCompare(scheme.get(), CFSTR("file"), kCFCompareCaseInsensitive) ==
                         kCFCompareEqualTo;
}

// A damaged number would send whoever walks over all fonts on a long way: a font has more than one
// record, and so there are fewer fonts than records.
bool isPlausible(const FMDatabase& database, uint64_t nextFontId) {
    constexpr auto most = static_cast<uint64_t>(std::numeric_limits<FMFontId>::max());
    return nextFontId > 0 && nextFontId <= most &&
           (!database.reader || nextFontId - 1 <= database.reader->count());
}

// The mutex is held.
int64_t readNextFontId(FMDatabase& database) {
    if (database.nextFontId == 0) {
        const auto stored =
            fm::readNumber(&database, fm::RecordKey(fm::record::kNextFontId)).value_or(1);
        database.nextFontId = isPlausible(database, stored) ? static_cast<int64_t>(stored) : 1;
    }
    return database.nextFontId;
}

CFStringRef copyString(FMDatabaseRef database, const char* kind) {
    return fm::readString(database, fm::RecordKey(kind)).release();
}

} // namespace

FMDatabaseRef FMDatabaseCreateInMemory(void) {
    Database database = cf::adopt<FMDatabaseRef>(cg::create<FMDatabase>(kDatabaseClass));
    if (!database)
        return nullptr;
    database.get()->isInMemory = true;
    const fm::RecordKey version(fm::record::kVersion);
    if (!fm::storeNumber(database.get(), version, fm::record::kCurrentVersion))
        return nullptr;
    return database.release();
}

FMDatabaseRef FMDatabaseOpenWithURL(CFURLRef url) {
    if (!url)
        return nullptr;
    Database database = cf::adopt<FMDatabaseRef>(cg::create<FMDatabase>(kDatabaseClass));
    const auto open = isFileURL(url) ? openFile : openBytes;
    return database && open(*database.get(), url) ? database.release() : nullptr;
}

FMDatabaseRef FMDatabaseRetain(FMDatabaseRef database) {
    return cg::retain(database);
}
void FMDatabaseRelease(FMDatabaseRef database) {
    cg::release(database);
}

bool FMDatabaseIsInMemory(FMDatabaseRef database) {
    return database && database->isInMemory;
}

bool FMDatabaseIsLatestVersion(FMDatabaseRef database) {
    return fm::readNumber(database, fm::RecordKey(fm::record::kVersion)) ==
           fm::record::kCurrentVersion;
}

int64_t FMDatabaseGetNextFontId(FMDatabaseRef database, bool allocate) {
    if (!database)
        return 0;
    const std::lock_guard hold(database->mutex);
    const int64_t next = readNextFontId(*database);
    if (!allocate)
        return next;
    const fm::RecordKey key(fm::record::kNextFontId);
    if (next == std::numeric_limits<FMFontId>::max() ||
        !fm::storeNumber(database, key, static_cast<uint64_t>(next) + 1))
        return 0;
    database->nextFontId = next + 1;
    return next;
}

CFIndex FMDatabaseGetFontsCount(FMDatabaseRef database) {
    return database ? static_cast<CFIndex>(FMDatabaseGetNextFontId(database, false) - 1) : 0;
}

bool FMDatabaseStoreSystemResourcesToken(FMDatabaseRef database, CFStringRef token) {
    return FMDatabaseStoreString(database, fm::record::kSystemResourcesToken, fm::record::kNoFont,
                                 token);
}

CFStringRef FMDatabaseCopySystemResourcesToken(FMDatabaseRef database) {
    return copyString(database, fm::record::kSystemResourcesToken);
}

bool FMDatabaseStoreSerializedPreferredLanguages(FMDatabaseRef database, CFStringRef languages) {
    return FMDatabaseStoreString(database, fm::record::kPreferredLanguages, fm::record::kNoFont,
                                 languages);
}

CFStringRef FMDatabaseCopySerializedPreferredLanguages(FMDatabaseRef database) {
    return copyString(database, fm::record::kPreferredLanguages);
}

CFStringRef FMDatabaseCopyBaseFontLocation(FMDatabaseRef database) {
    return copyString(database, fm::record::kBaseFontLocation);
}

bool FMDatabaseStoreLastModified(FMDatabaseRef database, CFStringRef identifier, int64_t seconds) {
    if (!database || !identifier)
        return false;
    const fm::RecordKey key(fm::record::kLastModified, identifier);
    return fm::storeNumber(database, key, static_cast<uint64_t>(seconds));
}

bool FMDatabaseFetchLastModified(FMDatabaseRef database, CFStringRef identifier, int64_t* seconds) {
    const auto stored =
        fm::readNumber(database, fm::RecordKey(fm::record::kLastModified, identifier));
    if (stored && seconds)
        *seconds = static_cast<int64_t>(*stored);
    return stored.has_value();
}
