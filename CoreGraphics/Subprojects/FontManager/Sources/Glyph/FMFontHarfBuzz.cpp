// FMFontHarfBuzz.cpp: fonts of ours as HarfBuzz's.

#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMGlyph.h>

#include "Face/FreeType.h"
#include "Font/FaceUse.h"
#include "Glyph/HarfBuzzFunctions.h"

#include FT_TRUETYPE_TABLES_H

#include <hb.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace {

template <auto destroy>
struct DestroyBy {
    template <typename Object>
    void operator()(Object* object) const {
        destroy(object);
    }
};
using Blob = std::unique_ptr<hb_blob_t, DestroyBy<hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, DestroyBy<hb_face_destroy>>;
using Font = std::unique_ptr<hb_font_t, DestroyBy<hb_font_destroy>>;

// ---- Tables

Blob copyTable(FT_Face face, FT_ULong tag) {
    FT_ULong length = 0;
    if (FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) != 0 || length == 0 ||
        length > UINT32_MAX)
        return nullptr;
    void* const bytes = std::malloc(length);
    if (!bytes || FT_Load_Sfnt_Table(face, tag, 0, static_cast<FT_Byte*>(bytes), &length) != 0) {
        std::free(bytes);
        return nullptr;
    }
    return Blob(hb_blob_create(static_cast<const char*>(bytes), static_cast<unsigned>(length),
                               HB_MEMORY_MODE_WRITABLE, bytes, std::free));
}

hb_blob_t* referenceTable(hb_face_t*, hb_tag_t tag, void* font) {
    const fm::FaceUse use(static_cast<FMFontRef>(font));
    return use ? copyTable(use.face(), tag).release() : nullptr;
}

// The whole file, mapped: its tables are read where they lie. Empty for a font from elsewhere, and
// for files of another make, which FreeType has to take apart first.
Blob mapFile(const FMFont& font) {
    std::array<UInt8, 4096> path;
    if (font.provider || !font.location ||
        !CFURLGetFileSystemRepresentation(font.location.get(), true, path.data(), path.size()))
        return nullptr;
    Blob blob(hb_blob_create_from_file_or_fail(reinterpret_cast<const char*>(path.data())));
    return blob && hb_face_count(blob.get()) > 0 ? std::move(blob) : nullptr;
}

// The upper half of a face index is a named instance of variations, from 1.
constexpr int kInstanceShift = 16;

Face makeFace(FMFont& font, FT_Face opened) {
    const Blob file = mapFile(font);
    Face face(file ? hb_face_create(file.get(), static_cast<unsigned>(font.faceIndex) & 0xffff)
                   : hb_face_create_for_tables(referenceTable, &font, nullptr));
    hb_face_set_upem(face.get(), fm::unitsPerEm(opened));
    hb_face_set_glyph_count(face.get(), static_cast<unsigned>(FMFontGetNumberOfGlyphs(&font)));
    return face;
}

// What we have no functions for, as vertical advances, comes from a font over the tables alone.
Font makeFont(FMFont& font, FT_Face opened) {
    const Face face = makeFace(font, opened);
    const Font tables(hb_font_create(face.get()));
    if (const auto instance = static_cast<unsigned>(font.faceIndex >> kInstanceShift))
        hb_font_set_var_named_instance(tables.get(), instance - 1);
    Font shaped(hb_font_create_sub_font(tables.get()));
    hb_font_set_funcs(shaped.get(), fm::harfBuzzFunctions(), &font, nullptr);
    hb_font_make_immutable(shaped.get());
    return hb_font_is_immutable(shaped.get()) && shaped.get() != hb_font_get_empty()
               ? std::move(shaped)
               : nullptr;
}

} // namespace

struct hb_font_t* FMFontGetHarfBuzzFont(FMFontRef font) {
    if (!font)
        return nullptr;
    const fm::FaceUse use(font);
    if (use && !font->harfBuzzFont)
        font->harfBuzzFont = fm::OwnedSlot(makeFont(*font, use.face()).release(), [](void* made) {
            hb_font_destroy(static_cast<hb_font_t*>(made));
        });
    return static_cast<hb_font_t*>(font->harfBuzzFont.get());
}
