// InstalledFonts.cpp: finding and opening the machine's fonts.

#include "Support/InstalledFonts.h"

#include <algorithm>
#include <filesystem>

namespace test {

namespace {

FT_Library library() {
    static const FT_Library shared = [] {
        FT_Library made = nullptr;
        FT_Init_FreeType(&made);
        return made;
    }();
    return shared;
}

std::vector<InstalledFace> findFaces() {
    std::vector<InstalledFace> faces;
    for (const auto& file : std::filesystem::recursive_directory_iterator("/usr/share/fonts")) {
        if (!file.is_regular_file())
            continue;
        const std::string path = file.path();
        long count = 1;
        for (long index = 0; index < count; ++index) {
            const FreeTypeFace face = openFreeTypeFace(path.c_str(), index);
            if (!face)
                break;
            count = face->num_faces;
            faces.push_back({path, index});
        }
    }
    std::sort(faces.begin(), faces.end(), [](const auto& a, const auto& b) {
        return std::pair(a.path, a.index) < std::pair(b.path, b.index);
    });
    return faces;
}

} // namespace

FreeTypeFace openFreeTypeFace(const char* path, long index) {
    FT_Face face = nullptr;
    if (FT_New_Face(library(), path, index, &face))
        return nullptr;
    if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) && face->num_charmaps > 0)
        FT_Set_Charmap(face, face->charmaps[0]);
    return FreeTypeFace(face);
}

FreeTypeFace InstalledFace::openFreeType() const {
    return openFreeTypeFace(path.c_str(), index);
}

HarfBuzzFace InstalledFace::openHarfBuzz() const {
    hb_blob_t* const blob = hb_blob_create_from_file(path.c_str());
    HarfBuzzFace face(hb_face_create(blob, static_cast<unsigned>(index)));
    hb_blob_destroy(blob);
    return face;
}

const std::vector<InstalledFace>& installedFaces() {
    static const auto faces = findFaces();
    return faces;
}

std::vector<CGGlyph> sampledGlyphs(long count, long most) {
    std::vector<CGGlyph> glyphs;
    const long step = std::max(count / most, 1L);
    for (long glyph = 0; glyph < std::min(count, 65535L); glyph += step)
        glyphs.push_back(static_cast<CGGlyph>(glyph));
    return glyphs;
}

} // namespace test
