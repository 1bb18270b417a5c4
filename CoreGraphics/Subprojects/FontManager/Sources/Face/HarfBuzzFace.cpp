// HarfBuzzFace.cpp: names and ligature carets, which HarfBuzz reads from tables.

#include "Face/HarfBuzzFace.h"

#include <hb-ft.h>

#include <algorithm>
#include <array>

namespace fm {

namespace {

using HarfBuzzFont = std::unique_ptr<hb_font_t, DestroyBy<hb_font_destroy>>;

hb_language_t languageOf(hb_face_t* face, hb_ot_name_id_t name) {
    const hb_language_t english = hb_language_from_string("en", -1);
    unsigned count = 0;
    const hb_ot_name_entry_t* const entries = hb_ot_name_list_names(face, &count);
    hb_language_t found = HB_LANGUAGE_INVALID;
    for (unsigned i = 0; i < count; ++i) {
        if (entries[i].name_id != name)
            continue;
        if (entries[i].language == english)
            return english;
        if (found == HB_LANGUAGE_INVALID)
            found = entries[i].language;
    }
    return found;
}

} // namespace

HarfBuzzFace makeHarfBuzzFace(FT_Face face) {
    return HarfBuzzFace(hb_ft_face_create(face, nullptr));
}

cf::Ref<CFStringRef> copyName(hb_face_t* face, hb_ot_name_id_t name) {
    // Names of axes, styles and features are words; a longer one is cut.
    constexpr unsigned kMostUnits = 1024;
    const hb_language_t language =
        name == HB_OT_NAME_ID_INVALID ? HB_LANGUAGE_INVALID : languageOf(face, name);
    if (language == HB_LANGUAGE_INVALID)
        return nullptr;
    std::array<uint16_t, kMostUnits> units;
    unsigned count = kMostUnits;
    hb_ot_name_get_utf16(face, name, language, &count, units.data());
    return count == 0 ? nullptr
                      : cf::adopt(CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(),
                                                               static_cast<CFIndex>(count)));
}

CFIndex ligatureCarets(hb_face_t* face, CGGlyph glyph, CGFloat* positions, CFIndex capacity) {
    // In font units HarfBuzz scales by nothing.
    const HarfBuzzFont font(hb_font_create(face));
    CFIndex written = 0;
    std::array<hb_position_t, 16> carets;
    for (;;) {
        auto count = static_cast<unsigned>(carets.size());
        const unsigned total =
            hb_ot_layout_get_ligature_carets(font.get(), HB_DIRECTION_LTR, glyph,
                                             static_cast<unsigned>(written), &count, carets.data());
        for (unsigned i = 0; i < count && written < capacity; ++i)
            positions[written++] = static_cast<CGFloat>(carets[i]);
        if (count == 0 || written >= capacity || written >= static_cast<CFIndex>(total))
            return static_cast<CFIndex>(total);
    }
}

} // namespace fm
