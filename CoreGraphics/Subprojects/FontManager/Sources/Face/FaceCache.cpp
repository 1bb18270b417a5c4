// FaceCache.cpp: filling and emptying what a font remembers of its face.

#include "Face/FaceCache.h"

namespace fm {

hb_face_t* FaceCache::harfBuzzFace(FT_Face face) {
    if (!harfBuzzFace_)
        harfBuzzFace_ = makeHarfBuzzFace(face);
    return harfBuzzFace_.get();
}

cf::Ref<CFCharacterSetRef> FaceCache::copyCharacterSet(FT_Face face) {
    if (!characterSet_)
        characterSet_ = fm::copyCharacterSet(face);
    return characterSet_;
}

void FaceCache::clear() {
    glyphs_.clear();
    advances_.clear();
    bounds_.clear();
    harfBuzzFace_.reset();
    characterSet_ = nullptr;
}

} // namespace fm
