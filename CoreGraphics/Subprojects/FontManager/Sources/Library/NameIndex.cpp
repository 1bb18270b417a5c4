// NameIndex.cpp: the fonts of a library by their names.

#include "Library/NameIndex.h"

#include <FontManager/FMFont.h>

#include "Database/RecordKind.h"
#include "Library/RecordText.h"

#include <utility>

namespace fm {

void NameIndex::enter(CFStringRef name, FMFontRef font) {
    if (!name)
        return;
    const FMFontId fontId = FMFontGetFontId(font);
    const auto [found, isNew] = entries_.try_emplace(lowerCased(name), Entry{font, fontId});
    Entry& entry = found->second;
    if (!isNew && !entry.font && entry.fontId != 0 && entry.fontId == fontId)
        entry.font = font;
}

void NameIndex::enterFontsOf(FMDatabaseRef database) {
    const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database));
    entries_.reserve(3 * static_cast<std::size_t>(count));
    for (FMFontId id = 1; id <= count; ++id)
        for (const char* const kind :
             {record::kFullName, record::kDisplayName, record::kPostScriptName})
            if (auto name = lowerCasedRecord(database, kind, id))
                entries_.try_emplace(std::move(*name), Entry{nullptr, id});
}

void NameIndex::remove(FMFontRef font) {
    std::erase_if(entries_, [&](const auto& entry) { return entry.second.font == font; });
}

std::optional<NameIndex::Entry> NameIndex::find(std::u16string_view lowerCasedName) const {
    const auto found = entries_.find(lowerCasedName);
    return found == entries_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace fm
