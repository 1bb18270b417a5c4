// FMDatabaseStore.cpp: storing records in memory.

#include "Core/Object/Diagnostics.h"
#include "FMDatabaseRecord.h"
#include "MetricsRecord.h"

#include <cstring>
#include <limits>
#include <new>

namespace fm {

namespace {

[[noreturn]] void assertionFailed(const char* function) {
    CG_LOG_AS(kHostLogFault, function, "Assertion failed %s",
              "CoreGraphics/Subprojects/FontManager/Sources/FMDatabase");
    HostAbortWithBacktrace();
}

} // namespace

bool store(FMDatabaseRef database, const char* function, const RecordKey& key, Bytes value) {
    const std::lock_guard hold(database->mutex);
    if (!database->isInMemory || database->isPersisted)
        assertionFailed(function);
    const bool isStored = key.isValid() && database->records.set(key.bytes(), value);
    database->isIncomplete = database->isIncomplete || !isStored;
    return isStored;
}

bool storeNumber(FMDatabaseRef database, const RecordKey& key, std::uint64_t number) {
    std::byte bytes[sizeof number];
    storeLittleEndian(bytes, number);
    return store(database, "FMDatabaseStoreUInt64", key, bytes);
}

} // namespace fm

namespace {

// A record finds no memory: the database must not be taken for a whole one. Always false.
bool lose(FMDatabaseRef database) {
    const std::lock_guard hold(database->mutex);
    database->isIncomplete = true;
    return false;
}

// Kinds have four characters; anything else names no record.
bool isKind(const char* kind) {
    return kind && std::strlen(kind) == 4;
}

} // namespace

bool FMDatabaseStoreString(FMDatabaseRef database, const char* kind, FMFontId fontId,
                           CFStringRef string) {
    if (!database || !isKind(kind) || !string)
        return false;
    const fm::StringBytes value = fm::stringBytes(string);
    if (!value.bytes)
        return lose(database);
    return fm::store(database, __func__, fm::RecordKey(kind, fontId),
                     {value.bytes.get(), value.size});
}

bool FMDatabaseStoreBytes(FMDatabaseRef database, const char* kind, FMFontId fontId,
                          const void* bytes, size_t size) {
    if (!database || !isKind(kind) || (!bytes && size > 0))
        return false;
    return fm::store(database, __func__, fm::RecordKey(kind, fontId),
                     {static_cast<const std::byte*>(bytes), size});
}

bool FMDatabaseStoreUInt64(FMDatabaseRef database, const char* kind, FMFontId fontId,
                           uint64_t number) {
    if (!database || !isKind(kind))
        return false;
    return fm::storeNumber(database, fm::RecordKey(kind, fontId), number);
}

bool FMDatabaseStoreFontMetrics(FMDatabaseRef database, FMFontId fontId,
                                const FMFontMetrics* metrics) {
    if (!metrics)
        return false;
    const auto record = fm::packMetrics(*metrics);
    return FMDatabaseStoreBytes(database, fm::record::kMetrics, fontId, record.data(),
                                record.size());
}

bool FMDatabaseStoreCharmaps(FMDatabaseRef database, FMFontId fontId, const uint32_t* values,
                             size_t count) {
    if (!database || (!values && count > 0) ||
        count > std::numeric_limits<size_t>::max() / sizeof(uint32_t))
        return false;
    const std::unique_ptr<std::byte[]> bytes(
        new (std::nothrow) std::byte[count > 0 ? count * sizeof(uint32_t) : 1]);
    if (!bytes)
        return lose(database);
    for (size_t i = 0; i < count; ++i)
        fm::storeLittleEndian(bytes.get() + i * sizeof(uint32_t), values[i]);
    return FMDatabaseStoreBytes(database, fm::record::kCharmaps, fontId, bytes.get(),
                                count * sizeof(uint32_t));
}
