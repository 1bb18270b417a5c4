// FamilyMap.cpp: the fonts of a database by family.

#include "Library/FamilyMap.h"

#include "Database/RecordKind.h"
#include "Library/RecordText.h"

#include <utility>

namespace fm {

void FamilyMap::update(FMDatabaseRef database) {
    const auto count = static_cast<FMFontId>(FMDatabaseGetFontsCount(database));
    for (; lastFont_ < count; ++lastFont_) {
        const FMFontId id = lastFont_ + 1;
        if (auto family = lowerCasedRecord(database, record::kNimbraFamilyName, id))
            families_[sanitizedFamily(std::move(*family))].push_back(id);
    }
}

const std::vector<FMFontId>& FamilyMap::fontsOf(std::u16string_view family,
                                                FMDatabaseRef database) {
    static const auto& none = *new std::vector<FMFontId>;
    update(database);
    const auto found = families_.find(family);
    return found == families_.end() ? none : found->second;
}

} // namespace fm
