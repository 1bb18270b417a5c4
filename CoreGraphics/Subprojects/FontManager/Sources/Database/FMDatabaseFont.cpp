// FMDatabaseFont.cpp: storing all that is known of a font.

#include <FontManager/FMFont.h>

#include "FMDatabaseRecord.h"
#include "Font/FMFontRecord.h"

namespace fm {

namespace {

// The records of one font, of which those without a value are left out. Failed as soon as one is
// lost for want of memory.
class FontRecords {
public:
    FontRecords(FMDatabaseRef database, FMFontId fontId) : database_(database), fontId_(fontId) {}

    void addString(const char* kind, const cf::Ref<CFStringRef>& string) {
        if (string)
            note(FMDatabaseStoreString(database_, kind, fontId_, string.get()));
    }
    void addNumber(const char* kind, uint64_t number) {
        note(FMDatabaseStoreUInt64(database_, kind, fontId_, number));
    }
    void note(bool isStored) { isWhole_ = isWhole_ && isStored; }
    bool isWhole() const { return isWhole_; }

private:
    FMDatabaseRef database_;
    FMFontId fontId_;
    bool isWhole_ = true;
};

cf::Ref<CFStringRef> locationOf(FMFontRef font) {
    const auto url = cf::adopt(FMFontCopyLocationURL(font));
    const auto absolute = cf::adopt(url ? CFURLCopyAbsoluteURL(url.get()) : nullptr);
    return cf::retain(absolute ? CFURLGetString(absolute.get()) : nullptr);
}

// The font's own id, or a new one; 0 when there is none to be had.
FMFontId idFor(FMDatabaseRef database, FMFontRef font) {
    const FMFontId own = FMFontGetFontId(font);
    return own != 0 ? own : static_cast<FMFontId>(FMDatabaseGetNextFontId(database, true));
}

// Numbers of 64 bits keep their sign.
uint64_t extended(int64_t number) {
    return static_cast<uint64_t>(number);
}

void storeSource(FMDatabaseRef database, FMFontRef font, FontRecords& records) {
    const auto identifier = cf::adopt(FMFontCopyWindowsIdentifier(font));
    const auto location = locationOf(font);
    if (location)
        records.addString(record::kLocation, location);
    else if (identifier)
        records.note(
            FMDatabaseStoreLastModified(database, identifier.get(), FMFontGetLastModtime(font)));
    records.addString(record::kWindowsIdentifier, identifier);
}

void storeNames(FMFontRef font, FontRecords& records) {
    records.addString(record::kUniqueId, cf::adopt(FMFontCopyUniqueId(font, false)));
    records.addString(record::kNimbraFamilyName,
                      cf::adopt(FMFontCopyNimbraFamilyName(font, false)));
    records.addString(record::kStyleName, cf::adopt(FMFontCopyStyleName(font, false)));
    records.addString(record::kPostScriptName, cf::adopt(FMFontCopyPostScriptName(font, false)));
    records.addString(record::kDisplayName, cf::adopt(FMFontCopyDisplayName(font, false)));
    records.addString(record::kFullName, cf::adopt(FMFontCopyFullName(font, false)));
}

void storeNumbers(FMFontRef font, FontRecords& records) {
    records.addNumber(record::kFaceIndex, extended(FMFontGetFaceIndex(font)));
    records.addNumber(record::kPermFlags, FMFontGetPermFlags(font));
    records.addNumber(record::kFormat, FMFontGetFormat(font));
    records.addNumber(record::kNumberOfGlyphs, extended(FMFontGetNumberOfGlyphs(font)));
    records.addNumber(record::kStringEncoding,
                      static_cast<uint32_t>(FMFontGetStringEncoding(font)));
    records.addNumber(record::kRestrictions, FMFontGetRestrictions(font));
}

} // namespace

} // namespace fm

bool FMDatabaseHasFont(FMDatabaseRef database, FMFontRef font) {
    const auto nimbraId = cf::adopt(database && font ? FMFontCopyNimbraId(font, false) : nullptr);
    return FMDatabaseHasFontNimbraId(database, nimbraId.get());
}

bool FMDatabaseStoreFont(FMDatabaseRef database, FMFontRef font) {
    if (!database || !font)
        return false;
    // Held throughout, so that two threads do not give a font two ids. It comes before the
    // database's.
    const std::lock_guard hold(font->mutex);
    const FMFontId fontId = fm::idFor(database, font);
    if (fontId == 0)
        return false;
    fm::FontRecords records(database, fontId);
    fm::storeSource(database, font, records);
    fm::storeNumbers(font, records);
    fm::storeNames(font, records);
    records.note(FMDatabaseStoreFontMetrics(database, fontId, FMFontGetMetrics(font)));
    if (const auto nimbraId = cf::adopt(FMFontCopyNimbraId(font, false))) {
        records.addString(fm::record::kNimbraId, nimbraId);
        const fm::RecordKey key(fm::record::kFontOfNimbraId, nimbraId.get());
        records.note(fm::storeNumber(database, key, static_cast<uint64_t>(fontId)));
    }
    records.addNumber(fm::record::kGlyphIdCache, static_cast<uint64_t>(font->glyphIdCache));
    FMFontSetFontId(font, fontId);
    return records.isWhole();
}
