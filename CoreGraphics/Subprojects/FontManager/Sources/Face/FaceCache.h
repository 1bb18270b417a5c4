// FaceCache.h: what a font remembers of its face between questions.
#pragma once

#include "Face/Coverage.h"
#include "Face/GlyphAdvances.h"
#include "Face/GlyphBounds.h"
#include "Face/GlyphMap.h"
#include "Face/HarfBuzzFace.h"

namespace fm {

// Guarded by the font's lock. Answers outlive the face, which is the same whenever it is opened;
// what reads the face itself does not.
class FaceCache {
public:
    GlyphMap& glyphs() { return glyphs_; }
    GlyphAdvances& advances() { return advances_; }
    GlyphBounds& bounds() { return bounds_; }

    // For HarfBuzz's functions, none of which accept changes: they answer for an empty face when
    // memory runs out.
    hb_face_t* harfBuzzFace(FT_Face face);
    cf::Ref<CFCharacterSetRef> copyCharacterSet(FT_Face face);

    // Before the face is closed.
    void faceWillClose() { harfBuzzFace_.reset(); }
    // Gives the memory back.
    void clear();

private:
    GlyphMap glyphs_;
    GlyphAdvances advances_;
    GlyphBounds bounds_;
    HarfBuzzFace harfBuzzFace_;
    cf::Ref<CFCharacterSetRef> characterSet_;
};

} // namespace fm
