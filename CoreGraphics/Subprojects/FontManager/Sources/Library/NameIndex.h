// NameIndex.h: the fonts of a library by their names.
#pragma once

#include <FontManager/FMDatabase.h>

#include "Library/NameText.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace fm {

// Maps lower-cased names to fonts. The first font of a name keeps it. Fonts of a database have
// their names entered before they are made: they were registered when the database was, so they
// come before fonts registered since, whichever of them are made first. Retains nothing.
class NameIndex {
public:
    struct Entry {
        FMFontRef font;  // NULL for a font not made yet, and for a name that is known to have none.
        FMFontId fontId; // Of a font in the database, else 0.
    };

    // Enters a font under a name. Does nothing for NULL as name.
    void enter(CFStringRef name, FMFontRef font);
    // Enters the fonts that the database has.
    void enterFontsOf(FMDatabaseRef database);
    void remove(FMFontRef font);

    std::optional<Entry> find(std::u16string_view lowerCasedName) const;

private:
    std::unordered_map<std::u16string, Entry, NameHash, std::equal_to<>> entries_;
};

} // namespace fm
