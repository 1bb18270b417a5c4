// FamilyMap.h: the fonts of a database by family.
#pragma once

#include <FontManager/FMDatabase.h>

#include "Library/NameText.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace fm {

// Made when it is first asked, since most names are found without it.
class FamilyMap {
public:
    // The ids of a family's fonts, ascending; empty when the database has none.
    const std::vector<FMFontId>& fontsOf(std::u16string_view family, FMDatabaseRef database);

private:
    // Takes in the fonts that have been stored since the last call.
    void update(FMDatabaseRef database);

    std::unordered_map<std::u16string, std::vector<FMFontId>, NameHash, std::equal_to<>> families_;
    FMFontId lastFont_ = 0;
};

} // namespace fm
