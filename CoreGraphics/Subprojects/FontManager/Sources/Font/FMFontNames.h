// FMFontNames.h: how a font's names are read once and kept.
#pragma once

#include "Font/FMFontRecord.h"

#include <cstdint>
#include <mutex>
#include <optional>

namespace fm {

// Names are kept under their number in the name table; those that are worked out, under numbers
// that the table does not reach.
enum NameKey : std::uint16_t {
    kNameCopyright = 0,
    kNameFamily = 1,
    kNameSubFamily = 2,
    kNameUnique = 3,
    kNameFull = 4,
    kNameVersion = 5,
    kNamePostScript = 6,
    kNameTrademark = 7,
    kNameManufacturer = 8,
    kNameDesigner = 9,
    kNameDescription = 10,
    kNameVendorURL = 11,
    kNameDesignerURL = 12,
    kNameLicense = 13,
    kNameLicenseURL = 14,
    kNamePreferredFamily = 16,
    kNamePreferredSubFamily = 17,
    kNameCompatibleFull = 18,
    kNameSampleText = 19,
    kNamePostScriptCID = 20,
    kNameWWSFamily = 21,
    kNameWWSSubFamily = 22,
    kNameNimbraFamily = 41,
    kNameNimbraId = 42,
    kNameStyle = 43,
    kNameDisplay = 44,
    kNameUniqueId = 49,
};

// With the font locked: what is kept under `key`. Nothing for a name not yet asked for; an absent
// string for one that the font is known to lack.
std::optional<cf::Ref<CFStringRef>> keptName(const FMFont& font, NameKey key);
// With the font locked: keeps a name, or that there is none.
void keepName(FMFont& font, NameKey key, const cf::Ref<CFStringRef>& name);

// The name that is kept, else what `read(font)` finds, which is then kept. A name wanted `afresh`
// is read in any case, and what was kept stays. `read` answers nothing when the font could not be
// asked, which is no reason to remember that there is no name. The font is locked meanwhile.
template <typename Read>
CFStringRef copyName(FMFontRef font, NameKey key, bool afresh, Read read) {
    if (!font)
        return nullptr;
    const std::lock_guard hold(font->mutex);
    if (!afresh) {
        if (auto kept = keptName(*font, key))
            return kept->release();
    }
    std::optional<cf::Ref<CFStringRef>> name = read(*font);
    if (!name)
        return nullptr;
    if (!afresh)
        keepName(*font, key, *name);
    return name->release();
}

} // namespace fm
