// FMDatabaseReads.cpp: what a font database knows of a font.

#include "FMDatabaseRecord.h"
#include "MetricsRecord.h"

#include <cstdlib>

namespace fm {

std::optional<std::uint64_t> readNumber(FMDatabaseRef database, const RecordKey& key) {
    if (!database)
        return std::nullopt;
    const auto hold = database->holdForReading();
    const auto value = database->find(key);
    if (!value || value->size() != sizeof(std::uint64_t))
        return std::nullopt;
    return loadLittleEndian<std::uint64_t>(value->data());
}

cf::Ref<CFStringRef> readString(FMDatabaseRef database, const RecordKey& key) {
    if (!database)
        return nullptr;
    const auto hold = database->holdForReading();
    const auto value = database->find(key);
    if (!value)
        return nullptr;
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(value->data()),
                                             static_cast<CFIndex>(value->size()),
                                             kCFStringEncodingUTF8, false));
}

} // namespace fm

namespace {

CFStringRef copyString(FMDatabaseRef database, const char* kind, FMFontId fontId) {
    return fm::readString(database, fm::RecordKey(kind, fontId)).release();
}

// The low bits of the number, which is stored in 64 whatever its type.
template <typename Number>
Number getNumber(FMDatabaseRef database, const char* kind, FMFontId fontId) {
    return static_cast<Number>(fm::readNumber(database, fm::RecordKey(kind, fontId)).value_or(0));
}

} // namespace

bool FMDatabaseHasFontNimbraId(FMDatabaseRef database, CFStringRef nimbraId) {
    return FMDatabaseLookupFontNimbraId(database, nimbraId, nullptr);
}

bool FMDatabaseLookupFontNimbraId(FMDatabaseRef database, CFStringRef nimbraId, FMFontId* fontId) {
    const auto stored =
        fm::readNumber(database, fm::RecordKey(fm::record::kFontOfNimbraId, nimbraId));
    if (stored && fontId)
        *fontId = static_cast<FMFontId>(*stored);
    return stored.has_value();
}

CFStringRef FMDatabaseCopyFontNimbraId(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kNimbraId, fontId);
}
CFStringRef FMDatabaseCopyFontUniqueId(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kUniqueId, fontId);
}
CFStringRef FMDatabaseCopyFontPostScriptName(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kPostScriptName, fontId);
}
CFStringRef FMDatabaseCopyFontFullName(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kFullName, fontId);
}
CFStringRef FMDatabaseCopyFontStyleName(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kStyleName, fontId);
}
CFStringRef FMDatabaseCopyFontNimbraFamilyName(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kNimbraFamilyName, fontId);
}
CFStringRef FMDatabaseCopyFontDisplayName(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kDisplayName, fontId);
}
CFStringRef FMDatabaseCopyFontWindowsIdentifier(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kWindowsIdentifier, fontId);
}
CFStringRef FMDatabaseCopyFontLocation(FMDatabaseRef database, FMFontId fontId) {
    return copyString(database, fm::record::kLocation, fontId);
}

int64_t FMDatabaseGetFontFaceIndex(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<int64_t>(database, fm::record::kFaceIndex, fontId);
}
uint8_t FMDatabaseGetFontRestrictions(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<uint8_t>(database, fm::record::kRestrictions, fontId);
}
uint16_t FMDatabaseGetFontPermFlags(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<uint16_t>(database, fm::record::kPermFlags, fontId);
}
int32_t FMDatabaseGetFontStringEncoding(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<int32_t>(database, fm::record::kStringEncoding, fontId);
}
CFIndex FMDatabaseGetFontNumberOfGlyphs(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<CFIndex>(database, fm::record::kNumberOfGlyphs, fontId);
}
FMFontFormat FMDatabaseGetFontFormat(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<FMFontFormat>(database, fm::record::kFormat, fontId);
}
int64_t FMDatabaseCopyFontGlyphIdCache(FMDatabaseRef database, FMFontId fontId) {
    return getNumber<int64_t>(database, fm::record::kGlyphIdCache, fontId);
}

bool FMDatabaseGetFontMetrics(FMDatabaseRef database, FMFontId fontId, FMFontMetrics* metrics) {
    if (!database || !metrics)
        return false;
    const auto hold = database->holdForReading();
    const auto value = database->find(fm::RecordKey(fm::record::kMetrics, fontId));
    return value && fm::unpackMetrics(*value, *metrics);
}

bool FMDatabaseCopyCharmaps(FMDatabaseRef database, FMFontId fontId, uint32_t** values,
                            size_t* count) {
    if (!values || !count)
        return false;
    *values = nullptr;
    *count = 0;
    if (!database)
        return false;
    const auto hold = database->holdForReading();
    const auto stored = database->find(fm::RecordKey(fm::record::kCharmaps, fontId));
    if (!stored || stored->size() % sizeof(uint32_t) != 0)
        return false;
    auto* const copy = static_cast<uint32_t*>(std::malloc(stored->empty() ? 1 : stored->size()));
    if (!copy)
        return false;
    *values = copy;
    *count = stored->size() / sizeof(uint32_t);
    for (size_t i = 0; i < *count; ++i)
        copy[i] = fm::loadLittleEndian<uint32_t>(stored->data() + i * sizeof(uint32_t));
    return true;
}
