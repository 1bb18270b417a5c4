// InstalledFonts.h: every font face of the machine, as FreeType and HarfBuzz see it by themselves.
#pragma once

#include <CoreGraphics/CGFont.h>

#include <ft2build.h>
#include <hb.h>
#include FT_FREETYPE_H

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace test {

struct CloseFreeTypeFace {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using FreeTypeFace = std::unique_ptr<std::remove_pointer_t<FT_Face>, CloseFreeTypeFace>;

struct DestroyHarfBuzzFace {
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
};
using HarfBuzzFace = std::unique_ptr<hb_face_t, DestroyHarfBuzzFace>;

struct InstalledFace {
    std::string path;
    long index;

    std::string what() const { return path + '#' + std::to_string(index); }
    // Of a FreeType library of the tests' own, with the Unicode charmap where there is one.
    FreeTypeFace openFreeType() const;
    // Over the file's bytes: FreeType has no part in it.
    HarfBuzzFace openHarfBuzz() const;
};

FreeTypeFace openFreeTypeFace(const char* path, long index);

// All faces of all files in /usr/share/fonts that FreeType opens, by path.
const std::vector<InstalledFace>& installedFaces();

// Of `count` glyphs, at most `most`, evenly spread: the first and every (count / most)-th.
std::vector<CGGlyph> sampledGlyphs(long count, long most);

} // namespace test
